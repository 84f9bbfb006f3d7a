// sqrt(a^2 + b^2) of floats: the kernels of sHypot and of the modulus of complex numbers.
//
// "HA": in double, where the squares are exact and nothing overflows, rounded to float last.
// "LA": in float while the larger argument lies in [2^-50, 2^60), where no square overflows and none that counts underflows.
// "EP": the same sum times the processor's approximation of its reciprocal root.
// Beyond it as "HA".
//
// An infinity makes the result infinite, beside a NaN too.
#pragma once

#include "vecmath/roots/hypot.h"

namespace orv::vecmath {

inline __m128d root_of_squares(__m128d a, __m128d b) { return simd::square_root(a * a + b * b); }

inline int32_t scalar_hypot(const float* a, const float* b, float* y) {
    int32_t status;
    if (hypot_of_special(*a, *b, y, &status)) return status;
    simd::store_one(y, _mm_cvtpd_ps(root_of_squares(simd::splat<double>(*a), simd::splat<double>(*b))));
    return is_finite(*y) ? frame::status_ok : frame::status_overflow;
}

struct HypotSHA : frame::Elementwise<float, 4, frame::Tail::masked> {
    static __m128 lanes(__m128 a, __m128 b, __m128& doubt) {
        const __m128 y = simd::narrow(root_of_squares(simd::widen_low(a), simd::widen_low(b)),
                                      root_of_squares(simd::widen_high(a), simd::widen_high(b)));
        doubt = simd::not_finite(y);
        return y;
    }
    static int32_t scalar(const float* a, const float* b, float* y) { return scalar_hypot(a, b, y); }
};

struct HypotSLA : frame::Elementwise<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 a, __m128 b) { return larger_outside<0x26800000u, 0x5D800000u>(a, b); }
    static __m128 lanes(__m128 a, __m128 b) { return simd::square_root(a * a + b * b); }
    static int32_t scalar(const float* a, const float* b, float* y) { return scalar_hypot(a, b, y); }
};

struct HypotSEP : HypotSLA {
    static __m128 lanes(__m128 a, __m128 b) {
        const __m128 s = a * a + b * b;
        return s * _mm_rsqrt_ps(s);
    }
};

}  // namespace orv::vecmath
