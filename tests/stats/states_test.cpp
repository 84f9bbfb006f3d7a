// The basic pass outside the plain case: statuses, hard data, NaN and infinity, weights of zero and below, failed allocations.
#include "services/test_switches.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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
        {ORV_SS_MEAN | uint64_t{1} << 34, BasicFast, {SSIdMean}, SSStatusEstimates},
        {uint64_t{1} << 63, BasicOnePass, {}, SSStatusEstimates},
        {uint64_t{1} << 34, 0, {}, SSStatusMethod},
        {ORV_SS_MINIMUM | ORV_SS_PARTIAL_COVARIANCE, BasicFast, {SSIdX, SSIdN}, SSStatusOk},
        {ORV_SS_MEAN | ORV_SS_MAD, BasicFast, {SSIdX}, SSStatusX},
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
        const bool works = c.status == 0 && (c.estimates & everything) != 0;
        EXPECT_TRUE(works ||
                    (problem.vectors[0] == before && problem.weights[0] == (c.method == BasicFromSums ? 40 : 0)))
            << "case " << index;
        ++index;
    }
    Problem<double> problem(2, 40);
    ASSERT_EQ(problem.make(), 0);
    problem.form_word = 0x40000;
    EXPECT_EQ(problem.run(ORV_SS_MEAN, BasicFast), SSStatusStorageValue);
    EXPECT_EQ(_kuzdSSBasic(nullptr, ORV_SS_MEAN, BasicFast, nullptr), SSStatusNullTask);
    for (const auto entry : {_kuzdSSQuantiles, _kuzdSSStreamQuantiles, _kuzdSSMAD, _kuzdSSPartialCovariance,
                             _kuzdSSCorParametrization, _kuzdSSRobustCovariance, _kuzdSSMissingValues})
        EXPECT_EQ(entry(nullptr, ORV_SS_MEAN, RobustMaronna, nullptr), SSStatusNullTask);
}

TEST(Status, EachAllocationMayFail) {
    const struct {
        uint64_t estimates, method;
        int32_t threads, allocations;
    } cases[] = {{everything, BasicFast, 2, 2},
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
            EXPECT_EQ(problem.task->ownedTenant, 0);
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

// A NaN shows also with weight 0, but not from a call or a thread's part that weighs nothing at all.
TEST(OddData, NanOfWeightZero) {
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean}) {
        Problem<double> problem(2, 60), clean(2, 60);
        for (Problem<double>* one : {&problem, &clean}) {
            one->fill(8);
            one->w.assign(60, 1);
            if (method == BasicUserMean) one->mean_given = {1, 2};
            std::fill(one->w.begin() + 20, one->w.begin() + 40, 0);
        }
        problem.at(30, 1) = std::nan("");
        for (const auto& [first, last] : {std::pair{0, 20}, {20, 40}, {40, 60}}) {
            ASSERT_EQ(problem.run_block(everything, method, first, last), 0);
            ASSERT_EQ(clean.run_block(everything, method, first, last), 0);
        }
        for (int row = 0; row < vector_count; ++row) EXPECT_EQ(problem.vectors[row], clean.vectors[row]) << method;
        EXPECT_EQ(problem.cov, clean.cov) << method;
        problem.weights = {0, 0};
        ASSERT_EQ(problem.run_block(everything, method, 0, 60), 0);
        EXPECT_TRUE(std::isnan(problem.vectors[1][1])) << method;
        EXPECT_TRUE(std::isnan(problem.element(problem.cov, 0, 1))) << method;
        EXPECT_NEAR(problem.element(problem.cov, 0, 0), clean.element(clean.cov, 0, 0), 1e-14) << method;
    }
}

