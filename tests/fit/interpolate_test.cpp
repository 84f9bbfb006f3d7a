// Interpolation: evaluators, placement of results, cells, callbacks, order 0, statuses.
#include "fit/support.h"
#include "services/test_switches.h"

#include <cmath>

namespace orv::test {
namespace {

template <class T>
class FitInterpolate : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitInterpolate, Elements);

// The values at the sites, or the derivatives wanted there; a test adds what else it asks for.
template <class T>
Evaluation<T> evaluation(const Fit<T>& fit, const std::vector<T>& x, T* results) {
    return {.task = fit.task, .count = static_cast<int64_t>(x.size()), .sites = x.data(), .results = results};
}
template <class T>
Evaluation<T> evaluation(const Fit<T>& fit, const std::vector<T>& x, T* results, const std::vector<int32_t>& wanted) {
    Evaluation<T> e = evaluation(fit, x, results);
    e.derivative_count = static_cast<int64_t>(wanted.size());
    e.derivatives = wanted.data();
    return e;
}

template <class T>
Problem<T> random_pieces(int64_t order, int64_t type, bool uniform, int64_t functions = 1) {
    Problem<T> p;
    p.x = breaks<T>(40, uniform);
    p.uniform = uniform;
    p.functions = functions;
    p.y = noise<T>(40 * functions);
    p.order = order;
    p.type = type;
    if (type == ORV_DF_TYPE_KNOTS) {
        p.ic_type = ORV_DF_INTERNAL_KNOTS;
        for (size_t i = 0; i + 1 < p.x.size(); ++i) p.ic.push_back(p.x[i] + (p.x[i + 1] - p.x[i]) / 4);
    }
    return p;
}

// The piece that holds a site.
template <class T>
int64_t piece_of(const Fit<T>& fit, T x) {
    std::vector<T> edges(fit.p.x.begin() + 1, fit.p.x.end() - 1);
    if (fit.p.type == ORV_DF_TYPE_KNOTS) edges = fit.p.ic;
    return std::upper_bound(edges.begin(), edges.end(), x) - edges.begin();
}

template <class T>
std::vector<T> scattered(const std::vector<T>& b, size_t count, bool sorted) {
    std::mt19937 random(4);
    std::vector<T> x(b.begin(), b.begin() + static_cast<ptrdiff_t>(std::min(count, b.size())));
    std::uniform_real_distribution<double> within(b.front() - 0.75, b.back() + 0.75);
    while (x.size() < count) x.push_back(static_cast<T>(within(random)));
    if (sorted) std::sort(x.begin(), x.end());
    return x;
}

TYPED_TEST(FitInterpolate, EveryOrderAndDerivativeInEveryLayout) {
    using T = TypeParam;
    const struct { int64_t order, type; } kinds[] = {{2, 0}, {3, 0}, {3, 1}, {4, 2}, {4, 9}, {6, 0}};
    for (const auto& kind : kinds)
        for (const bool uniform : {false, true})
            for (const size_t count : {size_t{1}, size_t{31}, size_t{33}, size_t{1531}}) {
                Fit<T> fit(random_pieces<T>(kind.order, kind.type, uniform, 3));
                fit.coeffs = noise<T>(static_cast<int64_t>(fit.coeffs.size()), 8);
                orv_df_kernel_iEditVal(fit.task, ORV_DF_BREAK_HINT, fit.task->breakHint);
                EditPtr(T{}, fit.task, int64_t{ORV_DF_COEFFICIENTS}, fit.coeffs.data());
                for (const bool sorted : {false, true}) {
                    const std::vector<T> x = scattered(fit.p.x, count, sorted);
                    const std::vector<int32_t> wanted = {1, 0, 5, 1, 1, 0};  // value, second, third, fourth
                    const size_t orders[] = {0, 2, 3, 4}, S = count, F = 3, D = 4;
                    std::vector<T> rows(S * F * D), out(S * F * D);
                    Evaluation<T> e = evaluation(fit, x, rows.data(), wanted);
                    e.hint = sorted ? ORV_DF_SITES_SORTED : 0;
                    ASSERT_EQ(e(), 0);
                    for (size_t f = 0; f < F; ++f)
                        for (size_t s = 0; s < S; ++s)
                            for (size_t d = 0; d < D; ++d) {
                                const int64_t piece = piece_of(fit, x[s]);
                                const auto expected = static_cast<double>(
                                    fit.at(piece, x[s], static_cast<int>(orders[d]), static_cast<int64_t>(f)));
                                ASSERT_NEAR(rows[(f * S + s) * D + d], expected, 500 * epsilon<T>)
                                    << "order " << kind.order << " type " << kind.type << " site " << x[s]
                                    << " derivative " << orders[d] << " uniform " << uniform;
                            }
                    std::vector<std::vector<T>> own(F, std::vector<T>(S * D));
                    T* pointers[] = {own[0].data(), own[1].data(), own[2].data()};
                    for (const int64_t layout : {0x10, 0x20, 0x100, 0x200, 0x80}) {
                        e.results = layout == 0x80 ? reinterpret_cast<T*>(pointers) : out.data();
                        e.layout = layout;
                        ASSERT_EQ(e(), 0);
                        for (size_t f = 0; f < F; ++f)
                            for (size_t s = 0; s < S; ++s)
                                for (size_t d = 0; d < D; ++d) {
                                    const T got = layout == 0x10    ? out[(f * S + s) * D + d]
                                                  : layout == 0x20  ? out[(s * F + f) * D + d]
                                                  : layout == 0x100 ? out[(f * D + d) * S + s]
                                                  : layout == 0x200 ? out[(s * D + d) * F + f]
                                                                    : own[f][s * D + d];
                                    ASSERT_EQ(got, rows[(f * S + s) * D + d]) << "layout " << layout;
                                }
                    }
                }
            }
}

TYPED_TEST(FitInterpolate, CellsAreStoredTakenAndSearchedForAlone) {
    using T = TypeParam;
    for (const int32_t wide : {0, 1})
        for (const size_t count : {size_t{20}, size_t{900}}) {
            Problem<T> p = random_pieces<T>(4, 2, false);
            p.wide = wide;
            Fit<T> fit(p);
            ASSERT_EQ(fit.construct(natural), 0);
            const std::vector<T> x = scattered(p.x, count, false);
            std::vector<int64_t> wide_cells(count, -1), wide_wanted = {1};
            std::vector<int32_t> narrow_cells(count, -1), narrow_wanted = {1, 0};
            const auto run = [&](int64_t type, T* out) {
                Evaluation<T> e = evaluation(fit, x, out);
                e.type = type;
                e.derivatives = wide ? static_cast<const void*>(wide_wanted.data()) : narrow_wanted.data();
                e.cells = wide ? static_cast<void*>(wide_cells.data()) : narrow_cells.data();
                return e();
            };
            std::vector<T> found(count), given(count, 7), stored(count), searched(count, 7);
            const int64_t type = fit.task->splineType;
            fit.task->splineType = 6;  // search alone does not look at the spline codes
            ASSERT_EQ(run(4, searched.data()), 0);
            fit.task->splineType = type;
            EXPECT_EQ(searched, std::vector<T>(count, 7));
            for (size_t i = 0; i < count; ++i) {
                const auto cell = std::upper_bound(p.x.begin(), p.x.end(), x[i]) - p.x.begin();
                EXPECT_EQ(wide ? wide_cells[i] : narrow_cells[i], x[i] == p.x.back() ? cell - 1 : cell);
            }
            ASSERT_EQ(run(1, found.data()), 0);
            ASSERT_EQ(run(2, given.data()), 0);
            EXPECT_EQ(found, given);
            std::fill(wide_cells.begin(), wide_cells.end(), 99999);
            std::fill(narrow_cells.begin(), narrow_cells.end(), -99999);
            // Cells out of range count as the ends, and given cells are not stored over.
            ASSERT_EQ(run(6, given.data()), 0);
            EXPECT_EQ(wide ? wide_cells[0] : narrow_cells[0], wide ? 99999 : -99999);
            for (size_t i = 0; i < count; ++i)
                ASSERT_NEAR(given[i], static_cast<double>(fit.at(wide ? 38 : 0, x[i])),
                            std::fabs(given[i]) * 1e-4 + 1e-3);
            ASSERT_EQ(run(5, stored.data()), 0);
            EXPECT_EQ(found, stored);
            EXPECT_LE(wide ? wide_cells[0] : narrow_cells[0], 40);
        }
}

TYPED_TEST(FitInterpolate, SearchMethodsAndThreadsGiveTheSameValues) {
    using T = TypeParam;
    Problem<T> p = random_pieces<T>(4, 2, false);
    p.x = breaks<T>(1000);
    p.y = noise<T>(1000);
    Fit<T> fit(p);
    ASSERT_EQ(fit.construct(natural), 0);
    for (const bool sorted : {false, true}) {
        const std::vector<T> x = scattered(p.x, 60001, sorted);
        std::vector<T> plain(x.size()), other(x.size());
        ASSERT_EQ(evaluation(fit, x, plain.data())(), 0);
        for (size_t i = 0; i < x.size(); i += 101) {
            T one;
            ASSERT_EQ(evaluation(fit, {x[i]}, &one)(), 0);
            ASSERT_EQ(one, plain[i]);
        }
        const T peak[] = {0, 1, 0, 0, 500}, neither[] = {0, 3, 0, 0, 0};
        const orv_df_search_callback guess = [](const int64_t* count, const void*, int64_t* cells, uint8_t* unfinished,
                                                const orv_df_partition*, void*) {
            for (int64_t i = 0; i < *count; ++i) cells[i] = 400, unfinished[i] = 1;
            return int32_t{0};
        };
        const struct {
            int64_t break_hint, hint;
            const T* data;
            orv_df_search_callback search;
            int32_t status;
        } ways[] = {
            {0, 0, peak, nullptr, 0},
            {0, 0, neither, nullptr, -1026},
            {0, 0, nullptr, guess, 0},
            {0, sorted ? ORV_DF_SITES_SORTED : 0, nullptr, nullptr, 0},
            {ORV_DF_BREAKS_QUASI_UNIFORM, 0, nullptr, nullptr, 0},
        };
        for (const auto& way : ways) {
            orv_df_kernel_iEditVal(fit.task, ORV_DF_BREAK_HINT, way.break_hint);
            std::fill(other.begin(), other.end(), T{-777});
            Evaluation<T> e = evaluation(fit, x, other.data());
            e.hint = way.hint, e.data = way.data, e.search = way.search;
            ASSERT_EQ(e(), way.status);
            EXPECT_EQ(plain == other, way.status == 0) << "way " << (&way - ways);
        }
        orv_df_kernel_iEditVal(fit.task, ORV_DF_BREAK_HINT, 0);
    }
}

TYPED_TEST(FitInterpolate, StepsAndLookUp) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (const bool uniform : {false, true})
        for (const bool interleaved : {false, true}) {
            Problem<T> p;
            p.x = {0, 1, 2, 3};
            p.y = {10, 20, 11, 21, 12, 22, 13, 23};
            if (!interleaved) p.y = {10, 11, 12, 13, 20, 21, 22, 23};
            p.functions = 2;
            p.layout = interleaved ? 0x20 : 0;
            p.uniform = uniform;
            p.order = 0;
            const std::vector<T> x = {-1, 0, 0.5, 1, 1.5, 2, 3, 4, nan};
            const struct {
                int64_t type;
                std::vector<T> expected;
            } kinds[] = {
                {6, {nan, 10, nan, 11, nan, 12, 13, nan, nan}},
                {7, {10, 10, 10, 11, 11, 12, 13, 13, nan}},
                {8, {10, 10, 11, 11, 12, 12, 13, 13, nan}},
            };
            for (const auto& kind : kinds) {
                p.type = kind.type;
                const Fit<T> fit(p);
                std::vector<T> out(18), slopes(18);
                ASSERT_EQ(evaluation(fit, x, out.data())(), 0);
                ASSERT_EQ(evaluation(fit, x, slopes.data(), {0, 1})(), 0);
                for (size_t i = 0; i < 18; ++i) {
                    const T want = kind.expected[i % 9] + (i < 9 ? 0 : 10);
                    EXPECT_TRUE(out[i] == want || (want != want && out[i] != out[i]))
                        << kind.type << " site " << x[i % 9];
                    EXPECT_EQ(slopes[i] == 0, kind.type != 6);
                }
            }
        }
}

