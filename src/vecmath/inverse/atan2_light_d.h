// The angle of points in doubles by one quotient, "LA" and "EP".
//
// With q the smaller of |a| and |b| over the larger and c the multiple of the spacing of the rows next to q, h = q - c exactly,
//
//   atan q = atan c + h (a1 + h (a2 + ...)),
//
// whose coefficients a row has: those of Taylor's series less a Chebyshev polynomial of the first degree left out. Where |a| is the larger
// the angle is a quarter turn less that, and half a turn less either for a negative b.
//
// "LA" has 257 rows and five coefficients, |h| < 2^-9: what is left out is 2^-57 of the angle. Of a1 a row has what it lacks of a power
// of two near it, whose product with h is exact. The row's angle and the turn have low parts and the sum of angle and turn its rounding
// error, so that the roundings of q, h a1 and the result are what counts: less than 2 ulp just above 2^-9, where h is as large as the
// angle. "EP" has 65 rows and three, |h| < 2^-7: 2^-30.
#pragma once

#include "simd/constants.h"
#include "vecmath/inverse/atan2_d.h"

namespace orv::vecmath {

template <uint32_t Spaces, int Columns>
struct ArcBlock {
    simd::Splat<double> quarter, half;  // of a turn
    simd::Splat<double> turn_rest;      // what rounding took from them, as a part of them
    simd::Splat<double> leading;        // what the rows leave of a1
    // atan c, a1, a2, a3; or atan c, a1, a2, a3, a4, a5, the rest of atan c
    alignas(16) double rows[Spaces + 1][Columns];
    simd::Splat<double> shifter{0x1.8p+52 / Spaces}, minus{-0.0};
    static constexpr bool low_parts = Columns == 8;
};
inline constexpr ArcBlock<256, 8> arc_light{0x1.921fb54442d18p+0,
                                            0x1.921fb54442d18p+1,
                                            0x1.678afae35cdd1p-55,
                                            1.0,
                                            {
#include "vecmath/tables/atan_256.inc"
                                            }};
inline constexpr ArcBlock<256, 8> arc_light_in_pi{0.5,
                                                  1.0,
                                                  0.0,
                                                  0.25,
                                                  {
#include "vecmath/tables/atanpi_256.inc"
                                                  }};
inline constexpr ArcBlock<64, 4> arc_short{0x1.921fb54442d18p+0,
                                           0x1.921fb54442d18p+1,
                                           0.0,
                                           0.0,
                                           {
#include "vecmath/tables/atan_64.inc"
                                           }};
inline constexpr ArcBlock<64, 4> arc_short_in_pi{0.5,
                                                 1.0,
                                                 0.0,
                                                 0.0,
                                                 {
#include "vecmath/tables/atanpi_64.inc"
                                                 }};

// Of exponents within 150 of 0.
template <const auto& K>
inline __m128d arc_lanes(__m128d a, __m128d b) {
    const __m128d y = simd::magnitude(a), x = simd::magnitude(b);
    const __m128d q = simd::least(x, y) / simd::greatest(x, y);
    const __m128d shifted = q + K.shifter;
    const simd::Indices<2> at(simd::bits_of(shifted));
    const double *row0 = K.rows[at.lane[0]], *row1 = K.rows[at.lane[1]];
    const auto columns = [&](int first, __m128d& high) {
        const __m128d pair0 = _mm_load_pd(row0 + first), pair1 = _mm_load_pd(row1 + first);
        high = _mm_unpackhi_pd(pair0, pair1);
        return _mm_unpacklo_pd(pair0, pair1);
    };
    __m128d a1, a3;
    const __m128d arc = columns(0, a1), a2 = columns(2, a3);
    const __m128d h = q - (shifted - K.shifter), h2 = h * h;

    const __m128d steep = simd::less(x, y);
    const __m128d turn = simd::select_by_sign(steep, K.quarter, simd::bit_and(simd::less(b, _mm_setzero_pd()), K.half));
    const __m128d minus = simd::bit_xor(simd::sign_of(b), simd::bit_and(steep, K.minus));
    __m128d angle;
    if constexpr (K.low_parts) {
        __m128d a5, nothing;
        const __m128d a4 = columns(4, a5), arc_low = columns(6, nothing);
        const __m128d rest = h * ((a1 + h * a2) + h2 * ((a3 + h * a4) + h2 * a5));
        __m128d leading = h;
        if constexpr (K.leading != 1.0) leading = h * K.leading;
        const __m128d high = simd::bit_xor(arc, minus), sum = turn + high;
        __m128d low = ((turn - sum) + high) + simd::bit_xor(leading + (rest + arc_low), minus);
        if constexpr (K.turn_rest != 0.0) low = low + turn * K.turn_rest;
        angle = sum + low;
    } else {
        angle = turn + simd::bit_xor(arc + h * ((a1 + h * a2) + h2 * a3), minus);
    }
    return simd::bit_or(angle, simd::sign_of(a));
}

}  // namespace orv::vecmath
