// dPow's arithmetic: a logarithm to base 2 in about twice the working precision, its product with the exponent, and a power
// of 2.
//
// Logarithm. a = 2^k m with m in [1, 2). The leading bits of m select a row, with R close to L/c for a c in the middle of the
// row; L is log2 e to 24 bits. From m = 1.49951 on k is one higher and the row one for m/2, so that next to a = 1 neither
// large terms cancel nor the table takes part. R and L are so short that
//
//   u + v = R m exactly,  u = round(R m);  w = u - L exactly;  z = w + v = R m - L,  |z| < 0.0022,
//   log2 a = k - log2(R / L) + log2(1 + z / L),
//   log2(1 + z / L) = z + z (c1 + c2 z + ... + c7 z^6).
//
// c1 = log2 e / L - 1 makes up for the bits that L lacks. Terms are gathered in a high and a low part: k + table_high is
// exact, and sums are taken with their rounding errors. c2 z^2 is 2^-10 of z at most, and in one double its own rounding would
// be 2^-63 of the logarithm next to a = 1, which an exponent of 2^20 makes an ulp and more of the result. So c2 has a part of
// ten bits, and with g, the leading 21 bits of z, c2_high g^2 is exact and joins the high part with its rounding error; what
// is left of the term,
//
//   c2_high (z - g) (z + g) + (c2 - c2_high) z^2,
//
// is 2^-11 of it or less, and so is its rounding.
//
// Product. With the upper 26 bits of b and of log2 a, p_high = b_high l_high is exact; p_low = b_low l_high + b l_low.
//
// Power. k is the multiple of 1/128 next to p_high and f = p - k: 2^p = 2^k (1 + P(f)), 2^k from a table of pairs and an
// exponent word, |f| < 2^-8.
#pragma once

#include "frame/error_report.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

#include <algorithm>

