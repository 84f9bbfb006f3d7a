// Robust covariance and outlier detection: known outliers, clustered contamination, equivariance, edges.
#include "services/test_switches.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <sstream>
#include <string>

namespace {

using namespace stats_test;

template <class T>
struct Robust;
template <>
struct Robust<double> {
    static constexpr auto covariance = _kuzdSSRobustCovariance;
    static constexpr auto outliers = _kuzdSSOutliersDetection;
};
template <>
struct Robust<float> {
    static constexpr auto covariance = _kuzsSSRobustCovariance;
    static constexpr auto outliers = _kuzsSSOutliersDetection;
};

// A problem with the fields of both entries.
template <class T>
struct Study : Problem<T> {
    Word count_word, outlier_word;
    std::vector<T> params = {T(0.5), T(0.001), T(1e-9), 500}, rule = {SubsetMedian, T(0.05), 0};
    std::vector<T> centre, scatter, kept;

    using Problem<T>::Problem;
    void set() {
        if (!this->task) this->make();
        centre.assign(this->p, this->untouched);
        scatter.assign(this->cov.size(), this->untouched);
        kept.assign(this->n, this->untouched);
        count_word = 4, outlier_word = 3;
        __kuzdSSEditRCov(this->task, this->matrix_word.at(this->wide), count_word.at(this->wide), params.data(),
                         centre.data(), scatter.data());
        __kuzdSSEditOutDetect(this->task, outlier_word.at(this->wide), rule.data(), kept.data());
    }
    int32_t estimate(uint64_t method = RobustTBS, int32_t threads = 1) {
        set();
        thread_limit = threads;
        return Robust<T>::covariance(this->task, ORV_SS_ROBUST_COVARIANCE, method, limited_services());
    }
    int32_t detect(int32_t threads = 1) {
        set();
        thread_limit = threads;
        return Robust<T>::outliers(this->task, ORV_SS_OUTLIERS, 0, limited_services());
    }
    double scattered(int32_t i, int32_t j) const { return this->element(scatter, i, j); }
    // Rows, from 1.
    std::string rejected() const {
        std::string rows;
        for (size_t i = 0; i < kept.size(); ++i)
            if (kept[i] != 1) rows += (rows.empty() ? "" : " ") + std::to_string(i + 1);
        return rows;
    }
    // Standard normal, of which the first `bad` observations are a tight cluster `far` away along all axes.
    void contaminate(unsigned seed, int32_t bad, double far, double width = 0.1) {
        std::mt19937 generator(seed);
        std::normal_distribution<double> normal;
        for (int32_t i = 0; i < this->n; ++i)
            for (int32_t j = 0; j < this->p; ++j)
                this->at(i, j) = static_cast<T>(i < bad ? far + width * normal(generator) : normal(generator));
    }
    // Squared, under the estimate, by elimination.
    std::vector<double> distances() {
        std::vector<double> d(this->n);
        for (int32_t i = 0; i < this->n; ++i) {
            std::vector<std::vector<double>> a(this->p);
            for (int32_t j = 0; j < this->p; ++j) {
                for (int32_t k = 0; k < this->p; ++k) a[j].push_back(scattered(j, k));
                a[j].push_back(double(this->at(i, j)) - centre[j]);
            }
            for (int32_t j = 0; j < this->p; ++j) {
                d[i] += a[j].back() * a[j].back() / a[j][j];
                for (int32_t k = j + 1; k < this->p; ++k)
                    for (int32_t l = this->p; l >= j; --l) a[k][l] -= a[j][l] * a[k][j] / a[j][j];
            }
        }
        return d;
    }
    // The farthest of centre and covariance from 0 and the unit matrix.
    double bias() const {
        double most = 0;
        for (int32_t j = 0; j < this->p; ++j) {
            most = std::fmax(most, std::fabs(double(centre[j])));
            for (int32_t i = 0; i <= j; ++i) most = std::fmax(most, std::fabs(scattered(i, j) - (i == j)));
        }
        return most;
    }
};

std::vector<std::vector<double>> read_rows(const char* name) {
    std::ifstream file(std::string(ORV_DATA_DIR "/") + name);
    std::string line, field;
    std::getline(file, line);
    std::vector<std::vector<double>> rows;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::vector<double> row;
        while (std::getline(fields, field, ',')) row.push_back(std::stod(field));
        rows.push_back(row);
    }
    return rows;
}

