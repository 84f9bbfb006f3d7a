// Float kernels by way of double: each half of a register through the lanes of a double kernel that is good to 2^-29 or better,
// rounded once. Subnormal floats are normal doubles, so that results below the normal range are rounded once too.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/lanes.h"

namespace orv::vecmath {

// Both halves of x through f, joined as floats.
template <class F>
inline __m128 by_double(__m128 x, F f) {
    const __m128d low = f(_mm_cvtps_pd(x)), high = f(_mm_cvtps_pd(_mm_movehl_ps(x, x)));
    return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
}
template <class F>
inline __m128 by_double(__m128 x, __m128 y, F f) {
    const __m128d low = f(_mm_cvtps_pd(x), _mm_cvtps_pd(y));
    const __m128d high = f(_mm_cvtps_pd(_mm_movehl_ps(x, x)), _mm_cvtps_pd(_mm_movehl_ps(y, y)));
    return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
}

// The lanes whose magnitude has bits above `last`.
inline __m128 magnitude_beyond(__m128 x, uint32_t last) {
    const __m128i bits = simd::bits_of(simd::magnitude(x));
    return simd::floats(_mm_cmpgt_epi32(bits, _mm_set1_epi32(static_cast<int>(last))));
}

}  // namespace orv::vecmath
