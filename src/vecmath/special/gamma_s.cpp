// sTGamma: in double, rounded once. What lies near the ends of the range, and poles, go by the scalar path.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/gamma_lanes.h"

namespace {

using namespace orv;

struct TGamma : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::gamma_doubt(x); }
    static __m128 lanes(__m128 x) { return vecmath::in_double(x, vecmath::gamma_lanes); }
    static int32_t scalar(const float* x, float* y) {
        const vecmath::ExtendedPrecision extended;
        return vecmath::gamma_scalar(*x, y);
    }
};

}  // namespace

ORV_ONE_INPUT(sTGamma, la, TGamma)
