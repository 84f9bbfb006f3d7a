#include "stats/robust/translated_biweight.h"

#include "stats/chi_square.h"

namespace orv::stats {
namespace {

constexpr double largest_share = 0.8;  // of M in M + c

// The rule of Gauss and Legendre on [-1, 1] with eight points.
constexpr double gauss_points[] = {0.18343464249564980, 0.52553240991632899, 0.79666647741362674, 0.96028985649753623};
constexpr double gauss_weights[] = {0.36268378337836198, 0.31370664587788729, 0.22238103445337447, 0.10122853629037626};

// The integral of psi(d) P(distance > d) over [from, to], in pieces that are short against the distance's spread, 1/sqrt 2 in
// any number of dimensions. Distances beyond sqrt q by 9 have less than 1e-17 of the probability, whatever q is.
double integral(const TranslatedBiweight& biweight, int32_t q, double from, double to) {
    const double end = __builtin_sqrt(static_cast<double>(q)) + 9;
    if (to > end) to = end;
    if (!(from < to)) return 0;
    const int32_t pieces = static_cast<int32_t>(to - from) + 1;
    const double half = (to - from) / (2 * pieces);
    double sum = 0;
    for (int32_t piece = 0; piece < pieces; ++piece)
        for (int32_t k = 0; k < 8; ++k) {
            const double d = from + half * (2 * piece + 1 + (k & 1 ? gauss_points[k / 2] : -gauss_points[k / 2]));
            sum += half * gauss_weights[k / 2] * d * biweight.weight(d) * chi_square(q, d * d).upper;
        }
    return sum;
}

// By parts, the mean of rho(d) is the integral of psi(d) P(distance > d).
TranslatedBiweight of_reach(int32_t q, double reach, double share) {
    TranslatedBiweight biweight = {reach * share, reach * (1 - share), 0, 0};
    biweight.most = biweight.middle(1);
    biweight.expected = integral(biweight, q, 0, biweight.m) + integral(biweight, q, biweight.m, reach);
    return biweight;
}

// The x in [low, high] at which the breakdown point of at(x), which falls with x, is `wanted`.
template <class At>
TranslatedBiweight solve(double wanted, double low, double high, At at) {
    const auto excess = [&](double x) {
        const TranslatedBiweight biweight = at(x);
        return biweight.expected / biweight.most - wanted;
    };
    double at_low = excess(low), at_high = excess(high), x = low;
    // The chord's zero; an end that has stayed twice counts half, or it would stay for good (the Illinois rule).
    for (int32_t iteration = 0, stayed = 0; iteration < 100; ++iteration) {
        x = low + (high - low) * (at_low / (at_low - at_high));
        const double value = excess(x);
        if (__builtin_fabs(value) < 1e-15 || !(x > low && x < high)) break;
        if (value > 0) {
            low = x;
            at_low = value;
            if (stayed == 1) at_high *= 0.5;
            stayed = 1;
        } else {
            high = x;
            at_high = value;
            if (stayed == -1) at_low *= 0.5;
            stayed = -1;
        }
    }
    return at(x);
}

}  // namespace

TranslatedBiweight translated_biweight(int32_t q, double breakdown, double rejection) {
    const double reach = __builtin_sqrt(chi_square_quantile(q, rejection));
    const auto ratio = [](const TranslatedBiweight& biweight) { return biweight.expected / biweight.most; };
    const auto by_share = [=](double share) { return of_reach(q, reach, share); };
    const auto widened = [=](double share) { return [=](double scale) { return of_reach(q, reach * scale, share); }; };
    if (ratio(by_share(0)) < breakdown) {
        double low = 0.5;
        while (ratio(widened(0)(low)) < breakdown) low *= 0.5;
        return solve(breakdown, low, 2 * low, widened(0));
    }
    if (ratio(by_share(largest_share)) > breakdown) {
        double high = 2;
        while (ratio(widened(largest_share)(high)) > breakdown) high *= 2;
        return solve(breakdown, 0.5 * high, high, widened(largest_share));
    }
    return solve(breakdown, 0, largest_share, by_share);
}

}  // namespace orv::stats
