// Floats through doubles, and the reduction of any finite float by the bits of 1/(2 pi).
#pragma once

#include "vecmath/trig/reduction_d.h"

namespace orv::vecmath {

using S = __m128;

struct TrigConstantsS {
    Splat<float> zero{0.0f}, half{0.5f}, one{1.0f};
    Splat<float> shifter{0x1.8p+23f};         // adding it leaves an integer in the low bits
    Splat<float> last_8192{0x1.fffffep+12f};  // the last number below 8192, the limit of the multiples of pi
    simd::SplatBits<uint64_t> fraction{0x7FFFFF}, leading_bit{0x800000};
    simd::SplatBits<uint64_t> eighth{uint64_t{1} << 61}, quarter{uint64_t{1} << 62}, half_turn{uint64_t{1} << 63};
};
inline constexpr TrigConstantsS trig_s;

// A short polynomial next to the sine of angles up to a quarter turn, 2^-12.5 relative; c1 is close to the unit's radians.
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

// The fraction of a turn that the low two floats of a come to, a >= 0, as 64 bits after the point. A float is M 2^(e - 150)
// with M of 24 bits, and row e has the bits of 1/(2 pi) that M meets below the point: three 32-bit words make 96 bits, of
// whose product with M the highest 64 are kept. No float comes closer to a multiple of a quarter turn than 2^-33 of it.
inline __m128i fraction_of_turn(S a) {
    const __m128i bits = _mm_cvtepu32_epi64(simd::bits_of(a));
    const simd::Indices<2> e(simd::shift_right<23>(bits));
    const __m128i m = simd::bit_or(simd::bit_and(bits, trig_s.fraction), trig_s.leading_bit);
    const __m128i row0 = simd::load(inv_two_pi_96[e.lane[0] & 255]), row1 = simd::load(inv_two_pi_96[e.lane[1] & 255]);
    const __m128i leading = simd::low_halves(row0, row1), third = simd::high_halves(row0, row1);
    return simd::add(simd::add(simd::shift_left<32>(simd::multiply_words(m, leading)),
                               simd::multiply_words(m, simd::shift_right<32>(leading))),
                     simd::shift_right<32>(simd::multiply_words(m, third)));
}

// f of the lower two floats and of the upper two, as floats.
template <class F>
inline S by_halves(S x, F f) {
    return simd::narrow(f(x), f(simd::high_halves(x, x)));
}

// The sine of a fraction of a turn of 64 bits.
inline D sine_of_fraction(__m128i turn) {
    // The nearest half turn is counted in the highest bit.
    const __m128i half = simd::bit_and(simd::add(turn, trig_s.quarter), trig_s.half_turn);
    const D r = signed_to_doubles(simd::subtract(turn, half)) * large.radians;
    return simd::bit_xor(sine<sine_35>(r), simd::doubles(half));
}

// Sine and cosine of it.
inline void sine_cosine_of_fraction(__m128i turn, D& sine, D& cosine) {
    const __m128i k = simd::shift_right<62>(simd::add(turn, trig_s.eighth));
    const D r = signed_to_doubles(simd::subtract(turn, simd::shift_left<62>(k))) * large.radians;
    quarter_turns<eighth_33>(r, simd::doubles(k), sine, cosine);
}

}  // namespace orv::vecmath
