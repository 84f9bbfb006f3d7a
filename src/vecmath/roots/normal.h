// Tests of arguments by their bits, which raise nothing: masks by their lanes' sign bits.
#pragma once

#include "simd/integers.h"

namespace orv::vecmath {

// Zeros, subnormals, infinities and NaNs. With the sign shifted out, what is below the least normal number wraps round to the
// top, and the others lie there.
inline __m128 not_normal(__m128 x) {
    const __m128i offset = _mm_sub_epi32(simd::shift_left_32<1>(simd::bits_of(x)), simd::splat_32(0x81000000u));
    return simd::floats(simd::greater_32(offset, simd::splat_32(0x7DFFFFFF)));
}
inline __m128d not_normal(__m128d x) {
    const __m128i offset = _mm_sub_epi32(simd::shift_left_32<1>(simd::bits_of(x)), simd::splat_32(0x80200000u));
    return simd::doubles(simd::greater_32(offset, simd::splat_32(0x7FBFFFFF)));
}

// These and everything negative. Adding the least normal number's bits turns the sign bit on, or taking them away does.
inline __m128 not_positive_normal(__m128 x) {
    const __m128i bits = simd::bits_of(x), least = simd::splat_32(0x00800000);
    return simd::floats(simd::bit_or(_mm_add_epi32(bits, least), _mm_sub_epi32(bits, least)));
}
inline __m128d not_positive_normal(__m128d x) {
    const __m128i bits = simd::bits_of(x), least = simd::splat_32(0x00100000);
    return simd::doubles(simd::bit_or(_mm_add_epi32(bits, least), _mm_sub_epi32(bits, least)));
}

}  // namespace orv::vecmath
