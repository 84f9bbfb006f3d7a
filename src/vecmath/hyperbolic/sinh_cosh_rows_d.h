// The hyperbolic sine and cosine of doubles by rows, "LA" and "HA", and a shorter cosine, "EP".
//
// |x| = k ln 2 / 32 + r with |r| below ln 2 / 64. Row k, with k = 32 n + j, has S and C, the hyperbolic functions of k ln 2 / 32 but for
// a factor 2^n, in two parts:
//
//   sinh |x| = 2^n (S cosh r + C sinh r),  cosh x = 2^n (C cosh r + S sinh r).
//
// From n = 30 on e^-x is nothing beside e^x and the rows repeat. While n is 0 r may be as large as half of S and is the leading term
// beside it, with the rounding error of their sum and its own; then C - 1 times r joins the small terms. Later r is a fiftieth of S at
// the most. r is always as small beside C.
//
// In the shorter form cosh x = h + 1 / (4 h) with h = e^|x| / 2 from a table of 2^(j/128).
#pragma once

#include "simd/constants.h"

namespace orv::vecmath {

inline constexpr uint32_t row_bits = 5, rows_a_level = 1 << row_bits, last_level = 30;

struct HyperbolicRowsBlock {
    simd::Splat<double> shifter{0x1.8p+52}, scale{0x1.71547652b82fep+5};
    simd::Splat<double> ln2_high{0x1.62e42fefap-6}, ln2_low{0x1.cf79abc9e3b3ap-45};  // ln 2 / 32
    simd::Splat<double> one{1.0}, first_level_end{double{rows_a_level}};
    // On I = [2^-40;(ln 2 / 64)^2 1.01] fpminimax((sinh(sqrt(x))/sqrt(x)-1)/x, 2, [|D...|], I, absolute): 2^-71 of sinh r;
    // fpminimax((cosh(sqrt(x))-1)/x, 2, [|D...|], I, absolute): 2^-72
    simd::Splat<double> s3{0x1.5555555555555p-3}, s5{0x1.111111113aa5ep-7}, s7{0x1.a0191e88d5ad1p-13};
    simd::Splat<double> c2{0x1p-1}, c4{0x1.555555554ff99p-5}, c6{0x1.6c170817f526dp-10};
    simd::Splat<double> least_square{0x1p-200};  // what is below has no part in the series: its square would underflow
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF}, index_mask{rows_a_level - 1},
        last_rows{rows_a_level * last_level};
    simd::SplatBits<uint64_t> exponent_field{0x7FF0000000000000};
    simd::SplatBits<uint32_t> last{0x40862000};  // 708
    alignas(16) double rows[rows_a_level * (last_level + 1)][4] = {
    // S and C, and what rounding took from them
#include "vecmath/tables/sinh_cosh_rows.inc"
    };
};
inline constexpr HyperbolicRowsBlock hyperbolic_rows;

// What both functions begin with: S, C and their low parts, k, r and its low part, r again where its square is in range, the series
// of r, and n in the exponent field.
struct HyperbolicRow {
    __m128d s, c, s_low, c_low, k, r, r_low, v, cosh_less_1, sinh_less_r;
    __m128i power;
};
inline HyperbolicRow hyperbolic_row(__m128d x) {
    constexpr const HyperbolicRowsBlock& K = hyperbolic_rows;
    const __m128d size = simd::magnitude(x);
    const __m128d shifted = size * K.scale + K.shifter, k = shifted - K.shifter;
    const __m128i words = simd::bits_of(shifted);
    const __m128i repeated = _mm_or_si128(_mm_and_si128(words, K.index_mask), K.last_rows);
    const simd::Indices<2> at(_mm_min_epi32(words, repeated));
    const double *row0 = K.rows[at.lane[0]], *row1 = K.rows[at.lane[1]];
    const __m128d high0 = _mm_load_pd(row0), high1 = _mm_load_pd(row1);
    const __m128d low0 = _mm_load_pd(row0 + 2), low1 = _mm_load_pd(row1 + 2);

    const __m128d exact = size - k * K.ln2_high, rest = k * K.ln2_low, r = exact - rest;
    const __m128d v = simd::bit_and(r, simd::less(K.least_square, size)), z = v * v;
    return {.s = _mm_unpacklo_pd(high0, high1),
            .c = _mm_unpackhi_pd(high0, high1),
            .s_low = _mm_unpacklo_pd(low0, low1),
            .c_low = _mm_unpackhi_pd(low0, low1),
            .k = k,
            .r = r,
            .r_low = (exact - r) - rest,
            .v = v,
            .cosh_less_1 = z * (K.c2 + z * (K.c4 + z * K.c6)),
            .sinh_less_r = (v * z) * (K.s3 + z * (K.s5 + z * K.s7)),
            .power = _mm_and_si128(_mm_slli_epi64(words, 52 - row_bits), K.exponent_field)};
}

