// SinCos of floats: y is the sine and z the cosine, from one reduction: |x| = k pi/2 + r with r up to pi/4, a polynomial for
// each, exchanged for odd k.
//
// "LA" and "EP": in float, four parts of pi/2, the rounding error of r put in with the polynomials' last terms.
// "HA": in double with two parts.
// From 8192 on the bits of 1/(2 pi) give the fraction of a turn, and both are taken in double.
//
// Valid for every finite x. Worst errors measured: "LA" and "EP" 0.92 ulp, "HA" 0.502 ulp.
#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_s.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct SinCos : frame::Elementwise<float, 4, frame::Tail::masked, frame::Rejected::settled> {
    static void settle(S x, S& y, S& z, S& doubt) {
        const S a = simd::magnitude(x);
        D sine[2], cosine[2];
        sine_cosine_of_fraction(fraction_of_turn(a), sine[0], cosine[0]);
        sine_cosine_of_fraction(fraction_of_turn(simd::high_halves(a, a)), sine[1], cosine[1]);
        y = simd::select_by_sign(doubt, simd::bit_xor(simd::narrow(sine[0], sine[1]), simd::sign_of(x)), y);
        z = simd::select_by_sign(doubt, simd::narrow(cosine[0], cosine[1]), z);
        doubt = simd::not_finite(x);
    }
    static int32_t scalar(const float* x, float* y, float* z) {
        const int32_t status = not_finite(x, y);
        *z = *y;
        return status;
    }
};

struct SinCosLABlock {
    Splat<float> inverse{0x1.45f306p-1f};  // 2/pi
    // pi/2 in parts, of which the first two have 8 and 11 bits.
    Splat<float> part1{0x1.92p+0f}, part2{0x1.fb4p-12f}, part3{0x1.444p-24f}, part4{0x1.68c234p-39f};
    // Of the least greatest relative errors on |r| <= pi/4, ours; Sollya, to the digits of a float:
    // remez(1 - x/sin(x), [|3,5,7|], [1b-20; pi/4], 1/sin(x));
    Splat<float> s3{-0x1.555546p-3f}, s5{0x1.11073ap-7f}, s7{-0x1.994388p-13f};
    // remez(1 - (1 - x^2/2)/cos(x), [|4,6,8|], [1b-20; pi/4], 1/cos(x));
    Splat<float> c4{0x1.55554ap-5f}, c6{-0x1.6c0c32p-10f}, c8{0x1.99eb4cp-16f};
};
constexpr SinCosLABlock sincos_la;

struct SinCosLA : SinCos {
    static constexpr const SinCosLABlock& K = sincos_la;

    static constexpr int block = 8;
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), trig_s.last_8192); }
    static void lanes(S x, S& y, S& z) {
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
        y = simd::bit_xor(simd::select_by_sign(odd, cosine, sine), simd::bit_xor(sine_sign, simd::sign_of(x)));
        z = simd::bit_xor(simd::select_by_sign(odd, sine, cosine), cosine_sign);
    }
};

struct SinCosHA : SinCos {
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), trig_s.last_8192); }
    static void lanes(S x, S& y, S& z) {
        const S a = simd::magnitude(x);
        D sine[2], cosine[2];
        both(simd::widen_low(a), sine[0], cosine[0]);
        both(simd::widen_high(a), sine[1], cosine[1]);
        y = simd::bit_xor(simd::narrow(sine[0], sine[1]), simd::sign_of(x));
        z = simd::narrow(cosine[0], cosine[1]);
    }
    static void both(D a, D& sine, D& cosine) {
        const Nearest<half_pi> nearest(a);
        quarter_turns<eighth_33>((a - nearest.k * half_pi.high) - nearest.k * half_pi.middle, nearest.shifted, sine,
                                 cosine);
    }
};

}  // namespace

ORV_TWO_OUTPUTS(sSinCos, la, SinCosLA)
ORV_TWO_OUTPUTS(sSinCos, ha, SinCosHA)
