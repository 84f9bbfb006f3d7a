// Doubles as unevaluated sums of two, and the arithmetic that keeps what rounding takes away. Nothing here is safe from overflow, or from
// underflow of the low parts.
#pragma once

#include "simd/constants.h"

namespace orv::vecmath {

struct Pair {
    __m128d high, low;
};

// The upper half of a significand: products of two such numbers are exact.
inline constexpr simd::SplatBits<uint64_t> upper_26_bits{0xFFFFFFFFF8000000};
inline __m128d upper_26(__m128d x) { return simd::bit_and(x, simd::doubles(upper_26_bits)); }

// a + b for |a| >= |b| or a = 0; and for any two.
inline Pair sum(__m128d a, __m128d b) {
    const __m128d total = a + b;
    return {total, (a - total) + b};
}
inline Pair two_sum(__m128d a, __m128d b) {
    const __m128d total = a + b, b_in_it = total - a;
    return {total, (a - (total - b_in_it)) + (b - b_in_it)};
}
// Of two pairs that are not negative.
inline Pair sum_of_positive(Pair a, Pair b) {
    const Pair total = sum(simd::greatest(a.high, b.high), simd::least(a.high, b.high));
    return {total.high, total.low + (a.low + b.low)};
}

inline Pair square(__m128d x) {
    const __m128d high = upper_26(x), low = x - high, product = x * x;
    return {product, ((high * high - product) + (high + high) * low) + low * low};
}
inline Pair square(Pair x) {
    const Pair product = square(x.high);
    return {product.high, product.low + (x.high + x.high) * x.low};
}

// The root of a.high + a.low, a.high above 0.
inline Pair root(Pair a) {
    const __m128d s = simd::square_root(a.high);
    const __m128d high = upper_26(s), low = s - high;
    const __m128d left = ((a.high - high * high) - (high + high) * low) - low * low;
    return {s, (left + a.low) / (s + s)};
}

// n/d: a quotient q of 26 bits has an exact product with the leading 26 bits of d, and what n exceeds that product by, over
// d, completes it. That is below 2^-24 of q, and its rounding errors as much below the last rounding's. The low parts may be of any size up to a
// small part of the high ones.
inline Pair quotient(Pair n, Pair d) {
    const __m128d inverse = simd::splat(1.0) / (d.high + d.low);
    const __m128d q = upper_26(n.high * inverse);
    const __m128d d_lead = upper_26(d.high);
    const __m128d d_rest = (d.high - d_lead) + d.low;
    return {q, ((n.high - q * d_lead) + (n.low - q * d_rest)) * inverse};
}

}  // namespace orv::vecmath
