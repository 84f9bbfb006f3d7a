// sAsin, sAcos, sAtan and their forms in multiples of pi, sAtan2 and sAtan2pi in double lanes; the arc tangents by the double
// kernels' lanes in one part (atan_d.h, atan2_d.h). "LA" and "EP" have lanes in float (inverse_float_s.cpp) and all else from here.
//
// asin w = w (1 + z (c0 + c1 z)) + w z^3 P(z), z = w^2, up to 1/2, P in float. Above, asin |x| = pi/2 - 2 asin w with w the root of
// z = (1 - |x|) / 2, which is exact. The root is one of floats, whose error to first order adds (z - w^2) / sqrt(1 - x^2) to asin w,
// 1 / sqrt(1 - x^2) being the slope of the arc, 1 / 2w sqrt(1 - w^2); a rough one is good enough. What is doubled is so after its
// rounding, which that does not change:
//
//   asin |x| = -2 (asin w - pi/4),  acos |x| = 2 asin w,  acos -|x| = -2 (asin w - pi/2).
#pragma once

#include "vecmath/exp_log/special.h"
#include "vecmath/inverse/atan2_d.h"
#include "vecmath/inverse/by_double.h"
#include "vecmath/inverse/sine_ends.h"

#include <math.h>

namespace orv::vecmath::float_by_double {

using simd::Splat;

inline constexpr uint32_t below_one = 0x3F7FFFFF;

// A sign turned over and an exponent raised, by addition.
inline __m128 with_bits(__m128 y, __m128 bits) {
    return simd::floats(simd::add_32(simd::bits_of(y), simd::bits_of(bits)));
}

struct ArcBlock {
    bool in_pi;
    double unit = in_pi ? 0x1.45f306dc9c883p-2 : 1.0;  // of radians
    // fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, 6, [|D,D,SG...|], [2^-60;1/4], absolute), and over pi: 2^-34.1
    Splat<double> in_unit{unit}, c0{in_pi ? 0x1.b2995e851c6ddp-5 : 0x1.5555555ce29f1p-3},
        c1{in_pi ? 0x1.8723854db4a65p-6 : 0x1.33331ccfa642fp-4};
    Splat<float> c2{in_pi ? 0x1.d1b21ap-7f : 0x1.6dc1acp-5f}, c3{in_pi ? 0x1.3ba7cap-7f : 0x1.efd4c6p-6f},
        c4{in_pi ? 0x1.ed89cap-8f : 0x1.839e5p-6f}, c5{in_pi ? 0x1.b234a8p-9f : 0x1.551022p-7f},
        c6{in_pi ? 0x1.456832p-7f : 0x1.ff1f7cp-6f};
    Splat<float> per_squared_unit{static_cast<float>(1 / (unit * unit))};
    Splat<double> eighth_turn{in_pi ? 0.25 : 0x1.921fb54442d18p-1}, quarter_turn{in_pi ? 0.5 : 0x1.921fb54442d18p+0};
    Splat<float> half{0.5f}, one{1.0f}, minus{-0.0f};
    simd::SplatBits<uint32_t> upper{0xFFFFF000}, twice{0x00800000}, twice_and_minus{0x80800000};
};
inline constexpr ArcBlock arc_radians{false}, arc_half_turns{true};

// The sine of the arc, x itself or the root, and the small terms of the arc.
struct Sine {
    __m128 folded, w, rest;
};
template <const ArcBlock& K>
inline Sine sine_of(__m128 x, __m128 size) {
    const __m128 folded = simd::less(K.half, size), left = K.one - size, half_left = left * K.half;
    const __m128 root = simd::square_root(half_left);
    const __m128 root_high = simd::bit_and(root, simd::floats(K.upper));
    const __m128 lost = (half_left - root_high * root_high) - (root + root_high) * (root - root_high);
    __m128 square = left * (K.one + size);
    if constexpr (K.in_pi) square = square * K.per_squared_unit;
    const __m128 z = simd::least(size * size, half_left), z2 = z * z;
    const __m128 p = (K.c2 + z * K.c3) + z2 * ((K.c4 + z * K.c5) + z2 * K.c6);
    const __m128 w = simd::select_by_sign(folded, root, x);
    return {folded, w, (w * z) * (z2 * p) + lost * simd::bit_and(_mm_rsqrt_ps(square), folded)};
}

// The leading terms of the arc of w.
template <const ArcBlock& K>
inline __m128d leading_terms(__m128d w) {
    const __m128d z = w * w;
    return w * (K.in_unit + z * (K.c0 + z * K.c1));
}
// Of a sine, less `turn` in the lanes of the mask.
template <const ArcBlock& K>
inline __m128 arc_less_turn(const Sine& s, __m128 mask, __m128d turn) {
    const __m128d low_mask = _mm_castps_pd(simd::interleave_low(mask, mask));
    const __m128d low =
        (leading_terms<K>(simd::widen_low(s.w)) - simd::bit_and(low_mask, turn)) + simd::widen_low(s.rest);
    const __m128d high_mask = _mm_castps_pd(simd::interleave_high(mask, mask));
    const __m128d high =
        (leading_terms<K>(simd::widen_high(s.w)) - simd::bit_and(high_mask, turn)) + simd::widen_high(s.rest);
    return simd::narrow(low, high);
}

template <const ArcBlock& K>
struct Asin : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::magnitude(x);
        const Sine s = sine_of<K>(size, size);
        const __m128 bits = simd::bit_and(s.folded, simd::floats(K.twice_and_minus));
        return with_bits(arc_less_turn<K>(s, s.folded, K.eighth_turn), simd::bit_xor(bits, simd::sign_of(x)));
    }
    static int32_t scalar(const float* at, float* y) {
        return sine_at_ends(*at, y, [](float x) { return std::copysign(double{K.quarter_turn}, x); });
    }
};

