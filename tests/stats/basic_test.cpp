// Moments, sums and matrices against their definitions, over requests, methods, storage forms, weights, sizes, blocks and threads.
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace stats_test;

struct Tolerance {
    double vectors, central, matrices;
};

template <class T>
Tolerance tolerance_of(uint64_t method) {
    // Float results carry a float's rounding; float rank updates add their own within a block.
    if (sizeof(T) == sizeof(float)) return {3e-7, 1e-6, method == BasicOnePass ? 1e-6 : 1e-5};
    return {1e-14, method == BasicFast ? 1e-11 : 4e-14, 2e-14};
}

// Compares the requested results. BasicFast forms central moments from raw ones, so their errors are measured on the raw
// scale by the caller's choice of tolerances.
template <class T>
void expect_by_definition(const Problem<T>& problem, const Reference<T>& reference, uint64_t request,
                          Tolerance tolerance, const std::string& what) {
    for (int row = 0; row < vector_count; ++row)
        for (int32_t j = 0; j < problem.p && (request & estimate_rows[row].bit); ++j) {
            if (row == 0 && !problem.mean_given.empty()) {
                ASSERT_EQ(problem.vectors[0][j], problem.mean_given[j]) << what;  // the caller's mean stays everywhere
                continue;
            }
            const double got = static_cast<double>(problem.vectors[row][j]);
            if (!problem.takes_part(j)) {
                ASSERT_EQ(got, static_cast<double>(problem.untouched)) << what;
                continue;
            }
            const Value& expected = reference.vectors[row][j];
            const double bound = (estimate_rows[row].central ? tolerance.central : tolerance.vectors) * expected.scale;
            ASSERT_LE(magnitude(Quad(got) - expected.value), bound)
                << what << ", id " << estimate_rows[row].id << ", component " << j << ": " << got << " "
                << static_cast<double>(expected.value);
        }
    const double factor = static_cast<double>(reference.factor);
    for (int32_t a = 0; a < problem.p && (request & all_matrices); ++a)
        for (int32_t b = 0; b < problem.p; ++b) {
            const Quad sum = reference.cross[size_t(a) * problem.p + b];
            const double scale = std::sqrt(magnitude(reference.cross[size_t(a) * (problem.p + 1)]) *
                                           magnitude(reference.cross[size_t(b) * (problem.p + 1)]));
            const struct {
                uint64_t bit;
                const std::vector<T>& got;
                Quad expected;
                double scale;
            } matrices[] = {{ORV_SS_CP, problem.cp, sum, scale},
                            {ORV_SS_COV, problem.cov, sum * reference.factor, scale * factor},
                            {ORV_SS_COR, problem.cor, sum / Quad(scale), 1}};
            for (const auto& matrix : matrices) {
                if (!(request & matrix.bit)) continue;
                const double got = static_cast<double>(problem.element(matrix.got, a, b));
                if (!problem.takes_part(a) || !problem.takes_part(b))
                    ASSERT_EQ(got, static_cast<double>(problem.untouched)) << what;
                else
                    ASSERT_LE(magnitude(Quad(got) - matrix.expected), tolerance.matrices * matrix.scale)
                        << what << ", bit " << matrix.bit << ", " << a << " " << b << ": " << got;
            }
        }
}

struct Size {
    int32_t p, n;
};
constexpr Size sizes[] = {{1, 2},   {1, 7},    {1, 10000}, {2, 3},    {3, 16},
                          {5, 100}, {5, 2049}, {8, 257},   {9, 1025}, {40, 830}};
constexpr int forms[] = {SSMatrixFull, SSMatrixPackedLower, SSMatrixPackedUpper};
constexpr uint64_t methods[] = {BasicFast, BasicOnePass, BasicUserMean};

template <class T>
void sizes_and_forms() {
    unsigned seed = 1;
    for (const uint64_t method : methods)
        for (const Size size : sizes)
            for (int variant = 0; variant < 8; ++variant, ++seed) {
                const bool by_rows = variant & 1, weighted = variant & 2, gaps = variant & 4;
                Problem<T> problem(size.p, size.n, by_rows, forms[seed % 3], (seed & 1) != 0);
                problem.fill(seed);
                if (weighted) problem.weigh(seed);
                if (gaps) problem.leave_out({0, 3, 4, 7});
                if (method == BasicUserMean)
                    for (int32_t j = 0; j < size.p; ++j) problem.mean_given.push_back(static_cast<T>(1 + 0.3 * j));
                const std::string what = "method " + std::to_string(method) + " p " + std::to_string(size.p) + " n " +
                                         std::to_string(size.n) + " variant " + std::to_string(variant);
                ASSERT_EQ(problem.run(everything, method, seed % 4 == 0 ? 4 : 1), 0) << what;
                expect_by_definition(problem, Reference<T>(problem), everything, tolerance_of<T>(method), what);
                if (testing::Test::HasFatalFailure()) return;
            }
}

