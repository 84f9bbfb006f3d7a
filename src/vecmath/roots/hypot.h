// What the kernels of Hypot share.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

// In doubt where the larger magnitude lies outside [First, End), given by the bits of floats or by the upper words of doubles.
// Infinities and NaNs are the largest.
template <uint32_t First, uint32_t End, class V>
inline V larger_outside(V a, V b) {
    const __m128i magnitude = simd::splat_32(0x7FFFFFFF);
    const __m128i larger =
        simd::greatest_32(simd::bit_and(simd::bits_of(a), magnitude), simd::bit_and(simd::bits_of(b), magnitude));
    constexpr uint32_t bottom = First + 0x80000000u;
    const __m128i outside =
        simd::greater_32(simd::subtract_32(larger, simd::splat_32(bottom)), simd::splat_32(End - bottom - 1));
    if constexpr (sizeof(V{}[0]) == 4)
        return simd::floats(outside);
    else
        return simd::doubles(outside);
}

// The arguments that have one answer each. True where they are such, with the answer in y and the status.
template <class T>
inline bool hypot_of_special(T a, T b, T* y, int32_t* status) {
    *status = frame::status_ok;
    if (is_finite(a) && is_finite(b)) return false;
    const bool infinite = (!is_finite(a) && !is_nan(a)) || (!is_finite(b) && !is_nan(b));
    *y = infinite ? std::numeric_limits<T>::infinity() : a * at_run_time(b);
    return true;
}

}  // namespace orv::vecmath