template <const ArcBlock& K>
struct Acos : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        const __m128 sign = simd::sign_of(x);
        const Sine s = sine_of<K>(x, simd::magnitude(x));
        // All but those next to 1.
        const __m128 turned = simd::bit_or(sign, simd::bit_and_not(s.folded, K.minus));
        const __m128 mask = simd::floats(_mm_srai_epi32(simd::bits_of(turned), 31));
        const __m128 bits = simd::bit_or(simd::bit_and(s.folded, simd::floats(K.twice)), turned);
        return with_bits(arc_less_turn<K>(s, mask, K.quarter_turn), bits);
    }
    static int32_t scalar(const float* at, float* y) {
        return sine_at_ends(*at, y, [](float x) { return x > 0 ? 0.0 : 2 * double{K.quarter_turn}; });
    }
};

template <const AtanBlock& K>
struct Atan : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return atan_lanes<K, true>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        const double quarter_turn = at_run_time(K.rows[atan_last_row][1]);
        *y = is_nan(*at) ? quiet(*at) : static_cast<float>(std::copysign(quarter_turn, *at));
        return frame::status_ok;
    }
};

template <const AtanBlock& K, const TurnBlock& Turn>
struct Atan2 : frame::Elementwise<float, 4, frame::Tail::masked> {
    // In doubt are zeros, infinities and NaNs.
    static __m128 doubt(__m128 a, __m128 b) {
        const __m128 zero = _mm_setzero_ps();
        return simd::bit_or(simd::bit_or(simd::not_finite(a), simd::not_finite(b)),
                            simd::bit_or(simd::equal(a, zero), simd::equal(b, zero)));
    }
    static __m128 lanes(__m128 a, __m128 b) {
        return by_double(a, b, [](__m128d y, __m128d x) { return atan2_lanes<K, Turn, true>(y, x); });
    }
    static int32_t scalar(const float* a_at, const float* b_at, float* y) {
        const float a = *a_at, b = *b_at;
        if (is_nan(a) || is_nan(b)) {
            *y = a + b;
            return frame::status_ok;
        }
        const float infinity = std::numeric_limits<float>::infinity();
        const float size = std::fabs(a), across = std::fabs(b);
        int eighths = 0;  // of half a turn
        if (size == infinity)
            eighths = across != infinity ? 4 : std::signbit(b) ? 6 : 2;
        else if (size == 0 || across == infinity)
            eighths = std::signbit(b) ? 8 : 0;
        else
            eighths = 4;
        const double part = at_run_time(eighths * 0.125 * double{Turn.half_high});
        *y = std::copysign(static_cast<float>(part), a);
        return frame::status_ok;
    }
};

}  // namespace orv::vecmath::float_by_double