template <class T>
void put_rows(Study<T>& study, const std::vector<std::vector<double>>& rows) {
    for (int32_t i = 0; i < study.n; ++i)
        for (int32_t j = 0; j < study.p; ++j) study.at(i, j) = static_cast<T>(rows[i][j]);
}

template <class T>
class SSRobust : public testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSRobust, Types);

TYPED_TEST(SSRobust, KnownOutliers) {
    const struct {
        const char *file, *rows;
        int32_t p;
    } cases[] = {{"hbk.csv", "1 2 3 4 5 6 7 8 9 10 11 12 13 14", 3}, {"wood.csv", "4 6 8 19", 5}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        const auto rows = read_rows(row.file);
        for (const bool by_rows : {true, false}) {
            Study<TypeParam> study(row.p, static_cast<int32_t>(rows.size()), by_rows, SSMatrixPackedUpper, by_rows);
            put_rows(study, rows);
            ASSERT_EQ(study.detect(), 0);
            EXPECT_EQ(study.rejected(), row.rows);
            // Under the robust estimate they are the farthest observations.
            ASSERT_EQ(study.estimate(), 0);
            const std::vector<double> d = study.distances();
            double nearest_bad = 1e300, farthest_good = 0;
            for (int32_t i = 0; i < study.n; ++i)
                if (study.kept[i] == 1)
                    farthest_good = std::fmax(farthest_good, d[i]);
                else
                    nearest_bad = std::fmin(nearest_bad, d[i]);
            EXPECT_GT(nearest_bad, 2 * farthest_good);
        }
    }
}

// Three in ten observations in a tight cluster: the S-estimate grows as the normal model makes it grow that lost them, whatever
// their distance, where the plain covariance goes with its square.
TYPED_TEST(SSRobust, WithstandsACluster) {
    const struct {
        int32_t p;
        double bound;
    } cases[] = {{1, 2.3}, {2, 1.6}, {5, 1.45}, {10, 1.2}};
    for (const auto& [p, bound] : cases)
        for (const double far : {100.0, 1000.0, 1e6}) {
            Study<TypeParam> study(p, 1000, p != 5, p == 2 ? SSMatrixPackedLower : SSMatrixFull, p == 10);
            study.contaminate(p, 300, far);
            ASSERT_EQ(study.estimate(), 0);
            EXPECT_LT(study.bias(), bound) << p << " " << far;
            ASSERT_EQ(study.run(ORV_SS_COV, BasicOnePass), 0);
            EXPECT_GT(study.element(study.cov, 0, 0), 0.2 * far * far);
            ASSERT_EQ(study.detect(), 0);
            for (int32_t i = 0; i < study.n; ++i) ASSERT_EQ(study.kept[i] == 1, i >= 300) << p << " " << i;
        }
}

TYPED_TEST(SSRobust, ConsistentAtTheNormalModel) {
    for (const int32_t p : {1, 2, 5, 20}) {
        Study<TypeParam> study(p, 10000);
        study.contaminate(p, 0, 0);
        for (const uint64_t method : {RobustTBS, RobustMaronna}) {
            ASSERT_EQ(study.estimate(method), 0);
            EXPECT_LT(study.bias(), 0.045) << p << " " << method;  // the standard error of a variance is 0.014
        }
        ASSERT_EQ(study.detect(), 0);
        EXPECT_LE(std::count(study.kept.begin(), study.kept.end(), TypeParam{0}), 2) << p;
    }
}

