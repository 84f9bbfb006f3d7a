// Elementary functions of one number, for the set-up of a distribution or a statistic.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

ORV_API double __kuzdLn(double x) { return accurate(orv_arq_kernel_dLn_ttab[1], x); }

ORV_API float __kuzsLn(float x) { return accurate(orv_arq_kernel_sLn_ttab[1], x); }

ORV_API double __kuzdLGamma(double x) { return accurate(orv_arq_kernel_dLGamma_ttab[1], x); }

ORV_API double __kuzdSqrt(double x) { return simd::first_lane(simd::square_root(simd::load_one(&x))); }

ORV_API double __kuzdFloor(double x) {
    return simd::first_lane(simd::round<_MM_FROUND_TO_NEG_INF>(simd::load_one(&x)));
}
