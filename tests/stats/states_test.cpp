// The basic pass outside the plain case: statuses, hard data, NaN and infinity, weights of zero and below, failed allocations.
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>

namespace {

using namespace stats_test;

constexpr double infinity = std::numeric_limits<double>::infinity();

// ---- Hard data -----------------------------------------------------------------------------------------------------

// Decimal digits that a and b share, as the certified values of reference sets are compared.
double digits(double got, Quad expected) {
    const double error = magnitude(Quad(got) - expected) / magnitude(expected);
    return error == 0 ? 17 : -std::log10(error);
}

TEST(HardData, SpeedOfLight) {
    std::ifstream file(ORV_DATA_DIR "/michelson.csv");
    std::string line;
    std::vector<double> speeds;
    std::getline(file, line);
    while (std::getline(file, line)) speeds.push_back(std::stod(line.substr(line.find(',') + 1)) / 1000);
    ASSERT_EQ(speeds.size(), 100u);
    for (const uint64_t method : {BasicFast, BasicOnePass}) {
        Problem<double> problem(1, 100);
        problem.x = speeds;
        ASSERT_EQ(problem.run(ORV_SS_MEAN | ORV_SS_COV, method), 0);
        EXPECT_GE(digits(problem.vectors[0][0], static_cast<Quad>(299.8524L)), 14.5) << method;
        EXPECT_GE(digits(std::sqrt(problem.cov[0]), static_cast<Quad>(0.0790105478190518L)), 13) << method;
    }
}

// Offsets that leave the spread ten, seven and four of the sixteen digits: what comes out is the data's own, by definition.
TEST(HardData, LargeOffsetSmallSpread) {
    for (const double offset : {1e6, 1e9, 1e12})
        for (const bool by_rows : {true, false}) {
            Problem<double> problem(3, 1001, by_rows, SSMatrixPackedLower);
            for (int32_t i = 0; i < problem.n; ++i)
                for (int32_t j = 0; j < 3; ++j) problem.at(i, j) = offset + 0.1 * ((i * (j + 2)) % 7);
            for (const bool weighted : {false, true}) {
                if (weighted) problem.weigh(3);
                problem.weights = {0, 0};
                __kuzSSDeleteTask(&problem.task);
                ASSERT_EQ(problem.run(all_moments | ORV_SS_COV, BasicOnePass, 2), 0);
                Reference<double> reference(problem);
                for (int32_t j = 0; j < 3; ++j) {
                    EXPECT_GE(digits(problem.vectors[0][j], reference.vectors[0][j].value), 15) << offset;
                    EXPECT_GE(digits(problem.vectors[4][j], reference.vectors[4][j].value), 13) << offset;
                    EXPECT_GE(digits(problem.vectors[6][j], reference.vectors[6][j].value), 12.5) << offset;
                    EXPECT_GE(digits(problem.element(problem.cov, j, j), reference.vectors[4][j].value), 13) << offset;
                }
            }
        }
}

// An outlier far from the rest, first or last, and a ramp: the running mean starts or ends far from the data.
TEST(HardData, OutliersAndTrends) {
    const struct {
        const char* name;
        double (*value)(int32_t i, int32_t n);
    } cases[] = {{"first", [](int32_t i, int32_t) { return i == 0 ? 1e8 : 1.0 + i % 7; }},
                 {"last", [](int32_t i, int32_t n) { return i == n - 1 ? 1e8 : 1.0 + i % 7; }},
                 {"ramp", [](int32_t i, int32_t) { return 1e6 + i; }},
                 {"alternating", [](int32_t i, int32_t) { return i % 2 ? 1e8 : -1e8; }}};
    for (const auto& c : cases) {
        Problem<double> problem(1, 5000);
        for (int32_t i = 0; i < problem.n; ++i) problem.x[i] = c.value(i, problem.n);
        ASSERT_EQ(problem.run(all_moments, BasicOnePass), 0);
        Reference<double> reference(problem);
        EXPECT_GE(digits(problem.vectors[4][0], reference.vectors[4][0].value), 13.5) << c.name;
        EXPECT_GE(digits(problem.vectors[6][0], reference.vectors[6][0].value), 13) << c.name;
    }
}

// ---- Statuses ------------------------------------------------------------------------------------------------------

TEST(Status, MethodsAndMissingArrays) {
    const struct {
        uint64_t estimates, method;
        std::vector<int> cleared;
        int32_t status;
    } cases[] = {
        {ORV_SS_MEAN, 0, {}, SSStatusMethod},
        {ORV_SS_MEAN, 3, {}, SSStatusMethod},
        {ORV_SS_MEAN, 0x101, {}, SSStatusMethod},
        {ORV_SS_MEAN, 0x103, {}, SSStatusMethod},
        {ORV_SS_MEAN, 0x10, {}, SSStatusMethod},
        {ORV_SS_SUM, BasicFromSums, {}, SSStatusMethod},
        {ORV_SS_CP, BasicFromCrossProduct, {}, SSStatusMethod},
        {ORV_SS_MEAN | ORV_SS_SUM, BasicFromSums, {SSIdSum}, SSStatusSum},
        {ORV_SS_CENTRAL_MOMENT2, BasicFast, {SSIdMean}, SSStatusMean},
        {ORV_SS_CENTRAL_MOMENT2, BasicFast, {SSIdMean, SSIdRawMoment2}, SSStatusMean},
        {ORV_SS_CENTRAL_MOMENT2, BasicOnePass, {SSIdRawMoment2, SSIdCentralMoment2}, SSStatusRawMoment2},
        {ORV_SS_KURTOSIS, BasicOnePass, {SSIdCentralMoment4}, SSStatusCentralMoment4},
        {ORV_SS_KURTOSIS, BasicOnePass, {SSIdCentralMoment3, SSIdSkewness}, SSStatusOk},
        {ORV_SS_CENTRAL_SUM3, BasicFast, {SSIdRawMoment3}, SSStatusRawMoment3},
        {ORV_SS_CENTRAL_SUM3, BasicOnePass, {SSIdRawMoment3, SSIdRawMoment2}, SSStatusOk},
        {ORV_SS_COR, BasicFast, {SSIdCor}, SSStatusCor},
        {ORV_SS_COV, BasicFromSums, {SSIdCP}, SSStatusCP},
        {ORV_SS_COV | ORV_SS_KURTOSIS, BasicUserMean, {SSIdKurtosis, SSIdCov}, SSStatusCov},
        {ORV_SS_MEAN, BasicFast, {SSIdX}, SSStatusX},
        {ORV_SS_MEAN, BasicFast, {SSIdN, SSIdX}, SSStatusN},
        {ORV_SS_MEAN, BasicFast, {SSIdXStorage}, SSStatusStorage},
        {ORV_SS_COV, BasicFast, {SSIdCovStorage}, SSStatusStorage},
        {ORV_SS_MEAN, BasicFromSums, {SSIdN, SSIdAccumWeight}, SSStatusAccumWeight},
        {ORV_SS_MEAN, BasicFromSums, {SSIdX, SSIdXStorage}, SSStatusOk},
        {0, BasicFast, {}, SSStatusOk},
    };
    int index = 0;
    for (const auto& c : cases) {
        Problem<double> problem(2, 40);
        problem.fill(1);
        ASSERT_EQ(problem.make(), 0);
        std::fill(problem.vectors[10].begin(), problem.vectors[10].end(), 1.0);
        if (c.method == BasicFromSums) problem.weights = {40, 40};
        const std::vector<double> before = problem.vectors[0];
        const std::pair<int, const void**> integers[] = {{SSIdN, &problem.task->n},
                                                         {SSIdXStorage, &problem.task->xStorage},
                                                         {SSIdX, &problem.task->x},
                                                         {SSIdCovStorage, &problem.task->covStorage}};
        const std::pair<int, void**> arrays[] = {{SSIdMean, &problem.task->mean},
                                                 {SSIdRawMoment2, &problem.task->rawMoment2},
                                                 {SSIdRawMoment3, &problem.task->rawMoment3},
                                                 {SSIdCentralMoment2, &problem.task->centralMoment2},
                                                 {SSIdCentralMoment3, &problem.task->centralMoment3},
                                                 {SSIdCentralMoment4, &problem.task->centralMoment4},
                                                 {SSIdKurtosis, &problem.task->kurtosis},
                                                 {SSIdSkewness, &problem.task->skewness},
                                                 {SSIdCov, &problem.task->cov},
                                                 {SSIdCor, &problem.task->cor},
                                                 {SSIdCP, &problem.task->cp},
                                                 {SSIdSum, &problem.task->sum},
                                                 {SSIdAccumWeight, &problem.task->accumWeight}};
        for (const int id : c.cleared) {
            for (const auto& [known, field] : integers)
                if (known == id) *field = nullptr;
            for (const auto& [known, field] : arrays)
                if (known == id) *field = nullptr;
        }
        EXPECT_EQ(problem.run(c.estimates, c.method), c.status) << "case " << index;
        EXPECT_TRUE(c.status == 0 || problem.vectors[0] == before) << "case " << index;
        ++index;
    }
    Problem<double> problem(2, 40);
    ASSERT_EQ(problem.make(), 0);
    problem.form_word = 0x40000;
    EXPECT_EQ(problem.run(ORV_SS_MEAN, BasicFast), SSStatusStorageValue);
    EXPECT_EQ(_kuzdSSBasic(nullptr, ORV_SS_MEAN, BasicFast, nullptr), SSStatusNullTask);
}

TEST(Status, EachAllocationMayFail) {
    const struct {
        uint64_t estimates, method;
        int32_t threads, allocations;
    } cases[] = {{everything, BasicFast, 2, 1},
                 {everything, BasicOnePass, 1, 1},
                 {everything, BasicUserMean, 2, 2},
                 {ORV_SS_COR, BasicOnePass, 1, 2},
                 {ORV_SS_COV, BasicFromSums, 1, 1}};
    for (const auto& c : cases) {
        Problem<double> problem(20, 500, true, SSMatrixPackedLower);
        problem.fill(2);
        problem.mean_given.assign(20, 2.0);
        problem.make();
        if (c.method == BasicFromSums) problem.weights = {500, 500};
        const auto before = problem.weights;
        const int32_t blocks = orv_serv_live_blocks();
        for (int32_t nth = 1; nth <= c.allocations; ++nth) {
            orv_serv_fail_allocation(nth);
            EXPECT_EQ(problem.run(c.estimates, c.method, c.threads), SSStatusAllocation) << c.method << " " << nth;
            EXPECT_EQ(problem.weights, before);
            EXPECT_EQ(problem.cov[0], problem.untouched);
            EXPECT_EQ(orv_serv_live_blocks(), blocks);
        }
        orv_serv_fail_allocation(c.allocations + 1);
        EXPECT_EQ(problem.run(c.estimates, c.method, c.threads), 0) << c.method;
        orv_serv_fail_allocation(0);
        __kuzSSDeleteTask(&problem.task);
        EXPECT_EQ(orv_serv_live_blocks(), blocks - 1);
    }
}

// ---- Odd data ------------------------------------------------------------------------------------------------------

TEST(OddData, NanAndInfinityStayInTheirComponent) {
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (const bool by_rows : {true, false})
            for (const double odd : {std::nan(""), infinity, -infinity}) {
                Problem<double> clean(5, 600, by_rows), problem(5, 600, by_rows);
                clean.fill(3);
                if (method == BasicUserMean) clean.mean_given = {1, 2, -1, 0, 3};
                problem.x = clean.x, problem.mean_given = clean.mean_given;
                problem.at(300, 2) = odd;
                ASSERT_EQ(clean.run(everything, method), 0);
                ASSERT_EQ(problem.run(everything, method), 0);
                for (int row = 0; row < vector_count; ++row)
                    for (const int32_t j : {0, 1, 3, 4})
                        EXPECT_EQ(problem.vectors[row][j], clean.vectors[row][j]) << method << " " << row;
                for (int32_t a = 0; a < 5; ++a)
                    for (int32_t b = 0; b < 5; ++b) {
                        const double got = problem.element(problem.cov, a, b);
                        EXPECT_TRUE(a == 2 || b == 2 ? !std::isfinite(got) : got == clean.element(clean.cov, a, b));
                    }
                if (std::isnan(odd)) {
                    EXPECT_TRUE(std::isnan(problem.vectors[1][2]));
                    continue;
                }
                EXPECT_EQ(problem.vectors[0][2], method == BasicUserMean ? -1 : odd);
                EXPECT_EQ(problem.vectors[1][2], infinity) << method;
                EXPECT_EQ(problem.vectors[2][2], odd) << method;
                EXPECT_EQ(problem.vectors[10][2], odd) << method;
            }
}

TEST(OddData, WeightsOfZeroEndTheCall) {
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (const bool cancelling : {false, true}) {
            Problem<double> problem(3, 40);
            problem.fill(4);
            problem.w.assign(40, 0);
            if (cancelling)
                for (int i = 0; i < 40; ++i) problem.w[i] = i % 2 ? 1 : -1;
            if (method == BasicUserMean) problem.mean_given = {1, 2, 3};
            ASSERT_EQ(problem.run(everything, method), 0);
            for (int row = 0; row < 7; ++row)
                for (int32_t j = 0; j < 3; ++j)
                    EXPECT_EQ(problem.vectors[row][j], row == 0 && method == BasicUserMean ? problem.mean_given[j] : 0);
            EXPECT_EQ(problem.cov[0], problem.untouched);
            EXPECT_EQ(problem.weights[1], cancelling ? 40 : 0);
        }
}

TEST(OddData, NegativeWeightsSubtract) {
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (const int32_t at : {0, 1, 150}) {
            Problem<double> problem(4, 200);
            problem.fill(5);
            problem.weigh(6);
            problem.w[at] = -0.5;
            if (method == BasicUserMean) problem.mean_given = {1, 2, 2, 2};
            ASSERT_EQ(problem.run(ORV_SS_MEAN | ORV_SS_CP, method), 0);
            Reference<double> reference(problem);
            for (int32_t a = 0; a < 4; ++a) {
                EXPECT_NEAR(problem.vectors[0][a], static_cast<double>(reference.vectors[0][a].value), 1e-13);
                for (int32_t b = 0; b < 4; ++b)
                    EXPECT_NEAR(problem.element(problem.cp, a, b),
                                static_cast<double>(reference.cross[size_t(a) * 4 + b]), 1e-10);
            }
        }
}

// One observation has a mean and raw moments; what divides by n - 1 is 0 / 0. A constant has no spread and no shape.
TEST(OddData, OneObservationAndConstants) {
    Problem<double> one(2, 1);
    one.x = {3, -4};
    ASSERT_EQ(one.run(everything, BasicOnePass), 0);
    EXPECT_EQ(one.vectors[0], one.x);
    EXPECT_EQ(one.vectors[1], (std::vector<double>{9, 16}));
    EXPECT_TRUE(std::isnan(one.vectors[4][0]));
    EXPECT_EQ(one.cp, (std::vector<double>(4, 0)));

    Problem<double> constant(2, 100);
    constant.x.assign(200, 0.1);
    ASSERT_EQ(constant.run(everything, BasicOnePass), 0);
    EXPECT_EQ(constant.vectors[0][0], 0.1);
    EXPECT_EQ(constant.vectors[4][0], 0);
    EXPECT_TRUE(std::isnan(constant.vectors[8][0]));
    EXPECT_TRUE(std::isnan(constant.cor[0]));
}

TEST(OddData, UsersMeanIsCopiedAndKept) {
    Problem<float> problem(3, 100, false);
    problem.fill(7);
    problem.mean_given = {1, 2, 3};
    ASSERT_EQ(problem.run(ORV_SS_CENTRAL_MOMENT2, BasicUserMean), 0);
    ASSERT_NE(problem.task->ownedBuffer, nullptr);
    EXPECT_TRUE(std::equal(problem.mean_given.begin(), problem.mean_given.end(),
                           static_cast<float*>(problem.task->ownedBuffer)));
    EXPECT_EQ(problem.vectors[0], problem.mean_given);
}

}  // namespace
