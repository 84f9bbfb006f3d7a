// Cos of doubles.
//
// "LA" and "HA": the table of 128 rows as in Sin, a quarter turn on; from 90112 on by the bits of 1/(2 pi).
// "EP": cos x = sin(x + pi/2) with |x| = (k - 1/2) pi + r, so that next to the zeros of the cosine r is small and exact;
// from 2^23 on one element at a time.
//
// Valid for every finite x. Worst errors measured: "LA" and "HA" 0.537 ulp, "EP" 2^-27.1 relative.
#include "frame/kernel_loops.h"
#include "vecmath/trig/half_turns_d.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"
#include "vecmath/trig/scalar_reduction_d.h"

namespace {

using namespace orv;
using namespace orv::trig;

struct CosHA {
    using Element = double;
    using Result = double;
    using Frame = frame::GeneralFrame;
    static constexpr int block = 4;
    static constexpr frame::Tail tail = frame::Tail::masked;
    static constexpr char name[] = "vdCos";
    static D doubt(D x) { return simd::not_less(simd::magnitude(x), splat(limit_128)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Main128 main(a);
        return main.step.sin(main.j, 1);
    }
    static D settle(D x, D y, D& doubt) {
        const D result = simd::select(doubt, Step512<>(reduce_large(x)).sin(1), y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

struct CosEP {
    using Element = double;
    using Result = double;
    using Frame = frame::GeneralFrame;
    static constexpr int block = 8;
    static constexpr frame::Tail tail = frame::Tail::masked;
    static constexpr char name[] = "vdCos";
    static D doubt(D x) { return simd::not_less(simd::magnitude(x), splat(8388608.0)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const D shifted = (a * splat(0.31830988618379069) + splat(0.5)) + splat(shifter);
        const D k = (shifted - splat(shifter)) - splat(0.5);
        const D r = ((a - k * splat(3.1415925025939941)) - k * splat(1.5099578831723193e-07)) -
                    k * splat(1.0780605716316238e-14);
        return simd::bit_xor(sine_26(r), odd_sign(shifted));
    }
    static int32_t scalar(const double* x, double* y) {
        if (!(*x - *x == 0)) return not_finite(x, y);
        *y = sine_of_one(*x, 1);
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dCos, la, CosHA)
ORV_ONE_INPUT(dCos, ep, CosEP)
