// dTanh (tanh_d.h); "LA" and "EP" have T in one part.
#include "vecmath/hyperbolic/tanh_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace {

using namespace orv;

template <bool TwoParts>
struct Tanh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return simd::not_finite(x); }
    static __m128d lanes(__m128d x) { return vecmath::tanh_lanes<TwoParts>(x); }
    static int32_t scalar(const double* at, double* y) {
        *y = vecmath::is_nan(*at) ? vecmath::quiet(*at) : std::copysign(1.0, *at);
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dTanh, la, Tanh<false>)
ORV_ONE_INPUT(dTanh, ha, Tanh<true>)
