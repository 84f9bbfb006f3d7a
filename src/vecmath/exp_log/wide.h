// Single precision by way of double: the lower and the upper pair of lanes each through a function of doubles, whose
// result is rounded once.
#pragma once

#include "simd/lanes.h"

namespace orv::vecmath {

template <class F>
inline __m128 in_double(__m128 x, F f) {
    const __m128 low = _mm_cvtpd_ps(f(_mm_cvtps_pd(x)));
    const __m128 high = _mm_cvtpd_ps(f(_mm_cvtps_pd(_mm_movehl_ps(x, x))));
    return _mm_movelh_ps(low, high);
}

}  // namespace orv::vecmath
