// Missing values: what is imputed against what was there, the draws against the distributions they are from, edges.
#include "services/test_switches.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace stats_test;

template <class T>
constexpr T gap = std::numeric_limits<T>::quiet_NaN();

template <class T>
struct Imputation : Problem<T> {
    std::vector<T> params, start, prior, imputed, draws;
    Word words[5];
    int32_t q = 0;
    // em, da iterations, sets
    int32_t em = 200, da = 20, sets = 5;
    uint32_t seed = 7;

    using Problem<T>::Problem;
    int32_t missing() {
        int32_t count = 0;
        for (int32_t i = 0; i < this->n; ++i)
            for (int32_t j = 0; j < this->p; ++j) count += this->takes_part(j) && std::isnan(this->at(i, j));
        return count;
    }
    size_t estimate_size() const { return static_cast<size_t>(q) + static_cast<size_t>(q) * (q + 1) / 2; }
    void set() {
        if (!this->task) this->make();
        q = 0;
        for (int32_t j = 0; j < this->p; ++j) q += this->takes_part(j);
        params = {T(em), T(da), T(1e-8), T(sets), T(missing()), T(seed)};
        imputed.assign(static_cast<size_t>(sets) * missing() + 1, this->untouched);
        draws.assign(static_cast<size_t>(sets) * da * estimate_size(), this->untouched);
        const size_t counts[] = {params.size(), start.size(), prior.size(), imputed.size() - 1, draws.size()};
        for (int k = 0; k < 5; ++k) words[k] = static_cast<int64_t>(counts[k]);
        const bool long_words = this->wide;
        __kuzdSSEditMissingVals(this->task, words[0].at(long_words), params.data(), words[1].at(long_words),
                                start.empty() ? nullptr : start.data(), words[2].at(long_words), prior.data(),
                                words[3].at(long_words), imputed.data(), words[4].at(long_words), draws.data());
        if (start.empty()) this->task->missMean = nullptr;
    }
    int32_t call(int32_t threads = 1) {
        thread_limit = threads;
        if constexpr (sizeof(T) == 8)
            return _kuzdSSMissingValues(this->task, ORV_SS_MISSING_VALUES, 0, limited_services());
        else
            return _kuzsSSMissingValues(this->task, ORV_SS_MISSING_VALUES, 0, limited_services());
    }
    int32_t impute(int32_t threads = 1) {
        set();
        return call(threads);
    }
    // An element of the estimate that iteration t of a set drew: -1 for the mean, else the column of the covariance.
    double drawn(int32_t set, int32_t t, int32_t j, int32_t i = -1) const {
        const T* estimate = &draws[(static_cast<size_t>(set) * da + t) * estimate_size()];
        if (i < 0) return estimate[j];
        if (i > j) std::swap(i, j);
        return estimate[q + j * (j + 1) / 2 + i];
    }
};

template <class T>
class SSMissing : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSMissing, Types);

// Every missing value is a sum of its observation's others, but for a little noise: each is imputed in its own place.
TYPED_TEST(SSMissing, PlacesAndOrder) {
    using T = TypeParam;
    for (const bool by_rows : {true, false}) {
        Imputation<T> problem(5, 400, by_rows, SSMatrixFull, by_rows);
        problem.fill(2, 100);
        std::mt19937 random(1);
        std::normal_distribution<double> normal;
        std::vector<T> expected;
        for (int32_t i = 0; i < problem.n; ++i) {
            const double a = 1e4 + normal(random), b = normal(random), c = a + 2 * b + 1e-3 * normal(random);
            problem.at(i, 0) = T(a), problem.at(i, 2) = T(b), problem.at(i, 3) = T(c);
            const int32_t lost[] = {0, 2, 3, -1};
            const int32_t j = lost[random() % 4];
            if (j < 0) continue;
            expected.push_back(problem.at(i, j));
            problem.at(i, j) = gap<T>;
        }
        problem.at(5, 1) = gap<T>;  // of a component that takes no part
        problem.leave_out({1, 4});
        ASSERT_EQ(problem.impute(2), 0);
        ASSERT_EQ(problem.imputed.size(), 5 * expected.size() + 1);
        for (size_t k = 0; k < 5 * expected.size(); ++k)
            ASSERT_NEAR(problem.imputed[k], expected[k % expected.size()], 0.01) << k;
        EXPECT_EQ(problem.imputed.back(), problem.untouched);
    }
}

