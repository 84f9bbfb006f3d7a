// The natural logarithm by the method of 513 rows of log_d.h, with L = 1.
#pragma once

#include "vecmath/exp_log/log_d.h"

namespace orv::vecmath {

inline constexpr double ln_of_2_52 = 0x1.205966f2b4f12p+5;

inline constexpr Log513Block ln_513{
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

}  // namespace orv::vecmath
