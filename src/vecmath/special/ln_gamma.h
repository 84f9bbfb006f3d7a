// ln|Gamma|.
//
//   from 2^-5 to 128:  (x - 1) (x - 2) R(x), R expanded: exact about the zeros 1 and 2;
//   beyond:            Stirling's series, (x - 1/2) (ln x - 1) + (ln(2 pi) - 1) / 2 + 1 / (12 x) - 1 / (360 x^3) + ...;
//   next to zero:      ln Gamma(1 + x) - ln x;
//   below:             the logarithm of |Gamma|, by reflection; but about its zeros, of which there are two between negative
//                      whole numbers from -2 on, an expansion in the distance from the zero, which is known in parts.
//                      Beyond -17 no number lies so near to one that relative accuracy would suffer.
#pragma once

#include "vecmath/special/expansions.h"
#include "vecmath/special/gamma.h"

namespace orv::vecmath {

struct LnGammaBlock {
    static constexpr int first = -5;  // a power of two, as that of the end
    static constexpr double end = 128.0;
    alignas(16) double rows[12 * 32][12] = {
#include "vecmath/tables/ln_gamma.inc"
    };
    static constexpr int last_with_zeros = 16;
    double zeros[30][16] = {
#include "vecmath/tables/ln_gamma_zeros.inc"
    };
};
inline constexpr LnGammaBlock ln_gamma_block;

// For x from 2^-5 to 128.
[[gnu::always_inline]] inline long double ln_gamma_expanded(long double x) {
    constexpr const auto& K = ln_gamma_block;
    const __m128d t = _mm_set_sd(static_cast<double>(x));
    const uint32_t at = static_cast<uint32_t>(simd::word<0>(_mm_srli_epi64(simd::bits_of(t), 47)));
    const double* row = K.rows[at - (uint32_t{1023 + K.first} << 5)];
    const long double d = x - simd::first_lane(expansion_centre(t)), dd = d * d;
    // Three chains side by side: the leading terms, the other coefficients by turns.
    const long double even = row[4] + dd * (row[6] + dd * (row[8] + dd * row[10]));
    const long double odd = row[5] + dd * (row[7] + dd * row[9]);
    const long double rest = row[1] + d * row[11] + dd * row[3];
    const long double sum = (row[0] + d * row[2]) + (rest + d * dd * (even + d * odd));
    return (x - 1) * (x - 2) * sum + 0;  // +0 at both zeros
}
inline long double ln_gamma_stirling(long double x) {
    const long double v = 1 / x, z = v * v;
    const long double series = v * (1 / 12.0L - z * (1 / 360.0L - z * (1 / 1260.0L)));
    return (x - 0.5L) * (x87_ln(x) - 1) + (0.418938533204672741780329736405617640L + series);
}
[[gnu::noinline]] inline long double ln_gamma_below_zero(double x) {
    constexpr const auto& K = ln_gamma_block;
    if (x < -170) {
        const long double sine = sine_of_half_turns(x - __builtin_rint(x));
        return -x87_ln(__builtin_fabsl(sine)) - ln_gamma_stirling(1 - static_cast<long double>(x));
    }
    const int whole = static_cast<int>(-x);
    if (whole >= 2 && whole <= K.last_with_zeros) {
        const double* row = K.zeros[2 * (whole - 2) + (-x - whole < 0.5 ? 0 : 1)];
        const long double d = (static_cast<long double>(x) - row[0]) - (static_cast<long double>(row[1]) + row[2]);
        if (__builtin_fabsl(d * row[3]) < 0.03L) {
            long double sum = row[15];
            for (int k = 14; k > 4; --k) sum = sum * d + row[k];
            return d * (row[3] + (row[4] + d * sum));
        }
    }
    const ScaledGamma inverse = inverse_gamma_below_zero(x);
    return -x87_ln(__builtin_fabsl(inverse.value) * gamma_block.powers[inverse.scaled ? 2 : 0]);
}

// Of finite x, no pole.
[[gnu::always_inline]] inline long double ln_gamma_extended(double x) {
    constexpr const auto& K = ln_gamma_block;
    if (x < 0) return ln_gamma_below_zero(x);
    if (x >= K.end) return ln_gamma_stirling(x);
    if (x >= power_of_two_d(K.first)) return ln_gamma_expanded(x);
    return ln_gamma_expanded(1 + static_cast<long double>(x)) - x87_ln(x);
}

// Any element.
template <class T>
inline int32_t ln_gamma_scalar(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    if (!is_finite(x)) {
        *y = std::numeric_limits<T>::infinity();
        return frame::status_ok;
    }
    if (x <= 0 && __builtin_rint(x) == x) {
        *y = -minus_infinity_at_pole<T>();
        return frame::status_singularity;
    }
    *y = static_cast<T>(ln_gamma_extended(x));
    return is_finite(*y) ? frame::status_ok : frame::status_overflow;
}

}  // namespace orv::vecmath
