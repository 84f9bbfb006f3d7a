// dPow in "EP": b ln a and its exponential in one double each.
//
// ln a is taken by centres: c is m to 10 bits, m in [1, 2) or, from row 213 of 512 on, its half, so that next to
// a = 1 the row is that of 1 on both sides; with r = (m - c) / c, |r| < 2^-10, ln a = k ln 2 + ln c + r + r^2 (c2 + c3 r + c4 r^2). As one double
// it is good to 2^-52 of itself, and its product with b, up to 708, to 2^-43.
//
// e^t = 2^(k/2048) (1 + c f) with k the integer below t 2048 / ln 2 and f in [0, 1] the rest: a chord, 2^-26.06 above the
// power at the most.
#pragma once

#include "frame/error_report.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

#include <algorithm>

namespace orv::vecmath {

struct PowEpDBlock {
    simd::Splat<double> half{0.5}, scale{0x1.71547652b82fep+11}, chord{0x1.62f3904051fa1p-12}, shifter{0x1.8p+52};
    simd::Splat<double> ln2{0x1.62e42fefa39efp-1};
    simd::Splat<double> c2{-0x1.ffffffffff81fp-2}, c3{0x1.55555555543c5p-2}, c4{-0x1.0000148058ee1p-2};
    simd::SplatBits<uint64_t> fraction{0x000FFFFFFFFFFFFF}, exponent_0{0x3FF0000000000000};
    simd::SplatBits<uint64_t> half_step{0x0000040000000000}, grid{0xFFFFF80000000000};
    // Raises k from row 213 on.
    simd::SplatBits<uint64_t> exponent_carry{uint64_t{0x100000 - 0x6A400} << 32}, carrier{uint64_t{0x433} << 52};
    simd::Splat<double> carrier_value{0x1p+52 + 1023};
    // Of high words: a positive and normal; |b| below 2^65, where its product with any ln a but 0 is beyond all results;
    // |b ln a| below 708.
    simd::SplatBits<uint32_t> a_bottom{0x80100000}, a_last{0xFFDFFFFF};
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, b_last{0x43FFFFFF}, product_last{0x4086232A};
    simd::SplatBits<uint64_t> index_mask{0x7FF};
    alignas(16) double log_rows[513][2] = {
    // ln c (or that of c/2), 1/c
#include "vecmath/tables/pow_ln.inc"
    };
    uint64_t exp_rows[2048] = {
    // fraction bits of 2^(j/2048)
#include "vecmath/tables/exp2_bits_2048.inc"
    };
};

// ln a for a positive normal a.
template <const PowEpDBlock& K>
inline __m128d ln_ep(__m128d a) {
    const __m128i bits = simd::bits_of(a);
    const __m128i m = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
    const __m128i centre = _mm_and_si128(_mm_add_epi64(m, K.half_step), K.grid);
    const simd::Indices<2> at(_mm_srli_epi64(centre, 39));
    constexpr uint32_t at_1 = uint64_t{0x3FF0000000000000} >> 39;
    const __m128d row0 = _mm_load_pd(simd::behind(K.log_rows[0], at.lane[0] - at_1));
    const __m128d row1 = _mm_load_pd(simd::behind(K.log_rows[0], at.lane[1] - at_1));
    const __m128d ln_c = _mm_unpacklo_pd(row0, row1), rcp = _mm_unpackhi_pd(row0, row1);

    const __m128d r = (simd::doubles(m) - simd::doubles(centre)) * rcp;
    const __m128i raised = _mm_srli_epi64(_mm_add_epi64(bits, K.exponent_carry), 52);
    const __m128d k = simd::doubles(_mm_or_si128(raised, K.carrier)) - K.carrier_value;
    return (k * K.ln2 + ln_c) + (r + (r * r) * (K.c2 + r * (K.c3 + r * K.c4)));
}

// e^t = 2^(k div 2048) 2^(j/2048) (1 + rest): k, the fraction bits of 2^(j/2048), and the rest.
struct ExpEpParts {
    __m128i k, row;
    __m128d rest;
};
template <const PowEpDBlock& K>
inline ExpEpParts exp_ep_parts(__m128d t) {
    const __m128d position = t * K.scale;
    const __m128d shifted = (position - K.half) + K.shifter;
    const __m128i k = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(k, K.index_mask));
    return {k, simd::gather(&K.exp_rows[j.lane[0]], &K.exp_rows[j.lane[1]]),
            (position - (shifted - K.shifter)) * K.chord};
}

template <const PowEpDBlock& K>
inline __m128d pow_ep_lanes(__m128d a, __m128d b, __m128d& doubt) {
    const __m128i a_doubt = _mm_cmpgt_epi32(_mm_sub_epi32(simd::bits_of(a), K.a_bottom), K.a_last);
    const __m128i b_doubt = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(b), K.magnitude), K.b_last);
    const __m128d refused = simd::doubles(_mm_shuffle_epi32(_mm_or_si128(a_doubt, b_doubt), _MM_SHUFFLE(3, 3, 1, 1)));
    // Lanes in doubt raise nothing with an exponent of 0.
    const __m128d t = simd::bit_and_not(refused, b) * ln_ep<K>(a);
    const __m128i beyond = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(t), K.magnitude), K.product_last);
    doubt = simd::bit_or(refused, simd::doubles(beyond));
    const ExpEpParts parts = exp_ep_parts<K>(t);
    const __m128d power = simd::doubles(_mm_or_si128(parts.row, K.exponent_0));
    const __m128i exponent = _mm_slli_epi64(_mm_andnot_si128(K.index_mask, parts.k), 41);
    return simd::doubles(_mm_add_epi64(simd::bits_of(power + power * parts.rest), exponent));
}

// a^b for positive finite a and finite non-zero b.
template <const PowEpDBlock& K>
int32_t pow_ep_magnitude(double a, double b, double* y) {
    const bool subnormal = a < std::numeric_limits<double>::min();
    double ln = _mm_cvtsd_f64(ln_ep<K>(simd::splat(subnormal ? a * 0x1p+52 : a)));
    if (subnormal) ln -= 0x1.205966f2b4f12p+5;  // 52 ln 2
    // Beyond 2^65 the exponent's size no longer matters, and the product stays finite.
    const double t = std::clamp(b, -0x1p+65, 0x1p+65) * ln;
    if (t > 710) {
        *y = overflow<double>();
        return frame::status_overflow;
    }
    if (t < -746) {
        *y = underflow<double>();
        return frame::status_ok;
    }
    const ExpEpParts parts = exp_ep_parts<K>(simd::splat(t));
    const double power = _mm_cvtsd_f64(simd::doubles(_mm_or_si128(parts.row, K.exponent_0)));
    *y = scaled_sum(power, power * _mm_cvtsd_f64(parts.rest), _mm_cvtsi128_si32(parts.k) >> 11);
    return *y > std::numeric_limits<double>::max() ? frame::status_overflow : frame::status_ok;
}

}  // namespace orv::vecmath
