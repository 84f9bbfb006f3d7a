// sExp10: 10^x, one kernel for all accuracies.
//
// k is the integer next to 128 x / log10 2, and r = x - k log10(2) / 128, |r| <= 0.00118, with log10(2) / 128 in two parts,
// so that k times the first, of 8 bits, is exact.
// The vector path serves |x| < 37.9.
#include "vecmath/exp_log/exp_base_s.h"

namespace {

constexpr orv::vecmath::ExpBaseSBlock exp10_block{
    .exact_reduction = false,
    .last_finite = 0x1.344134p+5f,
    .first_zero = -0x1.693c6cp+5f,
    .last_normal = -0x1.2f703p+5f,
    .log2_base = 0x1.a934f0979a371p+1,
    .last_vector = 0x42179999,
    .scale = 0x1.a934fp+8f,
    .shifter = 0x1.8p+23f,
    .unit_high = 0x1.34p-9f,
    .unit_low = 0x1.04d428p-19f,
    .c1 = 0x1.26bb1cp+1f,
    .c2 = 0x1.53524cp+1f,
};

}  // namespace

ORV_ONE_INPUT(sExp10, la, orv::vecmath::ExpBaseS<exp10_block>)
