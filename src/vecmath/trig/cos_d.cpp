// Cos of doubles.
//
// "LA" and "HA": the table of 128 rows as in Sin, a quarter turn on; from 90112 on by the bits of 1/(2 pi).
// "EP": cos x = sin(x + pi/2) with |x| = (k - 1/2) pi + r, so that next to the zeros of the cosine r is small and exact;
// from 2^23 on as Sin.
//
// Valid for every finite x.
#include "vecmath/trig/sine_kernels_d.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct CosHA : SineKernel<1, 4> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_128); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Main128 main(a);
        return main.step.sin(main.j, 1);
    }
};

struct CosEPBlock {
    Splat<double> last{0x1.fffffffffffffp+22};  // the last number below 2^23
    Splat<double> half{0.5};
};
constexpr CosEPBlock cos_ep;

struct CosEP : SineKernelEP<1> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), cos_ep.last); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const D shifted = (a * pi_ep.inverse + cos_ep.half) + trig.shifter;
        const D k = (shifted - trig.shifter) - cos_ep.half;
        return simd::bit_xor(sine<sine_26>(less_steps<pi_ep>(a, k)), odd_sign(shifted));
    }
};

}  // namespace

ORV_ONE_INPUT(dCos, la, CosHA)
ORV_ONE_INPUT(dCos, ep, CosEP)
