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
#include "vecmath/exp_log/ln_513.h"

namespace {

using namespace orv;
using vecmath::ln_513;

struct LnHa : vecmath::LogD<ln_513> {
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
    .log_of_2_52 = vecmath::ln_of_2_52,
    .rows =
        {
#include "vecmath/tables/ln_257.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dLn, la, LnHa)
ORV_ONE_INPUT(dLn, ep, vecmath::LogD<ln_ep>)
