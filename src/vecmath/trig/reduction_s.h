// Floats through doubles, and the reduction of any finite float by the bits of 1/(2 pi).
#pragma once

#include "vecmath/trig/half_turns_d.h"

namespace orv::trig {

using S = __m128;

inline constexpr float shifter_s = 12582912.0f;  // 1.5 * 2^23

// The lanes of a register of floats as two registers of doubles, and back.
inline D low_half(S x) { return _mm_cvtps_pd(x); }
inline D high_half(S x) { return _mm_cvtps_pd(_mm_movehl_ps(x, x)); }
inline S join(D low, D high) { return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high)); }

// The fraction of a turn that the low two floats of a come to, a >= 0, as 64 bits after the point. A float is M 2^(e - 150)
// with M of 24 bits, and row e has the bits of 1/(2 pi) that M meets below the point: three 32-bit words make 96 bits, of
// whose product with M the highest 64 are kept. No float comes closer to a multiple of a quarter turn than 2^-33 of it.
inline __m128i fraction_of_turn(S a) {
    const __m128i bits = _mm_cvtepu32_epi64(simd::bits_of(a));
    const Indices e(simd::shift_right<23>(bits));
    const __m128i m = _mm_or_si128(_mm_and_si128(bits, simd::splat_bits(0x7FFFFF)), simd::splat_bits(0x800000));
    const uint32_t* const row0 = inv_two_pi_96[e.lane0 & 255];
    const uint32_t* const row1 = inv_two_pi_96[e.lane1 & 255];
    const auto product = [=](int k) {
        return _mm_mul_epu32(m, _mm_unpacklo_epi64(_mm_cvtsi32_si128(static_cast<int32_t>(row0[k])),
                                                   _mm_cvtsi32_si128(static_cast<int32_t>(row1[k]))));
    };
    return _mm_add_epi64(_mm_add_epi64(simd::shift_left<32>(product(0)), product(1)),
                         simd::shift_right<32>(product(2)));
}

// 64-bit integers with sign to doubles: halves as digits of 2^84 and 2^52, whose offsets are taken away.
inline D signed_to_doubles(__m128i x) {
    const __m128i low = _mm_blend_epi16(x, simd::bits_of(splat(0x1p52)), 0xCC);
    const __m128i high = _mm_xor_si128(simd::shift_right<32>(x), simd::bits_of(splat(0x1p84 + 0x1p63)));
    return (simd::doubles(high) - splat(0x1p84 + 0x1p63 + 0x1p52)) + simd::doubles(low);
}

// The sine of a fraction of a turn of 64 bits.
inline D sine_of_fraction(__m128i turn) {
    // The nearest half turn is counted in the highest bit.
    const __m128i half =
        _mm_and_si128(_mm_add_epi64(turn, simd::splat_bits(uint64_t{1} << 62)), simd::bits_of(splat(-0.0)));
    const D r = signed_to_doubles(_mm_sub_epi64(turn, half)) * splat(6.2831853071795862 * 0x1p-64);
    return simd::bit_xor(sine_35(r), simd::doubles(half));
}

// Sine and cosine of it.
inline void sine_cosine_of_fraction(__m128i turn, D& sine, D& cosine) {
    const __m128i k = simd::shift_right<62>(_mm_add_epi64(turn, simd::splat_bits(uint64_t{1} << 61)));
    const D r = signed_to_doubles(_mm_sub_epi64(turn, simd::shift_left<62>(k))) * splat(6.2831853071795862 * 0x1p-64);
    quarter_turns_33(r, simd::doubles(k), sine, cosine);
}

}  // namespace orv::trig
