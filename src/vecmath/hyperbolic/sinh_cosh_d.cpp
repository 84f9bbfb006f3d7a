// dSinh and dCosh (sinh_cosh_d.h). "LA" has all parts too: without them the sine loses digits below 1. "EP" of the cosine is
// in one part.
#include "vecmath/hyperbolic/sinh_cosh_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::HyperbolicParts;
using vecmath::HyperbolicSeries;

// Beyond the vector path: e^|x| / 2 in two factors, for nothing of e^-|x| is left.
inline int32_t large(double magnitude, double* y) {
    if (magnitude > 0x1.633ce8fb9f87dp+9) {
        *y = vecmath::overflow<double>();
        return frame::status_overflow;
    }
    const HyperbolicParts v = vecmath::hyperbolic_parts(simd::splat(magnitude));
    const HyperbolicSeries q = vecmath::hyperbolic_series(v.r);
    const __m128d rest = v.a * (v.r + ((q.cosh_less_1 + q.sinh_less_r) + v.r_low)) + v.a_low;
    *y = vecmath::scaled_sum(_mm_cvtsd_f64(v.a), _mm_cvtsd_f64(rest), _mm_cvtsi128_si32(v.n) - 1);
    return *y > std::numeric_limits<double>::max() ? frame::status_overflow : frame::status_ok;
}

struct Sinh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::beyond_hyperbolic(x); }
    static __m128d lanes(__m128d x) { return vecmath::sinh_lanes<true>(x); }
    static int32_t scalar(const double* at, double* y) {
        if (!vecmath::is_finite(*at)) {
            *y = *at + *at;
            return frame::status_ok;
        }
        const int32_t status = large(std::fabs(*at), y);
        *y = std::copysign(*y, *at);
        return status;
    }
};

template <bool InParts>
struct Cosh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::beyond_hyperbolic(x); }
    static __m128d lanes(__m128d x) { return vecmath::cosh_lanes<InParts>(x); }
    static int32_t scalar(const double* at, double* y) {
        if (!vecmath::is_finite(*at)) {
            *y = *at * *at;
            return frame::status_ok;
        }
        return large(std::fabs(*at), y);
    }
};

}  // namespace

ORV_ONE_INPUT(dSinh, la, Sinh)
ORV_ONE_INPUT(dSinh, ha, Sinh)
ORV_ONE_INPUT(dCosh, la, Cosh<true>)
ORV_ONE_INPUT(dCosh, ha, Cosh<true>)
ORV_ONE_INPUT(dCosh, ep, Cosh<false>)
