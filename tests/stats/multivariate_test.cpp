// Statistics of several components together, by definition in extended arithmetic, over shapes, forms, weights and threads; singular
// and hostile matrices; refusals.
#include "stats/multivariate.h"
#include "services/test_switches.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace {

using namespace stats_test;

template <class T>
struct SSMultivariate : testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSMultivariate, Types);

// ---- MAD and distances ---------------------------------------------------------------------------------------------

TYPED_TEST(SSMultivariate, MedianAndMeanDeviation) {
    using T = TypeParam;
    const T inf = std::numeric_limits<T>::infinity(), nan = std::numeric_limits<T>::quiet_NaN();
    const struct {
        std::vector<T> x;
        T mad, mean;
    } cases[] = {{{7}, 0, 0},
                 {{1, 4}, T(1.5), T(1.5)},
                 {{1, 1, 2, 2, 4, 6, 9}, 1, T(15) / 7},
                 {{5, 5, 5, 5}, 0, 0},
                 {{1, 2, 3, 4, inf}, 1, inf},
                 {{inf, inf, 1}, nan, nan},
                 {{1, 2, nan, 3, 4}, 1, nan},
                 {{nan, nan}, nan, nan},
                 {{T(1e8), T(1e8) + 8, T(1e8) + 24}, 8, 8}};
    for (const auto& c : cases)
        for (const int32_t threads : {1, 3}) {
            const int32_t n = static_cast<int32_t>(c.x.size());
            Problem<T> problem(3, n, threads == 1);
            for (int32_t i = 0; i < n; ++i)
                for (int32_t j = 0; j < 3; ++j) problem.at(i, j) = c.x[j == 2 ? n - 1 - i : i];
            problem.leave_out({1});
            ASSERT_EQ(problem.make(), 0);
            std::vector<T> medians(3, T{-1}), means(3, T{-1});
            Entries<T>::edit(problem.task, SSIdRobustEstimates2, medians.data());
            thread_limit = threads;
            ASSERT_EQ(Multivariate<T>::mad(problem.task, ORV_SS_MAD, 0, limited_services()), 0);
            EXPECT_EQ(means[0], -1);
            Entries<T>::edit(problem.task, SSIdRobustEstimates1, means.data());
            ASSERT_EQ(Multivariate<T>::mad(problem.task, ORV_SS_MAD, 1, limited_services()), 0);
            const auto same = [](T a, T b) { return std::isnan(a) ? std::isnan(b) : a == b; };
            for (const int j : {0, 2}) EXPECT_TRUE(same(medians[j], c.mad) && same(means[j], c.mean)) << medians[j];
            EXPECT_TRUE(medians[1] == -1 && means[1] == -1);
        }
}

TYPED_TEST(SSMultivariate, Distances) {
    using T = TypeParam;
    for (const int32_t p : {1, 2, 5, 20})
        for (const int32_t n : {1, 2, 511, 513, 3001})
            for (const bool rows : {true, false})
                for (const int form : forms) {
                    Problem<T> problem(p, n, rows, form, n == 511);
                    problem.fill(7);
                    if (p == 5) problem.leave_out({0, 3});
                    std::vector<int32_t> parts;
                    for (int32_t j = 0; j < p; ++j)
                        if (problem.takes_part(j)) parts.push_back(j);
                    const Square c = covariance(p, 3);
                    Square chosen(static_cast<int32_t>(parts.size()));
                    for (int32_t a = 0; a < chosen.n; ++a)
                        for (int32_t b = 0; b < chosen.n; ++b) chosen(a, b) = c(parts[a], parts[b]);
                    const Square precise = inverse(chosen);
                    ASSERT_EQ(problem.make(), 0);
                    problem.cov = stored<T>(c, form);
                    Entries<T>::edit(problem.task, SSIdCov, problem.cov.data());
                    problem.vectors[0].assign(p, T(0.5));
                    const T nan = std::numeric_limits<T>::quiet_NaN();
                    const int32_t bad = n / 2;
                    if (n > 2) problem.at(bad, 1 % p) = nan;
                    std::vector<T> results(n, T{-1}), alone(n, T{-1});
                    for (std::vector<T>* to : {&alone, &results}) {
                        Entries<T>::edit(problem.task, SSIdOutlierWeights, to->data());
                        thread_limit = to == &alone ? 1 : 4;
                        ASSERT_EQ(Multivariate<T>::distance(problem.task, ORV_SS_MAHALANOBIS, 0, limited_services()),
                                  0);
                    }
                    ASSERT_EQ(std::memcmp(results.data(), alone.data(), sizeof(T) * n), 0);
                    for (int32_t i = 0; i < n; ++i) {
                        if (n > 2 && i == bad) {
                            EXPECT_TRUE(std::isnan(results[i]));
                            continue;
                        }
                        Wide sum = 0;
                        for (int32_t a = 0; a < chosen.n; ++a)
                            for (int32_t b = 0; b < chosen.n; ++b)
                                sum += (problem.at(i, parts[a]) - Wide(0.5)) * precise(a, b) *
                                       (problem.at(i, parts[b]) - Wide(0.5));
                        ASSERT_NEAR(results[i], double(sum), double(sum) * Multivariate<T>::tolerance)
                            << p << " " << n << " " << i;
                    }
                }
    Problem<T> problem(2, 1);
    ASSERT_EQ(problem.make(), 0);
    T result = -1;
    Entries<T>::edit(problem.task, SSIdOutlierWeights, &result);
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (const T corner : {T{1}, T{2}, T{-4}, nan}) {
        problem.cov = {1, 1, 1, corner};
        Entries<T>::edit(problem.task, SSIdCov, problem.cov.data());
        EXPECT_EQ(Multivariate<T>::distance(problem.task, ORV_SS_MAHALANOBIS, 0, nullptr),
                  corner == 2 ? 0 : int{SSStatusNotPositiveDefinite});
    }
}

