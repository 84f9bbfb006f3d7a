// The gamma function of floats, in double: right to 2^-34 or so.
#pragma once

#include "vecmath/special/gamma.h"

namespace orv::vecmath {

struct GammaLanesBlock {
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, tiny{(127 - 126) << 23}, last{std::bit_cast<uint32_t>(34.0f)};
    simd::Splat<double> one{1.0}, two{2.0}, three{3.0}, to_eighths{8.0}, eighth{0.125}, half_eighth{0.0625};
    simd::SplatBits<uint32_t> all_but_3{~uint32_t{3}}, one_bit{1};
    simd::Splat<double> shifter{0x1.8p+52};
    // sin(pi r) / (pi r) in r^2, times pi: fpminimax(sin(pi*sqrt(x))/(pi*sqrt(x)), 5, [|1, D...|], [1b-40; 0.25]), 2^-35.2
    simd::Splat<double> s1{-0x1.a51a66137c74cp+0}, s2{0x1.9f9cac9c1d62bp-1}, s3{-0x1.86a6d8c5a6561p-3},
        s4{0x1.abe832fa5e019p-6}, s5{-0x1.2531664d50083p-9};
};
inline constexpr GammaLanesBlock gamma_lanes_block;

// Gamma for t from 1 to 36.
inline __m128d gamma_lanes_from_one(__m128d t) {
    constexpr const auto& K = gamma_lanes_block;
    const __m128i eighths = _mm_cvttpd_epi32(t * K.to_eighths);
    const __m128i n = _mm_sub_epi32(_mm_srli_epi32(eighths, 3), K.one_bit);
    const __m128d least = _mm_cvtepi32_pd(_mm_add_epi32(_mm_and_si128(n, K.all_but_3), K.one_bit));
    const auto factor = [&](const simd::Splat<double>& less) {
        const __m128d lower = t - less;
        return simd::select_by_sign(simd::less_equal(least, lower), lower, K.one);
    };
    const __m128d product = (factor(K.one) * factor(K.two)) * factor(K.three);

    const __m128d d = t - (_mm_cvtepi32_pd(eighths) * K.eighth + K.half_eighth);
    const auto row_of = [](uint32_t lane) { return gamma_block.rows[(lane / 8 - 1) / 4 * 8 + lane % 8]; };
    const double* row0 = row_of(static_cast<uint32_t>(simd::word<0>(eighths)));
    const double* row1 = row_of(static_cast<uint32_t>(simd::word<1>(eighths)));
    const auto pair = [&](int k) {
        const __m128d from0 = _mm_load_pd(row0 + 2 * k), from1 = _mm_load_pd(row1 + 2 * k);
        return _mm_unpacklo_pd(from0, from1) + _mm_unpackhi_pd(from0, from1) * d;
    };
    const __m128d dd = d * d;
    return (pair(0) + dd * (pair(1) + dd * (pair(2) + dd * (pair(3) + dd * pair(4))))) * product;
}

// Below 0 Gamma(x) = 1 / (sin(pi x) / pi  Gamma(1 - x)).
inline __m128d gamma_lanes(__m128d x) {
    constexpr const auto& K = gamma_lanes_block;
    const __m128d size = simd::magnitude(x);
    const __m128d t = simd::select(simd::less(x, K.one), size + K.one, x);
    const __m128d g = gamma_lanes_from_one(t);
    const __m128d shifted = x + K.shifter;
    const __m128d r = x - (shifted - K.shifter);
    const __m128d z = r * r;
    const __m128d sine = r * (K.one + z * (K.s1 + z * (K.s2 + z * (K.s3 + z * (K.s4 + z * K.s5)))));
    const __m128d odd = simd::doubles(_mm_slli_epi64(simd::bits_of(shifted), 63));
    const __m128d numerator = simd::select_by_sign(x, K.one, g);
    const __m128d denominator = simd::select_by_sign(x, simd::bit_xor(sine, odd) * g, simd::least(K.one, x));
    return numerator / denominator;
}

// What gamma_lanes() does not serve: what lies near the ends of the range, and poles, which have their sign left.
inline __m128 gamma_doubt(__m128 x) {
    constexpr const auto& K = gamma_lanes_block;
    const __m128i size = _mm_and_si128(simd::bits_of(x), K.magnitude);
    const __m128 far = simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.tiny, size), _mm_cmpgt_epi32(size, K.last)));
    const __m128 whole = simd::equal(x, simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x));
    return simd::bit_or(far, simd::bit_and(x, whole));
}

}  // namespace orv::vecmath
