// With a half the degrees of freedom and y half of x, the lower tail is P(a, y) and the upper Q(a, y), the regularised
// incomplete gamma functions. Both are a leading factor D = y^a e^-y / Gamma(a + 1) times a sum that does not cancel:
//
//     P = D (1 + y / (a + 1) + y^2 / ((a + 1)(a + 2)) + ...)                                  y < a + 1
//     Q = D a / (y + 1 - a - 1 (1 - a) / (y + 3 - a - 2 (2 - a) / (y + 5 - a - ...)))         y >= a + 1
//
// and the other tail is the rest to 1, of which at least a twentieth is left.
#include "stats/chi_square.h"

#include "stats/functions.h"

#include <float.h>

namespace orv::stats {
namespace {

// Below, Gamma(a + 1) is a product that is exact but for its roundings; from there on Stirling's series has all the digits.
constexpr int32_t least_for_series = 32;  // of 2 a

double product_gamma(int32_t freedom) {
    double gamma = freedom & 1 ? 0.88622692545275801 : 1;  // Gamma(3/2), Gamma(1)
    for (int32_t twice = freedom & 1 ? 3 : 2; twice <= freedom; twice += 2) gamma *= 0.5 * twice;
    return gamma;
}

// ln Gamma(a + 1) - ln(sqrt(2 pi a) (a / e)^a).
double stirling_error(double a) {
    const double s = 1 / (a * a);
    return (1.0 / 12 - (1.0 / 360 - (1.0 / 1260 - (1.0 / 1680 - (1.0 / 1188 - 691.0 / 360360 * s) * s) * s) * s) * s) /
           a;
}

// a ln(a / y) + y - a, which is small against its terms where y is near a: with v = (a - y) / (a + y) the logarithm is
// 2 (v + v^3 / 3 + v^5 / 5 + ...), and the first term takes y - a in.
double deviance(double a, double y) {
    const double v = (a - y) / (a + y);
    if (__builtin_fabs(v) > 0.1) return a * natural_logarithm(a / y) + y - a;
    double sum = (a - y) * v, power = 2 * a * v;
    for (int32_t k = 3;; k += 2) {
        power *= v * v;
        const double next = sum + power / k;
        if (next == sum) return sum;
        sum = next;
    }
}

double leading_factor(int32_t freedom, double y) {
    const double a = 0.5 * freedom;
    if (freedom < least_for_series) return exponential(a * natural_logarithm(y) - y) / product_gamma(freedom);
    constexpr double two_pi = 6.2831853071795865;
    return exponential(-deviance(a, y) - stirling_error(a)) / __builtin_sqrt(two_pi * a);
}

double series(double a, double y) {
    double sum = 1, term = 1;
    for (double k = 1; term > sum * (DBL_EPSILON / 8); ++k) sum += term *= y / (a + k);
    return sum;
}

// From the front, by the modified algorithm of Lentz.
double fraction(double a, double y) {
    double b = y + 1 - a, c = 1 / DBL_MIN, d = 1 / b, value = d;
    for (int32_t k = 1; k < 100000; ++k) {
        const double numerator = k * (a - k);
        b += 2;
        d = 1 / (numerator * d + b);
        c = b + numerator / c;
        const double factor = c * d;
        value *= factor;
        if (__builtin_fabs(factor - 1) < DBL_EPSILON) break;
    }
    return value;
}

}  // namespace

Tails chi_square(int32_t freedom, double x) {
    const double a = 0.5 * freedom, y = 0.5 * x;
    if (!(y > 0)) return {0, 1};
    if (y > DBL_MAX) return {1, 0};
    const double factor = leading_factor(freedom, y);
    if (y < a + 1) {
        const double lower = factor * series(a, y);
        return {lower, 1 - lower};
    }
    const double upper = factor == 0 ? 0 : factor * a * fraction(a, y);
    return {1 - upper, upper};
}

// Newton's iteration for the logarithm of the smaller tail, which is nearly straight in x where that is the upper one and
// in ln x where it is the lower. A step that leaves the bounds found so far, or the normal numbers, gives way to their middle.
double chi_square_quantile(int32_t freedom, double upper) {
    if (upper < DBL_MIN) upper = DBL_MIN;
    const bool by_upper = upper <= 0.5;
    const double wanted = natural_logarithm(by_upper ? upper : 1 - upper);
    double low = 0, high = DBL_MAX, x = freedom;
    for (int32_t iteration = 0; iteration < 400; ++iteration) {
        const Tails tails = chi_square(freedom, x);
        const double tail = by_upper ? tails.upper : tails.lower;
        double next = 0;
        bool too_far = by_upper;  // where the tail is too small to tell
        if (tail >= DBL_MIN) {
            const double excess = natural_logarithm(tail) - wanted;
            too_far = (excess < 0) == by_upper;
            // x times the density of X at x is a D.
            const double step = excess * tail / (0.5 * freedom * leading_factor(freedom, 0.5 * x));
            next = by_upper ? x * (1 + step) : __builtin_fabs(step) < 30 ? x * exponential(-step) : 0;
        }
        (too_far ? high : low) = x;
        if (!(next > 0 && next >= low && next <= high))
            next = high == DBL_MAX ? 2 * x : low == 0 ? 0.01 * x : 0.5 * (low + high);
        const double move = __builtin_fabs(next - x);
        x = next;
        if (move <= 4 * DBL_EPSILON * x) break;
    }
    return x;
}

}  // namespace orv::stats