TEST(Basic, DoublesByDefinition) { sizes_and_forms<double>(); }
TEST(Basic, FloatsByDefinition) { sizes_and_forms<float>(); }

// Every pair of estimates, on one block and on several, with observations of weight 0 that lie far off: each result by
// definition, whatever else is asked for and however the data is cut.
template <class T>
void pairs() {
    constexpr int32_t p = 3, n = 83;
    const std::vector<int32_t> cuts[] = {{n}, {4, n}, {5, 40, n}, {27, 28, 68, n}};
    int turn = 0;
    for (const bool weighted : {false, true})
        for (const uint64_t method : methods) {
            Problem<T> data(p, n);
            data.fill(9);
            if (weighted) {
                data.weigh(10);
                for (const int32_t i : {0, 2, 3, 30, n - 1}) {
                    data.w[i] = 0;
                    for (int32_t j = 0; j < p; ++j) data.at(i, j) = static_cast<T>(i % 2 ? 1e30 : -1e30);
                }
            }
            if (method == BasicUserMean) data.mean_given = {T(1.25), T(-3), T(40)};
            const Reference<T> reference(data);
            for (int first = 0; first < estimate_count; ++first)
                for (int second = first; second < estimate_count; ++second)
                    for (const auto& ends : cuts) {
                        const bool by_rows = ++turn % 2 != 0;
                        Problem<T> problem(p, n, by_rows, forms[turn % 3]);
                        for (int32_t i = 0; i < n; ++i)
                            for (int32_t j = 0; j < p; ++j) problem.at(i, j) = data.at(i, j);
                        problem.w = data.w, problem.mean_given = data.mean_given;
                        const uint64_t request = estimate_rows[first].bit | estimate_rows[second].bit;
                        int32_t begin = 0;
                        for (const int32_t end : ends) {
                            ASSERT_EQ(problem.run_block(request, method, begin, end), 0);
                            begin = end;
                        }
                        Tolerance tolerance = tolerance_of<T>(method);
                        if (method == BasicUserMean) tolerance.matrices *= 3;  // about a mean that is far from the data
                        expect_by_definition(problem, reference, request, tolerance,
                                             "method " + std::to_string(method) + " blocks " +
                                                 std::to_string(ends.size()) + " request " + std::to_string(request));
                        if (testing::Test::HasFatalFailure()) return;
                    }
        }
}

TEST(Basic, PairsOfEstimatesOverBlocksOfDoubles) { pairs<double>(); }
TEST(Basic, PairsOfEstimatesOverBlocksOfFloats) { pairs<float>(); }

// Results from sums and cross-product alone, with W from the accumulated weights and from n.
TEST(Basic, WithoutData) {
    for (const bool weighted : {false, true})
        for (const uint64_t method : {BasicFromCrossProduct, BasicFromSums}) {
            Problem<double> full(6, 400, true, SSMatrixPackedUpper), sums(6, 400, true, SSMatrixPackedUpper);
            full.fill(13);
            if (weighted) full.weigh(14);
            ASSERT_EQ(full.run(everything, BasicOnePass), 0);
            sums.x = full.x, sums.w = full.w;
            ASSERT_EQ(sums.make(), 0);
            for (int row = 10; row < vector_count; ++row)
                std::copy(full.vectors[row].begin(), full.vectors[row].end(), sums.vectors[row].begin());
            sums.cp.swap(full.cp);
            __kuzdSSEditTask(sums.task, SSIdCP, sums.cp.data());
            sums.weights = full.weights;
            if (!weighted) sums.task->accumWeight = nullptr;
            const uint64_t request = bits_of(0, 9) | ORV_SS_COV | ORV_SS_COR;
            ASSERT_EQ(sums.run(request, method), 0);
            expect_by_definition(sums, Reference<double>(full), request, {1e-13, 1e-13, 1e-13}, "without data");
        }
}

}  // namespace
