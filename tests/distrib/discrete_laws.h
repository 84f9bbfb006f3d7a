// Exact probabilities of the discrete distributions, and how far a sample is from them.
#pragma once

#include <orv/random.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace orv::test {

// A distribution by the ratios f(k) / f(k - 1) of its probabilities, from a mode on.
struct DiscreteLaw {
    std::string name;
    std::function<int32_t(Stream*, int32_t, int32_t*)> draw;
    int64_t low, mode, high;  // of the support
    std::function<long double(long double)> ratio;
};

// The probabilities of first, first + 1, ... outside which there are less than 1e-22.
struct Probabilities {
    int64_t first;
    std::vector<long double> p;
};
inline Probabilities probabilities(const DiscreteLaw& law) {
    constexpr long double least = 1e-24L;
    std::vector<long double> below, above{1};
    long double f = 1, sum = 1;
    for (int64_t k = law.mode; k > law.low && f > least; --k) {
        f /= law.ratio(static_cast<long double>(k));
        below.push_back(f);
        sum += f;
    }
    f = 1;
    for (int64_t k = law.mode + 1; k <= law.high && f > least; ++k) {
        f *= law.ratio(static_cast<long double>(k));
        above.push_back(f);
        sum += f;
    }
    Probabilities result = {law.mode - static_cast<int64_t>(below.size()), {below.rbegin(), below.rend()}};
    result.p.insert(result.p.end(), above.begin(), above.end());
    for (long double& p : result.p) p /= sum;
    return result;
}

// Cells of whole integers, each of probability 1 / cells or more; edges are multiples of `spacing`, and the first and the
// last cell go on without end.
struct Cells {
    std::vector<int64_t> edges;
    std::vector<double> p;
};
inline Cells cells_of(const Probabilities& exact, size_t cells, int64_t spacing) {
    Cells result;
    long double in_cell = 0, left = 1;
    for (size_t i = 0; i < exact.p.size(); ++i) {
        in_cell += exact.p[i];
        const int64_t next = exact.first + static_cast<int64_t>(i) + 1;
        if (in_cell * static_cast<long double>(cells) < 1 || next % spacing != 0) continue;
        if ((left - in_cell) * static_cast<long double>(cells) < 1) break;
        result.edges.push_back(next);
        result.p.push_back(static_cast<double>(in_cell));
        left -= in_cell;
        in_cell = 0;
    }
    result.p.push_back(static_cast<double>(left));
    return result;
}

inline size_t cell_of(const Cells& cells, int64_t k) {
    return static_cast<size_t>(std::upper_bound(cells.edges.begin(), cells.edges.end(), k) - cells.edges.begin());
}

// The chi-square statistic as a standard normal number, by the cube root of Wilson and Hilferty.
inline double chi_square(const std::vector<int64_t>& counts, const Cells& cells) {
    double n = 0, sum = 0;
    for (const int64_t c : counts) n += static_cast<double>(c);
    for (size_t i = 0; i < counts.size(); ++i) {
        const double expected = n * cells.p[i], d = static_cast<double>(counts[i]) - expected;
        sum += d * d / expected;
    }
    const double degrees = static_cast<double>(counts.size() - 1);
    if (degrees < 1) return 0;
    return (std::cbrt(sum / degrees) - (1 - 2 / (9 * degrees))) / std::sqrt(2 / (9 * degrees));
}

inline DiscreteLaw binomial(int32_t ntrial, double p) {
    const long double odds = static_cast<long double>(p) / (1 - static_cast<long double>(p)), n = ntrial;
    return {"Binomial " + std::to_string(ntrial) + " " + std::to_string(p),
            [=](Stream* s, int32_t count, int32_t* r) { return _kuziRngBinomial(0, s, count, r, ntrial, p); },
            0,
            std::min<int64_t>(ntrial, static_cast<int64_t>((n + 1) * static_cast<long double>(p))),
            ntrial,
            [=](long double k) { return (n - k + 1) / k * odds; }};
}

inline DiscreteLaw poisson(int32_t method, double lambda) {
    return {"Poisson " + std::to_string(method) + " " + std::to_string(lambda),
            [=](Stream* s, int32_t n, int32_t* r) { return _kuziRngPoisson(method, s, n, r, lambda); },
            0,
            static_cast<int64_t>(lambda),
            INT32_MAX,
            [=](long double k) { return static_cast<long double>(lambda) / k; }};
}

inline DiscreteLaw hypergeometric(int32_t l, int32_t s, int32_t m) {
    const long double marked = m, drawn = s, others = static_cast<long double>(l) - m;
    const int64_t low = std::max<int64_t>(0, int64_t{s} + m - l), high = std::min(s, m);
    const auto mode = static_cast<int64_t>((marked + 1) * (drawn + 1) / (static_cast<long double>(l) + 2));
    return {"Hypergeometric " + std::to_string(l) + " " + std::to_string(s) + " " + std::to_string(m),
            [=](Stream* stream, int32_t n, int32_t* r) { return _kuziRngHypergeometric(0, stream, n, r, l, s, m); },
            low,
            std::clamp(mode, low, high),
            high,
            [=](long double k) { return (marked - k + 1) * (drawn - k + 1) / (k * (others - drawn + k)); }};
}

inline DiscreteLaw negbinomial(double a, double p) {
    const long double q = 1 - static_cast<long double>(p), shape = a;
    const auto peak = static_cast<int64_t>((shape - 1) * q / static_cast<long double>(p));
    return {"Negbinomial " + std::to_string(a) + " " + std::to_string(p),
            [=](Stream* s, int32_t n, int32_t* r) { return _kuziRngNegbinomial(0, s, n, r, a, p); },
            0,
            std::max<int64_t>(0, peak),
            INT32_MAX,
            [=](long double k) { return (shape + k - 1) * q / k; }};
}

}  // namespace orv::test
