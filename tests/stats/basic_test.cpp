// Moments, sums and matrices against their definitions, over methods, storage forms, weights, sizes and threads.
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace stats_test;

struct Tolerance {
    double vectors, central, matrices;
};

// Compares every result. BasicFast forms central moments from raw ones, so their errors are measured on the raw scale by
// the caller's choice of tolerances.
template <class T>
void expect_by_definition(Problem<T>& problem, Tolerance tolerance, const std::string& what) {
    Reference<T> reference(problem);
    for (int row = 0; row < vector_count; ++row)
        for (int32_t j = 0; j < problem.p; ++j) {
            const double got = static_cast<double>(problem.vectors[row][j]);
            if (!problem.takes_part(j)) {
                EXPECT_EQ(got, static_cast<double>(problem.untouched)) << what;
                continue;
            }
            const Value& expected = reference.vectors[row][j];
            const bool central = (row >= 4 && row <= 9) || row >= 14;
            const double bound = (central ? tolerance.central : tolerance.vectors) * expected.scale;
            ASSERT_LE(magnitude(Quad(got) - expected.value), bound)
                << what << ", id " << vector_ids[row] << ", component " << j << ": " << got << " "
                << static_cast<double>(expected.value);
        }
    for (int32_t a = 0; a < problem.p; ++a)
        for (int32_t b = 0; b < problem.p; ++b) {
            const double cp = problem.element(problem.cp, a, b), cov = problem.element(problem.cov, a, b),
                         cor = problem.element(problem.cor, a, b);
            if (!problem.takes_part(a) || !problem.takes_part(b)) {
                EXPECT_EQ(cp, static_cast<double>(problem.untouched)) << what;
                continue;
            }
            const Quad sum = reference.cross[size_t(a) * problem.p + b];
            const double factor = static_cast<double>(reference.factor);
            const double scale = std::sqrt(magnitude(reference.cross[size_t(a) * (problem.p + 1)]) *
                                           magnitude(reference.cross[size_t(b) * (problem.p + 1)]));
            const double bound = tolerance.matrices;
            ASSERT_LE(magnitude(Quad(cp) - sum), bound * scale) << what << ", cp " << a << " " << b;
            ASSERT_LE(magnitude(Quad(cov) - sum * reference.factor), bound * scale * factor)
                << what << ", cov " << a << " " << b;
            ASSERT_LE(magnitude(Quad(cor) - sum / Quad(scale)), bound) << what << ", cor " << a << " " << b;
        }
}

struct Size {
    int32_t p, n;
};
constexpr Size sizes[] = {{1, 2},   {1, 7},    {1, 10000}, {2, 3},    {3, 16},
                          {5, 100}, {5, 2049}, {8, 257},   {9, 1025}, {40, 830}};

template <class T>
Tolerance tolerance_of(uint64_t method) {
    // Float results carry a float's rounding; float rank updates add their own within a block.
    if (sizeof(T) == sizeof(float)) return {3e-7, 1e-6, method == BasicOnePass ? 1e-6 : 1e-5};
    return {1e-14, method == BasicFast ? 1e-11 : 4e-14, 2e-14};
}

template <class T>
void sweep() {
    unsigned seed = 1;
    for (const uint64_t method : {uint64_t{BasicFast}, uint64_t{BasicOnePass}, uint64_t{BasicUserMean}})
        for (const Size size : sizes)
            for (int variant = 0; variant < 8; ++variant, ++seed) {
                const bool by_rows = variant & 1, weighted = variant & 2, gaps = variant & 4;
                constexpr int forms[] = {SSMatrixFull, SSMatrixPackedLower, SSMatrixPackedUpper};
                Problem<T> problem(size.p, size.n, by_rows, forms[seed % 3], (seed & 1) != 0);
                problem.fill(seed);
                if (weighted) problem.weigh(seed);
                if (gaps) problem.leave_out({0, 3, 4, 7});
                if (method == BasicUserMean)
                    for (int32_t j = 0; j < size.p; ++j) problem.mean_given.push_back(static_cast<T>(1 + 0.3 * j));
                const int32_t threads = (seed % 4 == 0) ? 4 : 1;
                const std::string what = "method " + std::to_string(method) + " p " + std::to_string(size.p) + " n " +
                                         std::to_string(size.n) + " variant " + std::to_string(variant);
                ASSERT_EQ(problem.run(everything, method, threads), 0) << what;
                if (gaps && method == BasicUserMean)  // the caller's mean stays everywhere
                    for (int32_t j = 0; j < size.p; ++j)
                        if (!problem.takes_part(j)) problem.vectors[0][j] = problem.untouched;
                expect_by_definition(problem, tolerance_of<T>(method), what);
                if (testing::Test::HasFatalFailure()) return;
            }
}