// What the caller puts into accumWeight and the arrays counts: an earlier state brought back, two data sets by turns.
TEST(Blocks, StatesAreRestoredAndSwapped) {
    struct State {
        std::vector<double> vectors[vector_count], cov, cor, cp, weights;
    };
    const auto exchange = [](Problem<double>& problem, State& state) {
        for (int row = 0; row < vector_count; ++row)
            std::swap_ranges(problem.vectors[row].begin(), problem.vectors[row].end(), state.vectors[row].begin());
        std::swap_ranges(problem.cov.begin(), problem.cov.end(), state.cov.begin());
        std::swap_ranges(problem.cor.begin(), problem.cor.end(), state.cor.begin());
        std::swap_ranges(problem.cp.begin(), problem.cp.end(), state.cp.begin());
        std::swap_ranges(problem.weights.begin(), problem.weights.end(), state.weights.begin());
    };
    const auto state_of = [](const Problem<double>& problem) {
        State state{{}, problem.cov, problem.cor, problem.cp, problem.weights};
        std::copy(problem.vectors, problem.vectors + vector_count, state.vectors);
        return state;
    };
    const uint64_t requests[] = {everything, ORV_SS_COV | ORV_SS_KURTOSIS, ORV_SS_COR | ORV_SS_CENTRAL_MOMENT2,
                                 ORV_SS_RAW_SUM3 | ORV_SS_CENTRAL_SUM2 | ORV_SS_MEAN};
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean})
        for (const uint64_t request : requests) {
            Problem<double> whole(3, 200), other(3, 200), problem(3, 200);
            whole.fill(20);
            other.fill(21, 3);
            if (method == BasicUserMean) whole.mean_given = {1, 2, 0.5}, other.mean_given = {4, 2, 3};
            problem.x = whole.x, problem.mean_given = whole.mean_given;
            ASSERT_EQ(problem.make(), 0);
            State rest = state_of(problem);
            if (method == BasicUserMean) rest.vectors[0] = other.mean_given;
            for (const int32_t first : {0, 120}) {
                problem.x = whole.x;
                ASSERT_EQ(problem.run_block(request, method, first, first ? 200 : 120), 0);
                if (first) {  // a block too much, taken back
                    State before = state_of(problem);
                    ASSERT_EQ(problem.run_block(request, method, 0, 50), 0);
                    exchange(problem, before);
                }
                exchange(problem, rest);
                problem.x = other.x;
                ASSERT_EQ(problem.run_block(request, method, first, first ? 200 : 120), 0);
                exchange(problem, rest);
            }
            for (Problem<double>* of : {&whole, &other}) {
                ASSERT_EQ(of->run(request, method), 0);
                for (int row = 0; row < vector_count; ++row)
                    for (int32_t j = 0; j < 3 && (request & estimate_rows[row].bit); ++j)
                        EXPECT_NEAR(problem.vectors[row][j], of->vectors[row][j],
                                    1e-11 * (1 + std::fabs(of->vectors[row][j])))
                            << method << " request " << request << " id " << estimate_rows[row].id;
                for (size_t k = 0; k < 9; ++k) {
                    EXPECT_NEAR(problem.cov[k], of->cov[k], 1e-11) << method << " request " << request;
                    EXPECT_NEAR(problem.cor[k], of->cor[k], 1e-11) << method << " request " << request;
                }
                exchange(problem, rest);
            }
        }
}

// A mean given anew between two blocks is not looked at; the one they are about stays in the task.
TEST(Blocks, UsersMeanIsCopiedAndKept) {
    Problem<float> problem(3, 100, false), whole(3, 100, false);
    for (Problem<float>* one : {&problem, &whole}) one->fill(7), one->mean_given = {1, 2, 3};
    ASSERT_EQ(whole.run(ORV_SS_CENTRAL_MOMENT2, BasicUserMean), 0);
    EXPECT_EQ(whole.vectors[0], whole.mean_given);
    ASSERT_EQ(problem.run_block(ORV_SS_CENTRAL_MOMENT2, BasicUserMean, 0, 40), 0);
    problem.vectors[0] = {9, 9, 9};
    ASSERT_EQ(problem.run_block(ORV_SS_CENTRAL_MOMENT2, BasicUserMean, 40, 100), 0);
    for (int32_t j = 0; j < 3; ++j) {
        EXPECT_FLOAT_EQ(problem.vectors[4][j], whole.vectors[4][j]);
        EXPECT_EQ(static_cast<float*>(problem.task->ownedBuffer)[j], problem.mean_given[j]);
    }
}

// What another entry has left in the task's block is not taken for the sums so far.
TEST(Blocks, AnotherTenantIsNotMisread) {
    for (const uint64_t method : {BasicFast, BasicOnePass}) {
        Problem<double> problem(3, 100), whole(3, 100);
        for (Problem<double>* one : {&problem, &whole}) one->fill(30);
        ASSERT_EQ(whole.run(everything, method), 0);
        ASSERT_EQ(problem.run_block(everything, method, 0, 50), 0);
        std::memset(problem.task->ownedBuffer, 0x3F, problem.task->ownedBytes);
        problem.task->ownedTenant = 99;
        ASSERT_EQ(problem.run_block(everything, method, 50, 100), 0);
        for (int32_t j = 0; j < 3; ++j) EXPECT_NEAR(problem.vectors[6][j], whole.vectors[6][j], 1e-10) << method;
        for (size_t k = 0; k < 9; ++k) EXPECT_NEAR(problem.cov[k], whole.cov[k], 1e-12) << method;
    }
}

