// dLGamma: element by element in extended precision. Poles, and what lies near the ends of the range, go by the scalar path.
#include "vecmath/special/extended_lanes.h"
#include "vecmath/special/ln_gamma.h"

namespace {

using namespace orv;

struct LnGamma {
    static constexpr vecmath::ExtendedEnds ends{.first = 1 << 20, .last = 0x7F400000};  // 2^-1022, 2^1013
    static long double compute(double x) { return vecmath::ln_gamma_extended(x); }
    static int32_t settle(double x, double* y) { return vecmath::ln_gamma_scalar(x, y); }
};
using LGamma = vecmath::ByExtended<LnGamma>;

}  // namespace

ORV_ONE_INPUT(dLGamma, la, LGamma)
