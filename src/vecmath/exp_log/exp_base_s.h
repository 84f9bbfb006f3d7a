// Single precision exponentials of other bases than e: b^x = 2^(k/128) b^r, where k is the integer next to 128 x log2 b, with
// a table of pairs t_high (1 + t_low) = 2^(j/128), as in sExp's "HA". |r| is so small that b^r - 1 ends with r^2.
//
// k stands in the low bits of x + shifter; k mod 128 selects the row, k div 128 goes into the exponent as an integer. Out of
// the vector path's range the scalar path works in double.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

struct ExpBaseSBlock {
    bool exact_reduction;  // x + shifter rounds x itself, and r = x - k / 128 is exact
    float last_finite, first_zero, last_normal;
    double log2_base;
    uint32_t last_vector;  // the greatest bits of |x| that the vector path serves
    simd::Splat<float> scale, shifter;
    simd::Splat<float> unit_high, unit_low;  // log_b(2) / 128 in two parts
    simd::Splat<float> c1, c2;
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, limit{last_vector}, index_mask{0x7F};
    alignas(16) float rows[128][2] = {
#include "vecmath/tables/exp2_float_128.inc"
    };
};

// 2^z as a float, z within the floats' range of exponents, rounded once. The polynomial is that of least greatest relative
// error on |f| <= 1/2, 2^-29.
inline float exp2_rounded(double z) {
    const double shifted = z + 0x1.8p+52;
    const double k = shifted - 0x1.8p+52;
    const double f = z - k;
    const double p =
        0x1.00000002614ffp+0 +
        f * (0x1.62e430c7e91afp-1 +
             f * (0x1.ebfbdadcb136ep-3 +
                  f * (0x1.c6aed4b95c606p-5 +
                       f * (0x1.3b2dbbc0aa7a3p-7 + f * (0x1.5f456a8a729ecp-10 + f * 0x1.41d333a1fbff9p-13)))));
    return static_cast<float>(p * power_of_two_d(static_cast<int>(k)));
}

template <const ExpBaseSBlock& K>
struct ExpBaseS : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        return simd::floats(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.limit));
    }

    static __m128 lanes(__m128 x) {
        __m128 shifted, r;
        if constexpr (K.exact_reduction) {
            shifted = x + K.shifter;
            r = x - (shifted - K.shifter);
        } else {
            shifted = x * K.scale + K.shifter;
            const __m128 k = shifted - K.shifter;
            r = (x - k * K.unit_high) - k * K.unit_low;
        }
        const __m128i words = simd::bits_of(shifted);
        __m128 t_high, t_low;
        simd::gather_pairs(K.rows, simd::Indices<4>(_mm_and_si128(words, K.index_mask)), t_high, t_low);
        const __m128 p = r * (K.c1 + r * K.c2) + t_low;
        const __m128i exponent = _mm_slli_epi32(_mm_andnot_si128(K.index_mask, words), 23 - 7);
        return simd::floats(_mm_add_epi32(simd::bits_of(p * t_high + t_high), exponent));
    }

    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (!is_finite(x)) {
            *y = x == -std::numeric_limits<float>::infinity() ? 0.0f : x * x;
            return frame::status_ok;
        }
        if (x > K.last_finite) {
            *y = overflow<float>();
            return frame::status_overflow;
        }
        if (x <= K.first_zero) {
            *y = underflow<float>();
            return frame::status_underflow;
        }
        *y = exp2_rounded(x * K.log2_base);
        return x < K.last_normal ? frame::status_underflow : frame::status_ok;
    }
};

}  // namespace orv::vecmath