TEST(Basic, DoublesByDefinition) { sweep<double>(); }
TEST(Basic, FloatsByDefinition) { sweep<float>(); }

// Every worker on its own: orders one by one, with and without a matrix, against the result of asking for everything.
TEST(Basic, PartOfTheRequestGivesTheSame) {
    const uint64_t requests[] = {ORV_SS_MEAN,         ORV_SS_SUM,          ORV_SS_RAW_MOMENT2, ORV_SS_CENTRAL_MOMENT2,
                                 ORV_SS_VARIATION,    ORV_SS_SKEWNESS,     ORV_SS_KURTOSIS,    ORV_SS_CENTRAL_SUM2,
                                 ORV_SS_CENTRAL_SUM3, ORV_SS_CENTRAL_SUM4, ORV_SS_RAW_SUM3,    ORV_SS_CP};
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (int variant = 0; variant < 4; ++variant) {
            Problem<double> whole(7, 300, variant & 1);
            whole.fill(5);
            if (variant & 2) whole.weigh(6);
            if (method == BasicUserMean) whole.mean_given.assign(7, 1.25);
            ASSERT_EQ(whole.run(everything, method), 0);
            for (const uint64_t request : requests)
                for (const uint64_t matrix : {uint64_t{0}, uint64_t{ORV_SS_COR}, uint64_t{ORV_SS_COV}}) {
                    Problem<double> part(7, 300, variant & 1);
                    part.x = whole.x, part.w = whole.w, part.mean_given = whole.mean_given;
                    ASSERT_EQ(part.run(request | matrix, method), 0);
                    int touched = 0;
                    for (int row = 0; row < vector_count; ++row)
                        for (int32_t j = 0; j < 7; ++j) {
                            if (part.vectors[row][j] == part.untouched) continue;
                            ++touched;
                            EXPECT_NEAR(part.vectors[row][j], whole.vectors[row][j],
                                        1e-12 * std::fabs(whole.vectors[row][j]) + 1e-13)
                                << method << " request " << request << " id " << vector_ids[row];
                        }
                    EXPECT_GE(touched, request == ORV_SS_CP && method != BasicUserMean ? 7 : 0);
                    const auto& matrix_got = matrix == ORV_SS_COR ? part.cor : part.cov;
                    const auto& matrix_whole = matrix == ORV_SS_COR ? whole.cor : whole.cov;
                    for (size_t k = 0; matrix && k < matrix_got.size(); ++k)
                        EXPECT_NEAR(matrix_got[k], matrix_whole[k], 1e-12);
                }
        }
}