// ---- Pooled covariance ---------------------------------------------------------------------------------------------

// Group of observation i: a few large ones, many small ones, an empty last one and one of a single observation before it.
int32_t group_of(int32_t i, int32_t n, int32_t g) {
    if (g < 3) return (i * 7 + i / 3) % g;
    return i == n / 2 ? g - 2 : (i * 7 + i / 3) % (g - 2);
}

TYPED_TEST(SSMultivariate, PooledByDefinition) {
    using T = TypeParam;
    for (const int32_t p : {1, 3, 6})
        for (const int32_t g : {1, 2, 5, 700})
            for (const int32_t n : {1, 4, 300, 20000})
                for (const bool weighted : {false, true}) {
                    if (n == 20000 && p == 6) continue;
                    SCOPED_TRACE(testing::Message() << "p " << p << " g " << g << " n " << n << " w " << weighted);
                    const int form = forms[(p + g) % 3];
                    Problem<T> problem(p, n, n % 3 == 0, form, g == 5);
                    problem.fill(11, sizeof(T) == 8 ? 1e6 : 1.5);
                    if (weighted) problem.weigh(5);
                    if (weighted && n > 4)  // without weight: of no effect, however far
                        for (int32_t j = 0; j < p; ++j) problem.at(2, j) = T(1e30);
                    if (p == 6) problem.leave_out({2});
                    ASSERT_EQ(problem.make(), 0);
                    std::vector<int64_t> wide(n);
                    std::vector<int32_t> narrow(n);
                    for (int32_t i = 0; i < n; ++i) narrow[i] = group_of(i, n, g), wide[i] = narrow[i];
                    Word groups;
                    groups = g;
                    const size_t size = problem.cov.size();
                    struct Results {
                        std::vector<T> mean, cov, means, covs;
                    } alone, result;
                    __kuziSSEditTask(problem.task, SSIdPooledGroupCount, groups.at(problem.wide));
                    __kuziSSEditTask(problem.task, SSIdPooledGroupIndices,
                                     problem.wide ? static_cast<void*>(wide.data()) : narrow.data());
                    for (const int id : {SSIdPooledResultCovStorage, SSIdPooledCovStorage})
                        __kuziSSEditTask(problem.task, id, problem.matrix_word.at(problem.wide));
                    for (Results* to : {&alone, &result}) {
                        to->mean.assign(p, T{-1}), to->cov.assign(size, T{-1});
                        to->means.assign(size_t(g) * p, T{-1}), to->covs.assign(g * size, T{-1});
                        Entries<T>::edit(problem.task, SSIdPooledResultMean, to->mean.data());
                        Entries<T>::edit(problem.task, SSIdPooledResultCov, to->cov.data());
                        Entries<T>::edit(problem.task, SSIdPooledMean, to->means.data());
                        Entries<T>::edit(problem.task, SSIdPooledCov, to->covs.data());
                        thread_limit = to == &alone ? 1 : 3;
                        ASSERT_EQ(
                            Multivariate<T>::pooled(problem.task, ORV_SS_POOLED_COVARIANCE, 0, limited_services()), 0);
                    }
                    ASSERT_EQ(std::memcmp(result.cov.data(), alone.cov.data(), sizeof(T) * size), 0);
                    ASSERT_EQ(std::memcmp(result.covs.data(), alone.covs.data(), sizeof(T) * g * size), 0);
                    // Without the groups' matrices the pooled one comes another way.
                    std::vector<T> joint(size, T{-1});
                    Entries<T>::edit(problem.task, SSIdPooledResultCov, joint.data());
                    problem.task->pooledCov = nullptr;
                    problem.task->pooledMean = nullptr;
                    ASSERT_EQ(Multivariate<T>::pooled(problem.task, ORV_SS_POOLED_COVARIANCE, 1, limited_services()),
                              0);

                    std::vector<Wide> w(g), w2(g), mean(size_t(g) * p), whole(p);
                    Wide sum = 0, freedom = 0;
                    std::vector<Square> cross(g, Square(p));
                    Square all(p);
                    const auto weight = [&](int32_t i) { return weighted ? Wide(problem.w[i]) : Wide(1); };
                    for (int32_t i = 0; i < n; ++i) {
                        const int32_t k = narrow[i];
                        w[k] += weight(i), w2[k] += weight(i) * weight(i), sum += weight(i);
                        for (int32_t j = 0; j < p; ++j) mean[size_t(k) * p + j] += weight(i) * problem.at(i, j);
                    }
                    for (int32_t k = 0; k < g; ++k)
                        for (int32_t j = 0; j < p; ++j) {
                            whole[j] += mean[size_t(k) * p + j] / sum;
                            if (w[k] > 0) mean[size_t(k) * p + j] /= w[k];
                        }
                    for (int32_t i = 0; i < n; ++i)
                        for (int32_t a = 0; a < p; ++a)
                            for (int32_t b = 0; b < p; ++b) {
                                const Wide* m = &mean[size_t(narrow[i]) * p];
                                const Wide term = weight(i) * (problem.at(i, a) - m[a]) * (problem.at(i, b) - m[b]);
                                cross[narrow[i]](a, b) += term;
                                all(a, b) += term;
                            }
                    for (int32_t k = 0; k < g; ++k)
                        if (w[k] > 0) freedom += std::max(Wide(0), w[k] - w2[k] / w[k]);
                    const auto near = [&](T got, Wide expected, Wide scale, int32_t a, int32_t b) {
                        if (!problem.takes_part(a) || !problem.takes_part(b)) {
                            ASSERT_EQ(got, T{-1});
                        } else if (std::isnan(expected)) {
                            ASSERT_TRUE(std::isnan(got)) << got;
                        } else {
                            ASSERT_NEAR(got, double(expected), double(scale) * 4 * Multivariate<T>::tolerance);
                        }
                    };
                    const auto compare = [&](const T* got, const Square& c, Wide divisor, int storage) {
                        const Square m = loaded(got, p, storage);
                        for (int32_t a = 0; a < p; ++a)
                            for (int32_t b = 0; b < p; ++b)
                                near(static_cast<T>(m(a, b)), c(a, b) / divisor,
                                     std::sqrt(c(a, a)) * std::sqrt(c(b, b)) / divisor, a, b);
                    };
                    const Wide nan = std::numeric_limits<Wide>::quiet_NaN();
                    compare(result.cov.data(), all, freedom > 1e-9 ? freedom : nan, form);
                    compare(joint.data(), all, freedom > 1e-9 ? freedom : nan, form);
                    for (int32_t k = 0; k < g; ++k) {
                        const Wide f = w[k] > 0 ? w[k] - w2[k] / w[k] : 1;
                        compare(&result.covs[k * size], cross[k], f > 1e-9 ? f : nan, form);
                        for (int32_t j = 0; j < p; ++j)
                            near(result.means[size_t(k) * p + j], mean[size_t(k) * p + j],
                                 std::fabs(mean[size_t(k) * p + j]), j, j);
                    }
                    for (int32_t j = 0; j < p; ++j) near(result.mean[j], whole[j], std::fabs(whole[j]), j, j);
                }
}

