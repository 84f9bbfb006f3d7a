// Sin and Cos of floats, one method: |x| = k pi + r, for the cosine (k - 1/2) pi + r, with r up to pi/2, and the sine of r
// by a polynomial.
//
// "LA": four parts of pi in float; the first three have 8 and 11 bits, so that their products with k are exact.
// "HA": k in float, the rest in double with two parts.
// "EP": three parts and a short polynomial.
// From 8192 on the bits of 1/(2 pi) give the fraction of a turn, whose sine is taken in double.
//
// Valid for every finite x. Of the worst errors the polynomial has 0.66 ulp in "LA" and 0.1 ulp in "HA".
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_s.h"

namespace orv::vecmath {

struct HalfTurnBlock {
    Splat<float> inverse{0x1.45f306p-2f};  // 1/pi
    // pi in parts; "EP" ends with the third, which is longer there, and "HA" has two in double.
    Splat<float> pi1{0x1.92p+1f}, pi2{0x1.fb4p-11f}, pi3{0x1.444p-23f}, pi4{0x1.68c234p-38f};
    Splat<float> pi3_ep{0x1.4442d2p-23f};
    Splat<double> pi_high{0x1.921fb5444p+1}, pi_low{0x1.68c234c4c6629p-38};
    Splat<float> c3{-0x1.55554cp-3f}, c5{0x1.110eccp-7f}, c7{-0x1.9f6ffep-13f}, c9{0x1.5dbdfp-19f};
};
inline constexpr HalfTurnBlock half_turns;
inline constexpr SinePolynomial sine_ha{
    1.0, -0x1.55554bc836587p-3, 0x1.110ed3804ca96p-7, -0x1.9f6ffd4f71d25p-13, 0x1.5dbdbfb5666fp-19, 0.0};

template <bool Cosine>
struct HalfTurnKernel : frame::OneInput<float, 8, frame::Tail::masked, frame::Rejected::settled> {
    static constexpr const HalfTurnBlock& K = half_turns;

    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), trig_s.last_8192); }

    // k or k - 1/2, and its parity as a sign.
    static S multiple(S a, S& sign) {
        S turns = a * K.inverse;
        if constexpr (Cosine) turns = turns + trig_s.half;
        const S shifted = turns + trig_s.shifter;
        sign = simd::floats(simd::shift_left_32<31>(simd::bits_of(shifted)));
        S k = shifted - trig_s.shifter;
        if constexpr (Cosine) k = k - trig_s.half;
        return k;
    }
    static S with_signs(S y, S sign, [[maybe_unused]] S x) {
        if constexpr (!Cosine) sign = simd::bit_xor(sign, simd::sign_of(x));
        return simd::bit_xor(y, sign);
    }

    static S settle(S x, S y, S& doubt) {
        S result = by_halves(simd::magnitude(x), [](S half) {
            __m128i turn = fraction_of_turn(half);
            if constexpr (Cosine) turn = simd::add(turn, trig_s.quarter);
            return sine_of_fraction(turn);
        });
        if constexpr (!Cosine) result = simd::bit_xor(result, simd::sign_of(x));
        result = simd::select_by_sign(doubt, result, y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const float* x, float* y) { return not_finite(x, y); }
};

template <bool Cosine>
struct HalfTurnLA : HalfTurnKernel<Cosine> {
    static constexpr const HalfTurnBlock& K = half_turns;

    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        const S r = (((a - k * K.pi1) - k * K.pi2) - k * K.pi3) - k * K.pi4;
        const S z = r * r;
        const S q = K.c3 + z * (K.c5 + z * (K.c7 + z * K.c9));
        return HalfTurnKernel<Cosine>::with_signs(r + r * (z * q), sign, x);
    }
};

template <bool Cosine>
struct HalfTurnHA : HalfTurnKernel<Cosine> {
    static constexpr const HalfTurnBlock& K = half_turns;

    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        return HalfTurnKernel<Cosine>::with_signs(simd::narrow(of_doubles(simd::widen_low(a), simd::widen_low(k)),
                                                               of_doubles(simd::widen_high(a), simd::widen_high(k))),
                                                  sign, x);
    }
    static D of_doubles(D a, D k) { return sine < Cosine ? sine_35 : sine_ha > ((a - k * K.pi_high) - k * K.pi_low); }
};

template <bool Cosine>
struct HalfTurnEP : HalfTurnKernel<Cosine> {
    static constexpr const HalfTurnBlock& K = half_turns;

    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        const S r = ((a - k * K.pi1) - k * K.pi2) - k * K.pi3_ep;
        return HalfTurnKernel<Cosine>::with_signs(sine < Cosine ? short_sine_for_cos : short_sine > (r), sign, x);
    }
};

}  // namespace orv::vecmath

#define ORV_HALF_TURN_KERNELS(function, Cosine)                \
    namespace {                                                \
    struct function##LA : orv::vecmath::HalfTurnLA<Cosine> {}; \
    struct function##HA : orv::vecmath::HalfTurnHA<Cosine> {}; \
    struct function##EP : orv::vecmath::HalfTurnEP<Cosine> {}; \
    }                                                          \
    ORV_ONE_INPUT(s##function, la, function##LA)               \
    ORV_ONE_INPUT(s##function, ha, function##HA)               \
    ORV_ONE_INPUT(s##function, ep, function##EP)
