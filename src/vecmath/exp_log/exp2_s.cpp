// sExp2: 2^x, one kernel for all accuracies.
//
// 1.5 * 2^16 carries 7 bits after the point, so x + 1.5 * 2^16 rounds x to k/128 and r = x - k/128 is exact, |r| <= 2^-8.
// The vector path serves |x| < 126.
#include "vecmath/exp_log/exp_base_s.h"

namespace {

constexpr orv::vecmath::ExpBaseSBlock exp2_block{
    .exact_reduction = true,
    .last_finite = 0x1.fffffep+6f,
    .first_zero = -150.0f,
    .last_normal = -126.0f,
    .log2_base = 1.0,
    .last_vector = 0x42FBFFFF,
    .scale = 1.0f,
    .shifter = 0x1.8p+16f,
    .unit_high = 0x1p-7f,
    .unit_low = 0.0f,
    .c1 = 0x1.62e43p-1f,
    .c2 = 0x1.ebfbep-3f,
};

}  // namespace

ORV_ONE_INPUT(sExp2, la, orv::vecmath::ExpBaseS<exp2_block>)
