// The arc tangent of doubles by rows, in radians or in units of pi.
//
// The exponent and the five leading fraction bits of x > 0 select a row, whose c is in the middle of what it serves:
//
//   atan x = atan c + atan t,  t = (x - c) / (1 + c x).
//
// x - c is exact. t is 1/64 of x at the most, so that its three roundings are a twentieth of an ulp of the sum. Below 2^-5 c is
// 0 and t is x; from 2^6 on c is 2^100 and t is -1/x. atan t = t + t^3 P(t^2) with |t| < 2^-5. In units of pi t is multiplied by
// 1/pi in two parts, of which the leading product is exact, or for "LA" in one.
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

inline constexpr uint32_t atan_last_row = 353;

struct AtanBlock {
    bool in_pi;
    alignas(16) double rows[atan_last_row + 1][4];     // c, atan c high and low
    double unit = in_pi ? 0x1.45f306dc9c883p-2 : 1.0;  // of radians
    // fpminimax((atan(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-10]): 2^-60 of atan t
    simd::Splat<double> c0{-0x1.555555555554ap-2 * unit}, c1{0x1.99999998e0dcep-3 * unit},
        c2{-0x1.24923aa7a2fddp-3 * unit}, c3{0x1.c662a35938792p-4 * unit};
    // The same of degree 1: 2^-35
    simd::Splat<double> short_c0{-0x1.5555543102636p-2 * unit}, short_c1{0x1.995081debfb2ep-3 * unit};
    simd::Splat<double> one{1.0}, most{0x1p+200}, inv_pi{0x1.45f306dc9c883p-2}, inv_pi_high{0x1.45f306p-2},
        inv_pi_low{0x1.b9391054a7f0ap-27};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF}, sign{0x8000000000000000}, upper{0xFFFFFFFFF8000000};
    // Of high words, right by 15: the exponent and five bits; what stands before row 1, and the last row. In the lower half of
    // a lane these leave anything.
    simd::SplatBits<uint32_t> before_first{((1023 - 5) << 5) - 1}, no_row{0}, last_row{atan_last_row};
    simd::SplatBits<uint32_t> greatest{0x7FEFFFFF};
    simd::Splat<double> least_square{0x1p-200};  // what is below has no part in P: its square would underflow
    // The least whose products by parts of 1/pi are exact, 2^-900, to the bottom of the signed range, and what becomes of `greatest`.
    simd::SplatBits<uint32_t> to_bottom{0x80000000 - ((1023 - 900) << 20)},
        greatest_from_bottom{0x7FEFFFFF + 0x80000000 - ((1023 - 900) << 20)};
};

struct AtanRow {
    __m128d c, high, low;
};
// Of x > 0, by its high word.
template <const AtanBlock& K>
inline AtanRow atan_row(__m128d x) {
    const __m128i place = _mm_sub_epi32(_mm_srli_epi32(simd::bits_of(x), 15), K.before_first);
    const __m128i row = _mm_min_epi32(_mm_max_epi32(place, K.no_row), K.last_row);
    const simd::Indices<2> at(_mm_srli_epi64(row, 32));
    const double *row0 = K.rows[at.lane[0]], *row1 = K.rows[at.lane[1]];
    const __m128d first0 = _mm_load_pd(row0), first1 = _mm_load_pd(row1);
    return {_mm_unpacklo_pd(first0, first1), _mm_unpackhi_pd(first0, first1), simd::gather(row0 + 2, row1 + 2)};
}

// (atan t - t) / t in the block's unit for |t| < 2^-5.
template <const AtanBlock& K, bool Short>
inline __m128d atan_series(__m128d t) {
    const __m128d z = t * t;
    if constexpr (Short)
        return z * (K.short_c0 + z * K.short_c1);
    else
        return z * ((K.c0 + z * K.c1) + (z * z) * (K.c2 + z * K.c3));
}
// atan t - t in the block's unit; of t whose square would underflow nothing.
template <const AtanBlock& K, bool Short>
inline __m128d atan_rest(__m128d t) {
    const __m128d v = simd::bit_and(t, simd::less(K.least_square, simd::magnitude(t)));
    return v * atan_series<K, Short>(v);
}

inline constexpr AtanBlock atan_radians{.in_pi = false,
                                        .rows = {
#include "vecmath/tables/atan_rows.inc"
                                        }};
inline constexpr AtanBlock atan_half_turns{.in_pi = true,
                                           .rows = {
#include "vecmath/tables/atanpi_rows.inc"
                                           }};

// x / pi for x > 0 next to the subnormals, rounded once.
inline double tiny_over_pi(double x) {
    constexpr const AtanBlock& K = atan_half_turns;
    int exponent;
    const double m = 4 * fraction_of(x, &exponent);
    const double high = std::bit_cast<double>(std::bit_cast<uint64_t>(m) & K.upper.lanes[0]);
    const double minor = (m - high) * double{K.inv_pi_high} + m * double{K.inv_pi_low};
    return scaled_sum(high * double{K.inv_pi_high}, minor, exponent - 2);
}

// `OnePart`: in units of pi with one product, whose roundings are up to 0.8 ulp where c is 0.
template <const AtanBlock& K, bool Short, bool OnePart = false>
inline __m128d atan_lanes(__m128d x) {
    const __m128d sign = simd::sign_of(x);
    // From 2^200 on nothing changes, and its product with c stays finite.
    x = _mm_min_pd(simd::magnitude(x), K.most);
    const AtanRow row = atan_row<K>(x);
    const __m128d t = (x - row.c) / (K.one + row.c * x);
    // t is as small as that with x alone.
    const __m128d v = simd::bit_and(t, simd::less(K.least_square, x)), p = atan_series<K, Short>(v);
    __m128d tail;
    if constexpr (Short) {
        tail = K.in_pi ? t * (K.inv_pi + p) : t + v * p;
    } else if constexpr (OnePart) {
        tail = row.low + t * (K.inv_pi + p);
    } else if constexpr (K.in_pi) {
        // The product of the leading parts is exact.
        const __m128d leading = simd::bit_and(t, simd::doubles(K.upper));
        tail = leading * K.inv_pi_high + ((t - leading) * K.inv_pi_high + (row.low + t * (K.inv_pi_low + p)));
    } else {
        tail = t + (row.low + v * p);
    }
    return simd::bit_or(row.high + tail, sign);
}

}  // namespace orv::vecmath
