// dLog10: the logarithm to base 10.
//
// "HA": the method of 513 rows of log_d.h with L = 0.43359375, which is log10 e to 7 bits. In R = L r the polynomial's
// linear rest is log10(e) / L - 1 = 0.0016, so that the leading term of the result is exact.
// "LA", "EP": the method of centres with 257 rows and a polynomial of degree 5.
//
// Next to 1 it is the polynomial's own error that shows in "LA" and "EP".
#include "vecmath/exp_log/log10_513.h"

namespace {

using namespace orv;

constexpr vecmath::LogCentresBlock<vecmath::centres_257> log10_la{
    .log2_high = 0x1.34413509f8p-2,
    .log2_low = -0x1.80433b83b532ap-44,
    .c1 = 0x1.bcb7b1526e50ep-2,
    .c2 = -0x1.bcb7b1526b6bbp-3,
    .c3 = 0x1.287a7636f0131p-3,
    .c4 = -0x1.bcb80df8c56d7p-4,
    .c5 = 0x1.63c6841b96ed4p-4,
    .log_of_2_52 = vecmath::log10_of_2_52,
    .rows =
        {
#include "vecmath/tables/log10_257.inc"
        },
};

}  // namespace

ORV_ONE_INPUT(dLog10, la, vecmath::LogD<log10_la>)
ORV_ONE_INPUT(dLog10, ha, vecmath::LogD<vecmath::log10_513>)
