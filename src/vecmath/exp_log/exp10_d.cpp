// dExp10: 10^x, one kernel for all accuracies.
//
// k is the integer next to 128 x / log10 2, and r = x - k log10(2) / 128, |r| <= 0.00118, with log10(2) / 128 in two parts,
// so that k times the first is exact. 10^r - 1 is a polynomial of degree 5. The 2^47 in the shifter lies above all bits
// that are read.
//
// The vector path serves |x| with a high word up to 0x40733A70 (307.652).
#include "vecmath/exp_log/exp_base_d.h"

namespace {

using namespace orv;

constexpr vecmath::ExpBaseBlock<128> exp10_block{
    .exact_reduction = false,
    .last_finite = 0x1.34413509f79fep+8,
    .first_zero = -0x1.439b746e36b53p+8,
    .last_normal = -0x1.33a7146f72a41p+8,
    .last_vector_high = 0x40733A70,
    .scale = 0x1.a934f0979a371p+8,
    .shifter = 0x1.88p+52,
    .unit_high = 0x1.3441350ap-9,
    .unit_low = -0x1.0c0219dc1da99p-46,
    .c1 = 0x1.26bb1bbb55516p+1,
    .c2 = 0x1.53524c73ce8e3p+1,
    .c3 = 0x1.0470591ccea8bp+1,
    .c4 = 0x1.2bd767584db59p+0,
    .c5 = 0x1.144c03efafb54p-1,
    .rows =
        {
#include "vecmath/tables/exp2_128.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dExp10, la, vecmath::ExpBase<exp10_block>)
