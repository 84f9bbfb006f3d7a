// The hyperbolic sine and cosine of doubles, from a table of powers, as the complex functions have them.
//
// |x| = k ln 2 / 64 + r with |r| below ln 2 / 128; with k = 64 n + j, A = 2^(j/64) and B = 2^(-2n - j/64), both in two parts,
// S = (A - B) / 2 and C = (A + B) / 2 are the hyperbolic functions of k ln 2 / 64 but for a factor 2^n:
//
//   sinh |x| = 2^n (S cosh r + C sinh r),  cosh x = 2^n (C cosh r + S sinh r).
//
// S and C keep the rounding error of their sums, and r that of its difference. While n is 0 r may be as large as S and is the
// leading term beside it; then C - 1 times r joins the small terms. Later r is a hundredth of S at the most.
#pragma once

#include "simd/constants.h"
namespace orv::vecmath {

struct HyperbolicBlock {
    simd::Splat<double> shifter{0x1.8p+52}, scale{0x1.71547652b82fep+6};
    simd::Splat<double> ln2_high{0x1.62e42fefap-7}, ln2_low{0x1.cf79abc9e3b3ap-46};  // ln 2 / 64
    simd::Splat<double> half{0.5}, one{1.0};
    simd::Splat<double> s3{0x1.5555555555555p-3}, s5{0x1.1111111111111p-7}, s7{0x1.a01a01a01a01ap-13};
    simd::Splat<double> c4{0x1.5555555555555p-5}, c6{0x1.6c16c16c16c17p-10};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF}, index_mask{0x3F}, exponent_0{0x3FF0000000000000};
    simd::SplatBits<uint64_t> most_halvings{100};
    simd::SplatBits<uint32_t> squares_from{(1023 - 200) << 20};
    alignas(16) double rows[64][2] = {
    // 2^(j/64) and what rounding took from it
#include "vecmath/tables/exp2_64.inc"
    };
};
inline constexpr HyperbolicBlock hyperbolic;

inline __m128d pair_of(uint32_t j0, uint32_t j1, __m128d& low) {
    const __m128d row0 = _mm_load_pd(hyperbolic.rows[j0]), row1 = _mm_load_pd(hyperbolic.rows[j1]);
    low = _mm_unpackhi_pd(row0, row1);
    return _mm_unpacklo_pd(row0, row1);
}

// What both functions begin with, of |x|.
struct HyperbolicParts {
    __m128d r, r_low, r_small;  // r_small is 0 where the square of r would underflow
    __m128d a, a_low, b, b_low;
    __m128i n;
};
inline HyperbolicParts hyperbolic_parts(__m128d x) {
    const __m128d shifted = x * hyperbolic.scale + hyperbolic.shifter;
    const __m128d k = shifted - hyperbolic.shifter;
    HyperbolicParts v;
    const __m128d exact = x - k * hyperbolic.ln2_high, rest = k * hyperbolic.ln2_low;
    v.r = exact - rest;
    v.r_low = (exact - v.r) - rest;
    const __m128i large =
        _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(v.r), hyperbolic.magnitude), hyperbolic.squares_from);
    v.r_small = simd::bit_and(v.r, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1))));

    const __m128i words = simd::bits_of(shifted);
    const __m128i j = _mm_and_si128(words, hyperbolic.index_mask);
    // 2^(-j/64) is 2^(i/64) / 2 with i = 64 - j, but for j = 0.
    const __m128i i = _mm_and_si128(_mm_sub_epi64(_mm_setzero_si128(), j), hyperbolic.index_mask);
    const simd::Indices<2> at(j), at_back(i);
    v.a = pair_of(at.lane[0], at.lane[1], v.a_low);
    v.b = pair_of(at_back.lane[0], at_back.lane[1], v.b_low);
    v.n = _mm_srli_epi64(_mm_slli_epi64(words, 32), 38);
    const __m128i half = _mm_srli_epi64(_mm_add_epi64(j, hyperbolic.index_mask), 6);
    const __m128i halvings = _mm_min_epi32(_mm_add_epi64(_mm_add_epi64(v.n, v.n), half), hyperbolic.most_halvings);
    const __m128d down = simd::doubles(_mm_sub_epi64(hyperbolic.exponent_0, _mm_slli_epi64(halvings, 52)));
    v.b = v.b * down;
    v.b_low = v.b_low * down;
    return v;
}

struct HyperbolicSeries {
    __m128d cosh_less_1, sinh_less_r;
};
inline HyperbolicSeries hyperbolic_series(__m128d r) {
    const __m128d z = r * r;
    return {z * (hyperbolic.half + z * (hyperbolic.c4 + z * hyperbolic.c6)),
            (r * z) * (hyperbolic.s3 + z * (hyperbolic.s5 + z * hyperbolic.s7))};
}

}  // namespace orv::vecmath