// Beyond 708 a sum of terms may overflow.
inline __m128d beyond_hyperbolic(__m128d x) {
    return simd::doubles(
        _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), hyperbolic_rows.magnitude), hyperbolic_rows.last));
}

inline __m128d times_power_of(__m128i power, __m128d y) {
    return simd::doubles(_mm_add_epi64(simd::bits_of(y), power));
}

inline __m128d sinh_lanes(__m128d x) {
    constexpr const HyperbolicRowsBlock& K = hyperbolic_rows;
    const HyperbolicRow row = hyperbolic_row(x);
    const __m128d first = simd::less(row.k, K.first_level_end);
    const __m128d leading = simd::bit_and(first, row.r), beside = row.c - simd::bit_and(first, K.one);
    const __m128d sum = row.s + leading, sum_low = ((row.s - sum) + leading) + row.s_low;
    const __m128d small = row.s * row.cosh_less_1 + (beside * row.v + row.c * row.sinh_less_r);
    const __m128d y = sum + (small + (sum_low + (row.c * row.r_low + row.c_low * row.v)));
    return simd::bit_or(times_power_of(row.power, y), simd::sign_of(x));
}
// cosh x / 2^n - C.
inline __m128d cosh_less_c(const HyperbolicRow& row) {
    return row.c * row.cosh_less_1 + (row.s * (row.v + row.sinh_less_r) + row.c_low);
}
inline __m128d cosh_lanes(__m128d x) {
    const HyperbolicRow row = hyperbolic_row(x);
    return times_power_of(row.power, row.c + cosh_less_c(row));
}

// ---- The shorter cosine ----------------------------------------------------------------------------------------------

struct ShortCoshBlock {
    simd::Splat<double> shifter{0x1.8p+52}, scale{0x1.71547652b82fep+7}, ln2{0x1.62e42fefa39efp-8};  // ln 2 / 128
    // fpminimax((exp(x)-1)/x, 1, [|D...|], [-ln 2 / 256 1.01;ln 2 / 256 1.01], absolute): 2^-29 of e^r
    simd::Splat<double> p1{0x1.00000a74a7c9ap0}, p2{0x1.00000a74a7c85p-1};
    simd::Splat<double> most{0x1p+500};  // of what is divided by: the quotient is nothing there
    simd::SplatBits<uint64_t> index_mask{0x7F}, exponent_field{0x7FF0000000000000};
    simd::SplatBits<uint64_t> minus_1{uint64_t{0xFFF} << 52};
    alignas(16) double rows[128][2] = {
    // 2^(j/128) and what rounding took from it
#include "vecmath/tables/exp2_128.inc"
    };
};
inline constexpr ShortCoshBlock short_cosh;

inline __m128d cosh_short_lanes(__m128d x) {
    constexpr const ShortCoshBlock& K = short_cosh;
    const __m128d size = simd::magnitude(x);
    const __m128d shifted = size * K.scale + K.shifter;
    const __m128d r = size - (shifted - K.shifter) * K.ln2;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> at(_mm_and_si128(words, K.index_mask));
    const __m128d a = simd::gather(K.rows[at.lane[0]], K.rows[at.lane[1]]);
    const __m128i power = _mm_add_epi64(_mm_and_si128(_mm_slli_epi64(words, 45), K.exponent_field), K.minus_1);
    const __m128d h = times_power_of(power, a + (a * r) * (K.p1 + r * K.p2));
    return h + simd::splat(0.25) / simd::least(h, K.most);
}

}  // namespace orv::vecmath