// ---- Refusals ------------------------------------------------------------------------------------------------------

// Fields are set one after another; before each, the entry says which one is missing.
TEST(Multivariate, MissingFieldsInOrder) {
    using Entry = int32_t (*)(SSTask*, uint64_t, uint64_t, const orv_services*);
    double x[4] = {1, 2, 3, 5}, out[16] = {}, cov[4] = {1, 0, 0, 1};
    int32_t p = 2, n = 2, form = StorageRows, full = SSMatrixFull, groups = 1, group[2] = {}, use[2] = {1, -1};
    struct Step {
        int id;
        void* value;
        int32_t missing;
    };
    const struct {
        Entry entry;
        uint64_t bit;
        std::vector<Step> steps;
    } cases[] = {
        {_kuzdSSMAD, ORV_SS_MAD, {{SSIdRobustEstimates2, out, SSStatusRobustEstimates2}}},
        {_kuzdSSMahDistance,
         ORV_SS_MAHALANOBIS,
         {{SSIdMean, out, SSStatusMean},
          {SSIdCov, cov, SSStatusCov},
          {SSIdCovStorage, &full, SSStatusStorage},
          {SSIdOutlierWeights, out + 4, SSStatusOutlierWeights}}},
        {_kuzdSSPooledCovariance,
         ORV_SS_POOLED_COVARIANCE,
         {{SSIdPooledGroupCount, &groups, SSStatusPooledGroup},
          {SSIdPooledGroupIndices, group, SSStatusPooledGroup},
          {SSIdPooledResultMean, out, SSStatusPooledResultMean},
          {SSIdPooledResultCov, out + 4, SSStatusPooledResultCov},
          {SSIdPooledResultCovStorage, &full, SSStatusStorage}}},
        {_kuzdSSPartialCovariance,
         ORV_SS_PARTIAL_COVARIANCE,
         {{SSIdPartialVariables, use, SSStatusPartialCountA},
          {SSIdCov, cov, SSStatusCov},
          {SSIdCovStorage, &full, SSStatusStorage},
          {SSIdPartialCor, out, SSStatusPartialCov},
          {SSIdPartialCorStorage, &full, SSStatusStorage}}},
        {_kuzdSSCorParametrization,
         ORV_SS_COR_PARAMETRIZATION,
         {{SSIdCor, cov, SSStatusCor},
          {SSIdCorStorage, &full, SSStatusStorage},
          {SSIdCorParamResult, out, SSStatusCorParamResult},
          {SSIdCorParamStorage, &full, SSStatusStorage}}},
    };
    for (const auto& c : cases) {
        SSTask* task = nullptr;
        ASSERT_EQ(__kuzdSSNewTask(&task, &p, &n, &form, x, nullptr, nullptr, 0), 0);
        EXPECT_EQ(c.entry(task, ORV_SS_MEAN, 0, nullptr), 0);
        EXPECT_EQ(c.entry(task, c.bit, 2, nullptr), SSStatusMethod);
        for (const Step& step : c.steps) {
            EXPECT_EQ(c.entry(task, c.bit, 0, nullptr), step.missing) << step.id;
            if (__kuziSSEditTask(task, step.id, step.value) == SSStatusBadId)
                __kuzdSSEditTask(task, step.id, static_cast<double*>(step.value));
        }
        int32_t failures = 0;  // every allocation in turn; nothing is left behind
        for (int32_t status = SSStatusAllocation, nth = 1; status == SSStatusAllocation; ++nth) {
            const int32_t live = orv_serv_live_blocks();
            orv_serv_fail_allocation(nth);
            status = c.entry(task, c.bit, 0, nullptr);
            orv_serv_fail_allocation(0);
            EXPECT_EQ(orv_serv_live_blocks(), live);
            failures += status == SSStatusAllocation;
            EXPECT_TRUE(status == SSStatusAllocation || status == 0) << status;
        }
        EXPECT_GT(failures, 0);
        __kuzSSDeleteTask(&task);
    }
    for (const int32_t bad : {-1, 1, INT32_MAX}) {
        SSTask* task = nullptr;
        group[1] = bad;
        use[0] = bad == 1 ? 0 : bad;
        ASSERT_EQ(__kuzdSSNewTask(&task, &p, &n, &form, x, nullptr, nullptr, 0), 0);
        __kuzdSSEditPooledCovariance(task, &groups, out, out + 4, group, nullptr, nullptr);
        __kuziSSEditTask(task, SSIdPooledResultCovStorage, &full);
        EXPECT_EQ(_kuzdSSPooledCovariance(task, ORV_SS_POOLED_COVARIANCE, 0, nullptr), SSStatusPooledGroup);
        __kuzdSSEditPartialCovCor(task, use, cov, &full, nullptr, nullptr, out, &full, nullptr, nullptr);
        EXPECT_EQ(_kuzdSSPartialCovariance(task, ORV_SS_PARTIAL_COVARIANCE, 0, nullptr), SSStatusPartialCountA);
        __kuzSSDeleteTask(&task);
    }
}

}  // namespace
