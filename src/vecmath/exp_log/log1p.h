// What the kernels of Log1p share. The method stands in log1p_d.cpp.
#pragma once

#include "vecmath/exp_log/log_d.h"

namespace orv::vecmath {

struct Log1pLimits {
    simd::Splat<double> one{1.0};
    simd::SplatBits<uint64_t> exponent{uint64_t{0x7FF} << 52}, twice_bias{uint64_t{0x7FE} << 52};
};
inline constexpr Log1pLimits log1p_limits;

template <const auto& K>
inline __m128d log1p_lanes(__m128d x) {
    const Log1pLimits& limits = log1p_limits;
    const __m128d greater = _mm_max_pd(x, limits.one), smaller = _mm_min_pd(x, limits.one);
    const __m128d s = greater + smaller;
    const __m128d t = (greater - s) + smaller;
    const __m128i scale = _mm_sub_epi64(limits.twice_bias, _mm_and_si128(simd::bits_of(s), limits.exponent));
    const __m128d rest = t * simd::doubles(scale);
    __m128d y;
    if constexpr (requires { K.leading; })
        y = log_513<K>(s, rest);
    else
        y = log_centres<K>(s, rest);
    return simd::bit_or(y, simd::sign_of(x));  // which is that of the result, zero included
}

// "EP" of `d`, which is good for "HA" of `s` too.
inline constexpr LogCentresBlock<centres_513> log1p_ep{
    .log2_high = 0x1.62e42fefa4p-1,
    .log2_low = -0x1.8432a1b0e2634p-43,
    .c1 = 1.0,
    .c2 = -0.5,
    .c3 = 0x1.5555555555555p-2,
    .c4 = 0.0,
    .c5 = 0.0,
    .log_of_2_52 = 0.0,
    .rows =
        {
#include "vecmath/tables/ln_centres.inc"
        },
};

}  // namespace orv::vecmath
