// dExp2: 2^x, one kernel for all accuracies.
//
// 1.5 * 2^46 carries 6 bits after the point, so x + 1.5 * 2^46 rounds x to k/64 with k in its low bits: a table of 64 rows,
// and r = x - k/64 exact, |r| <= 2^-7. The polynomial of 2^r - 1 has degree 5.
//
// The vector path serves |x| < 1022.
#include "vecmath/exp_log/exp_base_d.h"

namespace {

using namespace orv;

constexpr vecmath::ExpBaseBlock<64> exp2_block{
    .exact_reduction = true,
    .last_finite = 0x1.fffffffffffffp+9,
    .first_zero = -1075,
    .last_normal = -1022,
    .last_vector_high = 0x408FEFFF,
    .scale = 1.0,
    .shifter = 0x1.8p+46,
    .unit_high = 0x1p-6,
    .unit_low = 0.0,
    .c1 = 0x1.62e42fefa39efp-1,
    .c2 = 0x1.ebfbdff82a23ap-3,
    .c3 = 0x1.c6b08d7076268p-5,
    .c4 = 0x1.3b2ad33f8b48bp-7,
    .c5 = 0x1.5d870c4d8440ap-10,
    .rows =
        {
#include "vecmath/tables/exp2_64.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dExp2, la, vecmath::ExpBase<exp2_block>)
