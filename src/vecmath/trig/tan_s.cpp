// Tan of floats, in double: |x| = k pi/2 + r with r up to pi/4, tan r = r N(r^2)/D(r^2), and -D/(r N) for odd k.
//
// "LA" and "EP": N of degree 1 and D of degree 2 in r^2, 2^-25.
// "HA": both of degree 2, 2^-33.
// From 8256 on the bits of 1/(2 pi) give the fraction of a turn, and the tangent is the quotient of its sine and cosine.
//
// Valid for every finite x.
#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_s.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct TanBlock {
    Splat<float> inverse{0x1.45f306p-1f};  // 2/pi
    Splat<float> last{0x1.01fffep+13f};    // the last number below 8256
};
constexpr TanBlock K;

template <const TangentQuotient& P>
struct Tan : frame::OneInput<float, 4, frame::Tail::masked, frame::Rejected::settled> {
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), K.last); }

    static S lanes(S x) {
        const S a = simd::magnitude(x);
        const S shifted = a * K.inverse + trig_s.shifter;
        const S k = shifted - trig_s.shifter;
        const __m128i sign = simd::shift_left_32<31>(simd::bits_of(shifted));
        const S y = simd::narrow(
            tangent(simd::widen_low(a), simd::widen_low(k), simd::doubles(simd::interleave_low_32(sign, sign))),
            tangent(simd::widen_high(a), simd::widen_high(k), simd::doubles(simd::interleave_high_32(sign, sign))));
        return simd::bit_xor(y, simd::bit_xor(simd::floats(sign), simd::sign_of(x)));
    }
    static D tangent(D a, D k, D odd) {
        const D r = (a - k * half_pi.high) - k * half_pi.middle;
        return vecmath::tangent<P>(r, odd);
    }

    static S settle(S x, S y, S& doubt) {
        const S a = simd::magnitude(x);
        const auto tangent_of = [](S half) {
            D sine, cosine;
            sine_cosine_of_fraction(fraction_of_turn(half), sine, cosine);
            return sine / cosine;
        };
        const S result = simd::bit_xor(by_halves(a, tangent_of), simd::sign_of(x));
        const S mask = doubt;
        doubt = simd::not_finite(x);
        return simd::select_by_sign(mask, result, y);
    }
    static int32_t scalar(const float* x, float* y) { return not_finite(x, y); }
};

}  // namespace

ORV_ONE_INPUT(sTan, la, Tan<tan_25>)
ORV_ONE_INPUT(sTan, ha, Tan<tan_33>)
