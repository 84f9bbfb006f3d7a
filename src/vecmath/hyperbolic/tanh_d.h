// The hyperbolic tangent of doubles, by rows.
//
// The exponent and the five leading fraction bits of |x| select a row, whose c is in the middle of what it serves; with
// h = x - c, exact, and t = tanh h,
//
//   tanh x = T + (1 - T^2) t / (1 + T t),  T = tanh c in two parts.
//
// The second term is 1/64 of the first, so that its roundings are a twentieth of an ulp. Below 2^-5 c is 0 and the result t. t is
// h + h^3 P(h^2), to 2^-63 of itself in row 0 and to 2^-38 for the largest h, 1/4, which are multiplied by 1 - T^2 below 2^-40. In one
// part T is a double.
#pragma once

#include "simd/constants.h"

namespace orv::vecmath {

inline constexpr uint32_t tanh_last_row = 321;

struct TanhBlock {
    // fpminimax((tanh(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-10], absolute)
    simd::Splat<double> c0{-0x1.5555555555554p-2}, c1{0x1.11111110fe219p-3}, c2{-0x1.ba1b9bf57b62ep-5},
        c3{0x1.66064287caf1cp-6};
    simd::Splat<double> one{1.0};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    simd::SplatBits<uint32_t> before_first{((1023 - 5) << 5) - 1}, no_row{0}, last{tanh_last_row};
    simd::SplatBits<uint32_t> squares_from{(1023 - 200) << 20};
    alignas(16) double rows[tanh_last_row + 1][4] = {
    // c, tanh c high and low, 1 - tanh^2 c
#include "vecmath/tables/tanh_rows.inc"
    };
};
inline constexpr TanhBlock tanh_block;

template <bool TwoParts>
inline __m128d tanh_lanes(__m128d x) {
    constexpr const TanhBlock& K = tanh_block;
    const __m128d sign = simd::sign_of(x);
    x = simd::magnitude(x);
    const __m128i place = _mm_sub_epi32(_mm_srli_epi32(simd::bits_of(x), 15), K.before_first);
    const __m128i row = _mm_min_epi32(_mm_max_epi32(place, K.no_row), K.last);
    const simd::Indices<2> at(_mm_srli_epi64(row, 32));
    const double *row0 = K.rows[at.lane[0]], *row1 = K.rows[at.lane[1]];
    const __m128d first0 = _mm_load_pd(row0), first1 = _mm_load_pd(row1);
    const __m128d second0 = _mm_load_pd(row0 + 2), second1 = _mm_load_pd(row1 + 2);
    const __m128d c = _mm_unpacklo_pd(first0, first1), high = _mm_unpackhi_pd(first0, first1);
    const __m128d low = _mm_unpacklo_pd(second0, second1), slope = _mm_unpackhi_pd(second0, second1);

    // In the last row nothing is left of a large h.
    const __m128d h = _mm_min_pd(x - c, K.one);
    const __m128i large = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(h), K.magnitude), K.squares_from);
    const __m128d w = simd::bit_and(h, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1))));
    const __m128d z = w * w;
    const __m128d t = h + (w * z) * ((K.c0 + z * K.c1) + (z * z) * (K.c2 + z * K.c3));
    __m128d rest = (slope * t) / (K.one + high * t);
    if constexpr (TwoParts) rest = rest + low;
    return simd::bit_or(high + rest, sign);
}

}  // namespace orv::vecmath