namespace orv::vecmath {

struct PowDBlock {
    simd::Splat<double> leading{0x1.715474p+0};  // L
    simd::Splat<double> c1{0x1.9c3a6966457eep-24}, c2_high{-0x1.63p-2}, c2_low{0x1.bcb996bef88a3p-14},
        c3{0x1.47fd462b3b816p-3}, c4{-0x1.550472a8bb463p-4}, c5{0x1.7a334ddfc9f86p-5}, c6{-0x1.b4ea0e9419f52p-6},
        c7{0x1.03950cf599c56p-6};
    simd::Splat<double> p1{0x1.62e42fefa39efp-1}, p2{0x1.ebfbdff82c58ep-3}, p3{0x1.c6b08d704a0bfp-5},
        p4{0x1.3b2ab6fba4e77p-7}, p5{0x1.5d87fe78a6731p-10};
    simd::Splat<double> shifter{0x1.8p+45};  // leaves 7 bits of the fraction
    simd::SplatBits<uint64_t> split{0xFFFFFFFFF8000000}, leading_21{0xFFFFFFFF00000000};
    simd::SplatBits<uint64_t> fraction{0x000FFFFFFFFFFFFF}, exponent_0{0x3FF0000000000000};
    simd::SplatBits<uint64_t> exponent_field{0x7FF0000000000000};
    // Half a row, and the bits of m that select the row once that is added.
    simd::SplatBits<uint64_t> half_row{0x0000020000000000}, row_bits{0xFFFFF80000000000};
    // Turns the high word into k + 1024 in its exponent field; then 2^52 + 1024 as the number that carries that.
    simd::SplatBits<uint64_t> to_exponent{uint64_t{0x40000000 - 0x3FE7FE00} << 32}, carrier{uint64_t{0x433} << 52};
    simd::Splat<double> carrier_value{0x1p+52 + 1024};
    // Tests of high words. Of a: positive and normal. Of b: not 0 (nor next to it), not infinite, no NaN. The sum of the
    // exponent fields of b and log2 a stays below that of a product of 2^12.
    simd::SplatBits<uint32_t> a_bottom{0x80100000}, a_last{0xFFDFFFFF};
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, b_last{0xFFEFFFFE};
    simd::SplatBits<uint32_t> sign{0x80000000}, sum_last{0x00900000};
    // Of the low word of p_high + shifter, 128 p to an integer: p from -964 up and below 1023, both to a few 1/128.
    simd::SplatBits<uint32_t> k_bottom{0x80000000 - 0xFFFE1E01}, k_last{0x80000000 + (0x1FF7F - 0xFFFE1E01)};
    simd::SplatBits<uint64_t> index_mask{0x7F}, bias{0x1FF80};  // 1023 above the 7 index bits
    alignas(16) double log_rows[513][4] = {
    // -log2(R / L) (or its half's) high and low, R, R
#include "vecmath/tables/pow_log2.inc"
    };
    alignas(16) double exp_rows[128][2] = {
    // 2^(j/128) and what rounding took from it
#include "vecmath/tables/exp2_128.inc"
    };
};

struct Log2Pair {
    __m128d high, low;  // the upper 26 bits, the rest
};

// log2(a + b) for a positive normal a and a b of half an ulp of it at the most, or none, which is given times 2^-exponent(a).
template <const PowDBlock& K, class... Rest>
inline Log2Pair log2_pair(__m128d a, Rest... b) {
    const __m128i bits = simd::bits_of(a);
    const __m128i m_bits = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
    const __m128i row = _mm_and_si128(_mm_add_epi64(m_bits, K.half_row), K.row_bits);
    const simd::Indices<2> at(_mm_srli_epi64(row, 38));
    constexpr uint32_t at_1 = uint64_t{0x3FF0000000000000} >> 38;
    const double* row0 = simd::behind(K.log_rows[0], at.lane[0] - at_1);
    const double* row1 = simd::behind(K.log_rows[0], at.lane[1] - at_1);
    const __m128d logs0 = _mm_load_pd(row0), logs1 = _mm_load_pd(row1);
    const __m128d log_high = _mm_unpacklo_pd(logs0, logs1), log_low = _mm_unpackhi_pd(logs0, logs1);
    const __m128d rcp = simd::gather(row0 + 2, row1 + 2);

    const __m128i exponent = _mm_srli_epi64(_mm_add_epi64(bits, K.to_exponent), 52);
    const __m128d k = simd::doubles(_mm_or_si128(exponent, K.carrier)) - K.carrier_value;
    const __m128d m = simd::doubles(m_bits), m_high = simd::doubles(_mm_and_si128(m_bits, K.split));

    const __m128d u = rcp * m;
    const __m128d v = (((m_high * rcp - u) + (m - m_high) * rcp) + ... + (b * rcp));
    const __m128d w = u - K.leading;
    const __m128d t = k + log_high;
    const __m128d z = w + v, z_lost = (w - z) + v;
    const __m128d s = t + z, s_lost = (t - s) + z;

    const __m128d g = simd::doubles(_mm_and_si128(simd::bits_of(z), K.leading_21));
    const __m128d square = (g * K.c2_high) * g;
    const __m128d leading = s + square, leading_lost = (s - leading) + square;
    const __m128d rest = (((z - g) + z_lost) * K.c2_high) * (z + g);
    const __m128d z2 = z * z;
    const __m128d q = (K.c3 + z * K.c4) + z2 * ((K.c5 + z * K.c6) + z2 * K.c7);
    const __m128d lost = (z_lost + s_lost) + leading_lost;
    const __m128d low = (lost + ((log_low + rest) + z * (K.c1 + z * K.c2_low))) + (z2 * z) * q;

    const __m128d sum = leading + low;
    const __m128d high = simd::doubles(_mm_and_si128(simd::bits_of(sum), K.split));
    return {high, (leading - high) + low};
}

// b log2 a: an exact leading part and the rest.
template <const PowDBlock& K>
inline Log2Pair product(__m128d b, Log2Pair log) {
    const __m128d b_high = simd::doubles(_mm_and_si128(simd::bits_of(b), K.split));
    return {b_high * log.high, (b - b_high) * log.high + b * log.low};
}

// 2^p in [1/2, 2], as a leading part and a small rest, to be scaled by 2^(k div 128) with k the low word of `shifted`.
struct Exp2Parts {
    __m128d high, rest;
    __m128i shifted;
};
template <const PowDBlock& K>
inline Exp2Parts exp2_parts(Log2Pair p) {
    const __m128d shifted = p.high + K.shifter;
    const __m128d f = (p.high - (shifted - K.shifter)) + p.low;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128d row0 = _mm_load_pd(K.exp_rows[j.lane[0]]), row1 = _mm_load_pd(K.exp_rows[j.lane[1]]);
    const __m128d high = _mm_unpacklo_pd(row0, row1), low = _mm_unpackhi_pd(row0, row1);
    const __m128d f2 = f * f;
    const __m128d polynomial = f * (K.p1 + f * K.p2) + (f2 * f) * ((K.p3 + f * K.p4) + f2 * K.p5);
    return {high, high * polynomial + low, words};
}

// a^b on the vector path; `doubt` has the lanes that it does not serve. Their b is taken as 0 before the product, so that
// they raise nothing.
template <const PowDBlock& K>
inline __m128d pow_lanes(__m128d a, __m128d b, __m128d& doubt) {
    const Log2Pair log = log2_pair<K>(a);
    const __m128i b_bits = simd::bits_of(b);
    const __m128i sum = _mm_add_epi32(_mm_and_si128(simd::bits_of(log.high), K.exponent_field),
                                      _mm_and_si128(b_bits, K.exponent_field));
    const __m128i a_doubt = _mm_cmpgt_epi32(_mm_sub_epi32(simd::bits_of(a), K.a_bottom), K.a_last);
    const __m128i b_doubt = _mm_cmpgt_epi32(_mm_add_epi32(_mm_and_si128(b_bits, K.magnitude), K.magnitude), K.b_last);
    const __m128i sum_doubt = _mm_cmpgt_epi32(_mm_xor_si128(sum, K.sign), K.sum_last);
    const __m128i high_doubt = _mm_or_si128(_mm_or_si128(a_doubt, b_doubt), sum_doubt);
    const __m128d refused = simd::doubles(_mm_shuffle_epi32(high_doubt, _MM_SHUFFLE(3, 3, 1, 1)));

    const Exp2Parts power = exp2_parts<K>(product<K>(simd::bit_and_not(refused, b), log));
    const __m128i k_doubt = _mm_cmpgt_epi32(_mm_add_epi32(power.shifted, K.k_bottom), K.k_last);
    doubt = simd::bit_or(refused, simd::doubles(_mm_slli_epi64(k_doubt, 32)));
    const __m128i scale = _mm_and_si128(_mm_slli_epi64(_mm_add_epi64(power.shifted, K.bias), 45), K.exponent_field);
    return (power.high + power.rest) * simd::doubles(scale);
}

// a^b for positive finite a and finite non-zero b. Results below the normal range are rounded once.
template <const PowDBlock& K>
int32_t pow_magnitude(double a, double b, double* y) {
    const bool subnormal = a < std::numeric_limits<double>::min();
    Log2Pair log = log2_pair<K>(simd::splat(subnormal ? a * 0x1p+52 : a));
    // Exact: 26 bits hold a whole part of 11 and less.
    if (subnormal) log.high = log.high - simd::splat(52.0);
    // Beyond 2^65 the exponent's size no longer matters, and the product stays finite.
    const Log2Pair p = product<K>(simd::splat(std::clamp(b, -0x1p+65, 0x1p+65)), log);
    const double size = _mm_cvtsd_f64(p.high);
    if (size > 1025) {
        *y = overflow<double>();
    } else if (size < -1080) {
        *y = underflow<double>();
    } else {
        const Exp2Parts power = exp2_parts<K>(p);
        *y = scaled_sum(_mm_cvtsd_f64(power.high), _mm_cvtsd_f64(power.rest), _mm_cvtsi128_si32(power.shifted) >> 7);
    }
    return frame::status_ok;
}

}  // namespace orv::vecmath
