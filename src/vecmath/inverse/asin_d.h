// The arc sine of doubles on [0, 1/2], and what asin and acos of [0, 1] make of it, in one part: "EP" and floats.
//
//   asin w = w + w z P(z), z = w^2.
//
// Up to 1/2 w is |x| itself; above, z = (1 - |x|) / 2 exactly and w its root, and asin |x| = pi/2 - 2 asin w. The angle r of |x| that
// is used, asin w or 2 asin w, then joins a quarter turn, a half turn or nothing.
//
// "HA" is that of asin_rows_d.h.
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/inverse/asin_rows_d.h"

namespace orv::vecmath {

struct AsinBlock {
    // fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, 5, [|110,D...|], [2^-30;1/4]) absolute: 2^-30 of the arc sine
    simd::Splat<double> c0{0x1.555554d58f2d3p-3}, c1{0x1.3334481d0d2b1p-4}, c2{0x1.6d55e6da3b11cp-5},
        c3{0x1.fe10baea6da2ep-6}, c4{0x1.169f76660cdc4p-6}, c5{0x1.15e1a44edc62cp-5};
    simd::Splat<double> half{0.5}, one{1.0};
    simd::Splat<double> inv_pi{0x1.45f306dc9c883p-2};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    // High words: all below 1, the least whose square is formed.
    simd::SplatBits<uint32_t> last{0x3FEFFFFF}, squares_from{(1023 - 200) << 20};
    // The least whose products by parts of 1/pi are exact, 2^-900, to the bottom of the signed range, and what becomes of `last`.
    simd::SplatBits<uint32_t> to_bottom{0x80000000 - ((1023 - 900) << 20)},
        last_from_bottom{0x3FEFFFFF + 0x80000000 - ((1023 - 900) << 20)};
};

// The angle in parts: `high`, and `low` far below it. `folded` has the lanes above 1/2, where it is twice the arc sine of w.
struct AsinParts {
    __m128d high, low, folded;
};

enum class AsinForm { exact, rough };  // "HA", "EP"

// x in [0, 1).
inline AsinParts asin_parts(const AsinBlock& K, __m128d x) {
    const __m128d folded = simd::less(K.half, x);
    const __m128d z_folded = (K.one - x) * K.half;
    const __m128i large = _mm_cmpgt_epi32(simd::bits_of(x), K.squares_from);
    const __m128d x_squared = simd::bit_and(x, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1)))) * x;
    const __m128d w = simd::select(folded, _mm_sqrt_pd(z_folded), x);
    const __m128d z = simd::select(folded, z_folded, x_squared), z2 = z * z;
    const __m128d p = (K.c0 + z * K.c1) + z2 * ((K.c2 + z * K.c3) + z2 * (K.c4 + z * K.c5));
    const __m128d low = (w * z) * p;
    return {w + simd::bit_and(folded, w), low + simd::bit_and(folded, low), folded};
}

inline constexpr AsinBlock asin_block;

// ---- In radians or multiples of pi -----------------------------------------------------------------------------------

struct AngleUnit {
    bool pi;
    simd::Splat<double> quarter_high, quarter_low;  // a quarter turn
};
inline constexpr AngleUnit radians{false, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54}, half_turns{true, 0.5, 0.0};

// From radians to the unit.
template <const AngleUnit& U>
inline __m128d in_unit(__m128d x) {
    if constexpr (!U.pi) return x;
    return x * asin_block.inv_pi;
}

template <const AngleUnit& U, AsinForm Form>
inline __m128d asin_lanes(__m128d x) {
    if constexpr (Form == AsinForm::exact) return asin_by_rows < U.pi ? sine_rows_half_turns : sine_rows_radians > (x);
    const AsinParts parts = asin_parts(asin_block, simd::magnitude(x));
    const __m128d minus = simd::sign_of(parts.folded);
    const __m128d y = (simd::bit_and(parts.folded, U.quarter_high) + simd::bit_xor(in_unit<U>(parts.high), minus)) +
                      simd::bit_xor(in_unit<U>(parts.low), minus);
    return simd::bit_xor(y, simd::sign_of(x));
}

template <const AngleUnit& U, AsinForm Form>
inline __m128d acos_lanes(__m128d x) {
    if constexpr (Form == AsinForm::exact) return acos_by_rows < U.pi ? sine_rows_half_turns : sine_rows_radians > (x);
    const __m128d sign = simd::sign_of(x);
    const AsinParts parts = asin_parts(asin_block, simd::magnitude(x));
    // pi/2 - asin x up to 1/2; above r itself, or pi less r for a negative x.
    const __m128d minus = simd::bit_xor(sign, simd::bit_and_not(parts.folded, simd::splat(-0.0)));
    const __m128d negative =
        simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(sign), 31), _MM_SHUFFLE(3, 3, 1, 1)));
    const __m128d once = simd::bit_or(simd::bit_and_not(parts.folded, simd::doubles(_mm_set1_epi32(-1))), negative);
    const __m128d twice = simd::bit_and(parts.folded, negative);
    const __m128d base = simd::bit_and(once, U.quarter_high) + simd::bit_and(twice, U.quarter_high);
    return (base + simd::bit_xor(in_unit<U>(parts.high), minus)) + simd::bit_xor(in_unit<U>(parts.low), minus);
}

}  // namespace orv::vecmath