// What defines the estimates, in two dimensions, where the square of the distance is exponential. The weight falls from the
// centre on there: rho is the biweight's.
TEST(SSRobustEquations, Hold) {
    Study<double> study(2, 500);
    study.contaminate(3, 100, 4, 1);
    const auto equations = [&](auto weight, auto location, double divisor) {
        const std::vector<double> d = study.distances();
        double shift[2] = {}, moment[3] = {};
        for (int32_t i = 0; i < study.n; ++i) {
            const double r = std::sqrt(d[i]), x = study.at(i, 0) - study.centre[0],
                         y = study.at(i, 1) - study.centre[1];
            shift[0] += location(r) * x, shift[1] += location(r) * y;
            const double w = weight(r) / divisor;
            moment[0] += w * x * x, moment[1] += w * x * y, moment[2] += w * y * y;
        }
        EXPECT_NEAR(shift[0], 0, 1e-6 * study.n);
        EXPECT_NEAR(shift[1], 0, 1e-6 * study.n);
        const double scale = moment[0] / study.scattered(0, 0);
        EXPECT_NEAR(moment[1] / (scale * study.scattered(0, 1)), 1, 1e-6);
        EXPECT_NEAR(moment[2] / (scale * study.scattered(1, 1)), 1, 1e-6);
        return scale;
    };

    const auto rho = [](double d, double c) {
        const double u = std::fmin(d / c, 1), s = u * u;
        return c * c / 6 * (1 - (1 - s) * (1 - s) * (1 - s));
    };
    // Of the whole: E rho / (c^2 / 6) falls with c, and is a half at the breakdown point of a half.
    double low = 0.1, high = 10;
    while (high - low > 1e-12) {
        const double c = 0.5 * (low + high), h = c / 2000;
        double mean = c * c / 6 * std::exp(-c * c / 2);
        for (int k = 0; k < 2000; ++k) {
            const auto term = [&](double d) { return rho(d, c) * d * std::exp(-d * d / 2); };
            mean += h / 6 * (term(k * h) + 4 * term((k + 0.5) * h) + term((k + 1) * h));
        }
        (mean > 0.498 * c * c / 6 ? low : high) = c;  // (n - p) / (2 n)
    }
    ASSERT_EQ(study.estimate(), 0);
    double mean = 0;
    for (const double d : study.distances()) mean += rho(std::sqrt(d), low) / study.n;
    EXPECT_NEAR(mean / (0.498 * low * low / 6), 1, 1e-6);
    const auto biweight = [&](double d) { return d < low ? std::pow(1 - d * d / (low * low), 2) : 0; };
    equations(biweight, biweight, 1);

    double k2 = 3;
    for (int step = 0; step < 200; ++step) k2 = 3 * (1 - std::exp(-k2 / 2));
    const double k = std::sqrt(k2);
    ASSERT_EQ(study.estimate(RobustMaronna), 0);
    const auto huber = [&](double d) { return std::fmin(1, k / d); };
    const auto squared = [&](double d) { return huber(d) * huber(d); };
    EXPECT_NEAR(equations(squared, huber, study.n * (1 - std::exp(-k2 / 2))), 1, 1e-6);
}

// The subset that BACON ends with is all within, and nothing else, of its own corrected quantile.
TEST(SSOutliers, SubsetIsItsOwn) {
    Study<double> study(4, 300, false);
    study.contaminate(5, 40, 3, 1);
    for (const double first : {double(SubsetMedian), double(SubsetMahalanobis)}) {
        study.rule[0] = first;
        ASSERT_EQ(study.detect(), 0);
        Problem<double> subset(4, static_cast<int32_t>(std::count(study.kept.begin(), study.kept.end(), 1.0)));
        for (int32_t i = 0, to = 0; i < study.n; ++i)
            if (study.kept[i] == 1) {
                for (int32_t j = 0; j < 4; ++j) subset.at(to, j) = study.at(i, j);
                ++to;
            }
        ASSERT_EQ(subset.run(ORV_SS_MEAN | ORV_SS_COV, BasicOnePass), 0);
        study.centre = subset.vectors[0];
        study.scatter = subset.cov;
        double low = 0, high = 1000;
        while (high - low > 1e-10) {
            const double x = 0.5 * (low + high);
            (std::exp(-x / 2) * (1 + x / 2) > 0.05 / 300 ? low : high) = x;
        }
        const double corrected = 1 + 5.0 / 296 + 2.0 / 287, limit = low * corrected * corrected;
        const std::vector<double> d = study.distances();
        for (int32_t i = 0; i < study.n; ++i) EXPECT_EQ(d[i] < limit, study.kept[i] == 1) << i;
        EXPECT_GT(study.n, subset.n);
    }
}