// A fifth of the values is missing, the more so the larger another component is: what is left has means that are off by many
// standard errors, and the sets have not.
TYPED_TEST(SSMissing, RecoversWhatIsMissingAtRandom) {
    using T = TypeParam;
    Imputation<T> problem(3, 4000);
    std::mt19937 random(11);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform;
    double left = 0, left_count = 0;
    for (int32_t i = 0; i < problem.n; ++i) {
        const double a = normal(random), b = 0.8 * a + 0.6 * normal(random), c = 0.5 * b + normal(random);
        problem.at(i, 0) = T(3 + a), problem.at(i, 1) = T(-2 + b), problem.at(i, 2) = T(c);
        if (uniform(random) < (a > 0.5 ? 0.75 : 0.1)) problem.at(i, 1) = gap<T>;
        if (uniform(random) < (a < 0 ? 0.6 : 0.1)) problem.at(i, 2) = gap<T>;
        if (!std::isnan(problem.at(i, 1))) left += problem.at(i, 1), ++left_count;
    }
    problem.sets = 10;
    const double share = double(problem.missing()) / (3 * problem.n);
    EXPECT_TRUE(share > 0.18 && share < 0.26) << share;
    EXPECT_GT(std::fabs(left / left_count + 2), 0.2);
    ASSERT_EQ(problem.impute(2), 0);
    const double truth[] = {3, -2, 0, 1, 0.8, 1, 0.4, 0.5, 1.25};
    for (int k = 0; k < 9; ++k) {
        // The mean of what the iterations of all sets drew, but for the first few.
        double mean = 0;
        for (int set = 0; set < 10; ++set)
            for (int t = 10; t < 20; ++t) {
                const int j = k < 3 ? k : k < 4 ? 0 : k < 6 ? 1 : 2, i = k < 3 ? -1 : k < 4 ? 0 : k < 6 ? k - 4 : k - 6;
                mean += problem.drawn(set, t, j, i) / 100;
            }
        EXPECT_NEAR(mean, truth[k], 4 * 1.5 * std::sqrt(2.0 / problem.n)) << k;
    }
    // The sets themselves: mean and variance of the completed component.
    size_t at = 0;
    double sum = 0, squares = 0, count = 0;
    for (int set = 0; set < 10; ++set)
        for (int32_t i = 0; i < problem.n; ++i)
            for (int32_t j = 1; j < 3; ++j) {
                const double value =
                    std::isnan(problem.at(i, j)) ? double(problem.imputed[at++]) : double(problem.at(i, j));
                if (j == 1) sum += value + 2, squares += (value + 2) * (value + 2), ++count;
            }
    EXPECT_NEAR(sum / count, 0, 0.06);
    EXPECT_NEAR(squares / count, 1, 0.1);
}

