// sSinh, sCosh, sTanh by the double kernels' lanes in one part (sinh_cosh_d.h, tanh_d.h). "LA" and "EP" have lanes in float
// (hyperbolic_float_s.cpp) and all else from here.
#pragma once

#include "vecmath/exp_log/special.h"
#include "vecmath/hyperbolic/sinh_cosh_d.h"
#include "vecmath/hyperbolic/tanh_d.h"
#include "vecmath/inverse/by_double.h"

#include <math.h>

namespace orv::vecmath::float_by_double {

// The vector path up to 89.4, beyond which floats overflow; |x| up to 708 has a finite result in double.
template <__m128d function(__m128d)>
struct Growing : frame::OneInput<float, 4, frame::Tail::masked> {
    static constexpr uint32_t last_bits = 0x42B2D4FC;  // 89.4159851
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, last_bits); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return function(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        const float signs = _mm_cvtss_f32(lanes(_mm_set1_ps(std::copysign(1.0f, is_nan(x) ? 1.0f : x))));
        if (!is_finite(x)) {
            *y = is_nan(x) ? quiet(x) : std::copysign(std::fabs(x), signs);
            return frame::status_ok;
        }
        *y = std::copysign(overflow<float>(), signs);
        return frame::status_overflow;
    }
};

struct Tanh : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return tanh_lanes<false>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        *y = is_nan(*at) ? quiet(*at) : std::copysign(1.0f, *at);
        return frame::status_ok;
    }
};

using Sinh = Growing<sinh_lanes<false>>;
using Cosh = Growing<cosh_lanes<false>>;

}  // namespace orv::vecmath::float_by_double
