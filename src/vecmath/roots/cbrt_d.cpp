// dCbrt: the cube root, by the table of cube_root_d.h.
//
// "HA" has u exact, "LA" and "EP" round m c once. Subnormal arguments are scaled by 2^54. A result is never subnormal.
#include "vecmath/roots/cube_root_d.h"

namespace {

using namespace orv;
using vecmath::Product;

// fpminimax(expm1(log1p(x) / 3) / x, 5, [|D...|], [-0.0084; 0.0084], absolute): 2^-59.0 of the result.
constexpr vecmath::CubeRootD constants{
    .q0 = 0x1.5555555555559p-2,
    .q1 = -0x1.c71c71c71c768p-4,
    .q2 = 0x1.f9add3b983f82p-5,
    .q3 = -0x1.511e8d1e4a652p-5,
    .q4 = 0x1.ee797f52e09fap-6,
    .q5 = -0x1.809a3873f2639p-6,
    .q6 = 0.0,
    .bias = 1023 - 341,
    .rows =
        {
#include "vecmath/tables/cbrt_64.inc"
        },
};

template <Product Of>
struct Cbrt : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::not_normal(x); }
    static __m128d lanes(__m128d x) { return vecmath::cube_root<constants, false, Of>(x); }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (x == 0 || !vecmath::is_finite(x))
            *y = x * vecmath::at_run_time(1.0);
        else
            simd::store_one(y, lanes(simd::splat(x * 0x1p+54)) * simd::splat(0x1p-18));
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dCbrt, la, Cbrt<Product::rounded>)
ORV_ONE_INPUT(dCbrt, ha, Cbrt<Product::exact>)
