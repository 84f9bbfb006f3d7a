// The block of dLog2's "EP", which is good for sLog2's "HA" too. The method stands in log_d.h.
#pragma once

#include "vecmath/exp_log/log_d.h"

namespace orv::vecmath {

inline constexpr LogCentresBlock<centres_513> log2_ep{
    .log2_high = 1.0,
    .log2_low = 0.0,
    .c1 = 0x1.71547652b82fep+0,
    .c2 = -0x1.71547652b82fep-1,
    .c3 = 0x1.ec709dc3a03fdp-2,
    .c4 = 0.0,
    .c5 = 0.0,
    .log_of_2_52 = 52,
    .rows =
        {
#include "vecmath/tables/log2_centres.inc"
        },
};

}  // namespace orv::vecmath
