// 10^9 numbers of each main path by counts in 2^16 cells of equal probability.
#include "distrib/deviates.h"
#include "distrib/incomplete.h"

#include <cstdlib>
#include <functional>

using namespace orv::test;

namespace {

struct Path {
    const char* name;
    int32_t (*draw)(Stream* stream, int32_t n, double* r);
    double (*cdf)(double x);
    double from, to;  // all that is not rarer than a cell
};

const Path paths[] = {
    {"Exponential", [](Stream* s, int32_t n, double* r) { return _kuzdRngExponential(0, s, n, r, 0, 1); },
     [](double x) { return -std::expm1(-x); }, 0, 50},
    {"Gaussian 0", [](Stream* s, int32_t n, double* r) { return _kuzdRngGaussian(0, s, n, r, 0, 1); },
     [](double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }, -9, 9},
    {"Gaussian 1", [](Stream* s, int32_t n, double* r) { return _kuzdRngGaussian(1, s, n, r, 0, 1); },
     [](double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }, -9, 9},
    {"Gaussian 2", [](Stream* s, int32_t n, double* r) { return _kuzdRngGaussian(2, s, n, r, 0, 1); },
     [](double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }, -9, 9},
    {"Gamma 2.5", [](Stream* s, int32_t n, double* r) { return _kuzdRngGamma(0, s, n, r, 2.5, 0, 1); },
     [](double x) { return gamma_cdf(2.5, x); }, 0, 60},
    {"Gamma 0.8", [](Stream* s, int32_t n, double* r) { return _kuzdRngGamma(0, s, n, r, 0.8, 0, 1); },
     [](double x) { return gamma_cdf(0.8, x); }, 0, 50},
    {"Gamma 0.3", [](Stream* s, int32_t n, double* r) { return _kuzdRngGamma(0, s, n, r, 0.3, 0, 1); },
     [](double x) { return gamma_cdf(0.3, x); }, 0, 50},
    {"Beta 2 3", [](Stream* s, int32_t n, double* r) { return _kuzdRngBeta(0, s, n, r, 2, 3, 0, 1); },
     [](double x) { return beta_cdf(2, 3, x); }, 0, 1},
    {"Beta 0.5 0.5", [](Stream* s, int32_t n, double* r) { return _kuzdRngBeta(0, s, n, r, 0.5, 0.5, 0, 1); },
     [](double x) { return beta_cdf(0.5, 0.5, x); }, 0, 1},
    {"Beta 0.5 2", [](Stream* s, int32_t n, double* r) { return _kuzdRngBeta(0, s, n, r, 0.5, 2, 0, 1); },
     [](double x) { return beta_cdf(0.5, 2, x); }, 0, 1},
    {"ChiSquare 10", [](Stream* s, int32_t n, double* r) { return _kuzdRngChiSquare(0, s, n, r, 10); },
     [](double x) { return gamma_cdf(5, x / 2); }, 0, 100},
};

constexpr size_t cells = 1 << 16;

// The upper edges of the cells, the last of which has none, by halving.
std::vector<double> edges_of(const Path& path) {
    std::vector<double> edges(cells - 1);
    double low = path.from;
    for (size_t i = 0; i < edges.size(); ++i) {
        const double p = static_cast<double>(i + 1) / cells;
        double high = path.to;
        for (int step = 0; step < 200; ++step) {
            // Near zero by the exponent, since the first cells of small shapes are small.
            const double middle = low > 0 && high > 4 * low ? std::sqrt(low) * std::sqrt(high)
                                  : low == 0 && high > 0    ? (high > 1e-30 ? high / 1024 : high / 2)
                                                            : low + (high - low) / 2;
            if (middle <= low || middle >= high) break;
            (path.cdf(middle) < p ? low : high) = middle;
        }
        edges[i] = low = high;
    }
    return edges;
}

TEST(ExhaustiveDistributions, CountsInCells) {
    const char* asked = std::getenv("ORV_TEST_NUMBERS");
    const double wanted = asked ? std::atof(asked) : 1e9;
    constexpr int32_t block = 1 << 14;
    std::vector<double> r(block);
    for (const Path& path : paths) {
        const std::vector<double> edges = edges_of(path);
        std::vector<double> counts(cells);
        OwnedStream stream(BrngSFMT19937, {31415});
        double total = 0;
        for (; total < wanted; total += block) {
            ASSERT_EQ(path.draw(stream, block, r.data()), StatusOk);
            for (const double x : r)
                ++counts[static_cast<size_t>(std::upper_bound(edges.begin(), edges.end(), x) - edges.begin())];
        }
        double chi = 0;
        for (const double count : counts) chi += (count - total / cells) * (count - total / cells) / (total / cells);
        // The mean of chi-square is the degrees of freedom, its variance twice that: 1 sample in 30000 is above.
        EXPECT_LT(chi, cells - 1 + 4 * std::sqrt(2.0 * cells)) << path.name;
        ::testing::Test::RecordProperty(path.name, std::to_string(chi));
        std::printf("%-14s chi-square %.0f\n", path.name, chi);
        std::fflush(stdout);
    }
}

}  // namespace
