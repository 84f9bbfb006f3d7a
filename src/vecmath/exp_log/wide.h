// Single precision by way of double: the lower and the upper pair of lanes each through a function of doubles, whose
// result is rounded once.
#pragma once

#include "simd/lanes.h"

namespace orv::vecmath {

template <class F>
inline __m128 in_double(__m128 x, F f) {
    return simd::narrow(f(simd::widen_low(x)), f(simd::widen_high(x)));
}

}  // namespace orv::vecmath
