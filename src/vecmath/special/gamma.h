// The gamma function, in extended precision and in double.
//
// From 1 on, with n the whole part of t and k = (n - 1) mod 4, the argument goes down to t - k, which lies in [4j + 1, 4j + 2):
//
//   Gamma(t) = (t - 1) ... (t - k) Gamma(t - k),
//
// the last factor being expanded about the middle of the eighth where t - k lies. Below 1
//
//   Gamma(x) = Gamma(1 + x) / x,  x from 0;   Gamma(x) = pi / (sin(pi x) Gamma(1 - x)),  x below 0.
#pragma once

#include "frame/error_report.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/special/extended.h"

#include <type_traits>

namespace orv::vecmath {

struct GammaBlock {
    // Rows from here on hold Gamma times the second of the powers, so that they and the results stay in range.
    static constexpr uint32_t first_scaled = 30 * 8;
    double powers[3] = {1.0, 9.3326361850321888e-302, 1.0715086071862673e+301};  // 1, 2^-1000, 2^1000
    double least = -185.0;                                                       // below it results are zero
    // t - i where k is i or more, else 1: slope and constant of each of the three factors, by k.
    double factors[4][3][2] = {
        {{0, 1}, {0, 1}, {0, 1}}, {{1, -1}, {0, 1}, {0, 1}}, {{1, -1}, {1, -2}, {0, 1}}, {{1, -1}, {1, -2}, {1, -3}}};
    alignas(16) double rows[47 * 8][16] = {
#include "vecmath/tables/gamma.inc"
    };
};
inline constexpr GammaBlock gamma_block;

// Gamma in two factors, the second a power of two, for t from 1 to 189: in extended precision. In line, since an extended
// number is slow to pass through memory.
struct ScaledGamma {
    long double value;
    bool scaled;  // times 2^1000
};
[[gnu::always_inline]] inline ScaledGamma gamma_from_one(long double t) {
    constexpr const auto& K = gamma_block;
    const uint32_t eighths = static_cast<uint32_t>(static_cast<int32_t>(t * 8)), n = eighths / 8 - 1;
    const uint32_t at = n / 4 * 8 + eighths % 8;
    const auto& f = K.factors[n % 4];
    const double* row = K.rows[at];
    const long double d = t - static_cast<int32_t>(2 * eighths + 1) * 0.0625L, dd = d * d;
    // Four chains side by side: the leading parts, the rests, the other coefficients by turns.
    const long double even = row[3] + dd * (row[5] + dd * (row[7] + dd * (row[9] + dd * row[11])));
    const long double odd = row[4] + dd * (row[6] + dd * (row[8] + dd * (row[10] + dd * row[12])));
    const long double rest = row[13] + d * row[14] + dd * row[15];
    const long double sum = (row[0] + d * (row[1] + d * row[2])) + (rest + d * dd * (even + d * odd));
    const long double product = ((f[0][0] * t + f[0][1]) * (f[1][0] * t + f[1][1])) * (f[2][0] * t + f[2][1]);
    return {sum * product, at >= K.first_scaled};
}

// The coefficients of sin(pi r) / (pi r) in r^2 after the first, by the series; the sum leaves 2^-67 for r up to 1/2.
struct SineSeries {
    static constexpr long double pi = 3.14159265358979323846264338327950288L;
    long double c[12];

    constexpr SineSeries() : c{} {
        long double term = 1;
        for (int k = 1; k <= 12; ++k) c[k - 1] = term *= -pi * pi / (2 * k * (2 * k + 1));
    }
};
inline constexpr SineSeries sine_series;
// sin(pi r) / pi for r up to 1/2 in magnitude.
inline long double sine_of_half_turns(long double r) {
    constexpr const auto& c = sine_series.c;
    const long double z = r * r, w = z * z;
    const long double even = c[0] + w * (c[2] + w * (c[4] + w * (c[6] + w * (c[8] + w * c[10]))));
    const long double odd = c[1] + w * (c[3] + w * (c[5] + w * (c[7] + w * (c[9] + w * c[11]))));
    return r + r * z * (even + z * odd);
}

// 1 / Gamma of x from -185 to 0.
[[gnu::always_inline]] inline ScaledGamma inverse_gamma_below_zero(double x) {
    const long double e = x;
    const double whole = __builtin_rint(x);
    const ScaledGamma g = gamma_from_one(1 - e);
    const long double sine = sine_of_half_turns(e - whole);
    return {(static_cast<int32_t>(whole) & 1 ? -sine : sine) * g.value, g.scaled};
}

// Of finite x above -185, no pole.
[[gnu::always_inline]] inline long double gamma_extended(double x) {
    constexpr const auto& K = gamma_block;
    if (x < 0) {
        const ScaledGamma inverse = inverse_gamma_below_zero(x);
        return 1 / inverse.value * K.powers[inverse.scaled ? 1 : 0];
    }
    const long double e = x;
    const ScaledGamma g = gamma_from_one(x >= 1 ? e : 1 + e);
    return x >= 1 ? g.value * K.powers[g.scaled ? 2 : 0] : g.value / e;
}

// Any element.
template <class T>
inline int32_t gamma_scalar(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    if (x == 0) {
        *y = T{1} / at_run_time(x);
        return frame::status_singularity;
    }
    if (!is_finite(x) && x > 0) {
        *y = x;
        return frame::status_ok;
    }
    if (x < 0 && __builtin_rint(x) == x) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    if (x > 172) {
        *y = overflow<T>();
        return frame::status_overflow;
    }
    if (x < static_cast<T>(gamma_block.least)) {
        // Next above an odd number it is negative.
        const double halved = 0.5 * __builtin_floor(x);
        *y = __builtin_floor(halved) != halved ? -underflow<T>() : underflow<T>();
        return frame::status_underflow;
    }
    *y = static_cast<T>(gamma_extended(x));
    if (!is_finite(*y)) return frame::status_overflow;
    return __builtin_fabs(*y) < std::numeric_limits<T>::min() ? frame::status_underflow : frame::status_ok;
}

}  // namespace orv::vecmath