TEST(SSRobustEquations, MoveWithTheData) {
    const auto rows = read_rows("hbk.csv");
    const double a[3][3] = {{2, 0.5, -1}, {0.3, 1e-3, 4}, {1e3, -0.2, 0.7}}, b[3] = {1e4, -7, 0};
    Study<double> plain(3, 75), moved(3, 75);
    put_rows(plain, rows);
    for (int32_t i = 0; i < 75; ++i)
        for (int32_t j = 0; j < 3; ++j)
            moved.at(i, j) = b[j] + a[j][0] * rows[i][0] + a[j][1] * rows[i][1] + a[j][2] * rows[i][2];
    for (const uint64_t method : {RobustTBS, RobustMaronna}) {
        ASSERT_EQ(plain.estimate(method), 0);
        ASSERT_EQ(moved.estimate(method), 0);
        for (int j = 0; j < 3; ++j) {
            double centre = b[j], c[3] = {};
            for (int k = 0; k < 3; ++k) centre += a[j][k] * plain.centre[k];
            EXPECT_NEAR(moved.centre[j], centre, 1e-6 * std::sqrt(moved.scattered(j, j)));
            for (int l = 0; l < 3; ++l)
                for (int k = 0; k < 3; ++k)
                    for (int m = 0; m < 3; ++m) c[l] += a[j][k] * plain.scattered(k, m) * a[l][m];
            for (int l = 0; l < 3; ++l)
                EXPECT_NEAR(moved.scattered(j, l), c[l],
                            1e-6 * std::sqrt(moved.scattered(j, j) * moved.scattered(l, l)));
        }
    }
}

TYPED_TEST(SSRobust, ThreadsAndOtherComponentsChangeNothing) {
    Study<TypeParam> all(6, 5000), some(4, 5000, false);
    all.fill(7);
    const int32_t kept[] = {0, 2, 3, 5};
    for (int32_t i = 0; i < all.n; ++i) {
        for (int32_t j = 0; j < 4; ++j) some.at(i, j) = all.at(i, kept[j]);
        all.at(i, 1) = std::numeric_limits<TypeParam>::quiet_NaN();
        all.at(i, 4) = 3;
    }
    all.leave_out({1, 4});
    for (const uint64_t method : {RobustTBS, RobustMaronna}) {
        ASSERT_EQ(some.estimate(method, 1), 0);
        const auto centre = some.centre, scatter = some.scatter;
        ASSERT_EQ(some.estimate(method, 3), 0);
        EXPECT_TRUE(centre == some.centre && scatter == some.scatter);
        ASSERT_EQ(all.estimate(method, 7), 0);
        EXPECT_EQ(all.centre[1], all.untouched);
        EXPECT_EQ(all.scattered(1, 2), all.untouched);
        for (int32_t j = 0; j < 4; ++j) {
            EXPECT_EQ(all.centre[kept[j]], centre[j]);
            for (int32_t i = 0; i < 4; ++i) EXPECT_EQ(all.scattered(kept[i], kept[j]), some.scattered(i, j));
        }
    }
    ASSERT_EQ(some.detect(1), 0);
    ASSERT_EQ(all.detect(7), 0);
    EXPECT_EQ(some.kept, all.kept);
}

