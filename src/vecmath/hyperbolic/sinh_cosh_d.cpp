// dSinh and dCosh (sinh_cosh_rows_d.h).
#include "vecmath/hyperbolic/sinh_cosh_rows_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace {

using namespace orv;

// Beyond the vector path the sine is the cosine, in two factors.
inline int32_t large(double magnitude, double* y) {
    if (magnitude > 0x1.633ce8fb9f87dp+9) {
        *y = vecmath::overflow<double>();
        return frame::status_overflow;
    }
    const vecmath::HyperbolicRow row = vecmath::hyperbolic_row(simd::splat(magnitude));
    const int n = static_cast<int>(_mm_cvtsd_f64(row.k)) >> vecmath::row_bits;
    *y = vecmath::scaled_sum(2 * _mm_cvtsd_f64(row.c), 2 * _mm_cvtsd_f64(vecmath::cosh_less_c(row)), n - 1);
    return *y > std::numeric_limits<double>::max() ? frame::status_overflow : frame::status_ok;
}

struct Sinh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::beyond_hyperbolic(x); }
    static __m128d lanes(__m128d x) { return vecmath::sinh_lanes(x); }
    static int32_t scalar(const double* at, double* y) {
        if (!vecmath::is_finite(*at)) {
            *y = *at + *at;
            return frame::status_ok;
        }
        const int32_t status = large(std::fabs(*at), y);
        *y = std::copysign(*y, *at);
        return status;
    }
};

template <__m128d lanes_of(__m128d)>
struct Cosh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::beyond_hyperbolic(x); }
    static __m128d lanes(__m128d x) { return lanes_of(x); }
    static int32_t scalar(const double* at, double* y) {
        if (!vecmath::is_finite(*at)) {
            *y = *at * *at;
            return frame::status_ok;
        }
        return large(std::fabs(*at), y);
    }
};

}  // namespace

ORV_ONE_INPUT(dSinh, la, Sinh)
ORV_ONE_INPUT(dSinh, ha, Sinh)
ORV_ONE_INPUT(dCosh, la, Cosh<vecmath::cosh_lanes>)
ORV_ONE_INPUT(dCosh, ha, Cosh<vecmath::cosh_lanes>)
ORV_ONE_INPUT(dCosh, ep, Cosh<vecmath::cosh_short_lanes>)