// Without a missing value every iteration is a draw from one posterior distribution, whose moments are known: with the scale
// matrix S and k degrees of freedom the covariance has the mean S / (k - q - 1), its diagonal the variance
// 2 s^2 / ((k - q - 1)^2 (k - q - 3)), and the mean has the covariance S / ((k - q - 1) (n + tau)).
TEST(SSMissingDraws, AreOfThePosterior) {
    for (const bool with_prior : {false, true}) {
        Imputation<double> problem(3, 25);
        problem.fill(4);
        problem.sets = 2, problem.da = 20000;
        const double tau = with_prior ? 5 : 0, k = with_prior ? 6.5 : -1;
        const double centre[] = {1, 4, -2}, scale[3][3] = {{9, 1, -2}, {1, 4, 0.5}, {-2, 0.5, 16}};
        if (with_prior) problem.prior = {tau, k, 1, 4, -2, 9, 1, 4, -2, 0.5, 16};
        ASSERT_EQ(problem.impute(2), 0);
        Reference<double> reference(problem);
        const double n = problem.n, freedom = n + k - 4, draws = 40000;
        for (int32_t j = 0; j < 3; ++j) {
            const double given = with_prior ? centre[j] : 0, data = static_cast<double>(reference.centre[j]);
            const double expected = (n * data + tau * given) / (n + tau);
            double mean = 0, spread = 0;
            const auto each = [&](auto take) {
                for (int32_t set = 0; set < 2; ++set)
                    for (int32_t t = 0; t < problem.da; ++t) take(set, t);
            };
            each([&](int32_t set, int32_t t) {
                const double value = problem.drawn(set, t, j) - expected;
                mean += value / draws, spread += value * value / draws;
            });
            double own = 0;
            for (int32_t i = 0; i <= j; ++i) {
                double s = static_cast<double>(reference.cross[j * 3 + i]);
                if (with_prior)
                    s += scale[j][i] + n * tau / (n + tau) * (data - centre[j]) *
                                           (static_cast<double>(reference.centre[i]) - centre[i]);
                double covariance = 0, squares = 0;
                each([&](int32_t set, int32_t t) {
                    const double value = problem.drawn(set, t, j, i);
                    covariance += value / draws, squares += value * value / draws;
                });
                if (i == j) own = s;
                const double deviation = std::sqrt(squares - covariance * covariance);
                EXPECT_NEAR(covariance, s / freedom, 5 * deviation / std::sqrt(draws)) << i << j;
                if (i == j) {
                    EXPECT_NEAR(deviation / (s / freedom * std::sqrt(2 / (freedom - 2))), 1, 0.04);
                }
            }
            EXPECT_NEAR(mean, 0, 5 * std::sqrt(spread / draws));
            EXPECT_NEAR(spread / (own / freedom / (n + tau)), 1, 0.05);
        }
    }
}

TYPED_TEST(SSMissing, SameSeedSameSets) {
    using T = TypeParam;
    Imputation<T> problem(4, 300, false);
    problem.fill(6);
    std::mt19937 random(3);
    for (T& value : problem.x)
        if (random() % 5 == 0) value = gap<T>;
    for (int32_t j = 0; j < 4; ++j) problem.at(17, j) = gap<T>;  // an observation of nothing
    ASSERT_EQ(problem.impute(1), 0);
    const std::vector<T> sets = problem.imputed, draws = problem.draws;
    ASSERT_EQ(problem.impute(4), 0);
    EXPECT_TRUE(sets == problem.imputed && draws == problem.draws);
    problem.sets = 3;
    ASSERT_EQ(problem.impute(2), 0);
    EXPECT_TRUE(std::equal(problem.imputed.begin(), problem.imputed.end() - 1, sets.begin()));
    problem.seed = 8;
    ASSERT_EQ(problem.impute(2), 0);
    EXPECT_FALSE(std::equal(problem.imputed.begin(), problem.imputed.end() - 1, sets.begin()));
    // The start does not matter once EM has come to rest.
    problem.seed = 7;
    problem.start = {5, 5, 5, 5, 2, 0, 2, 0, 0, 2, 0, 0, 0, 2};
    ASSERT_EQ(problem.impute(), 0);
    for (size_t k = 0; k + 1 < problem.imputed.size(); ++k) ASSERT_NEAR(problem.imputed[k], sets[k], 1e-3);
}

