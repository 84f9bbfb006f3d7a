// asin and acos of doubles in one part, "LA", in radians or multiples of pi: the reduction of asin_d.h,
//
//   asin w = w + w z P(z), z = w^2, up to 1/2; above, pi/2 - asin |x| from w = sqrt(2 (1 - |x|)), z = w^2 / 4,
//
// where 1 - |x| is exact. A turn has two parts: the first of few digits, the second near the middle of all w, so that its
// difference from w is exact but next to w = 1. Three roundings make up to 1.7 ulp next to 1/2. In
// multiples of pi the leading halves of w and 1/pi have an exact product.
#pragma once

#include "vecmath/inverse/asin_d.h"

namespace orv::vecmath {

struct AsinLightBlock {
    bool pi;
    // fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, 12, [|D...|], [2^-60;1/4], absolute): 2^-58.2 of the arc sine; and over pi
    simd::Splat<double> c[13];
    simd::Splat<double> quarter_first{pi ? 0.5 : 0x1.14p+0}, quarter_second{0x1.f87ed5110b461p-2};
    simd::Splat<double> half_first{pi ? 1.0 : 0x1.14p+1}, half_second{0x1.f87ed5110b461p-1};
    simd::Splat<double> half{0.5}, one{1.0}, minus{-0.0};
    simd::Splat<double> inv_pi_high{0x1.45f306p-2}, inv_pi_low{0x1.b9391054a7f0ap-27};
    simd::SplatBits<uint64_t> upper{0xFFFFFFFFF8000000};
};
inline constexpr AsinLightBlock asin_light{
    false,
    {0x1.5555555555556p-3, 0x1.3333333332da2p-4, 0x1.6db6db6e48603p-5, 0x1.f1c71c11deeap-6, 0x1.6e8bb37521acap-6,
     0x1.1c4d112ced722p-6, 0x1.c9d30ac3ce59bp-7, 0x1.78010220135eap-7, 0x1.532a9148f185fp-7, 0x1.5e2915e074c7dp-8,
     0x1.220541f36f9ap-6, -0x1.f58c57c0bb66bp-7, 0x1.dc181d63e5323p-6}};
inline constexpr AsinLightBlock asinpi_light{
    true,
    {0x1.b2995e7b7b604p-5, 0x1.8723a1d588459p-6, 0x1.d1a452f2aa9e5p-7, 0x1.3ce52a0130daep-7, 0x1.d2b35234d9cb6p-8,
     0x1.69fbd06473c4cp-8, 0x1.2374b92718b96p-8, 0x1.ded07b3edc71cp-9, 0x1.af6ba7fbcc095p-9, 0x1.c1226509f5ca7p-10,
     0x1.6f319bde25ab7p-8, -0x1.3c4831a21707cp-8, 0x1.2e206e50b146fp-7}};

template <const AsinLightBlock& K>
inline __m128d asin_light_polynomial(__m128d z) {
    const __m128d z2 = z * z, z4 = z2 * z2;
    const __m128d low = (K.c[0] + z * K.c[1]) + z2 * (K.c[2] + z * K.c[3]);
    const __m128d middle = (K.c[4] + z * K.c[5]) + z2 * (K.c[6] + z * K.c[7]);
    const __m128d high = (K.c[8] + z * K.c[9]) + z2 * ((K.c[10] + z * K.c[11]) + z2 * K.c[12]);
    return low + z4 * (middle + z4 * high);
}

// w of |x| with the sign bits `unfolded` or `folded`, by which it is.
struct LightSine {
    __m128d folded, w, z;
};
template <const AsinLightBlock& K>
inline LightSine light_sine(__m128d x, __m128d sign_unfolded, __m128d sign_folded) {
    const __m128d size = simd::magnitude(x), left = K.one - size, folded = simd::less(K.half, size);
    const __m128d root = simd::bit_or(_mm_sqrt_pd(left + left), sign_folded);
    return {folded, simd::select(folded, root, simd::bit_or(size, sign_unfolded)),
            simd::least(size * size, left * K.half)};
}

// A turn and the angle of w.
template <const AsinLightBlock& K>
inline __m128d light_angle(__m128d first, __m128d second, __m128d w, __m128d z) {
    const __m128d p = asin_light_polynomial<K>(z);
    if constexpr (!K.pi) return first + ((second + w) + (w * z) * p);
    const __m128d leading = simd::bit_and(w, simd::doubles(K.upper));
    const __m128d low = ((w - leading) * K.inv_pi_high + w * K.inv_pi_low) + w * (z * p);
    return (first + leading * K.inv_pi_high) + low;
}

template <const AsinLightBlock& K>
inline __m128d asin_light_lanes(__m128d x) {
    const LightSine s = light_sine<K>(x, _mm_setzero_pd(), K.minus);
    const __m128d y =
        light_angle<K>(simd::bit_and(s.folded, K.quarter_first), simd::bit_and(s.folded, K.quarter_second), s.w, s.z);
    return simd::bit_xor(y, simd::sign_of(x));
}

// pi/2 - asin x up to 1/2; above the complement itself, or pi less that for a negative x.
template <const AsinLightBlock& K>
inline __m128d acos_light_lanes(__m128d x) {
    const __m128d sign = simd::sign_of(x), behind = simd::less(x, _mm_setzero_pd());
    const LightSine s = light_sine<K>(x, simd::bit_xor(sign, K.minus), sign);
    const __m128d first = simd::select(s.folded, simd::bit_and(behind, K.half_first), K.quarter_first);
    const __m128d second = simd::select(s.folded, simd::bit_and(behind, K.half_second), K.quarter_second);
    return light_angle<K>(first, second, s.w, s.z);
}

}  // namespace orv::vecmath
