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
using namespace orv::trig;

struct SinCos : frame::Elementwise<float, 4, frame::Tail::masked, frame::Rejected::settled> {
    static void settle(S x, S& y, S& z, S& doubt) {
        const S a = simd::magnitude(x);
        D sine[2], cosine[2];
        sine_cosine_of_fraction(fraction_of_turn(a), sine[0], cosine[0]);
        sine_cosine_of_fraction(fraction_of_turn(_mm_movehl_ps(a, a)), sine[1], cosine[1]);
        y = simd::select(doubt, simd::bit_xor(join(sine[0], sine[1]), simd::sign_of(x)), y);
        z = simd::select(doubt, join(cosine[0], cosine[1]), z);
        doubt = simd::not_finite(x);
    }
    static int32_t scalar(const float* x, float* y, float* z) {
        const int32_t status = not_finite(x, y);
        *z = *y;
        return status;
    }
};

struct SinCosLA : SinCos {
    static constexpr int block = 8;
    static S doubt(S x) { return simd::not_less(simd::magnitude(x), splat(8192.0f)); }
    static void lanes(S x, S& y, S& z) {
        const S a = simd::magnitude(x);
        const S shifted = a * splat(0.636619747f) + splat(shifter_s);
        const S k = shifted - splat(shifter_s);
        const S r0 = (a - k * splat(1.5703125f)) - k * splat(0.000483751297f);
        const S t = k * splat(7.54953362e-08f);
        const S r = r0 - t;
        const S low = ((r0 - r) - t) - k * splat(2.56334407e-12f);
        const S w = r * r;
        const S sine =
            r +
            (r * w *
                 (splat(-0.16666654602440295f) + w * (splat(0.0083321602989539f) + w * splat(-0.0001951521879448f))) +
             low);
        const S half = w * splat(0.5f);
        const S lead = splat(1.0f) - half;
        const S cosine =
            lead +
            (((splat(1.0f) - lead) - half) +
             (w * w * (splat(0.0416666456705364f) + w * (splat(-0.0013887315633147f) + w * splat(2.44330843567e-05f))) -
              r * low));
        const __m128i bits = simd::bits_of(shifted);
        const __m128i sign = simd::bits_of(splat(-0.0f));
        const S odd = simd::floats(_mm_slli_epi32(bits, 31));
        const S sine_sign = simd::floats(_mm_and_si128(_mm_slli_epi32(bits, 30), sign));
        const S cosine_sign =
            simd::floats(_mm_and_si128(_mm_slli_epi32(_mm_add_epi32(bits, _mm_set1_epi32(1)), 30), sign));
        y = simd::bit_xor(_mm_blendv_ps(sine, cosine, odd), simd::bit_xor(sine_sign, simd::sign_of(x)));
        z = simd::bit_xor(_mm_blendv_ps(cosine, sine, odd), cosine_sign);
    }
};

struct SinCosHA : SinCos {
    static S doubt(S x) { return simd::not_less(simd::magnitude(x), splat(8192.0f)); }
    static void lanes(S x, S& y, S& z) {
        const S a = simd::magnitude(x);
        D sine[2], cosine[2];
        both(low_half(a), sine[0], cosine[0]);
        both(high_half(a), sine[1], cosine[1]);
        y = simd::bit_xor(join(sine[0], sine[1]), simd::sign_of(x));
        z = join(cosine[0], cosine[1]);
    }
    static void both(D a, D& sine, D& cosine) {
        constexpr double whole = 6755399441055744.0;  // 1.5 * 2^52
        const D shifted = a * splat(0.63661977236758138) + splat(whole);
        const D k = shifted - splat(whole);
        quarter_turns_33((a - k * splat(1.5707963267923333)) - k * splat(2.5633441515839558e-12), shifted, sine,
                         cosine);
    }
};

}  // namespace

ORV_TWO_OUTPUTS(sSinCos, la, SinCosLA)
ORV_TWO_OUTPUTS(sSinCos, ha, SinCosHA)
