// The arc sine of doubles on [0, 1/2], and what asin and acos of [0, 1] make of it.
//
//   asin w = w + w z P(z), z = w^2.
//
// Up to 1/2 w is |x| itself; above, z = (1 - |x|) / 2 exactly and w its root, and asin |x| = pi/2 - 2 asin w. The angle r of |x| that
// is used, asin w or 2 asin w, then joins a quarter turn, a half turn or nothing, by its leading part first.
//
// "HA" carries the root's rounding error, (z - w^2) / (2 w) with z - w^2 exact by halves of w, and has the term c0 w z in two
// parts: w, z and c0 each have a leading part so short that the product of the three is exact. What is left of the term is
// 2^-12 of it. c0 w z is up to a 24th of w, the further terms up to a 200th.
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

struct AsinBlock {
    // fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, 13, [|110,D...|], [2^-30;1/4]) absolute: 2^-62 of the arc sine; c0 in two parts
    simd::Splat<double> c1{0x1.3333333333393p-4}, c2{0x1.6db6db6daaec6p-5}, c3{0x1.f1c71c7b24b24p-6},
        c4{0x1.6e8ba0fe61e49p-6}, c5{0x1.1c4f00df61a05p-6}, c6{0x1.c99021d5dec28p-7}, c7{0x1.7b08debc9643ap-7},
        c8{0x1.3b16d064ceae8p-7}, c9{0x1.327ac353762e9p-7}, c10{0x1.7ed58e452e65ap-9}, c11{0x1.453e913b2e5a3p-6},
        c12{-0x1.42074f4c14ab5p-6}, c13{0x1.e955ca996855bp-6};
    simd::Splat<double> c0_high{0x1.55p-3}, c0_low{0x1.5555555555535p-13};
    // The same of degree 5: 2^-30
    simd::Splat<double> short_c0{0x1.555554d58f2d3p-3}, short_c1{0x1.3334481d0d2b1p-4}, short_c2{0x1.6d55e6da3b11cp-5},
        short_c3{0x1.fe10baea6da2ep-6}, short_c4{0x1.169f76660cdc4p-6}, short_c5{0x1.15e1a44edc62cp-5};
    simd::Splat<double> half{0.5}, one{1.0}, least_root{0x1p-30};
    simd::Splat<double> inv_pi{0x1.45f306dc9c883p-2}, inv_pi_high{0x1.45f306p-2}, inv_pi_low{0x1.b9391054a7f0ap-27};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF}, upper{0xFFFFFFFFF8000000}, leading_20{0xFFFFFFFE00000000};
    // High words: all below 1, the least whose square is formed, the least whose products are exact.
    simd::SplatBits<uint32_t> last{0x3FEFFFFF}, squares_from{(1023 - 200) << 20}, products_from{(1023 - 900) << 20};
};

// The angle in parts: `high`, and `low` far below it. `folded` has the lanes above 1/2, where it is twice the arc sine of w.
struct AsinParts {
    __m128d high, low, folded;
};

enum class AsinForm { exact, rough };  // "HA", "EP"

template <AsinForm Form>
inline __m128d asin_polynomial(const AsinBlock& K, __m128d z) {
    if constexpr (Form == AsinForm::rough) {
        const __m128d z2 = z * z;
        return (K.short_c0 + z * K.short_c1) +
               z2 * ((K.short_c2 + z * K.short_c3) + z2 * (K.short_c4 + z * K.short_c5));
    } else {
        const __m128d z2 = z * z, z4 = z2 * z2;
        const __m128d p2 = (K.c1 + z * K.c2) + z2 * (K.c3 + z * K.c4);
        const __m128d p6 = (K.c5 + z * K.c6) + z2 * (K.c7 + z * K.c8);
        const __m128d p10 = (K.c9 + z * K.c10) + z2 * ((K.c11 + z * K.c12) + z2 * K.c13);
        return p2 + z4 * (p6 + z4 * p10);  // of the terms from c1 on
    }
}

