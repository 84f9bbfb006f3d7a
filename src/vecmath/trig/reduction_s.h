// Floats through doubles, and the reduction of any finite float by the bits of 1/(2 pi).
#pragma once

#include "vecmath/trig/half_turns_d.h"
#include "vecmath/trig/reduction_d.h"

namespace orv::trig {

using S = __m128;

inline constexpr float shifter_s = 12582912.0f;  // 1.5 * 2^23

// A short polynomial next to the sine of angles up to a quarter turn, for angles in a unit whose radians are c1 but for the
// polynomial's error, 2^-12.5 relative.
struct ShortSine {
    Splat<float> c1, c3, c5;
};
inline constexpr ShortSine short_sine{0x1.fff0f8p-1f, -0x1.53ce5ep-3f, 0x1.f08a48p-8f};
inline constexpr ShortSine short_sine_for_cos{0x1.fff0f8p-1f, -0x1.53ce7ep-3f, 0x1.f08a48p-8f};

template <const ShortSine& P>
inline S sine(S r) {
    const S z = r * r;
    return r * (P.c1 + z * (P.c3 + z * P.c5));
}
constexpr ShortSine in_unit(const ShortSine& p, double radians) {
    const double u = radians, z = u * u;
    return {static_cast<float>(p.c1 * u), static_cast<float>(p.c3 * (u * z)), static_cast<float>(p.c5 * (u * z * z))};
}

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
    const auto row = [](unsigned i) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(inv_two_pi_96[i & 255]));
    };
    const __m128i row0 = row(e.lane0), row1 = row(e.lane1);
    const __m128i leading = _mm_unpacklo_epi64(row0, row1), third = _mm_unpackhi_epi64(row0, row1);
    return _mm_add_epi64(_mm_add_epi64(simd::shift_left<32>(_mm_mul_epu32(m, leading)),
                                       _mm_mul_epu32(m, simd::shift_right<32>(leading))),
                         simd::shift_right<32>(_mm_mul_epu32(m, third)));
}

// The sine of a fraction of a turn of 64 bits.
inline D sine_of_fraction(__m128i turn) {
    // The nearest half turn is counted in the highest bit.
    const __m128i half =
        _mm_and_si128(_mm_add_epi64(turn, simd::splat_bits(uint64_t{1} << 62)), simd::bits_of(splat(-0.0)));
    const D r = signed_to_doubles(_mm_sub_epi64(turn, half)) * splat(6.2831853071795862 * 0x1p-64);
    return simd::bit_xor(sine<sine_35>(r), simd::doubles(half));
}

// Sine and cosine of it.
inline void sine_cosine_of_fraction(__m128i turn, D& sine, D& cosine) {
    const __m128i k = simd::shift_right<62>(_mm_add_epi64(turn, simd::splat_bits(uint64_t{1} << 61)));
    const D r = signed_to_doubles(_mm_sub_epi64(turn, simd::shift_left<62>(k))) * splat(6.2831853071795862 * 0x1p-64);
    quarter_turns_33(r, simd::doubles(k), sine, cosine);
}

}  // namespace orv::trig