// Observations that are no numbers, or too far to compute with, are outliers and nothing else.
TYPED_TEST(SSRobust, NotNumbersAreOutliers) {
    using Limits = std::numeric_limits<TypeParam>;
    Study<TypeParam> study(3, 200), clean(3, 200);
    clean.fill(8);
    study.x = clean.x;
    const TypeParam odd[] = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
                             -Limits::max()};
    for (int32_t k = 0; k < 5; ++k) study.at(10 * k, k % 3) = odd[k];
    ASSERT_EQ(study.detect(), 0);
    EXPECT_EQ(study.rejected(), "1 11 21 31 41");
    ASSERT_EQ(clean.estimate(), 0);
    for (const uint64_t method : {RobustTBS, RobustMaronna}) {
        ASSERT_EQ(study.estimate(method), 0);
        for (int32_t j = 0; j < 3; ++j) {
            EXPECT_NEAR(study.centre[j], clean.centre[j], 0.2);
            EXPECT_NEAR(study.scattered(j, j) / clean.scattered(j, j), 1, 0.3);
        }
    }
    for (int32_t i = 0; i < 120; ++i) study.at(i, 1) = Limits::quiet_NaN();
    EXPECT_EQ(study.estimate(), SSStatusNotPositiveDefinite);  // beyond the breakdown point
    EXPECT_EQ(study.detect(), 0);
}

TYPED_TEST(SSRobust, Degenerate) {
    const struct {
        const char* name;
        int32_t p, n;
        TypeParam (*value)(int32_t i, int32_t j);
    } cases[] = {
        {"n = p", 5, 5, [](int32_t i, int32_t j) { return TypeParam((i * i + 3 * j * i * i * i) % 17); }},
        {"n = 1", 1, 1, [](int32_t, int32_t) { return TypeParam(2); }},
        {"constant", 2, 50, [](int32_t i, int32_t j) { return j ? TypeParam(3) : TypeParam(i); }},
        {"twice", 2, 50, [](int32_t i, int32_t j) { return TypeParam((j + 1) * (i * i % 47)); }},
        {"sum", 3, 60, [](int32_t i, int32_t j) { return TypeParam(j == 2 ? i * i % 31 + i
                                                                   : j    ? i
                                                                          : i * i % 31); }},
        {"no numbers", 2, 20, [](int32_t, int32_t) { return std::numeric_limits<TypeParam>::quiet_NaN(); }},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Study<TypeParam> study(row.p, row.n);
        for (int32_t i = 0; i < row.n; ++i)
            for (int32_t j = 0; j < row.p; ++j) study.at(i, j) = row.value(i, j);
        EXPECT_EQ(study.estimate(), SSStatusNotPositiveDefinite);
        EXPECT_EQ(study.estimate(RobustMaronna), SSStatusNotPositiveDefinite);
        EXPECT_EQ(study.centre[0], study.untouched);
        EXPECT_EQ(study.detect(), SSStatusNotPositiveDefinite);
        EXPECT_EQ(study.kept[0], study.untouched);
    }
}

