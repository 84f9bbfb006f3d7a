// The main paths of the distributions on 10^9 numbers each: counts in 2^16 cells of equal probability, and how far the
// distribution function of the numbers is from the exact one.
#include "distrib/deviates.h"
#include "distrib/discrete_laws.h"
#include "distrib/incomplete.h"

#include <cstdlib>
#include <numbers>

using namespace orv::test;

namespace {

double numbers_wanted() {
    const char* asked = std::getenv("ORV_TEST_NUMBERS");
    return asked ? std::atof(asked) : 1e9;
}

// ---- Continuous distributions ----------------------------------------------------------------------------------------

struct Path {
    const char* name;
    int32_t (*draw)(Stream* stream, int32_t n, double* r);
    double (*cdf)(double x);
    double from, to;      // all that is not rarer than a cell
    bool single = false;  // numbers of floats, whose spacing shows in the counts of cells
    double bend = 0;      // and in the distribution function where the density has a pole at 1
};

double normal(double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }
double exponential_cdf(double x) { return -std::expm1(-x); }
double laplace_cdf(double x) { return x < 0 ? std::exp(x) / 2 : 1 - std::exp(-x) / 2; }
double cauchy_cdf(double x) { return 0.5 + std::atan(x) / std::numbers::pi; }
double weibull_cdf(double x) { return -std::expm1(-std::pow(x, 1.5)); }
double gumbel_cdf(double x) { return -std::expm1(-std::exp(x)); }
template <int thousandths>
double gamma_of(double x) {
    return gamma_cdf(thousandths / 1000.0, x);
}
template <int p10, int q10>
double beta_of(double x) {
    return beta_cdf(p10 / 10.0, q10 / 10.0, x);
}

// Draws of both types from the arguments behind (stream, n, r).
#define DOUBLES(name, method, ...) \
    [](Stream* s, int32_t n, double* r) { return _kuzdRng##name(method, s, n, r, __VA_ARGS__); }
#define FLOATS(name, method, ...)                                                        \
    [](Stream* s, int32_t n, double* r) {                                                \
        static std::vector<float> narrow;                                                \
        narrow.resize(static_cast<size_t>(n));                                           \
        const int32_t status = _kuzsRng##name(method, s, n, narrow.data(), __VA_ARGS__); \
        std::copy(narrow.begin(), narrow.end(), r);                                      \
        return status;                                                                   \
    }

const Path paths[] = {
    {"Exponential", DOUBLES(Exponential, 0, 0, 1), exponential_cdf, 0, 50},
    {"Gaussian 0", DOUBLES(Gaussian, 0, 0, 1), normal, -9, 9},
    {"Gaussian 1", DOUBLES(Gaussian, 1, 0, 1), normal, -9, 9},
    {"Gaussian 2", DOUBLES(Gaussian, 2, 0, 1), normal, -9, 9},
    {"Gamma 2.5", DOUBLES(Gamma, 0, 2.5, 0, 1), gamma_of<2500>, 0, 60},
    {"Gamma 0.8", DOUBLES(Gamma, 0, 0.8, 0, 1), gamma_of<800>, 0, 50},
    {"Gamma 0.3", DOUBLES(Gamma, 0, 0.3, 0, 1), gamma_of<300>, 0, 50},
    {"Beta 2 3", DOUBLES(Beta, 0, 2, 3, 0, 1), beta_of<20, 30>, 0, 1},
    {"Beta 0.5 0.5", DOUBLES(Beta, 0, 0.5, 0.5, 0, 1), beta_of<5, 5>, 0, 1},
    {"Beta 0.5 2", DOUBLES(Beta, 0, 0.5, 2, 0, 1), beta_of<5, 20>, 0, 1},
    {"ChiSquare 10", DOUBLES(ChiSquare, 0, 10), [](double x) { return gamma_cdf(5, x / 2); }, 0, 100},
    {"Laplace", DOUBLES(Laplace, 0, 0, 1), laplace_cdf, -50, 50},
    {"Weibull 1.5", DOUBLES(Weibull, 0, 1.5, 0, 1), weibull_cdf, 0, 50},
    {"Cauchy", DOUBLES(Cauchy, 0, 0, 1), cauchy_cdf, -1e5, 1e5},
    {"Gumbel", DOUBLES(Gumbel, 0, 0, 1), gumbel_cdf, -50, 50},
    {"Exponential, s", FLOATS(Exponential, 0, 0, 1), exponential_cdf, 0, 50, true},
    {"Gaussian 1, s", FLOATS(Gaussian, 1, 0, 1), normal, -9, 9, true},
    {"Gaussian 2, s", FLOATS(Gaussian, 2, 0, 1), normal, -9, 9, true},
    {"Gamma 2.5, s", FLOATS(Gamma, 0, 2.5f, 0, 1), gamma_of<2500>, 0, 60, true},
    {"Gamma 0.8, s", FLOATS(Gamma, 0, 0.8f, 0, 1), gamma_of<800>, 0, 50, true},
    {"Gamma 0.3, s", FLOATS(Gamma, 0, 0.3f, 0, 1), gamma_of<300>, 0, 50, true},
    {"Beta 2 3, s", FLOATS(Beta, 0, 2, 3, 0, 1), beta_of<20, 30>, 0, 1, true},
    {"Beta 0.5 0.5, s", FLOATS(Beta, 0, 0.5f, 0.5f, 0, 1), beta_of<5, 5>, 0, 1, true, 1.4e-4},
    {"Beta 0.5 2, s", FLOATS(Beta, 0, 0.5f, 2, 0, 1), beta_of<5, 20>, 0, 1, true},
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

// The cell of a number: among those that begin in its part of the range, one of as many equal parts as there are cells.
struct CellFinder {
    std::vector<double> edges;
    std::vector<uint32_t> first;
    double scale;

    explicit CellFinder(const Path& path)
        : edges(edges_of(path)), first(cells + 1), scale(cells / (edges.back() - edges.front())) {
        for (const double edge : edges) ++first[part(edge) + 1];
        for (size_t i = 0; i < cells; ++i) first[i + 1] += first[i];
    }
    size_t part(double x) const {
        return static_cast<size_t>(std::clamp((x - edges.front()) * scale, 0.0, static_cast<double>(cells - 1)));
    }
    size_t operator()(double x) const {
        constexpr uint32_t few = 8;
        const size_t i = part(x);
        uint32_t cell = first[i];
        const uint32_t end = first[i + 1];
        if (end - cell > few)
            return static_cast<size_t>(std::upper_bound(&edges[cell], &edges[0] + end, x) - &edges[0]);
        for (uint32_t k = cell; k < end; ++k) cell += edges[k] <= x;
        return cell;
    }
};

// At fixed seeds: the bounds are passed by one right sample in 30000 (the cells) and in 10000 (the function).
TEST(ExhaustiveDistributions, CountsInCells) {
    constexpr int32_t block = 1 << 14;
    const double wanted = numbers_wanted();
    std::vector<double> r(block);
    for (const Path& path : paths) {
        const CellFinder cell_of_number(path);
        std::vector<uint32_t> counts(cells);
        OwnedStream stream(BrngSFMT19937, {31415});
        double total = 0;
        for (; total < wanted; total += block) {
            ASSERT_EQ(path.draw(stream, block, r.data()), StatusOk);
            for (const double x : r) ++counts[cell_of_number(x)];
        }
        double chi = 0, below = 0, distance = 0;
        for (size_t i = 0; i < cells; ++i) {
            const double expected = total / cells, d = counts[i] - expected;
            chi += d * d / expected;
            below += d;
            distance = std::max(distance, std::fabs(below));
        }
        const double deviations = (chi - (cells - 1)) / std::sqrt(2.0 * cells);
        if (!path.single) {
            EXPECT_LT(deviations, 4) << path.name;
        }
        EXPECT_LT((distance - path.bend * total) / std::sqrt(total), 2.23) << path.name;
        std::printf(
            "%-16s %.3g numbers: chi-square at %+.2f deviations, distribution function off by %.2g = %.2f/sqrt(n)\n",
            path.name, total, deviations, distance / total, distance / std::sqrt(total));
        std::fflush(stdout);
    }
}

// ---- Discrete distributions -------------------------------------------------------------------------------------------

// How a sample of 10^6 is off, as a number that is uniform from 0 to 1 for right ones.
double p_value(const std::vector<int64_t>& counts, const Cells& in) {
    return std::erfc(chi_square(counts, in) / std::sqrt(2.0)) / 2;
}

// Two levels: the chi-squares of samples of 10^6 have their own distribution. By tables 10^8 numbers; by rejection, in single
// precision, all that are wanted, and the distance of distribution functions. Floats bend that where they have a spacing
// above 1: numbers are rounded to it, which moves them by half a spacing, 4 of a deviation of 10^4 in one row.
TEST(ExhaustiveDistributions, ChiSquaresOfDiscreteOnes) {
    const struct {
        DiscreteLaw law;
        bool rejecting = true;
        int64_t spacing = 1;
        double bend = 0;
    } rows[] = {{poisson(PoissonRejection, 27)},
                {poisson(PoissonRejection, 40)},
                {poisson(PoissonRejection, 4000)},
                {poisson(PoissonRejection, 1e6)},
                {binomial(200, 0.4)},
                {binomial(1000, 0.03)},
                {binomial(100000, 0.25)},
                {binomial(INT32_MAX, 1e-7)},
                {hypergeometric(10000, 5000, 1000)},
                {hypergeometric(1000000, 300000, 500000)},
                {negbinomial(100, 0.02)},
                {negbinomial(1.5, 1e-3)},
                {negbinomial(3, 1e-5)},
                {poisson(PoissonRejection, 1e8), true, 8, 1.6e-4},
                {poisson(PoissonRejection, 5), false},
                {poisson(PoissonRejection, 26.9), false},
                {binomial(10, 0.3), false},
                {binomial(1000, 0.0299), false},
                {hypergeometric(50, 20, 10), false},
                {hypergeometric(1000, 390, 100), false},
                {negbinomial(5, 0.3), false},
                {negbinomial(0.3, 0.1), false}};
    constexpr int32_t sample = 1000000;
    std::vector<int32_t> r(sample);
    for (const auto& row : rows) {
        const Probabilities exact = probabilities(row.law);
        const Cells in = cells_of(exact, 2000, row.spacing);
        std::vector<int64_t> all(exact.p.size()), counts;
        const auto last = static_cast<int64_t>(all.size()) - 1;
        std::vector<uint16_t> cell(all.size());
        for (size_t i = 0; i < cell.size(); ++i)
            cell[i] = static_cast<uint16_t>(cell_of(in, exact.first + static_cast<int64_t>(i)));
        std::vector<double> p;
        OwnedStream stream(BrngSFMT19937, {27182});
        const double wanted = row.rejecting ? numbers_wanted() : numbers_wanted() / 10;
        double total = 0;
        for (; total < wanted; total += sample) {
            ASSERT_EQ(row.law.draw(stream, sample, r.data()), StatusOk) << row.law.name;
            counts.assign(in.p.size(), 0);
            for (const int32_t k : r) {
                const auto i = static_cast<size_t>(std::clamp<int64_t>(k - exact.first, 0, last));
                ++all[i];
                ++counts[cell[i]];
            }
            p.push_back(p_value(counts, in));
        }
        double below = 0, cdf = 0, distance = 0;
        for (size_t i = 0; i < all.size(); ++i) {
            below += static_cast<double>(all[i]);
            cdf += static_cast<double>(exact.p[i]);
            if ((exact.first + static_cast<int64_t>(i) + 1) % row.spacing == 0)
                distance = std::max(distance, std::fabs(below / total - cdf));
        }
        const double second = kolmogorov(p, [](double x) { return x; });
        EXPECT_LT(second, 2.23) << row.law.name;
        EXPECT_LT((distance - row.bend) * std::sqrt(total), 2.23) << row.law.name;
        std::printf(
            "%-40s %.3g numbers: p-values off by %.2f/sqrt(%zu), distribution function by %.2g = %.2f/sqrt(n)\n",
            row.law.name.c_str(), total, second, p.size(), distance, distance * std::sqrt(total));
        std::fflush(stdout);
    }
}

}  // namespace
