// Construction: reproduction of polynomials, conditions at breaks and ends, layouts, spacings, statuses, failures.
#include "fit/support.h"
#include "services/test_switches.h"

#include <cmath>

namespace orv::test {
namespace {

template <class T>
class FitConstruct : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitConstruct, Elements);

constexpr int64_t boundary_codes[] = {1, 2, 12, 36, 24, 48};

long double polynomial(const std::vector<long double>& c, long double x, int derivative = 0) {
    long double sum = 0;
    for (size_t k = c.size(); k-- > static_cast<size_t>(derivative);) {
        long double factor = 1;
        for (int j = 0; j < derivative; ++j) factor *= static_cast<long double>(k) - j;
        sum = sum * x + c[k] * factor;
    }
    return sum;
}

// Boundary data of the polynomial that the code asks for.
template <class T>
std::vector<T> boundary_data(int64_t code, const std::vector<long double>& c, T a, T b) {
    return {static_cast<T>(polynomial(c, a, code & 16 ? 2 : 1)), static_cast<T>(polynomial(c, b, code & 32 ? 2 : 1))};
}

struct Reproduction {
    Spline spline;
    int64_t code;
    int degree;
};

// Which polynomials a spline reproduces under which ends: free ends want second derivative 0.
std::vector<Reproduction> reproductions(bool uniform) {
    std::vector<Reproduction> all = {{akima, 0, 1}, {linear, 2, 1}};
    for (const int64_t code : boundary_codes) {
        const int full = code == 2 ? 1 : 3;
        all.push_back({natural, code, full});
        all.push_back({default_cubic, code, full});
        if (code == 1 && uniform) continue;  // the local family's uniform not-a-knot end is no not-a-knot end
        all.push_back({hermite, code, full});
        all.push_back({bessel, code, std::min(full, 2)});
        all.push_back({akima, code, 1});
        all.push_back({hyman, code, 1});
    }
    return all;
}

template <class T>
void expect_reproduction(const Reproduction& r, bool uniform, int64_t count) {
    Problem<T> p;
    p.x = breaks<T>(count, uniform);
    p.uniform = uniform;
    p.order = r.spline == linear ? 2 : 4;
    p.bc_type = r.code;
    const std::vector<long double> all = {0.75L, -1.25L, 0.5L, 0.125L};
    const std::vector<long double> c(all.begin(), all.begin() + r.degree + 1);
    for (const T x : p.x) p.y.push_back(static_cast<T>(polynomial(c, x)));
    if (r.code >= 12) p.bc = boundary_data<T>(r.code, c, p.x.front(), p.x.back());
    if (r.spline == hermite || r.spline == default_cubic) {
        p.ic_type = 1;
        for (size_t i = 1; i + 1 < p.x.size(); ++i)
            p.ic.push_back(static_cast<T>(polynomial(c, p.x[i], r.spline == hermite ? 1 : 2)));
    }
    Fit<T> fit(p);
    ASSERT_EQ(fit.construct(r.spline), 0);
    const T span = p.x.back() - p.x.front();
    const T scale = 2 * std::max<T>(1, span * span * span);
    for (int64_t i = 0; i + 1 < count; ++i)
        for (int k = 0; k < p.order; ++k)
            EXPECT_NEAR(static_cast<double>(fit.at(i, p.x[static_cast<size_t>(i)], k)),
                        static_cast<double>(polynomial(c, p.x[static_cast<size_t>(i)], std::min(k, 4))),
                        static_cast<double>(60 * epsilon<T> * scale * (k < 2 ? 1 : 20)))
                << "spline " << r.spline << " ends " << r.code << " cell " << i << " derivative " << k;
}

TYPED_TEST(FitConstruct, PolynomialsAreReproduced) {
    for (const bool uniform : {false, true})
        for (const int64_t count : {5, 9})
            for (const Reproduction& r : reproductions(uniform)) expect_reproduction<TypeParam>(r, uniform, count);
}

// What is asked for: values at the breaks, derivatives that do not jump where pieces meet, and the conditions at the ends.
template <class T>
struct Kind {
    Spline spline;
    int64_t order, type;
    std::vector<int> continuous;
    std::vector<int64_t> codes, counts;
};

template <class T>
Problem<T> conditioned(const Kind<T>& kind, int64_t code, int64_t count, bool uniform) {
    Problem<T> p;
    p.x = breaks<T>(count, uniform);
    p.uniform = uniform;
    p.y = noise<T>(count);
    if (code == 64) p.y.back() = p.y.front();
    p.order = kind.order;
    p.type = kind.type;
    p.bc_type = code;
    if (code >= 12 && (code != 64 || kind.spline != natural)) p.bc = {T(0.5), T(-0.25)};
    if (kind.type == ORV_DF_TYPE_KNOTS) {
        p.ic_type = ORV_DF_INTERNAL_KNOTS;
        for (size_t i = 0; i + 1 < p.x.size(); ++i) p.ic.push_back(p.x[i] + (p.x[i + 1] - p.x[i]) * T(0.375));
    } else if (kind.spline == hermite || kind.spline == default_cubic) {
        p.ic_type = 1;
        p.ic = noise<T>(count - 2, 5);
    }
    return p;
}

template <class T>
void expect_conditions(const Kind<T>& kind, int64_t code, int64_t count, bool uniform) {
    SCOPED_TRACE(testing::Message() << "spline " << kind.spline << " type " << kind.type << " ends " << code
                                    << " breaks " << count << " uniform " << uniform);
    const Problem<T> p = conditioned(kind, code, count, uniform);
    Fit<T> fit(p);
    ASSERT_EQ(fit.construct(kind.spline), 0);
    const bool knots = kind.type == ORV_DF_TYPE_KNOTS;
    const int64_t last = count - (knots ? 1 : 2);
    const auto near = [&](long double got, long double wanted, int k) {
        EXPECT_NEAR(static_cast<double>(got), static_cast<double>(wanted),
                    static_cast<double>(epsilon<T> * (k < 2 ? 1800 : 18000) * (k < 3 ? 1 : 10)))
            << "derivative " << k;
    };
    for (int64_t i = 0; i <= last; ++i) EXPECT_EQ(fit.cell(i)[0], p.y[static_cast<size_t>(i)]);
    const long double a = p.x.front(), b = p.x.back();
    near(fit.at(last, b), p.y.back(), 0);
    for (int64_t i = 0; i < last; ++i)
        for (const int k : kind.continuous) {
            const long double edge = knots ? p.ic[static_cast<size_t>(i)] : p.x[static_cast<size_t>(i) + 1];
            near(fit.at(i, edge, k), fit.at(i + 1, edge, k), k);
        }
    for (int64_t i = 1; kind.spline == default_cubic && i <= last; ++i)
        near(2 * fit.cell(i)[2], p.ic[static_cast<size_t>(i) - 1], 2);
    // The derivative that the code's bits name, at each end.
    if (code == 2 || code & 20) near(fit.at(0, a, code & 4 ? 1 : 2), code == 2 ? 0 : 0.5L, 2);
    if (code == 2 || code & 40) near(fit.at(last, b, code & 8 ? 1 : 2), code == 2 ? 0 : -0.25L, 2);
    if (code == 64)
        for (const int k : kind.continuous) near(fit.at(0, a, k), fit.at(last, b, k), k);
    if (code == 64 && kind.spline != natural) near(fit.at(0, a, kind.continuous.back()), 0.5L, 2);
    const int highest = static_cast<int>(kind.order) - 1;
    if (code == 1 && kind.spline != hermite && last > 0) {
        near(fit.at(0, a, highest), fit.at(1, a, highest), highest);
        near(fit.at(last, a, highest), fit.at(last - 1, a, highest), highest);
    }
    if (code == ORV_DF_MIDDLE_VALUE) near(fit.at(0, (p.x[0] + p.x[1]) / 2), 0.5L, 0);
}

TYPED_TEST(FitConstruct, NoiseMeetsItsConditions) {
    using T = TypeParam;
    const std::vector<int64_t> cubic_codes = {1, 2, 12, 36, 24, 48, 64};
    const Kind<T> kinds[] = {
        {natural, 4, ORV_DF_TYPE_NATURAL, {0, 1, 2}, cubic_codes, {4, 5, 30, 41}},
        {default_cubic, 4, ORV_DF_TYPE_DEFAULT, {0, 2}, cubic_codes, {5, 12}},
        {hermite, 4, ORV_DF_TYPE_HERMITE, {0, 1}, cubic_codes, {5, 40}},
        {quadratic, 3, ORV_DF_TYPE_DEFAULT, {0, 1}, {ORV_DF_MIDDLE_VALUE}, {2, 9}},
        {quadratic, 3, ORV_DF_TYPE_KNOTS, {0, 1}, {2, 12, 36}, {2, 3, 9}},
        {quadratic, 3, ORV_DF_TYPE_KNOTS, {0, 1}, {1}, {3, 9}},
    };
    for (const Kind<T>& kind : kinds)
        for (const int64_t code : kind.codes)
            for (const int64_t count : kind.counts)
                for (const bool uniform : {false, true}) expect_conditions(kind, code, count, uniform);
}

// Several functions in every layout against one function at a time; uniform against explicit breaks; threads against none.
TYPED_TEST(FitConstruct, LayoutsSpacingsAndThreadsAgree) {
    using T = TypeParam;
    const int64_t functions = 6;
    for (const Spline spline : {linear, natural, bessel, akima, hyman, hermite, default_cubic})
        for (const int64_t count : {7, 40, 700, 4200})
            for (const int64_t code : {2, 12, 64}) {
                if (count > 1000 && code != 64) continue;
                Problem<T> single;
                single.x = breaks<T>(count, true);
                single.order = spline == linear ? 2 : 4;
                single.bc_type = code;
                if (code == 12 || (code == 64 && (spline == hermite || spline == default_cubic))) single.bc = {1, 2};
                const bool internal = spline == hermite || spline == default_cubic;
                std::vector<T> rows, columns(static_cast<size_t>(functions * count)), given;
                std::vector<std::vector<T>> expected;
                for (int64_t f = 0; f < functions; ++f) {
                    single.y = noise<T>(count, static_cast<unsigned>(f + 10));
                    single.y.back() = single.y.front();
                    if (internal) {
                        single.ic_type = 1;
                        single.ic = noise<T>(count - 2, static_cast<unsigned>(f + 50));
                        given.insert(given.end(), single.ic.begin(), single.ic.end());
                    }
                    Fit<T> fit(single);
                    ASSERT_EQ(fit.construct(spline), 0);
                    fit.coeffs.resize(static_cast<size_t>((count - 1) * single.order));
                    expected.push_back(fit.coeffs);
                    rows.insert(rows.end(), single.y.begin(), single.y.end());
                    for (int64_t i = 0; i < count; ++i)
                        columns[static_cast<size_t>(i * functions + f)] = single.y[static_cast<size_t>(i)];
                }
                for (const int64_t layout : {0, 0x10, 0x20, 0x80})
                    for (const bool uniform : {false, true})
                        for (const bool threads : {false, true}) {
                            if (count > 500 && threads != uniform) continue;
                            Problem<T> p = single;
                            p.functions = functions;
                            p.layout = layout;
                            p.uniform = uniform;
                            p.y = layout == 0x20 ? columns : rows;
                            p.ic = given;
                            Fit<T> fit(p);
                            ASSERT_EQ(fit.construct(spline, threads ? orv_serv_services() : nullptr), 0);
                            for (int64_t f = 0; f < functions; ++f)
                                for (size_t k = 0; k < expected[0].size(); ++k)
                                    ASSERT_NEAR(fit.cell(0, f)[k], expected[static_cast<size_t>(f)][k],
                                                400 * epsilon<T>)
                                        << spline << " count " << count << " ends " << code << " layout " << layout
                                        << " uniform " << uniform << " threads " << threads << " element " << k;
                        }
            }
}

TEST(FitConstructEntry, StatusesInTheirOrder) {
    const struct {
        Spline spline;
        int64_t method, count, layout, code, type, ic;
        bool data;
        int32_t status;
    } cases[] = {
        {linear, 1, 2, 0, 2, 0, 0, false, -1002},        {natural, 1, 1, 0, 2, 2, 0, false, -1002},
        {natural, 0, 2, 0, 1, 2, 0, false, -1004},       {natural, 0, 2, 0, 2, 2, 0, false, 0},
        {default_cubic, 0, 2, 0, 2, 0, 0, false, -1004}, {hermite, 0, 2, 0, 2, 3, 0, false, -1004},
        {bessel, 0, 3, 0x11, 0, 4, 0, false, -1004},     {hyman, 0, 3, 0, 2, 9, 0, false, -1004},
        {akima, 0, 4, 0, 0, 5, 0, false, -1004},         {akima, 0, 5, 0, 0, 5, 0, false, 0},
        {bessel, 0, 6, 0x11, 0, 4, 0, false, -1009},     {bessel, 0, 6, 0, 0, 4, 0, false, -1014},
        {hyman, 0, 6, 0, 0, 9, 0, false, -1014},         {hermite, 0, 6, 0, 0, 3, 0, false, -1014},
        {natural, 0, 6, 0, 0, 2, 0, false, -1014},       {linear, 0, 6, 0, 3, 0, 0, false, -1014},
        {natural, 0, 6, 0, 12, 2, 0, false, -1015},      {akima, 0, 6, 0, 48, 5, 0, false, -1015},
        {natural, 0, 6, 0, 64, 0, 0, false, -1015},      {hermite, 0, 6, 0, 64, 3, 0, false, -1015},
        {hermite, 0, 6, 0, 2, 3, 0, false, -1013},       {akima, 0, 6, 0, 64, 5, 0, false, -1018},
        {linear, 0, 6, 0, 64, 1, 0, false, -1018},       {quadratic, 0, 6, 0, 2, 2, 0, false, -1002},
        {quadratic, 0, 6, 0, 2, 0, 0, true, -1014},      {quadratic, 0, 6, 0, 0x80, 0, 0, false, -1015},
        {quadratic, 0, 6, 0, 2, 1, 4, false, -1012},     {quadratic, 0, 6, 0, 24, 1, 8, true, -1014},
        {quadratic, 0, 6, 0, 12, 1, 8, false, -1015},    {quadratic, 0, 2, 0, 1, 1, 8, false, -1004},
    };
    const std::vector<double> x = breaks<double>(8), y = noise<double>(8);
    double ends[] = {0, 0};
    for (const auto& c : cases) {
        std::vector<double> coeffs(64);
        DFTask* task = nullptr;
        ASSERT_EQ(orv_df_kernel_dNewTask1D(&task, 8, x.data(), 0, 1, y.data(), 0, 0), 0);
        orv_df_kernel_dEditPPSpline1D(task, 4, c.type, 2, nullptr, 0, nullptr, coeffs.data(), 0);
        task->breakCount = c.count;
        task->funcHint = c.layout;
        task->bcType = c.code;
        task->icType = c.ic;
        task->bcData = c.data ? ends : nullptr;
        if (c.spline == default_cubic || c.ic == 8) task->icData = x.data();
        EXPECT_EQ(construct_of<double>(c.spline)(task, nullptr, nullptr, c.method, nullptr), c.status)
            << "case " << (&c - cases);
        orv_df_kernel_DeleteTask(&task);
    }
    EXPECT_EQ(orv_df_kernel_dDFAkimaCubicSpline1D(nullptr, nullptr, nullptr, 0, nullptr), -1000);
}

TEST(FitConstructEntry, FailedScratchWritesNothing) {
    for (const Spline spline : {natural, akima, bessel, hyman, hermite, quadratic}) {
        Problem<double> p;
        p.x = breaks<double>(20);
        p.y = noise<double>(20);
        if (spline == hermite) p.ic_type = 1, p.ic = noise<double>(18);
        if (spline == quadratic) {
            p.order = 3;
            p.type = 1;
            p.ic_type = 8;
            for (size_t i = 0; i < 19; ++i) p.ic.push_back((p.x[i] + p.x[i + 1]) / 2);
        }
        Fit<double> fit(p);
        const int32_t before = orv_serv_live_blocks();
        orv_serv_fail_allocation(1);
        EXPECT_EQ(fit.construct(spline), -1001) << spline;
        orv_serv_fail_allocation(0);
        EXPECT_EQ(orv_serv_live_blocks(), before);
        for (const double c : fit.coeffs) ASSERT_EQ(c, -777);
    }
}

TEST(FitConstructEntry, RepeatedBreaksAreSingular) {
    Problem<double> p;
    p.x = {0, 1, 1, 2};
    p.y = {0, 1, 2, 3};
    Fit<double> fit(p);
    EXPECT_EQ(fit.construct(natural), -1500);
}

}  // namespace
}  // namespace orv::test