TYPED_TEST(SSRobust, StatusesAndMemory) {
    Study<TypeParam> study(2, 400);
    study.fill(9);
    study.set();
    const auto services = orv_serv_services();
    const auto covariance = [&](uint64_t method = RobustTBS, uint64_t estimates = ORV_SS_ROBUST_COVARIANCE) {
        return Robust<TypeParam>::covariance(study.task, estimates, method, services);
    };
    const auto outliers = [&] { return Robust<TypeParam>::outliers(study.task, ORV_SS_OUTLIERS, 0, services); };
    // A weight that hardly falls, and one that hardly stays: the plain covariance, and one of a few.
    ASSERT_EQ(study.run(ORV_SS_COV, BasicOnePass), 0);
    study.params = {TypeParam(1e-9), TypeParam(1e-30), TypeParam(1e-9), 100};
    study.set();
    ASSERT_EQ(covariance(), 0);
    EXPECT_NEAR(study.scattered(0, 0) / study.element(study.cov, 0, 0), 1, 0.01);
    study.params[0] = TypeParam(0.5), study.params[1] = TypeParam(0.999999);
    study.set();
    ASSERT_EQ(covariance(), 0);
    study.set();
    EXPECT_EQ(covariance(0), SSStatusMethod);
    EXPECT_EQ(covariance(3), SSStatusMethod);
    EXPECT_EQ(covariance(RobustTBS, uint64_t{1} << 60), SSStatusEstimates);
    EXPECT_EQ(covariance(RobustTBS, ORV_SS_MEAN), 0);
    EXPECT_EQ(study.centre[0], study.untouched);

    const TypeParam bad[][4] = {{0, 1e-3f, 0, 1},     {0.6f, 1e-3f, 0, 1}, {0.5f, 0, 0, 1},    {0.5f, 1, 0, 1},
                                {0.5f, 1e-3f, -1, 1}, {0.5f, 1e-3f, 0, 0}, {NAN, 1e-3f, 0, 1}, {0.5f, 1e-3f, 0, NAN}};
    for (const auto& row : bad) {
        study.params.assign(row, row + 4);
        study.set();
        EXPECT_EQ(covariance(), SSStatusRobustParams);
    }
    const TypeParam bad_rule[][3] = {{0, 0.1f, 0},  {3, 0.1f, 0}, {2, 0, 0},     {2, 1, 0},
                                     {2, 0.1f, -1}, {2, 0.1f, 1}, {NAN, 0.1f, 0}};
    for (const auto& row : bad_rule) {
        study.rule.assign(row, row + 3);
        study.set();
        EXPECT_EQ(outliers(), SSStatusOutlierParams);
    }
    study.params = {TypeParam(0.5), TypeParam(0.001), 0, 3};
    study.rule = {SubsetMahalanobis, TypeParam(0.05), 0};
    study.set();
    study.count_word = 3, study.outlier_word = 4;
    EXPECT_EQ(covariance(), SSStatusRobustParamCount);
    EXPECT_EQ(outliers(), SSStatusOutlierParamCount);
    study.count_word = 4, study.outlier_word = 3;

    for (const bool detect : {false, true}) {
        const int32_t live = orv_serv_live_blocks();
        int32_t failures = 0;
        for (int32_t nth = 1;; ++nth) {
            orv_serv_fail_allocation(nth);
            const int32_t status = detect ? outliers() : covariance();
            orv_serv_fail_allocation(0);
            EXPECT_EQ(orv_serv_live_blocks(), live);
            if (status == 0) break;
            ASSERT_EQ(status, SSStatusAllocation) << nth;
            EXPECT_EQ(detect ? study.kept[0] : study.centre[0], study.untouched);
            ++failures;
        }
        EXPECT_GE(failures, 3);
    }

    const struct {
        const void* SSTask::*number;
        void* SSTask::*values;
        int32_t status;
        bool detect;
    } fields[] = {{&SSTask::robustMethod, nullptr, SSStatusStorage, false},
                  {&SSTask::robustParamCount, nullptr, SSStatusRobustParamCount, false},
                  {nullptr, &SSTask::robustParams, SSStatusRobustParams, false},
                  {nullptr, &SSTask::robustMean, SSStatusRobustMean, false},
                  {nullptr, &SSTask::robustCov, SSStatusRobustCov, false},
                  {&SSTask::outlierParamCount, nullptr, SSStatusOutlierParamCount, true},
                  {nullptr, &SSTask::outlierParams, SSStatusOutlierParams, true},
                  {nullptr, &SSTask::outlierWeights, SSStatusOutlierWeights, true}};
    for (const auto& field : fields) {
        SSTask before = *study.task;
        if (field.number)
            study.task->*field.number = nullptr;
        else
            study.task->*field.values = nullptr;
        EXPECT_EQ(field.detect ? outliers() : covariance(), field.status);
        *study.task = before;
    }
}

}  // namespace
