// dLn: the natural logarithm.
//
// "LA" and "HA": the method of 513 rows of log_d.h with L = 1.
//
// "EP": the method of centres with 257 rows, the polynomial ending with r^2.
//
// The vector path serves positive normal arguments. Subnormals are scaled by 2^52 first.
//
// A subnormal argument takes one rounding more. The error of "EP" is what ending with r^2 costs next to 1; away from 1 its
// absolute error stays below 2^-28.
#include "vecmath/exp_log/log_d.h"

namespace {

using namespace orv;

constexpr double ln_of_2_52 = 0x1.205966f2b4f12p+5;

constexpr vecmath::Log513Block ln_ha{
    .log2_high = 0x1.62e42fefa38p-1,
    .log2_low = 0x1.ef35793c7673p-45,
    .leading = 1.0,
    .q0 = 0.0,
    .q1 = -0x1.ffffffffffca9p-2,
    .q2 = 0x1.555555555512ap-2,
    .q3 = -0x1.00000d588d052p-2,
    .q4 = 0x1.9999b39037e04p-3,
    .log_of_2_52 = ln_of_2_52,
    .rows =
        {
#include "vecmath/tables/ln_513.inc"
        },
};

struct LnHa : vecmath::LogD<ln_ha> {
    static constexpr frame::Rejected rejected = frame::Rejected::whole_block;
};

constexpr vecmath::LogCentresBlock<vecmath::centres_257> ln_ep{
    .log2_high = 0x1.62e42fefa4p-1,
    .log2_low = 0.0,
    .c1 = 1.0,
    .c2 = -0x1.fffffffffcaaep-2,
    .c3 = 0.0,
    .c4 = 0.0,
    .c5 = 0.0,
    .log_of_2_52 = ln_of_2_52,
    .rows =
        {
#include "vecmath/tables/ln_257.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dLn, la, LnHa)
ORV_ONE_INPUT(dLn, ep, vecmath::LogD<ln_ep>)