// x in [0, 1).
template <AsinForm Form>
inline AsinParts asin_parts(const AsinBlock& K, __m128d x) {
    const __m128d folded = simd::less(K.half, x);
    const __m128d z_folded = (K.one - x) * K.half;
    const __m128i large = _mm_cmpgt_epi32(simd::bits_of(x), K.squares_from);
    const __m128d x_squared = simd::bit_and(x, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1)))) * x;
    const __m128d w = simd::select(folded, _mm_sqrt_pd(z_folded), x);
    const __m128d z = simd::select(folded, z_folded, x_squared);
    const __m128d p = asin_polynomial<Form>(K, z);
    __m128d low;
    if constexpr (Form == AsinForm::rough) {
        low = (w * z) * p;
    } else {
        const __m128d w_high = simd::bit_and(w, simd::doubles(K.upper)), w_low = w - w_high;
        const __m128d left = ((z_folded - w_high * w_high) - (w_high + w_high) * w_low) - w_low * w_low;
        // Not 0 in the lanes that do not use it.
        const __m128 narrow = _mm_cvtpd_ps(_mm_max_pd(w, K.least_root)), rough_root = _mm_movelh_ps(narrow, narrow);
        const __m128d root_low = left * _mm_cvtps_pd(_mm_div_ps(_mm_set1_ps(0.5f), rough_root));

        const __m128d w_20 = simd::bit_and(w, simd::doubles(K.leading_20));
        const __m128d z_20 = simd::bit_and(z, simd::doubles(K.leading_20));
        const __m128d leading = (w_20 * z_20) * K.c0_high;
        const __m128d rest = (w - w_20) * z + w_20 * (z - z_20);
        const __m128d terms = (w * z) * (K.c0_low + z * p) + rest * K.c0_high;
        low = leading + (terms + simd::bit_and(folded, root_low));
    }
    const __m128d twice_high = simd::bit_and(folded, w), twice_low = simd::bit_and(folded, low);
    return {w + twice_high, low + twice_low, folded};
}

inline constexpr AsinBlock asin_block;

// ---- In radians or multiples of pi -----------------------------------------------------------------------------------

struct AngleUnit {
    bool pi;
    simd::Splat<double> quarter_high, quarter_low;  // a quarter turn
};
inline constexpr AngleUnit radians{false, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54}, half_turns{true, 0.5, 0.0};

// From radians to the unit, in parts.
template <const AngleUnit& U, AsinForm Form>
inline void scale_angle(__m128d& high, __m128d& low) {
    if constexpr (!U.pi) return;
    if constexpr (Form == AsinForm::rough) {
        high = high * asin_block.inv_pi;
        low = low * asin_block.inv_pi;
    } else {
        const __m128d leading = simd::bit_and(high, simd::doubles(asin_block.upper));
        low = (low * asin_block.inv_pi + high * asin_block.inv_pi_low) + (high - leading) * asin_block.inv_pi_high;
        high = leading * asin_block.inv_pi_high;
    }
}

// base + high + low, base being 0 or the larger.
template <AsinForm Form>
inline __m128d joined_angle(__m128d base_high, __m128d base_low, __m128d high, __m128d low) {
    const __m128d sum = base_high + high;
    if constexpr (Form == AsinForm::rough) return sum + low;
    return sum + (((base_high - sum) + high) + (low + base_low));
}

template <const AngleUnit& U, AsinForm Form>
inline __m128d asin_lanes(__m128d x) {
    const AsinParts parts = asin_parts<Form>(asin_block, simd::magnitude(x));
    __m128d high = parts.high, low = parts.low;
    scale_angle<U, Form>(high, low);
    const __m128d minus = simd::sign_of(parts.folded);
    const __m128d y =
        joined_angle<Form>(simd::bit_and(parts.folded, U.quarter_high), simd::bit_and(parts.folded, U.quarter_low),
                           simd::bit_xor(high, minus), simd::bit_xor(low, minus));
    return simd::bit_xor(y, simd::sign_of(x));
}

template <const AngleUnit& U, AsinForm Form>
inline __m128d acos_lanes(__m128d x) {
    const __m128d sign = simd::sign_of(x);
    const AsinParts parts = asin_parts<Form>(asin_block, simd::magnitude(x));
    __m128d high = parts.high, low = parts.low;
    scale_angle<U, Form>(high, low);
    // pi/2 - asin x up to 1/2; above r itself, or pi less r for a negative x.
    const __m128d minus = simd::bit_xor(sign, simd::bit_and_not(parts.folded, simd::splat(-0.0)));
    const __m128d negative =
        simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(sign), 31), _MM_SHUFFLE(3, 3, 1, 1)));
    const __m128d once = simd::bit_or(simd::bit_and_not(parts.folded, simd::doubles(_mm_set1_epi32(-1))), negative);
    const __m128d twice = simd::bit_and(parts.folded, negative);
    const __m128d base_high = simd::bit_and(once, U.quarter_high), base_low = simd::bit_and(once, U.quarter_low);
    return joined_angle<Form>(base_high + simd::bit_and(twice, U.quarter_high),
                              base_low + simd::bit_and(twice, U.quarter_low), simd::bit_xor(high, minus),
                              simd::bit_xor(low, minus));
}

}  // namespace orv::vecmath
