// The method of 513 rows for the decimal logarithm.
#pragma once

#include "vecmath/exp_log/log_d.h"

namespace orv::vecmath {

inline constexpr double log10_of_2_52 = 0x1.f4e9f6303263ep+3;

// L is log10 e to 7 bits. In R = L r the polynomial's linear rest is log10(e) / L - 1 = 0.0016.
inline constexpr Log513Block log10_513{
    .log2_high = 0x1.34413509f78p-2,
    .log2_low = 0x1.fef311f12b358p-46,
    .leading = 0x1.bcp-2,
    .q0 = 0x1.a7a6cbf2e4108p-10,
    .q1 = -0x1.27af2dc77af28p+0,
    .q2 = 0x1.c6a02dc962e0fp+0,
    .q3 = -0x1.8930aac7d7c5p+1,
    .q4 = 0x1.6aba0f9751ec1p+2,
    .log_of_2_52 = log10_of_2_52,
    .rows =
        {
#include "vecmath/tables/log10_513.inc"
        },
};

}  // namespace orv::vecmath
