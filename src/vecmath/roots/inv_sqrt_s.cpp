// sInvSqrt: 1 / sqrt(x).
//
// The processor's approximation y0, 1.5 * 2^-12 relative at most, is cut to so few bits that e = 1 - x y0^2 comes out (nearly)
// exact; then 1 / sqrt(x) = y0 (1 - e)^(-1/2) = y0 + y0 e p(e), whose last sum is the only rounding that counts.
//
// "LA": y0 of 12 bits, so that y0^2 is exact and e has one rounding; p = 1/2 + 3/8 e.
// "HA": y0 of 8 bits, and the 8 leading bits of x apart from the others, so that the part of e next to 1 is exact.
// "EP": y0 itself.
//
// The approximation is right for normal arguments; up to 2^125 y0^2 is normal too. The others are computed in double.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/roots/normal.h"

#include <cmath>

namespace {

using namespace orv;
using simd::bits_of;
using simd::floats;
using simd::Splat;
using simd::SplatBits;

struct Constants {
    Splat<float> one{1.0f}, half{0.5f}, three_eighths{0.375f};
    // fpminimax(expm1(-log1p(-x) / 2) / x, 2, [|SG...|], [-0.0086; 0.0086], absolute): 2^-31.3 of the result
    Splat<float> p1, p2;
    SplatBits<uint32_t> round_to_12{0x00000800}, keep_12{0xFFFFF000}, round_to_8{0x00008000}, keep_8{0xFFFF0000};
    SplatBits<uint32_t> bottom{0x80800000}, last{0x7E000000 - 0x80800000 - 1};
};
constexpr Constants K{.p1 = 0x1.8003fap-2f, .p2 = 0x1.40046p-2f};

struct InvSqrt : frame::OneInput<float, 8, frame::Tail::masked> {
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        *y = static_cast<float>(1.0 / std::sqrt(static_cast<double>(x)));
        if (x == 0) {
            *y = 1.0f / vecmath::at_run_time(x);
            return frame::status_singularity;
        }
        return *y == *y || vecmath::is_nan(x) ? frame::status_ok : frame::status_domain;
    }
};

struct InvSqrtLA : InvSqrt {
    // Outside [2^-126, 2^125), by bits moved to the bottom of the signed range.
    static __m128 doubt(__m128 x) { return floats(simd::greater_32(simd::subtract_32(bits_of(x), K.bottom), K.last)); }
    static __m128 lanes(__m128 x) {
        const __m128i near = simd::add_32(bits_of(_mm_rsqrt_ps(x)), K.round_to_12);
        const __m128 y = floats(simd::bit_and(near, K.keep_12));
        const __m128 e = K.one - x * (y * y);
        return y + y * (e * (K.half + e * K.three_eighths));
    }
};

struct InvSqrtHA : InvSqrt {
    static __m128 doubt(__m128 x) { return vecmath::not_positive_normal(x); }
    static __m128 lanes(__m128 x) {
        const __m128i near = simd::add_32(bits_of(_mm_rsqrt_ps(x)), K.round_to_8);
        const __m128 y = floats(simd::bit_and(near, K.keep_8));
        const __m128 x_high = floats(simd::bit_and(bits_of(x), K.keep_8));
        const __m128 e = (K.one - x_high * y * y) - (x - x_high) * y * y;
        return y + y * (e * (K.half + e * (K.p1 + e * K.p2)));
    }
};

struct InvSqrtEP : InvSqrt {
    static __m128 doubt(__m128 x) { return vecmath::not_positive_normal(x); }
    static __m128 lanes(__m128 x) { return _mm_rsqrt_ps(x); }
};

}  // namespace

ORV_ONE_INPUT(sInvSqrt, la, InvSqrtLA)
ORV_ONE_INPUT(sInvSqrt, ha, InvSqrtHA)
ORV_ONE_INPUT(sInvSqrt, ep, InvSqrtEP)