TYPED_TEST(SSMissing, StatusesAndMemory) {
    using T = TypeParam;
    Imputation<T> problem(2, 40);
    problem.fill(5);
    const std::vector<T> whole = problem.x;
    problem.at(3, 0) = problem.at(4, 1) = problem.at(5, 0) = gap<T>;
    problem.set();
    const T bad[][6] = {{-1, 1, 0, 1, 3, 1}, {1, 0, 0, 1, 3, 1},      {1, 1, -1, 1, 3, 1},    {1, 1, 0, 0, 3, 1},
                        {1, 1, 0, 1, 2, 1},  {1, 1, 0, 1, 3, T(0.5)}, {1, 1, gap<T>, 1, 3, 1}};
    for (const auto& row : bad) {
        problem.set();
        std::copy(row, row + 6, problem.params.begin());
        EXPECT_EQ(problem.call(), SSStatusMissMatrix);
    }
    const int32_t of_count[] = {SSStatusMissMatrix, SSStatusMissCountA, SSStatusMissCountB, SSStatusMissCountC,
                                SSStatusMissCountD};
    problem.start = {0, 0, 1, 0, 1};
    problem.prior = {1, 3, 0, 0, 1, 0, 1};
    for (int k = 0; k < 5; ++k) {
        problem.set();
        problem.words[k] = 4;
        EXPECT_EQ(problem.call(), of_count[k]) << k;
        EXPECT_EQ(problem.imputed[0], problem.untouched);
    }
    problem.start = {0, 0, 1, 1, 1};
    EXPECT_EQ(problem.impute(), SSStatusNotPositiveDefinite);
    problem.start.clear();
    for (const auto& [place, value] :
         {std::pair{0, -1.0}, {0, HUGE_VAL}, {1, HUGE_VAL}, {3, double{NAN}}, {4, double{NAN}}, {6, HUGE_VAL}}) {
        problem.prior = {1, 3, 0, 0, 1, 0, 1};
        problem.prior[place] = value;
        EXPECT_EQ(problem.impute(), SSStatusMissCov) << place << " " << value;
    }
    problem.prior = {1, -39, 0, 0, 1, 0, 1};
    EXPECT_EQ(problem.impute(), SSStatusNotPositiveDefinite);
    problem.prior.clear();

    problem.set();
    const struct {
        const void* SSTask::*number;
        void* SSTask::*values;
        int32_t status;
    } fields[] = {{&SSTask::missMethod, nullptr, SSStatusStorage},
                  {nullptr, &SSTask::missMatrix, SSStatusMissMatrix},
                  {&SSTask::missCountC, nullptr, SSStatusMissCountC},
                  {nullptr, &SSTask::missCor, SSStatusMissCor},
                  {&SSTask::missCountD, nullptr, SSStatusMissCountD},
                  {nullptr, &SSTask::missStorage, 0},
                  {&SSTask::missCountA, nullptr, 0}};
    for (const auto& field : fields) {
        const SSTask before = *problem.task;
        if (field.number)
            problem.task->*field.number = nullptr;
        else
            problem.task->*field.values = nullptr;
        EXPECT_EQ(problem.call(), field.status);
        *problem.task = before;
    }
    problem.set();
    const int32_t live = orv_serv_live_blocks();
    int32_t failures = 0;
    for (int32_t nth = 1;; ++nth) {
        orv_serv_fail_allocation(nth);
        const int32_t status = problem.call();
        orv_serv_fail_allocation(0);
        ASSERT_EQ(orv_serv_live_blocks(), live) << nth;
        if (status == 0) break;
        ASSERT_TRUE(status == SSStatusAllocation || status == -4) << status;
        ++failures;
    }
    EXPECT_GT(failures, 5);

    // Columns that hold nothing, one value, an infinity, or the other column.
    for (const int kind : {0, 1, 2, 3}) {
        for (int32_t i = 0; i < problem.n; ++i)
            problem.at(i, 1) = kind == 0   ? gap<T>
                               : kind == 1 ? T(2)
                               : kind == 2 ? std::numeric_limits<T>::infinity()
                                           : problem.at(i, 0) + problem.at(i, 0);
        EXPECT_EQ(problem.impute(), SSStatusNotPositiveDefinite) << kind;
    }
    // One component: draws from its own distribution.
    Imputation<T> one(1, 50);
    one.fill(1);
    one.at(49, 0) = gap<T>;
    ASSERT_EQ(one.impute(), 0);
    EXPECT_NEAR(one.imputed[0], 1.5, 6);
    Imputation<T> few(3, 3);
    few.fill(1);
    few.at(0, 0) = gap<T>;
    EXPECT_EQ(few.impute(), SSStatusNotPositiveDefinite);
}

}  // namespace
