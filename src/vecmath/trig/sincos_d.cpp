// SinCos of doubles: y is the sine and z the cosine, from one reduction.
//
// "LA" and "HA": the table of 128 rows, each result as Sin "HA" and Cos have it, bit for bit; from 90112 on by the bits of
// 1/(2 pi), again as they do.
// "EP": |x| = k pi/2 + r with three parts, |r| up to pi/4, a short polynomial for the sine and one for the cosine, exchanged
// for odd k; from 2^23 on as the other accuracies.
//
// Valid for every finite x. Worst errors measured: "LA" and "HA" 0.540 ulp, "EP" 2^-27.9 relative.
#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct SinCos : frame::Elementwise<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static void settle(D x, D& y, D& z, D& doubt) {
        const Step512<> step(reduce_large(x));
        y = simd::select_by_sign(doubt, step.sin(0), y);
        z = simd::select_by_sign(doubt, step.sin(1), z);
        doubt = simd::not_finite(x);
    }
    static int32_t scalar(const double* x, double* y, double* z) {
        const int32_t status = not_finite(x, y);
        *z = *y;
        return status;
    }
};

struct SinCosHA : SinCos {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_128); }
    static void lanes(D x, D& y, D& z) {
        const D a = simd::magnitude(x);
        const Main128 main(a);
        y = simd::bit_xor(main.step.sin(main.j, 0), simd::sign_of(x));
        z = main.step.sin(main.j, 1);
    }
};

constexpr Splat<double> last_ep{0x1.fffffffffffffp+22};  // the last number below 2^23

struct SinCosEP : SinCos {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_ep); }
    static void lanes(D x, D& y, D& z) {
        const D a = simd::magnitude(x);
        const Nearest<half_pi_ep> nearest(a);
        quarter_turns<eighth_26>(less_steps<half_pi_ep>(a, nearest.k), nearest.shifted, y, z);
        y = simd::bit_xor(y, simd::sign_of(x));
    }
};

}  // namespace

ORV_TWO_OUTPUTS(dSinCos, la, SinCosHA)
ORV_TWO_OUTPUTS(dSinCos, ep, SinCosEP)
