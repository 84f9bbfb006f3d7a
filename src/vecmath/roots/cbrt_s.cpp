// sCbrt: the cube root, by the table of cube_root_s.h. Subnormal arguments are scaled by 2^24. A result is never subnormal.
#include "vecmath/roots/cube_root_s.h"

namespace {

using namespace orv;
using vecmath::Precision;

// fpminimax(expm1(log1p(x) / 3) / x, 2, [|SG...|], [-0.0084; 0.0084], absolute): 2^-33.6 of the result.
constexpr vecmath::CubeRootS constants{
    .q0 = 0x1.555556p-2f,
    .q1 = -0x1.c71ebap-4f,
    .q2 = 0x1.f8283ep-5f,
    .q0_alone = 0x1.555556p-2f,
    .bias = 127 - 42,
    .rows =
        {
#include "vecmath/tables/cbrt_float_64.inc"
        },
};

template <Precision Of>
struct Cbrt : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::not_normal(x); }
    static __m128 lanes(__m128 x) { return vecmath::cube_root<constants, false, Of>(x); }
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (x == 0 || !vecmath::is_finite(x))
            *y = x * vecmath::at_run_time(1.0f);
        else
            simd::store_one(y, lanes(simd::splat(x * 0x1p+24f)) * simd::splat(0x1p-8f));
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(sCbrt, la, Cbrt<Precision::la>)
ORV_ONE_INPUT(sCbrt, ha, Cbrt<Precision::ha>)
ORV_ONE_INPUT(sCbrt, ep, Cbrt<Precision::ep>)
