// asin and acos of doubles in one part, "LA", in radians or multiples of pi: the reduction
//
//   asin w = w + w z P(z), z = w^2, up to 1/2; above, pi/2 - asin |x| from w = sqrt(2 (1 - |x|)), z = w^2 / 4,
//
// where 1 - |x| is exact. A turn has two parts: the first of few digits, the second near the middle of all w, so that its
// difference from w is exact but next to w = 1. Three roundings make up to 1.8 ulp next to 1/2. In
// multiples of pi that difference is in radians.
#pragma once

#include "simd/constants.h"

namespace orv::vecmath {

struct AsinLightBlock {
    bool pi;
    // fpminimax(asin(x), [|3,5,...,25|], [|D...|], [2^-20;1/2], floating, relative, x): 2^-55.9; and over pi
    simd::Splat<double> c[12];
    // Of multiples of pi 0x1.bcp-3 and what that lacks of 1/2 over the leading part of 1/pi, which is within 2^-60 of a double.
    double quarter_few = pi ? 0x1.bcp-3 : 0x1.14p+0, quarter_more = pi ? 0x1.c787eb5753b15p-1 : 0x1.f87ed5110b461p-2;
    simd::Splat<double> quarter_first{quarter_few}, quarter_second{quarter_more};
    simd::Splat<double> minus_first{-quarter_few}, minus_second{-quarter_more};
    simd::Splat<double> half_first{2 * quarter_few}, half_second{2 * quarter_more};
    simd::Splat<double> half{0.5}, minus_half{-0.5}, one{1.0}, minus{-0.0};
    simd::Splat<double> inv_pi{0x1.45f306dc9c883p-2}, inv_pi_rest{-0x1.6b01ec5417056p-56};
};
inline constexpr AsinLightBlock asin_light{
    false,
    {0x1.555555555539p-3, 0x1.333333336e80fp-4, 0x1.6db6db427a4f8p-5, 0x1.f1c72c38fb343p-6, 0x1.6e89f4401976ep-6,
     0x1.1c6be1a687c84p-6, 0x1.c6fdc1aa9c8dp-7, 0x1.8ec2fca64883fp-7, 0x1.abcf5cd526e16p-8, 0x1.3ff4a992a67d3p-6,
     -0x1.09d32836e33cap-6, 0x1.056d6c826480fp-5}};
inline constexpr AsinLightBlock asinpi_light{
    true,
    {0x1.b2995e7b7b3c3p-5, 0x1.8723a1d5d4169p-6, 0x1.d1a452bafeff5p-7, 0x1.3ce534446c317p-7, 0x1.d2b11a076af3cp-8,
     0x1.6a22f52e4743p-8, 0x1.21a81fb088a7ap-8, 0x1.fbb71f0b6315dp-9, 0x1.105e17a15ee35p-9, 0x1.975c5ec5ecc1fp-8,
     -0x1.526e17aff9661p-8, 0x1.4cd9b999c7367p-7}};

template <const AsinLightBlock& K>
inline __m128d asin_light_polynomial(__m128d z) {
    const __m128d z2 = z * z, z4 = z2 * z2;
    const __m128d low = (K.c[0] + z * K.c[1]) + z2 * (K.c[2] + z * K.c[3]);
    const __m128d middle = (K.c[4] + z * K.c[5]) + z2 * (K.c[6] + z * K.c[7]);
    const __m128d high = (K.c[8] + z * K.c[9]) + z2 * (K.c[10] + z * K.c[11]);
    return low + z4 * (middle + z4 * high);
}

// -|x|, whether it is beyond -1/2, the root that is used there, and z.
struct LightSine {
    __m128d below, folded, root, z;
};
template <const auto& K>
inline LightSine light_sine(__m128d x) {
    const __m128d below = simd::bit_or(x, K.minus), left = K.one + below;
    return {below, simd::less(below, K.minus_half), _mm_sqrt_pd(left + left),
            simd::least(below * below, left * K.half)};
}

// A turn and the angle of w.
template <const AsinLightBlock& K>
inline __m128d light_angle(__m128d first, __m128d second, __m128d w, __m128d z) {
    const __m128d p = asin_light_polynomial<K>(z);
    if constexpr (!K.pi) return first + ((second + w) + (w * z) * p);
    return first + ((second + w) * K.inv_pi + w * (K.inv_pi_rest + z * p));
}

// The negative of the magnitude, from -|x| or the root less a quarter turn.
template <const AsinLightBlock& K>
inline __m128d asin_light_lanes(__m128d x) {
    const LightSine s = light_sine<K>(x);
    const __m128d w = simd::select_by_sign(s.folded, s.root, s.below);
    const __m128d y =
        light_angle<K>(simd::bit_and(s.folded, K.minus_first), simd::bit_and(s.folded, K.minus_second), w, s.z);
    return simd::bit_or(simd::magnitude(y), simd::sign_of(x));
}

// pi/2 - asin x up to 1/2; above the complement itself, or pi less that for a negative x.
template <const AsinLightBlock& K>
inline __m128d acos_light_lanes(__m128d x) {
    const __m128d behind = simd::less(x, _mm_setzero_pd());
    const LightSine s = light_sine<K>(x);
    const __m128d first = simd::select_by_sign(s.folded, simd::bit_and(behind, K.half_first), K.quarter_first);
    const __m128d second = simd::select_by_sign(s.folded, simd::bit_and(behind, K.half_second), K.quarter_second);
    const __m128d w = simd::select_by_sign(s.folded, simd::bit_or(s.root, simd::sign_of(x)), simd::bit_xor(x, K.minus));
    return light_angle<K>(first, second, w, s.z);
}

}  // namespace orv::vecmath
