// What expectation-maximisation comes to, where that has a closed form.
#include "stats/missing/normal_model.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orv::stats;

struct Model {
    stats_test::Problem<double>& problem;
    Data data;
    Scratch room;
    Incomplete incomplete;
    Sums sums;
    Fit fit;

    explicit Model(stats_test::Problem<double>& of)
        : problem(of), data(made(of)), room(incomplete_bytes(data) + sums_bytes(data) + fit_bytes(data)) {
        EXPECT_EQ(take_incomplete<double>(data, nullptr, room, incomplete), 0);
        sums = take_sums(incomplete.sample, room);
        fit = take_fit(incomplete.sample, room);
        for (int32_t j = 0; j < data.p; ++j) {
            fit.centre[j] = 0;
            for (int32_t i = 0; i < data.p; ++i) fit.cov[j * data.p + i] = i == j;
        }
    }
    static Data made(stats_test::Problem<double>& of) {
        of.make();
        Data data;
        EXPECT_EQ(read_components(of.task, data), 0);
        EXPECT_EQ(read_observations(of.task, data), 0);
        return data;
    }
    int32_t run(const Prior& prior, int32_t iterations) {
        std::vector<double> z(incomplete.sample.z, incomplete.sample.z + size_t(data.p) * data.n);
        return maximise(incomplete, sums, prior, iterations, 1e-13, z.data(), fit);
    }
    double mean(int32_t j) const { return incomplete.sample.origin[j] + incomplete.sample.unit[j] * fit.centre[j]; }
    double cov(int32_t i, int32_t j) const {
        return incomplete.sample.unit[i] * fit.cov[j * data.p + i] * incomplete.sample.unit[j];
    }
};

// Of two components the second is missing in some observations: its regression on the first is that of the complete ones, and the
// first has its own mean and variance (T. W. Anderson, Journal of the American Statistical Association 52, 1957).
TEST(NormalModel, LikelihoodOfAMonotonePattern) {
    stats_test::Problem<double> problem(2, 120);
    problem.fill(3);
    for (int32_t i = 0; i < problem.n; ++i)
        if (problem.at(i, 0) > 1.5 && i % 3 != 0) problem.at(i, 1) = std::numeric_limits<double>::quiet_NaN();
    long double all = 0, square = 0, n = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;
    for (int32_t i = 0; i < problem.n; ++i) {
        const long double a = problem.at(i, 0), b = problem.at(i, 1);
        all += a / problem.n, square += a * a / problem.n;
        if (b == b) ++n, x += a, y += b, xx += a * a, xy += a * b, yy += b * b;
    }
    x /= n, y /= n, xx = xx / n - x * x, xy = xy / n - x * y, yy = yy / n - y * y;
    const long double slope = xy / xx, spread = square - all * all;

    std::vector<double> zeros(4);
    const Prior none = {false, 0, -1, zeros.data(), zeros.data()};
    Model model(problem);
    ASSERT_EQ(model.run(none, 2000), 0);
    EXPECT_NEAR(model.mean(0), static_cast<double>(all), 1e-10);
    EXPECT_NEAR(model.mean(1), static_cast<double>(y + slope * (all - x)), 1e-10);
    EXPECT_NEAR(model.cov(0, 0), static_cast<double>(spread), 1e-10);
    EXPECT_NEAR(model.cov(0, 1), static_cast<double>(slope * spread), 1e-10);
    EXPECT_NEAR(model.cov(1, 1), static_cast<double>(yy + slope * slope * (spread - xx)), 1e-10);
}

// With all values there, the mode of the posterior distribution is reached in a step.
TEST(NormalModel, ModeUnderAPrior) {
    stats_test::Problem<double> problem(2, 30);
    problem.fill(5);
    Model model(problem);
    const Sample& sample = model.incomplete.sample;
    std::vector<double> mean = {0.5, -0.25}, scale = {3, 1, 1, 2};
    const double tau = 4, k = 7, n = 30;
    ASSERT_EQ(model.run({true, tau, k, mean.data(), scale.data()}, 2), 0);
    stats_test::Reference<double> reference(problem);
    for (int32_t j = 0; j < 2; ++j) {
        const auto off = [&](int32_t c) {
            return (static_cast<double>(reference.centre[c]) - sample.origin[c]) / sample.unit[c] - mean[c];
        };
        EXPECT_NEAR(model.fit.centre[j], mean[j] + n * off(j) / (n + tau), 1e-12);
        for (int32_t i = 0; i < 2; ++i) {
            const double s = static_cast<double>(reference.cross[j * 2 + i]) / sample.unit[i] / sample.unit[j];
            EXPECT_NEAR(model.fit.cov[j * 2 + i],
                        (s + scale[j * 2 + i] + n * tau / (n + tau) * off(i) * off(j)) / (n + k + 4), 1e-12);
        }
    }
}

}  // namespace
