// dLog1p: the natural logarithm of 1 + x.
//
// s = 1 + x rounded, and t = 1 + x - s exactly, by the sum of the greater and the smaller of 1 and x. ln(s + t) is ln s with
// t joined to the lower half of the significand of s, scaled as that is: "LA" and "HA" by the method of 513 rows (nothing
// shorter kept 1 ulp between 2^-10 and 2^-9), "EP" by the method of centres with 513 rows and a polynomial of degree 3. Next to zero s is 1 and the
// result is x less x^2/2 and so on, with no term lost.
//
// From 2^1023 on t would need a subnormal scale; it is zero there, as t is nothing beside s.
//
// The vector path serves x above -1.
#include "vecmath/exp_log/log1p.h"

namespace {

using namespace orv;

constexpr vecmath::Log513Block log1p_ha{
    .log2_high = 0x1.62e42fefa38p-1,
    .log2_low = 0x1.ef35793c7673p-45,
    .leading = 1.0,
    .q0 = 0.0,
    .q1 = -0x1.ffffffffffca9p-2,
    .q2 = 0x1.555555555512ap-2,
    .q3 = -0x1.00000d588d052p-2,
    .q4 = 0x1.9999b39037e04p-3,
    .log_of_2_52 = 0.0,
    .rows =
        {
#include "vecmath/tables/ln_513.inc"
        },
};

template <const auto& K>
struct Log1p : frame::OneInput<double, 4, frame::Tail::by_element> {
    static __m128d doubt(__m128d x) {
        // 1 + x is normal and positive above -1 and not finite where x is not.
        return K.normal.doubt(x + vecmath::log1p_limits.one);
    }

    static __m128d lanes(__m128d x) { return vecmath::log1p_lanes<K>(x); }

    static int32_t scalar(const double* at, double* y) {
        int32_t status;
        vecmath::settled_log(*at, -1.0, y, status);  // all that is in doubt
        return status;
    }
};

}  // namespace

ORV_ONE_INPUT(dLog1p, la, Log1p<log1p_ha>)
ORV_ONE_INPUT(dLog1p, ha, Log1p<log1p_ha>)
ORV_ONE_INPUT(dLog1p, ep, Log1p<vecmath::log1p_ep>)