// Arrays that were never given, or are too few after an edit, are refused by whatever reads them and by nothing else.
TYPED_TEST(FitInterpolate, MissingArraysAreRefused) {
    using T = TypeParam;
    enum What { values, steps, search_alone, by_callbacks, integral, construction };
    const struct {
        const char* task;
        int64_t order, type;
        bool has_functions, has_second_function, has_coefficients, has_second_coefficients, has_knots;
        int32_t statuses[6];
    } cases[] = {
        {"whole", 4, 2, true, true, true, true, false, {0, 0, 0, 0, 0, 0}},
        {"without coefficients", 4, 2, true, true, false, false, false, {-1016, 0, 0, 0, -1016, -1016}},
        {"second without coefficients", 4, 2, true, true, true, false, false, {-1016, 0, 0, 0, -1016, -1016}},
        {"without functions", 4, 2, false, false, true, true, false, {0, -1008, 0, 0, 0, -1008}},
        {"without second function", 4, 2, true, false, true, true, false, {0, -1008, 0, 0, 0, -1008}},
        {"without knots", 3, 1, true, true, true, true, false, {-1013, 0, 0, 0, -1013, -1013}},
        {"with knots", 3, 1, true, true, true, true, true, {0, 0, 0, 0, 0, 0}},
        {"empty", 4, 2, false, false, false, false, false, {-1016, -1008, 0, 0, -1016, -1008}},
    };
    const std::vector<T> x = breaks<T>(9), y = noise<T>(18);
    std::vector<T> knots, coeffs(200), sites(40, T(0.5)), out(80);
    for (size_t i = 0; i + 1 < x.size(); ++i) knots.push_back((x[i] + x[i + 1]) / 2);
    for (const auto& c : cases)
        for (const int64_t count : {1, 40}) {
            DFTask* task = nullptr;
            NewTask1D(T{}, &task, int64_t{9}, x.data(), int64_t{0}, int64_t{c.has_functions ? 1 : 0},
                      c.has_functions ? y.data() : nullptr, int64_t{ORV_DF_ROW_POINTERS}, 0);
            if (!c.has_functions) orv_df_kernel_iEditVal(task, ORV_DF_FUNCTION_COUNT, 1);
            EditPPSpline1D(T{}, task, c.order, c.type, int64_t{ORV_DF_FREE_END}, nullptr,
                           int64_t{c.has_knots ? ORV_DF_INTERNAL_KNOTS : 0}, c.has_knots ? knots.data() : nullptr,
                           c.has_coefficients ? coeffs.data() : nullptr, int64_t{ORV_DF_ROW_POINTERS});
            if (c.type == 1) orv_df_kernel_iEditVal(task, ORV_DF_INTERNAL_TYPE, ORV_DF_INTERNAL_KNOTS);
            orv_df_kernel_iEditVal(task, ORV_DF_FUNCTION_COUNT, 2);
            if (c.has_second_function) EditIdxPtr(T{}, task, int64_t{ORV_DF_FUNCTIONS}, int64_t{1}, &y[9]);
            if (c.has_second_coefficients)
                EditIdxPtr(T{}, task, int64_t{ORV_DF_COEFFICIENTS}, int64_t{1}, &coeffs[100]);
            const auto evaluate = [&](int64_t type, orv_df_run_callback f) {
                int32_t cells[40];
                return Evaluation<T>{.task = task,
                                     .count = count,
                                     .sites = sites.data(),
                                     .results = out.data(),
                                     .type = type,
                                     .cells = cells,
                                     .left = f,
                                     .right = f,
                                     .inside = f}();
            };
            const auto zeros = [](const orv_df_run* run, void*) {
                for (int64_t i = 0; i < run->siteCount; ++i) static_cast<T*>(run->values)[i] = 0;
                return int32_t{0};
            };
            EXPECT_EQ(evaluate(1, nullptr), c.statuses[values]) << c.task;
            EXPECT_EQ(evaluate(4, nullptr), c.statuses[search_alone]) << c.task;
            EXPECT_EQ(evaluate(1, zeros), c.statuses[by_callbacks]) << c.task;
            EXPECT_EQ(DFIntegrate1D(T{}, task, int64_t{0}, count, sites.data(), int64_t{0}, sites.data(), int64_t{0},
                                    nullptr, out.data(), int64_t{0}, nullptr),
                      c.statuses[integral])
                << c.task;
            EXPECT_EQ(construct_of<T>(c.order == 3 ? quadratic : natural)(task, nullptr, nullptr, 0, nullptr),
                      c.statuses[construction])
                << c.task;
            for (const int64_t type : {ORV_DF_TYPE_LOOK_UP, ORV_DF_TYPE_LEFT_STEP, ORV_DF_TYPE_RIGHT_STEP}) {
                task->splineOrder = 0, task->splineType = type;
                EXPECT_EQ(evaluate(1, nullptr), c.statuses[steps]) << c.task;
            }
            orv_df_kernel_DeleteTask(&task);
        }
}

