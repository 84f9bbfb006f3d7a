// dTGamma: element by element in extended precision. What lies near the ends of the range, and poles, go by the scalar path.
#include "vecmath/special/extended_lanes.h"
#include "vecmath/special/gamma.h"

namespace {

using namespace orv;

struct Gamma {
    static constexpr vecmath::ExtendedEnds ends{.first = (1023 - 1000) << 20, .last = 0x40653FFF};  // 2^-1000, 170
    static long double compute(double x) { return vecmath::gamma_extended(x); }
    static int32_t settle(double x, double* y) { return vecmath::gamma_scalar(x, y); }
};
using TGamma = vecmath::ByExtended<Gamma>;

}  // namespace

ORV_ONE_INPUT(dTGamma, la, TGamma)
