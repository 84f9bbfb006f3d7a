// dInvCbrt: the reciprocal of the cube root, by the table of cube_root_d.h. One kernel for all accuracies.
//
// Subnormal arguments are scaled by 2^54. A result is never subnormal.
#include "vecmath/roots/cube_root_d.h"

namespace {

using namespace orv;

// fpminimax(expm1(-log1p(x) / 3) / x, 6, [|D...|], [-0.0084; 0.0084], absolute): 2^-63.9 of the result.
constexpr vecmath::CubeRootD constants{
    .q0 = -0x1.5555555555555p-2,
    .q1 = 0x1.c71c71c71c79cp-3,
    .q2 = -0x1.61f9add3d3505p-3,
    .q3 = 0x1.26fabb7803041p-3,
    .q4 = -0x1.ff4c23da7307p-4,
    .q5 = 0x1.c6888b05901a3p-4,
    .q6 = -0x1.9d3a101be376bp-4,
    .bias = 1023 + 341,
    .rows =
        {
#include "vecmath/tables/inv_cbrt_64.inc"
        },
};

struct InvCbrt : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::not_normal(x); }
    static __m128d lanes(__m128d x) { return vecmath::cube_root<constants, true, vecmath::Product::exact>(x); }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (x == 0 || !vecmath::is_finite(x)) {
            *y = 1.0 / (x * vecmath::at_run_time(0x1p+54));
            return x == 0 ? frame::status_singularity : frame::status_ok;
        }
        simd::store_one(y, lanes(simd::splat(x * 0x1p+54)) * simd::splat(0x1p+18));
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dInvCbrt, la, InvCbrt)
