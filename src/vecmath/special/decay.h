// Products e^(-z) F with z in two parts and F a smooth function, expanded: the error functions' and the exponential integral's
// shape.
//
//   e^(-z) = 2^n 2^(j/128) e^r,  r = -z - (128 n + j) ln 2 / 128,  |r| < 0.0028.
//
// 2^(j/128) comes from a table of pairs. Both factors are split into 26 bits and the rest: the leading product is exact.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/special/expansions.h"
#include "vecmath/special/extended.h"

namespace orv::vecmath {

struct DecayBlock {
    simd::Splat<double> scale{0x1.71547652b82fep+7}, shifter{0x1.8p+52};
    simd::Splat<double> ln2_high{0x1.62e42feep-8}, ln2_low{0x1.a39ef35793c76p-40}, ln2{0x1.62e42fefa39efp-8};
    simd::Splat<double> one{1.0}, c2{0.5}, c3{0x1.5555555555555p-3}, c4{0x1.5555555555555p-5}, c5{0x1.1111111111111p-7};
    simd::SplatBits<uint64_t> index_mask{0x7F}, bias{0x1FF80}, exponent_field{0x7FF0000000000000};
    alignas(16) double rows[128][2] = {
#include "vecmath/tables/exp2_128.inc"
    };
};
inline constexpr DecayBlock decay_block;

// 2^n, n = shifted div 128, for n from -1022 on.
inline __m128d decay_scale(__m128i shifted) {
    constexpr const auto& K = decay_block;
    return simd::doubles(_mm_and_si128(_mm_slli_epi64(_mm_add_epi64(shifted, K.bias), 45), K.exponent_field));
}

// (high + low) 2^n with n = shifted div 128.
struct Decayed {
    __m128d high, low;
    __m128i shifted;
};

// e^(-z) f, z below 1100.
inline Decayed decay(__m128d z_high, __m128d z_low, Expanded f) {
    constexpr const auto& K = decay_block;
    const __m128d shifted = simd::splat(double{K.shifter}) - z_high * K.scale;
    const __m128d k = shifted - K.shifter;
    const __m128d r = ((simd::bit_xor(z_high, simd::splat(-0.0)) - k * K.ln2_high) - k * K.ln2_low) - z_low;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128d row0 = _mm_load_pd(K.rows[j.lane[0]]), row1 = _mm_load_pd(K.rows[j.lane[1]]);
    const __m128d power = _mm_unpacklo_pd(row0, row1), power_low = _mm_unpackhi_pd(row0, row1);
    const __m128d p = r + r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
    const __m128d e_rest = power * p + power_low;
    const __m128d e = upper_26(power + e_rest), e_low = (power - e) + e_rest;
    const __m128d g = upper_26(f.high + f.low), g_low = (f.high - g) + f.low;
    return {e * g, e * g_low + e_low * (g + g_low), words};
}
// The same to 2^-38 or so, and with n up to -1022 at least: by e^(-s), s = z + (128 n + j) ln 2 / 128.
inline __m128d short_decay(__m128d z, __m128d f) {
    constexpr const auto& K = decay_block;
    const __m128d shifted = simd::splat(double{K.shifter}) - z * K.scale;
    const __m128d s = z + (shifted - K.shifter) * K.ln2;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128d power = simd::gather(K.rows[j.lane[0]], K.rows[j.lane[1]]);
    const __m128d e = K.one - s * (K.one - s * (K.c2 - s * K.c3));
    return (power * f) * (e * decay_scale(words));
}

// Lane 0 as one number, rounded once to T whatever its size.
template <class T>
inline T rounded_once(const Decayed& x) {
    const ExtendedPrecision extended;
    const int n = _mm_cvtsi128_si32(x.shifted) >> 7;
    const long double sum = static_cast<long double>(_mm_cvtsd_f64(x.high)) + _mm_cvtsd_f64(x.low);
    return static_cast<T>(sum * power_of_two_d(n / 2) * power_of_two_d(n - n / 2));
}

}  // namespace orv::vecmath
