// sqrt(a^2 + b^2) of doubles: the kernels of dHypot and of the modulus of complex numbers.
//
// "LA" and "EP": the sum and its root, each rounded.
// "HA": with h the root of the rounded sum, h + (a^2 + b^2 - h^2) / 2h, where the difference is taken with the squares in two
// parts: a^2 = A^2 + (a + A)(a - A) with A the 26 leading bits of a, and A^2 exact.
//
// The vector path serves a larger magnitude in [2^-500, 2^500), where no square overflows and none that counts underflows.
// Beyond it both are scaled by a power of two, and the two parts of the result are scaled back and rounded at once.
//
// An infinity makes the result infinite, beside a NaN too.
#pragma once

#include "vecmath/roots/hypot.h"

#include <bit>

namespace orv::vecmath {

inline constexpr simd::SplatBits<uint64_t> keep_26{~uint64_t{0} << 27};

inline __m128d leading(__m128d x) { return simd::doubles(simd::bit_and(simd::bits_of(x), keep_26)); }

// h, and what is missing from it.
inline void compensated_root(__m128d a, __m128d b, __m128d& h, __m128d& missing) {
    const __m128d x = simd::greatest(simd::magnitude(a), simd::magnitude(b));
    const __m128d y = simd::least(simd::magnitude(a), simd::magnitude(b));
    const __m128d x_high = leading(x), y_high = leading(y);
    const __m128d x_square = x_high * x_high, y_square = y_high * y_high;
    const __m128d sum = x_square + y_square;
    const __m128d lost = (x_square - sum) + y_square;  // exact, since x is the larger
    const __m128d rest = (x + x_high) * (x - x_high) + (y + y_high) * (y - y_high);
    h = simd::square_root(sum + rest);
    const __m128d h_high = leading(h);
    const __m128d difference = ((sum - h_high * h_high) - (h + h_high) * (h - h_high)) + (lost + rest);
    missing = difference * (simd::splat(0.5) / h);
}

// (h + missing) 2^n for n of at least -1022, rounded once: a subnormal result is h cut to its last place, and the rest to
// nearest.
inline double scaled(double h, double missing, int n) {
    const double power = power_of_two_d(n);
    const double sum = h + missing;
    if (sum * power >= std::numeric_limits<double>::min()) return sum * power;
    // Between 2^(-1022 - n) and its double the last place is that of subnormal results, scaled.
    const double shifter = power_of_two_d(-1022 - n);
    const double whole = (h + shifter) - shifter;
    const double rest = (((h - whole) + missing) + 1.5 * shifter) - 1.5 * shifter;
    return (whole + rest) * power;
}

inline int32_t scalar_hypot(const double* a, const double* b, double* y) {
    int32_t status;
    if (hypot_of_special(*a, *b, y, &status)) return status;
    const __m128d x = simd::splat(*a), z = simd::splat(*b);
    if (*a == 0 && *b == 0) {
        *y = 0;
        return frame::status_ok;
    }
    const bool large = simd::first_lane(simd::greatest(simd::magnitude(x), simd::magnitude(z))) > 1;
    const __m128d scale = simd::splat(large ? 0x1p-600 : 0x1p+600);
    __m128d h, missing;
    compensated_root(x * scale, z * scale, h, missing);
    *y = scaled(simd::first_lane(h), simd::first_lane(missing), large ? 600 : -600);
    return is_finite(*y) ? frame::status_ok : frame::status_overflow;
}

template <bool High>
struct HypotD : frame::Elementwise<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d a, __m128d b) { return larger_outside<0x20B00000u, 0x5F300000u>(a, b); }
    static __m128d lanes(__m128d a, __m128d b) {
        if constexpr (High) {
            __m128d h, missing;
            compensated_root(a, b, h, missing);
            return h + missing;
        } else {
            return simd::square_root(a * a + b * b);
        }
    }
    static int32_t scalar(const double* a, const double* b, double* y) { return scalar_hypot(a, b, y); }
};

}  // namespace orv::vecmath
