// Sine and cosine of floats from one reduction, from lanes to lanes: |x| = k pi/2 + r with r up to pi/4, a polynomial for
// each, exchanged for odd k.
//
// "LA" and "EP": in float, four parts of pi/2, the rounding error of r put in with the polynomials' last terms.
// "HA": in double with two parts.
// From 8192 on the bits of 1/(2 pi) give the fraction of a turn, and both are taken in double.
//
// Valid for every finite x.
#pragma once

#include "vecmath/trig/reduction_s.h"

namespace orv::vecmath {

struct SinCosBlock {
    Splat<float> inverse{0x1.45f306p-1f};  // 2/pi
    // pi/2 in parts, of which the first two have 8 and 11 bits.
    Splat<float> part1{0x1.92p+0f}, part2{0x1.fb4p-12f}, part3{0x1.444p-24f}, part4{0x1.68c234p-39f};
    // Of the least greatest relative errors on |r| <= pi/4, ours; Sollya, to the digits of a float:
    // remez(1 - x/sin(x), [|3,5,7|], [1b-20; pi/4], 1/sin(x));
    Splat<float> s3{-0x1.555546p-3f}, s5{0x1.11073ap-7f}, s7{-0x1.994388p-13f};
    // remez(1 - (1 - x^2/2)/cos(x), [|4,6,8|], [1b-20; pi/4], 1/cos(x));
    Splat<float> c4{0x1.55554ap-5f}, c6{-0x1.6c0c32p-10f}, c8{0x1.99eb4cp-16f};
};
inline constexpr SinCosBlock sincos_block;

// "LA" and "EP", |x| up to trig_s.last_8192.
inline void sincos_in_float(S x, S& sine_of_x, S& cosine_of_x) {
    constexpr const SinCosBlock& K = sincos_block;
    const S a = simd::magnitude(x);
    const S shifted = a * K.inverse + trig_s.shifter;
    const S k = shifted - trig_s.shifter;
    const S r0 = (a - k * K.part1) - k * K.part2;
    const S t = k * K.part3;
    const S r = r0 - t;
    const S low = ((r0 - r) - t) - k * K.part4;
    const S w = r * r;
    const S sine = r + (r * w * (K.s3 + w * (K.s5 + w * K.s7)) + low);
    const S half = w * trig_s.half;
    const S lead = trig_s.one - half;
    const S cosine = lead + (((trig_s.one - lead) - half) + (w * w * (K.c4 + w * (K.c6 + w * K.c8)) - r * low));
    const __m128i bits = simd::bits_of(shifted), next = simd::add_32(bits, simd::splat_32(1));
    const S odd = simd::floats(simd::shift_left_32<31>(bits));
    const S sine_sign = simd::sign_of(simd::floats(simd::shift_left_32<30>(bits)));
    const S cosine_sign = simd::sign_of(simd::floats(simd::shift_left_32<30>(next)));
    sine_of_x = simd::bit_xor(simd::select_by_sign(odd, cosine, sine), simd::bit_xor(sine_sign, simd::sign_of(x)));
    cosine_of_x = simd::bit_xor(simd::select_by_sign(odd, sine, cosine), cosine_sign);
}

// "HA", |x| up to trig_s.last_8192.
inline void sincos_in_double(S x, S& sine, S& cosine) {
    const S a = simd::magnitude(x);
    const auto both = [](D half, D& s, D& c) {
        const Nearest<half_pi> nearest(half);
        quarter_turns<eighth_33>((half - nearest.k * half_pi.high) - nearest.k * half_pi.middle, nearest.shifted, s, c);
    };
    D s[2], c[2];
    both(simd::widen_low(a), s[0], c[0]);
    both(simd::widen_high(a), s[1], c[1]);
    sine = simd::bit_xor(simd::narrow(s[0], s[1]), simd::sign_of(x));
    cosine = simd::narrow(c[0], c[1]);
}

// Any finite x.
inline void sincos_large(S x, S& sine, S& cosine) {
    const S a = simd::magnitude(x);
    D s[2], c[2];
    sine_cosine_of_fraction(fraction_of_turn(a), s[0], c[0]);
    sine_cosine_of_fraction(fraction_of_turn(simd::high_halves(a, a)), s[1], c[1]);
    sine = simd::bit_xor(simd::narrow(s[0], s[1]), simd::sign_of(x));
    cosine = simd::narrow(c[0], c[1]);
}

}  // namespace orv::vecmath