// Each callback writes its own mark and the derivative it was asked for.
template <class T, int mark>
int32_t marking(const orv_df_run* run, void* param) {
    auto& runs = *static_cast<std::vector<int>*>(param);
    runs.push_back(mark);
    for (int64_t i = 0; i < run->siteCount; ++i)
        static_cast<T*>(run->values)[i] =
            static_cast<T>(mark + 10 * run->derivative + 100 * run->funcIndex + 1000 * run->cells[i]);
    return mark == 2 ? 1000 : 0;
}

TYPED_TEST(FitInterpolate, CallbacksTakeTheirSites) {
    using T = TypeParam;
    Fit<T> fit(random_pieces<T>(4, 2, false, 2));
    ASSERT_EQ(fit.construct(natural), 0);
    for (const size_t count : {size_t{8}, size_t{2000}}) {
        std::vector<T> x = scattered(fit.p.x, count, false);
        x[2] = fit.p.x.front() - 1, x[5] = fit.p.x.back() + 1;
        std::vector<T> plain(count * 4), out(count * 4);
        std::vector<int> runs;
        const std::vector<int32_t> wanted = {1, 1};
        ASSERT_EQ(evaluation(fit, x, plain.data(), wanted)(), 0);
        Evaluation<T> e = evaluation(fit, x, out.data(), wanted);
        e.param = &runs;
        for (const bool all : {false, true}) {
            e.left = marking<T, 1>;
            e.right = marking<T, 2>;
            if (all) e.inside = marking<T, 3>;
            ASSERT_EQ(e(), 0);
            for (size_t f = 0; f < 2; ++f)
                for (size_t s = 0; s < count; ++s)
                    for (size_t d = 0; d < 2; ++d) {
                        const size_t at = (f * count + s) * 2 + d;
                        const bool left = x[s]<fit.p.x.front(), right = x[s]> fit.p.x.back();
                        const auto cell = std::upper_bound(fit.p.x.begin(), fit.p.x.end() - 1, x[s]) - fit.p.x.begin();
                        const auto marked = static_cast<T>((left    ? 1
                                                            : right ? 2
                                                                    : 3) +
                                                           10 * d + 100 * f) +
                                            static_cast<T>(1000 * (right ? cell + 1 : cell));
                        ASSERT_EQ(out[at], left || right || all ? marked : plain[at]) << s;
                    }
        }
        // A negative answer ends the call; order 0 with another type lives on the three callbacks alone.
        e.derivatives = nullptr, e.derivative_count = 1;
        e.left = e.right = e.inside = [](const orv_df_run*, void*) { return int32_t{-5}; };
        EXPECT_EQ(e(), -5);
        e.left = marking<T, 1>, e.right = marking<T, 2>, e.inside = marking<T, 3>;
        fit.task->splineOrder = 0;
        EXPECT_EQ(e(), 0);
        EXPECT_EQ(out[2], 1);
        e.inside = nullptr;
        EXPECT_EQ(e(), -1011);
        fit.task->splineOrder = 4;
    }
}