// Blocks of very different lengths, the first a single observation, continue one computation.
TEST(Basic, SuccessiveCallsContinue) {
    constexpr int32_t p = 5, n = 1000;
    const uint64_t requests[] = {
        everything,
        ORV_SS_COV | ORV_SS_COR | ORV_SS_KURTOSIS | ORV_SS_SKEWNESS | ORV_SS_VARIATION,
        ORV_SS_COR,
        ORV_SS_MEAN | ORV_SS_COV,
        ORV_SS_CENTRAL_SUM2 | ORV_SS_CENTRAL_SUM3 | ORV_SS_CENTRAL_SUM4 | ORV_SS_SUM | ORV_SS_RAW_SUM3,
        ORV_SS_RAW_SUM2};
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (const uint64_t request : requests)
            for (int variant = 0; variant < 6; ++variant) {
                constexpr int forms[] = {SSMatrixFull, SSMatrixPackedLower, SSMatrixPackedUpper};
                Problem<double> whole(p, n, false, forms[variant % 3]), blocks(p, n, false, forms[variant % 3]);
                whole.fill(9, method == BasicFast ? 2 : 100);  // raw moments cost BasicFast the digits of the offset
                if (variant >= 3) whole.weigh(10);
                if (method == BasicUserMean) whole.mean_given = {100, 101, 100.5, 99, 100};
                blocks.x = whole.x, blocks.w = whole.w, blocks.mean_given = whole.mean_given;
                ASSERT_EQ(whole.run(request, method), 0);
                ASSERT_EQ(blocks.make(), 0);
                int32_t first = 0;
                for (const int32_t length : {1, 2, 497, 500}) {
                    blocks.n_word = length;
                    ASSERT_EQ(__kuzdSSEditTask(blocks.task, SSIdX, &blocks.x[size_t(first) * p]), 0);
                    if (!blocks.w.empty()) __kuzdSSEditTask(blocks.task, SSIdW, &blocks.w[first]);
                    ASSERT_EQ(blocks.run(request, method, 2), 0);
                    // A mean given anew in between is not looked at.
                    if (method == BasicUserMean && length == 2) blocks.vectors[0][1] += 1;
                    first += length;
                }
                if (method == BasicUserMean) blocks.vectors[0] = whole.vectors[0];
                if (method == BasicUserMean)
                    blocks.vectors[9] = whole.vectors[9];  // variation is over the array's mean
                const double bound = method == BasicFast ? 1e-9 : 1e-11;
                for (int row = 0; row < vector_count; ++row)
                    for (int32_t j = 0; j < p; ++j)
                        EXPECT_NEAR(blocks.vectors[row][j], whole.vectors[row][j],
                                    bound * (1 + std::fabs(whole.vectors[row][j])))
                            << "method " << method << " request " << request << " id " << vector_ids[row];
                for (size_t k = 0; k < whole.cov.size(); ++k) {
                    EXPECT_NEAR(blocks.cov[k], whole.cov[k], 1e-11) << method << " request " << request;
                    EXPECT_NEAR(blocks.cor[k], whole.cor[k], 1e-11) << method << " request " << request;
                }
                EXPECT_NEAR(blocks.weights[0], whole.weights[0], 1e-12 * whole.weights[0]);
            }
}

TEST(Basic, ThreadsAgreeUpToRounding) {
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean}) {
        Problem<double> one(12, 6000), four(12, 6000);
        one.fill(11, 1000);
        one.weigh(12);
        if (method == BasicUserMean) one.mean_given.assign(12, 1001);
        four.x = one.x, four.w = one.w, four.mean_given = one.mean_given;
        ASSERT_EQ(one.run(all_moments | all_matrices, method, 1), 0);
        ASSERT_EQ(four.run(all_moments | all_matrices, method, 4), 0);
        const double bound = method == BasicFast ? 1e-9 : 1e-12;
        for (int row = 0; row < 5; ++row)
            for (int32_t j = 0; j < 12; ++j)
                EXPECT_NEAR(four.vectors[row][j], one.vectors[row][j], bound * std::fabs(one.vectors[row][j]));
        for (size_t k = 0; k < one.cov.size(); ++k)
            EXPECT_NEAR(four.cov[k], one.cov[k], 1e-12 * (1 + std::fabs(one.cov[k])));
    }
}

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
            for (int row = 10; row < vector_count; ++row) sums.vectors[row] = full.vectors[row];
            std::copy(full.cp.begin(), full.cp.end(), sums.cp.begin());
            sums.weights = full.weights;
            if (!weighted) sums.task->accumWeight = nullptr;
            const uint64_t request = all_moments | all_shapes | ORV_SS_COV | ORV_SS_COR;
            for (int row = 10; row < vector_count; ++row)
                __kuzdSSEditTask(sums.task, vector_ids[row], sums.vectors[row].data());
            ASSERT_EQ(sums.run(request, method), 0);
            for (int row = 0; row < 10; ++row)
                for (int32_t j = 0; j < 6; ++j)
                    EXPECT_NEAR(sums.vectors[row][j], full.vectors[row][j],
                                1e-13 * (1 + std::fabs(full.vectors[row][j])))
                        << row;
            for (size_t k = 0; k < full.cov.size(); ++k) {
                EXPECT_NEAR(sums.cov[k], full.cov[k], 1e-13);
                EXPECT_NEAR(sums.cor[k], full.cor[k], 1e-13);
            }
        }
}

}  // namespace