// A float counts to 2^24 and no further; an observation at a time is the worst case of rounding between calls.
TEST(Blocks, ManyOfFloats) {
    Problem<float> count(1, 1 << 24);
    count.x.assign(count.x.size(), 1);
    ASSERT_EQ(count.run(ORV_SS_MEAN, BasicFast), 0);
    count.n_word = 1;
    for (int call = 0; call < 1000; ++call) ASSERT_EQ(count.run(ORV_SS_MEAN, BasicFast), 0);
    EXPECT_EQ(count.weights[0], 16778216);

    for (const uint64_t method : {BasicFast, BasicOnePass}) {
        Problem<float> single(2, 3000), whole(2, 3000);
        for (Problem<float>* one : {&single, &whole}) one->fill(9, 30), one->weigh(10);
        const uint64_t request = ORV_SS_COV | ORV_SS_COR | ORV_SS_KURTOSIS;
        ASSERT_EQ(whole.run(request, method), 0);
        for (int32_t i = 0; i < 3000; ++i) ASSERT_EQ(single.run_block(request, method, i, i + 1), 0);
        for (size_t k = 0; k < 4; ++k) {
            EXPECT_NEAR(single.cov[k], whole.cov[k], method == BasicFast ? 1e-5 : 1e-7) << method;
            EXPECT_NEAR(single.cor[k], whole.cor[k], method == BasicFast ? 1e-5 : 1e-7) << method;
        }
        EXPECT_FLOAT_EQ(single.vectors[7][0], whole.vectors[7][0]) << method;
    }
}

// Raw moments about a mean that is far from the data; squares beyond the largest double; one observation of an odd weight.
TEST(HardData, OffTheScale) {
    Problem<double> far(1, 4);
    far.x = {1, 2, 3, 4}, far.mean_given = {1e8};
    ASSERT_EQ(far.run(everything, BasicUserMean), 0);
    EXPECT_EQ(far.vectors[1][0], 7.5);
    EXPECT_EQ(far.vectors[10][0], 10);

    for (const uint64_t method : {BasicOnePass, BasicUserMean}) {
        Problem<double> large(2, 4);
        large.x = {1e160, 1e160 + 3e150, 1e160 + 1e150, 1e160, 1, 2, 3, 4};
        if (method == BasicUserMean) large.mean_given = {1e160 + 1e150, 2};
        ASSERT_EQ(large.run(everything, method), 0);
        EXPECT_TRUE(std::isfinite(large.vectors[4][0])) << method;
        EXPECT_NEAR(large.vectors[4][0] / large.cov[0], 1, 1e-14) << method;
        EXPECT_EQ(large.vectors[1][0], infinity) << method;
    }
    for (const uint64_t method : {BasicFast, BasicOnePass, BasicUserMean}) {
        Problem<double> one(1, 1);
        one.x = {8}, one.w = {0.1}, one.mean_given = {7};
        if (method != BasicUserMean) one.mean_given.clear();
        ASSERT_EQ(one.run(everything, method), 0);
        for (const int row : {4, 7, 8, 9}) EXPECT_TRUE(std::isnan(one.vectors[row][0])) << method << " " << row;
        EXPECT_TRUE(std::isnan(one.cov[0])) << method;
    }
}

// Proportional columns are fully correlated, to the last bit; what is no cross-product does not pass for one.
TEST(HardData, CorrelationsStayWithinOne) {
    const auto within = [](double correlation) { return std::fabs(correlation) <= 1; };
    for (const uint64_t method : {BasicFast, BasicOnePass})
        for (unsigned seed = 0; seed < 50; ++seed) {
            Problem<double> problem(3, 20);
            problem.fill(seed);
            for (int32_t i = 0; i < 20; ++i)
                problem.at(i, 1) = -3 * problem.at(i, 0), problem.at(i, 2) = problem.at(i, 0) / 7;
            ASSERT_EQ(problem.run(ORV_SS_COR, method), 0);
            EXPECT_TRUE(std::all_of(problem.cor.begin(), problem.cor.end(), within)) << seed;
        }
    Problem<double> problem(2, 10);
    ASSERT_EQ(problem.make(), 0);
    problem.cp = {1, 1.5, 1.5, 1}, problem.weights = {10, 10};
    __kuzdSSEditTask(problem.task, SSIdCP, problem.cp.data());
    ASSERT_EQ(problem.run(ORV_SS_COR, BasicFromSums), 0);
    EXPECT_EQ(problem.cor[1], 1.5);
    problem.cp[1] = problem.cp[2] = std::nan("");
    ASSERT_EQ(problem.run(ORV_SS_COR, BasicFromCrossProduct), 0);
    EXPECT_TRUE(std::isnan(problem.cor[1]));
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

}  // namespace