TEST(FitInterpolateEntry, CodesStatusesAndScratch) {
    Fit<double> fit(random_pieces<double>(6, 0, false));
    fit.coeffs.assign(fit.coeffs.size(), 1);
    const std::vector<double> few(31, 1.0), many(32, 1.0);
    double out[64];
    const struct {
        int64_t order, type;
        int32_t status;
    } codes[] = {{2, 77, 0}, {3, 0, 0},     {3, 2, -1011}, {4, 1, -1011}, {4, 6, -1011},
                 {4, 9, 0},  {1, 0, -1011}, {5, 1, 0},     {0, 0, -1011}};
    for (const auto& c : codes) {
        fit.task->splineOrder = c.order, fit.task->splineType = c.type;
        Evaluation<double> e = evaluation(fit, few, out);
        EXPECT_EQ(e(), c.status) << c.order << " " << c.type;
        e.layout = 0x40;
        EXPECT_EQ(e(), c.status == 0 ? -1028 : -1011);
    }
    fit.task->splineOrder = 6, fit.task->splineType = 0;
    EXPECT_EQ(evaluation(fit, {}, out)(), 0);
    // Up to 31 sites need no scratch, unless integers are wide or cells are stored.
    const struct {
        const std::vector<double>& x;
        int32_t wide;
        int64_t type;
        int32_t status;
    } cases[] = {{few, 0, 1, 0}, {many, 0, 1, -1001}, {few, 1, 1, -1001}, {few, 0, 5, -1001}, {few, 0, 4, -1001}};
    for (const auto& c : cases) {
        fit.task->wideInts = c.wide;
        std::fill(out, out + 64, -7);
        int64_t cells[64];
        cells[0] = -7;
        const int32_t before = orv_serv_live_blocks();
        orv_serv_fail_allocation(1);
        Evaluation<double> e = evaluation(fit, c.x, out);
        e.type = c.type, e.cells = cells;
        EXPECT_EQ(e(), c.status);
        orv_serv_fail_allocation(0);
        EXPECT_EQ(out[0] == -7, c.status != 0);
        EXPECT_EQ(cells[0], -7);
        EXPECT_EQ(orv_serv_live_blocks(), before);
    }
}

}  // namespace
}  // namespace orv::test
