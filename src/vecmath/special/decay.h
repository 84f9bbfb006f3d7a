// Products e^(-z) F with z in two parts and F a smooth function, expanded: the error functions' and the exponential integral's
// shape.
//
//   e^(-z) = 2^n 2^(j/128) e^r,  r = -z - (128 n + j) ln 2 / 128,  |r| < 0.0028.
//
// 2^(j/128) comes from a table of pairs. It and F have leading parts of 26 bits, whose product is exact; what they leave is below
// 2^-5 of it.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/special/expansions.h"
#include "vecmath/special/extended.h"

namespace orv::vecmath {

struct DecayBlock {
    simd::Splat<double> scale{184.66496523378731}, shifter{-6755399441055744.0};
    simd::Splat<double> ln2_high{0.0054152123630046844}, ln2_low{-1.4880111718420063e-11}, ln2{0x1.62e42fefa39efp-8};
    simd::Splat<double> one{1.0}, c2{0.5}, c3{0.16666666666666666}, c4{0.041666666666666664}, c5{0.0083333333333333332};
    simd::SplatBits<uint64_t> index_mask{0x7F}, bias{0x1FF80}, exponent_field{0x7FF0000000000000};
    alignas(16) double rows[128][2] = {
#include "vecmath/tables/exp2_128_split.inc"
    };
    alignas(16) double nearest[128][2] = {
    // the first parts of 53 bits
#include "vecmath/tables/exp2_128.inc"
    };
    // Where results may be subnormal, they are formed 2^154 times as large, and rounded by the last step.
    static constexpr int raised = 154;
    static constexpr double lowered = 4.3790577010150533e-47;
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

// e^(-z) f, z below 1100; f.high has 26 bits.
inline Decayed decay(__m128d z_high, __m128d z_low, Expanded f) {
    constexpr const auto& K = decay_block;
    const __m128d shifted = simd::splat(double{K.shifter}) + z_high * K.scale;
    const __m128d k = shifted - K.shifter;
    const __m128d r = ((k * K.ln2_high - z_high) + k * K.ln2_low) - z_low;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128d row0 = _mm_load_pd(K.rows[j.lane[0]]), row1 = _mm_load_pd(K.rows[j.lane[1]]);
    const __m128d power = _mm_unpacklo_pd(row0, row1), power_low = _mm_unpackhi_pd(row0, row1);
    const __m128d p = r + r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
    const __m128d rest = power_low + (power + power_low) * p;
    return {power * f.high, power * f.low + rest * (f.high + f.low), words};
}
// The same to 2^-38 or so, and with n up to -1022 at least: by e^(-s), s = z + (128 n + j) ln 2 / 128.
inline __m128d short_decay(__m128d z, __m128d f) {
    constexpr const auto& K = decay_block;
    const __m128d shifted = simd::splat(double{K.shifter}) + z * K.scale;
    const __m128d s = z - (shifted - K.shifter) * K.ln2;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128d power = simd::gather(K.nearest[j.lane[0]], K.nearest[j.lane[1]]);
    const __m128d e = K.one - s * (K.one - s * (K.c2 - s * K.c3));
    return (power * f) * (e * decay_scale(words));
}

// Lane 0 as one number, rounded once to T whatever its size.
template <class T>
inline T rounded_once(const Decayed& x) {
    const ExtendedPrecision extended;
    const int n = _mm_cvtsi128_si32(x.shifted) >> 7;
    const long double sum = static_cast<long double>(_mm_cvtsd_f64(x.high)) + _mm_cvtsd_f64(x.low);
    return static_cast<T>(sum * power_of_two_d(n + DecayBlock::raised) * DecayBlock::lowered);
}

}  // namespace orv::vecmath
