// asin and acos of doubles in one part, "EP".
//
// The reduction is that of asin_light_d.h, with nothing but a polynomial and a sum behind it:
//
//   asin w = w Q(z), z = w^2, up to 1/2; above, pi/2 - asin |x| from w = sqrt(2 (1 - |x|)), z = w^2 / 4.
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/inverse/asin_light_d.h"
#include "vecmath/inverse/asin_rows_d.h"

namespace orv::vecmath {

struct AngleUnit {
    bool pi;
    simd::Splat<double> quarter_high, quarter_low;  // a quarter turn
};
inline constexpr AngleUnit radians{false, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54}, half_turns{true, 0.5, 0.0};

struct AsinShortBlock {
    simd::Splat<double> c[6];
    simd::Splat<double> half{0.5}, minus_half{-0.5}, one{1.0}, minus{-0.0};
};
// fpminimax(asin(x), [|3,5,...,11|], [|D...|], [2^-20;1/2], floating, relative, x): 2^-27.6; of asin(x)/pi from the first term on
// 2^-27.7
inline constexpr AsinShortBlock asin_short{
    {1.0, 0x1.5555c88341afep-3, 0x1.3301e4685d3b1p-4, 0x1.747e4a34796c9p-5, 0x1.8c283c204103p-6, 0x1.596d289af2d02p-5}};
inline constexpr AsinShortBlock asinpi_short{{0x1.45f306c476f1ep-2, 0x1.b29a316f8dddfp-5, 0x1.86d954ce1af55p-6,
                                              0x1.db1b0d0bd9c26p-7, 0x1.f1b30fe41bb49p-8, 0x1.bcb4b4bb131bp-7}};

// A turn and the angle of w.
template <const AsinShortBlock& K>
inline __m128d short_angle(__m128d turn, __m128d w, __m128d z) {
    const __m128d z2 = z * z;
    return turn + w * ((K.c[0] + z * K.c[1]) + z2 * ((K.c[2] + z * K.c[3]) + z2 * (K.c[4] + z * K.c[5])));
}

// The negative of the magnitude, as in asin_light_d.h.
template <const AngleUnit& U, const AsinShortBlock& K>
inline __m128d asin_short_lanes(__m128d x) {
    const LightSine s = light_sine<K>(x);
    const __m128d turn = simd::bit_and(s.folded, simd::splat(-double{U.quarter_high}));
    const __m128d y = short_angle<K>(turn, simd::select_by_sign(s.folded, s.root, s.below), s.z);
    return simd::bit_or(simd::magnitude(y), simd::sign_of(x));
}

// pi/2 - asin x up to 1/2; above the complement itself, or pi less that for a negative x.
template <const AngleUnit& U, const AsinShortBlock& K>
inline __m128d acos_short_lanes(__m128d x) {
    const __m128d behind = simd::less(x, _mm_setzero_pd());
    const LightSine s = light_sine<K>(x);
    const __m128d half_turn = simd::bit_and(behind, simd::splat(2 * double{U.quarter_high}));
    const __m128d w = simd::select_by_sign(s.folded, simd::bit_or(s.root, simd::sign_of(x)), simd::bit_xor(x, K.minus));
    return short_angle<K>(simd::select_by_sign(s.folded, half_turn, U.quarter_high), w, s.z);
}

}  // namespace orv::vecmath
