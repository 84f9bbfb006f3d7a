// The angle of points in doubles.
//
// With q = |a| / |b| rounded, the rows of atan_d.h give a c next to q, below
// 2^-5 the upper half of q itself:
//
//   atan(|a| / |b|) = atan c + atan t,  t = (|a| - c |b|) / (|b| + c |a|).
//
// c has so few bits that its products with both halves of |b| are exact, and
// |a| less the first of them too, so that t carries what q lost, and what a and
// b themselves leave to low parts. For a negative b the angle is taken from pi,
// with the rounding error of that difference. "EP" has one part of everything.
#pragma once

#include "vecmath/exp_log/pairs_d.h"
#include "vecmath/inverse/atan_d.h"

#include <math.h>

#include <algorithm>

namespace orv::vecmath {

struct TurnBlock {
    simd::Splat<double> half_high, half_low;  // half a turn
    simd::SplatBits<uint32_t> first{(1023 - 150) << 20}, last{((1023 + 150) << 20) - 1};
};
inline constexpr TurnBlock turn_radians{0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53}, turn_half_turns{1.0, 0.0};

// high + tail, or half a turn less that where the sign `minus` is set.
template <const TurnBlock& Turn, bool Short>
inline Pair from_half_turn(__m128d high, __m128d tail, __m128d minus) {
    const __m128d behind =
        simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(minus), 31), _MM_SHUFFLE(3, 3, 1, 1)));
    const __m128d half = simd::bit_and(behind, Turn.half_high);
    high = simd::bit_xor(high, minus);
    tail = simd::bit_xor(tail, minus);
    const __m128d sum = half + high;
    if constexpr (Short) return {sum, tail};
    return {sum, ((half - sum) + high) + (tail + simd::bit_and(behind, Turn.half_low))};
}

// The magnitude of the angle. Of exponents within 150 of 0. `low` is nothing,
// or a_low and b_low: what to add to a and b.
template <const AtanBlock& K, const TurnBlock& Turn, bool Short, class... Low>
inline Pair atan2_in_two(__m128d a, __m128d b, Low... low) {
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
        __m128d above = (y - c * x_high) - c * (x - x_high);
        if constexpr (sizeof...(low) == 2) {
            const Pair rest{low...};
            above = above + (simd::bit_xor(rest.high, simd::sign_of(a)) - c * simd::bit_xor(rest.low, minus));
        }
        const __m128d t = above / (x + c * y);
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
    return from_half_turn<Turn, Short>(high, tail, minus);
}
template <const AtanBlock& K, const TurnBlock& Turn, bool Short, class... Low>
inline __m128d atan2_lanes(__m128d a, __m128d b, Low... low) {
    const Pair angle = atan2_in_two<K, Turn, Short>(a, b, low...);
    return simd::bit_or(angle.high + angle.low, simd::sign_of(a));
}

// ---- A single point, of any exponents
// ---------------------------------------------------------------------------------

// eighths / 8 of half a turn.
template <const TurnBlock& Turn>
inline double part_of_turn(int eighths) {
    const double part = eighths * 0.125;
    return part * double{Turn.half_high} + at_run_time(part * double{Turn.half_low});
}

// 2^n a / b, over pi where that is the unit, rounded once, of a and b in [1/2,
// 1).
template <const AtanBlock& K>
inline double scaled_quotient(double a, double b, int n) {
    if constexpr (!K.in_pi) {
        n = std::max(n, -1100);
        const int top = std::max(n, -1000);
        return std::ldexp(a, top) / std::ldexp(b, top - n);
    } else {
        const double q = a / b, q_high = simd::first_lane(upper_26(simd::splat(q))),
                     b_high = simd::first_lane(upper_26(simd::splat(b)));
        const double left = ((a - q_high * b_high) - q_high * (b - b_high)) / b;
        return scaled_sum(4 * q_high * double{K.inv_pi_high},
                          4 * (left * double{K.inv_pi} + q_high * double{K.inv_pi_low}), std::max(n, -1080) - 2);
    }
}

// The angle of (b, a), or of (-b, a), for a and b that are not negative.
template <const AtanBlock& K, const TurnBlock& Turn, bool Short>
inline double angle(double a, double b, bool minus) {
    const double infinity = std::numeric_limits<double>::infinity();
    if (a == infinity) return part_of_turn<Turn>(b != infinity ? 4 : minus ? 6 : 2);
    if (a == 0 || b == infinity) return minus ? part_of_turn<Turn>(8) : 0.0;
    if (b == 0) return part_of_turn<Turn>(4);
    int a_exponent, b_exponent;
    const double a_part = fraction_of(a, &a_exponent), b_part = fraction_of(b, &b_exponent);
    const int apart = a_exponent - b_exponent;
    if (apart > 70) return part_of_turn<Turn>(4);
    if (apart < -70) return minus ? part_of_turn<Turn>(8) : scaled_quotient<K>(a_part, b_part, apart);
    const double sign = minus ? -1.0 : 1.0;
    return _mm_cvtsd_f64(
        atan2_lanes<K, Turn, Short>(simd::splat(std::ldexp(a_part, apart)), simd::splat(b_part * sign)));
}

}  // namespace orv::vecmath
