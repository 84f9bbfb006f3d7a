// What the kernels of Expm1 share: the limits, and dExpm1's "EP" method, which is good for sExpm1 too.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

// The lanes above a positive limit, of which the bits are given (of a double those of its high word), and the NaNs of either
// sign. Negative numbers, as integers, are below every limit.
inline __m128 above_or_nan(__m128 x, __m128i last) {
    return simd::bit_or(_mm_cmpunord_ps(x, x), simd::floats(_mm_cmpgt_epi32(simd::bits_of(x), last)));
}
inline __m128d above_or_nan(__m128d x, __m128i last) {
    return simd::bit_or(_mm_cmpunord_pd(x, x), simd::doubles(_mm_cmpgt_epi32(simd::bits_of(x), last)));
}

struct Expm1Limits {
    simd::SplatBits<uint32_t> last_high{0x40861DA0 - 1};  // below 707.7031, next to 1021 ln 2
    simd::Splat<double> saturated{-40.0}, one{1.0};       // from there down e^x - 1 rounds to -1
    simd::Splat<double> scale{0x1.71547652b82fep+7};      // 128 / ln 2
    simd::SplatBits<uint64_t> exponent_mask{uint64_t{0x7FF} << 52};

    __m128d doubt(__m128d x) const { return above_or_nan(x, last_high); }
};
inline constexpr Expm1Limits expm1_limits;

struct Expm1Words {
    simd::Splat<double> shifter{0x1.80000000ffcp+49};
    simd::Splat<double> ln2{0x1.62e42fefa39efp-8};  // ln 2 / 128
    simd::Splat<double> c2{0x1.ffffffffffe5cp-2}, c3{0x1.555555555541dp-3};
    simd::SplatBits<uint64_t> offset_mask{0x3F8};
    uint64_t rows[128] = {
    // fraction bits of 2^(j/128)
#include "vecmath/tables/exp2_bits_128.inc"
    };
};
template <const Expm1Words& K>
inline __m128d expm1_words(__m128d argument) {
    const Expm1Limits& limits = expm1_limits;
    const __m128d x = _mm_max_pd(argument, limits.saturated);
    const __m128d k = simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x * limits.scale);
    const __m128i words = simd::bits_of(k + K.shifter);
    const simd::Indices<2> at(_mm_and_si128(words, K.offset_mask));
    const __m128i row = simd::gather(simd::behind(K.rows, at.lane[0]), simd::behind(K.rows, at.lane[1]));
    const __m128d s = simd::doubles(_mm_or_si128(_mm_and_si128(_mm_slli_epi64(words, 42), limits.exponent_mask), row));
    const __m128d r = x - k * K.ln2;
    const __m128d y = s * (r + r * r * (K.c2 + r * K.c3)) + (s - limits.one);
    // The sign is that of x, zero included.
    return simd::bit_or(y, simd::sign_of(x));
}

}  // namespace orv::vecmath
