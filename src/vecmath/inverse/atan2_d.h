// The angle of points in doubles.
//
// With q = |a| / |b| rounded, the rows of atan_d.h give a c next to q, below 2^-5 the upper half of q itself:
//
//   atan(|a| / |b|) = atan c + atan t,  t = (|a| - c |b|) / (|b| + c |a|).
//
// c has so few bits that its products with both halves of |b| are exact, and |a| less the first of them too, so that t
// carries what q lost. For a negative b the angle is taken from pi, with the rounding error of that difference. "EP" has one
// part of everything.
#pragma once

#include "vecmath/inverse/atan_d.h"

namespace orv::vecmath {

struct TurnBlock {
    simd::Splat<double> half_high, half_low;  // half a turn
    simd::SplatBits<uint32_t> first{(1023 - 150) << 20}, last{((1023 + 150) << 20) - 1};
};
inline constexpr TurnBlock turn_radians{0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53}, turn_half_turns{1.0, 0.0};

// high + tail, or half a turn less that where the sign `minus` is set.
template <const TurnBlock& Turn, bool Short>
inline __m128d from_half_turn(__m128d high, __m128d tail, __m128d minus) {
    const __m128d behind =
        simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(minus), 31), _MM_SHUFFLE(3, 3, 1, 1)));
    const __m128d half = simd::bit_and(behind, Turn.half_high);
    high = simd::bit_xor(high, minus);
    tail = simd::bit_xor(tail, minus);
    const __m128d sum = half + high;
    if constexpr (Short) return sum + tail;
    return sum + (((half - sum) + high) + (tail + simd::bit_and(behind, Turn.half_low)));
}

// Of exponents within 150 of 0.
template <const AtanBlock& K, const TurnBlock& Turn, bool Short>
inline __m128d atan2_lanes(__m128d a, __m128d b) {
    const __m128d minus = simd::sign_of(b);
    const __m128d y = simd::magnitude(a), x = simd::magnitude(b);
    const __m128d q = y / x;
    const AtanRow row = atan_row<K>(q);
    __m128d high, tail;
    if constexpr (Short) {
        const __m128d t = (y - row.c * x) / (x + row.c * y);
        const __m128d rest = atan_rest<K, true>(t);
        high = row.high;
        tail = K.in_pi ? t * K.inv_pi + rest : t + rest;
    } else {
        const __m128d small = simd::equal(row.c, _mm_setzero_pd());
        const __m128d c_small = simd::bit_and(simd::bit_and(q, simd::doubles(K.upper)), small);
        const __m128d c = simd::bit_or(row.c, c_small);
        const __m128d x_high = simd::bit_and(x, simd::doubles(K.upper));
        const __m128d t = ((y - c * x_high) - c * (x - x_high)) / (x + c * y);
        const __m128d rest = atan_rest<K, false>(simd::bit_or(simd::bit_and_not(small, t), c_small));
        if constexpr (K.in_pi) {
            // For a small c the first product is exact.
            high = row.high + c_small * K.inv_pi_high;
            tail = t * K.inv_pi + ((row.low + c_small * K.inv_pi_low) + rest);
        } else {
            high = simd::bit_or(row.high, c_small);
            tail = t + (row.low + rest);
        }
    }
    return simd::bit_or(from_half_turn<Turn, Short>(high, tail, minus), simd::sign_of(a));
}

}  // namespace orv::vecmath
