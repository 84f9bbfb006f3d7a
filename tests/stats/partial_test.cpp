// Partial covariances and the parametrization of correlations, by definition in extended arithmetic; singular matrices.
#include "stats/multivariate.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace stats_test;

template <class T>
struct SSPartial : testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSPartial, Types);

// The part of `c` given by two lists.
Square block(const Square& c, const std::vector<int32_t>& chosen) {
    Square b(static_cast<int32_t>(chosen.size()));
    for (int32_t i = 0; i < b.n; ++i)
        for (int32_t j = 0; j < b.n; ++j) b(i, j) = c(chosen[i], chosen[j]);
    return b;
}

template <class T>
struct Partial {
    int32_t p, form;
    std::vector<T> from, cov, cor;
    std::vector<int32_t> use;
    SSTask* task = nullptr;
    Partial(const Square& c, const std::vector<int32_t>& variables, int storage)
        : p(c.n), form(storage), from(stored<T>(c, storage)), cov(size_t(p) * p, T{-1}), cor(cov), use(variables) {
        Entries<T>::make(&task, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        Entries<T>::edit(task, SSIdCov, from.data());
        Entries<T>::edit(task, SSIdPartialCov, cov.data());
        Entries<T>::edit(task, SSIdPartialCor, cor.data());
        __kuziSSEditTask(task, SSIdPartialVariables, use.data());
        for (const int id : {SSIdCovStorage, SSIdCorStorage, SSIdPartialCovStorage, SSIdPartialCorStorage})
            __kuziSSEditTask(task, id, &form);
    }
    ~Partial() { __kuzSSDeleteTask(&task); }
    int32_t run() { return Multivariate<T>::partial(task, ORV_SS_PARTIAL_COVARIANCE, 0, nullptr); }
};

TYPED_TEST(SSPartial, PartialBySchurComplement) {
    using T = TypeParam;
    // A block of the inverse is the inverse of the Schur complement.
    for (const int32_t p : {1, 2, 4, 9, 40})
        for (const int form : forms)
            for (unsigned seed = 1; seed < 6; ++seed) {
                const Square c = covariance(p, seed);
                std::mt19937 random(seed);
                std::vector<int32_t> use(p), chosen, kept;
                for (int32_t j = 0; j < p; ++j) use[j] = static_cast<int32_t>(random() % 3) - 1;
                use[p / 2] = 1;
                for (int32_t j = 0; j < p; ++j) {
                    if (use[j] == 1) kept.push_back(static_cast<int32_t>(chosen.size()));
                    if (use[j] != 0) chosen.push_back(j);
                }
                const Square expected = inverse(block(inverse(block(c, chosen)), kept));
                Partial<T> problem(c, use, form);
                ASSERT_EQ(problem.run(), 0);
                const int32_t q = expected.n;
                const Square cov = loaded(problem.cov.data(), q, form), cor = loaded(problem.cor.data(), q, form);
                for (int32_t i = 0; i < q; ++i)
                    for (int32_t j = 0; j < q; ++j) {
                        const double scale = std::sqrt(double(expected(i, i) * expected(j, j)));
                        const double near = 10 * Multivariate<T>::tolerance;
                        EXPECT_NEAR(double(cov(i, j)), double(expected(i, j)), scale * near);
                        EXPECT_NEAR(double(cor(i, j)), double(expected(i, j)) / scale, near);
                    }
                const std::vector<T> before = problem.cov;
                problem.task->cov = nullptr;
                Entries<T>::edit(problem.task, SSIdCor, problem.from.data());
                ASSERT_EQ(problem.run(), 0);
                EXPECT_EQ(problem.cov, before);
            }
}

// Two conditioned variables that are one, up to a factor that leaves rounding, one that is constant, and a kept one that they
// explain: the same as without the second and third.
TYPED_TEST(SSPartial, PartialOfSingularBlock) {
    using T = TypeParam;
    const Square base = covariance(4, 9);
    const Wide third = T(1) / T(3);
    Square c(7);  // 0, 1 kept; 2, 3 given; 4 = 2 / 3; 5 constant; 6 kept = 3
    const auto source = [](int32_t i) { return i < 4 ? i : i == 4 ? 2 : 3; };
    for (int32_t i = 0; i < 7; ++i)
        for (int32_t j = 0; j < 7; ++j)
            c(i, j) = (i == 5 || j == 5) ? 0 : base(source(i), source(j)) * (i == 4 ? third : 1) * (j == 4 ? third : 1);
    Partial<T> problem(c, {1, 1, -1, -1, -1, -1, 1}, SSMatrixFull), plain(base, {1, 1, -1, -1}, SSMatrixFull);
    ASSERT_EQ(problem.run(), 0);
    ASSERT_EQ(plain.run(), 0);
    for (int32_t i = 0; i < 2; ++i)
        for (int32_t j = 0; j < 2; ++j) {
            EXPECT_NEAR(problem.cov[i * 3 + j], plain.cov[i * 2 + j], 20 * Multivariate<T>::tolerance);
            EXPECT_NEAR(problem.cor[i * 3 + j], plain.cor[i * 2 + j], 20 * Multivariate<T>::tolerance);
        }
    for (int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(problem.cov[i * 3 + 2], 0);
        EXPECT_TRUE(std::isnan(problem.cor[i * 3 + 2]));
    }
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const struct { T at, value; } broken[] = {{2 * 7 + 2, T{-1}}, {2 * 7 + 3, T{1000}}, {3 * 7 + 3, nan}, {0, T{-5}}};
    for (const auto& b : broken) {
        Partial<T> bad(c, {1, 1, -1, -1, -1, -1, 1}, SSMatrixFull);
        const size_t at = static_cast<size_t>(b.at), mirrored = at % 7 * 7 + at / 7;
        bad.from[at] = bad.from[mirrored] = b.value;
        EXPECT_EQ(bad.run(), SSStatusNotPositiveDefinite) << b.at;
        EXPECT_EQ(bad.cov[0], -1);
    }
}

// Covariances of low rank, whose conditioned blocks rounding leaves with pivots of any size and sign: in either order of the variables
// the result is the same.
TYPED_TEST(SSPartial, PartialOfLowRank) {
    using T = TypeParam;
    std::mt19937 random(1);
    for (int trial = 0; trial < 3000; ++trial) {
        const int32_t p = 2 + static_cast<int32_t>(random() % 8), rank = 1 + static_cast<int32_t>(random() % p);
        std::vector<int> factor(size_t(p) * rank);
        for (int& x : factor) x = static_cast<int>(random() % 9) - 4;
        std::vector<int32_t> use(p);
        for (int32_t& u : use) u = static_cast<int32_t>(random() % 3) - 1;
        use[random() % p] = 1;
        Square c(p), turned(p);
        for (int32_t i = 0; i < p; ++i)
            for (int32_t j = 0; j < p; ++j) {
                for (int32_t k = 0; k < rank; ++k)
                    c(i, j) += factor[size_t(i) * rank + k] * factor[size_t(j) * rank + k];
                turned(p - 1 - i, p - 1 - j) = c(i, j);
            }
        Partial<T> forward(c, use, SSMatrixFull);
        std::reverse(use.begin(), use.end());
        Partial<T> backward(turned, use, SSMatrixFull);
        ASSERT_EQ(forward.run(), 0) << trial;
        ASSERT_EQ(backward.run(), 0) << trial;
        const size_t q = static_cast<size_t>(std::count(use.begin(), use.end(), 1));
        for (size_t k = 0; sizeof(T) == 8 && k < q * q; ++k)
            ASSERT_NEAR(forward.cov[k], backward.cov[q * q - 1 - k], 1e-8) << trial;
    }
}

TYPED_TEST(SSPartial, CorParametrization) {
    using T = TypeParam;
    const auto run = [](const Square& c, int form) {
        int32_t p = c.n;
        std::vector<T> cor = stored<T>(c, form), result(cor.size(), T{-9});
        SSTask* task = nullptr;
        Entries<T>::make(&task, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        Entries<T>::edit(task, SSIdCor, cor.data());
        Entries<T>::edit(task, SSIdCorParamResult, result.data());
        __kuziSSEditTask(task, SSIdCorStorage, &form);
        __kuziSSEditTask(task, SSIdCorParamStorage, &form);
        EXPECT_EQ(Multivariate<T>::parametrize(task, ORV_SS_COR_PARAMETRIZATION, 0, nullptr), 0);
        __kuzSSDeleteTask(&task);
        return loaded(result.data(), p, form);
    };
    // By an eigensolver of 40 digits; and by hand: (1, 1, 1) is the eigenvector of -0.8, what is orthogonal to it of 1.9.
    const Wide example[9] = {1, 0.9L, 0.7L, 0.9L, 1, 0.3L, 0.7L, 0.3L, 1};
    const double ab = 0.89402440850859882455, ac = 0.69631906611439163754, bc = 0.30096903610459124201;
    const double expected[9] = {1, ab, ac, ab, 1, bc, ac, bc, 1};
    const double near = 100 * Multivariate<T>::tolerance;
    for (const int form : forms) {
        Square c(3);
        std::copy(example, example + 9, c.at.begin());
        const Square made = run(c, form);
        for (int k = 0; k < 9; ++k) EXPECT_NEAR(double(made.at[k]), expected[k], near);
        for (int32_t i = 0; i < 3; ++i)
            for (int32_t j = 0; j < 3; ++j) c(i, j) = i == j ? 1 : -0.9L;
        const Square far = run(c, form);
        for (int32_t i = 0; i < 3; ++i)
            for (int32_t j = 0; j < 3; ++j) EXPECT_NEAR(double(far(i, j)), i == j ? 1 : -0.5, near);
        // A correlation matrix stays what it is.
        Square good = covariance(8, 2), scaled(8);
        for (int32_t i = 0; i < 8; ++i)
            for (int32_t j = 0; j < 8; ++j) scaled(i, j) = good(i, j) / std::sqrt(good(i, i) * good(j, j));
        const Square kept = run(scaled, form);
        for (size_t k = 0; k < kept.at.size(); ++k) EXPECT_NEAR(double(kept.at[k]), double(scaled.at[k]), near);
        for (int32_t i = 0; i < 3; ++i)
            for (int32_t j = 0; j < 3; ++j) c(i, j) = i == j ? -1 : 0;
        const Square lost = run(c, form);
        for (int32_t i = 0; i < 3; ++i)
            for (int32_t j = 0; j < 3; ++j) EXPECT_EQ(lost(i, j), i == j);
        c(0, 2) = c(2, 0) = std::numeric_limits<Wide>::quiet_NaN();
        for (const Wide x : run(c, form).at) EXPECT_TRUE(std::isnan(x));
    }
}

}  // namespace
