// dLog2: the logarithm to base 2.
//
// "HA": the method of 513 rows of log_d.h with L = 1.4453125, which is log2 e to 9 bits. In R = L r the polynomial's
// linear rest is log2(e) / L - 1 = -0.0018, so that the leading term of the result is exact; the other coefficients are
// dLn's by log2(e) / L^i. log2 2 is 1 and has no low part.
// "LA", "EP": the method of centres with 513 rows, folded above 724 / 512 = 1.414, so that |r| < 2^-9.9 on both sides of 1;
// a polynomial of degree 5 in "LA", the Taylor polynomial of degree 3 in "EP". "LA" has an exact leading term with L = 1.5,
// without which rounding log2(e) r would cost another half ulp.
//
// Powers of two are exact in every accuracy. A subnormal argument takes one rounding more.
#include "vecmath/exp_log/log2.h"

namespace {

using namespace orv;

constexpr vecmath::Log513Block log2_ha{
    .log2_high = 1.0,
    .log2_low = 0.0,
    .leading = 0x1.72p+0,
    .q0 = -0x1.dabe1161bb241p-10,
    .q1 = -0x1.619b6b3841adcp-2,
    .q2 = 0x1.4635e486ecadp-3,
    .q3 = -0x1.528dcb9fa72e1p-4,
    .q4 = 0x1.76c9d289ed1dp-5,
    .log_of_2_52 = 52,
    .rows =
        {
#include "vecmath/tables/log2_513.inc"
        },
};

constexpr double la_factor = 1.5;
constexpr vecmath::LogCentresBlock<vecmath::centres_513_exact> log2_la{
    .log2_high = 1.0,
    .log2_low = 0.0,
    .c1 = (0x1.71547652b82fep+0 - la_factor) / la_factor,
    .c2 = -0x1.71547652b7cf8p-1 / (la_factor * la_factor),
    .c3 = 0x1.ec709dc39e926p-2 / (la_factor * la_factor * la_factor),
    .c4 = -0x1.715494c3e7c9bp-2 / (la_factor * la_factor * la_factor * la_factor),
    .c5 = 0x1.2776e996da1d2p-2 / (la_factor * la_factor * la_factor * la_factor * la_factor),
    .log_of_2_52 = 52,
    .rows =
        {
#include "vecmath/tables/log2_centres_exact.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dLog2, la, vecmath::LogD<log2_la>)
ORV_ONE_INPUT(dLog2, ha, vecmath::LogD<log2_ha>)
ORV_ONE_INPUT(dLog2, ep, vecmath::LogD<vecmath::log2_ep>)
