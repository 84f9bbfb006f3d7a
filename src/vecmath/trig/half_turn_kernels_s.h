// Sin and Cos of floats, one method: |x| = k pi + r, for the cosine (k - 1/2) pi + r, with r up to pi/2, and the sine of r
// by a polynomial.
//
// "LA": four parts of pi in float; the first three have 8 and 11 bits, so that their products with k are exact.
// "HA": k in float, the rest in double with two parts.
// "EP": three parts and a short polynomial.
// From 8192 on the bits of 1/(2 pi) give the fraction of a turn, whose sine is taken in double.
//
// Valid for every finite x. Worst errors measured: Sin "LA" 2.48 ulp, of which the polynomial has 0.66, "HA" 0.602 ulp, of which
// it has 0.1, "EP" 2^-12.5 relative; Cos "LA" 2.4 ulp, "HA" 0.501 ulp, "EP" 2^-12.5 relative.
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_s.h"

namespace orv::trig {

template <bool Cosine>
struct HalfTurnKernel : frame::OneInput<float, 8, frame::Tail::masked> {
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), splat(0x1.fffffep+12f)); }

    // k or k - 1/2, and its parity as a sign.
    static S multiple(S a, S& sign) {
        S turns = a * splat(0.318309873f);
        if constexpr (Cosine) turns += splat(0.5f);
        const S shifted = turns + splat(shifter_s);
        sign = simd::floats(_mm_slli_epi32(simd::bits_of(shifted), 31));
        S k = shifted - splat(shifter_s);
        if constexpr (Cosine) k -= splat(0.5f);
        return k;
    }
    static S with_signs(S y, S sign, [[maybe_unused]] S x) {
        if constexpr (!Cosine) sign = simd::bit_xor(sign, simd::sign_of(x));
        return simd::bit_xor(y, sign);
    }

    static S settle(S x, S y, S& doubt) {
        const S a = simd::magnitude(x);
        const __m128i quarter = simd::splat_bits(Cosine ? uint64_t{1} << 62 : 0);
        const auto sine = [=](S half) { return sine_of_fraction(_mm_add_epi64(fraction_of_turn(half), quarter)); };
        S result = join(sine(a), sine(_mm_movehl_ps(a, a)));
        if constexpr (!Cosine) result = simd::bit_xor(result, simd::sign_of(x));
        result = simd::select_by_sign(doubt, result, y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const float* x, float* y) { return not_finite(x, y); }
};

template <bool Cosine>
struct HalfTurnLA : HalfTurnKernel<Cosine> {
    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        const S r = (((a - k * splat(3.140625f)) - k * splat(0.000967502594f)) - k * splat(1.50990672e-07f)) -
                    k * splat(5.12668814e-12f);
        const S z = r * r;
        const S q = splat(-0.166666597f) +
                    z * (splat(0.00833306275f) + z * (splat(-0.000198096022f) + z * splat(2.60578054e-06f)));
        return HalfTurnKernel<Cosine>::with_signs(r + r * (z * q), sign, x);
    }
};

template <bool Cosine>
struct HalfTurnHA : HalfTurnKernel<Cosine> {
    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        return HalfTurnKernel<Cosine>::with_signs(
            join(of_doubles(low_half(a), low_half(k)), of_doubles(high_half(a), high_half(k))), sign, x);
    }
    static D of_doubles(D a, D k) {
        const D r = (a - k * splat(3.1415926535846666)) - k * splat(5.1266883031890378e-12);
        if constexpr (Cosine) return sine<sine_35>(r);
        const D z = r * r;
        const D q = splat(-0.16666659550427829) +
                    z * (splat(0.0083330662460856901) +
                         z * (splat(-0.00019809601734108966) + z * splat(2.6057750470265846e-06)));
        return r + r * z * q;
    }
};

template <bool Cosine>
struct HalfTurnEP : HalfTurnKernel<Cosine> {
    static S lanes(S x) {
        S sign;
        const S a = simd::magnitude(x);
        const S k = HalfTurnKernel<Cosine>::multiple(a, sign);
        const S r = ((a - k * splat(3.140625f)) - k * splat(0.000967502594f)) - k * splat(1.50995803e-07f);
        return HalfTurnKernel<Cosine>::with_signs(sine < Cosine ? short_sine_for_cos : short_sine > (r), sign, x);
    }
};

}  // namespace orv::trig

#define ORV_HALF_TURN_KERNELS(function, Cosine)           \
    namespace {                                           \
    struct function##LA : orv::trig::HalfTurnLA<Cosine> { \
        static constexpr char name[] = "vs" #function;    \
    };                                                    \
    struct function##HA : orv::trig::HalfTurnHA<Cosine> { \
        static constexpr char name[] = "vs" #function;    \
    };                                                    \
    struct function##EP : orv::trig::HalfTurnEP<Cosine> { \
        static constexpr char name[] = "vs" #function;    \
    };                                                    \
    }                                                     \
    ORV_ONE_INPUT(s##function, la, function##LA)          \
    ORV_ONE_INPUT(s##function, ha, function##HA)          \
    ORV_ONE_INPUT(s##function, ep, function##EP)
