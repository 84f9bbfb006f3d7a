// Exponentials of other bases than e: b^x = 2^(k/N) b^r, where k is the integer next to x N log2 b and N the rows of a
// table of pairs, 2^(j/N) and what rounding took from it.
//
// As in dExp's "HA": k is found in the low bits of x + shifter, k mod N selects the row, k div N goes into the exponent as
// an integer, and b^r - 1 = p(r) joins the row's low part before its high part.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

template <int Rows>
struct ExpBaseBlock {
    bool exact_reduction;  // x + shifter rounds x itself, and r = x - k / N is exact
    double last_finite, first_zero,
        last_normal;            // where overflow, zero and subnormal results begin, the last two going down
    uint32_t last_vector_high;  // the greatest high word of |x| that the vector path serves
    simd::Splat<double> scale, shifter;
    simd::Splat<double> unit_high, unit_low;  // log_b(2) / N in two parts
    simd::Splat<double> c1, c2, c3, c4, c5;
    alignas(16) double rows[Rows][2];
    simd::SplatBits<uint64_t> index_mask{Rows - 1};
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF};
    simd::SplatBits<uint32_t> limit{last_vector_high};
    static constexpr int index_bits = Rows == 64 ? 6 : 7;
};

template <const auto& Block>
struct ExpBase : frame::OneInput<double, 4, frame::Tail::masked> {
    static constexpr const auto& K = Block;

    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.limit));
    }

    template <class T>
    static T shift(T x) {
        if constexpr (K.exact_reduction)
            return x + K.shifter;
        else
            return x * K.scale + K.shifter;
    }
    template <class T>
    static T reduced(T x, T k) {
        if constexpr (K.exact_reduction)
            return x - k;
        else
            return (x - k * K.unit_high) - k * K.unit_low;
    }
    template <class T>
    static T polynomial(T r) {
        return r * (K.c1 + r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5))));
    }

    static __m128d lanes(__m128d x) {
        const __m128d shifted = shift(x);
        const __m128i words = simd::bits_of(shifted);
        const __m128i exponent = _mm_slli_epi64(_mm_andnot_si128(K.index_mask, words), 52 - K.index_bits);
        const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
        const __m128d row0 = _mm_load_pd(K.rows[j.lane[0]]), row1 = _mm_load_pd(K.rows[j.lane[1]]);
        const __m128d high = _mm_unpacklo_pd(row0, row1), low = _mm_unpackhi_pd(row0, row1);
        const __m128d p = polynomial<__m128d>(reduced<__m128d>(x, shifted - K.shifter));
        const __m128d y = (p * high + low) + high;
        return simd::doubles(_mm_add_epi64(simd::bits_of(y), exponent));
    }

    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (!is_finite(x)) {
            *y = x == -std::numeric_limits<double>::infinity() ? 0.0 : x * x;
            return frame::status_ok;
        }
        if (x > K.last_finite) {
            *y = overflow<double>();
            return frame::status_overflow;
        }
        if (x <= K.first_zero) {
            *y = underflow<double>();
            return frame::status_underflow;
        }
        const double shifted = shift(x);
        const int32_t whole = static_cast<int32_t>(std::bit_cast<uint64_t>(shifted));
        const double* row = K.rows[whole & ((int32_t{1} << K.index_bits) - 1)];
        const double p = polynomial(reduced(x, static_cast<double>(shifted - K.shifter)));
        *y = scaled_sum(row[0], p * row[0] + row[1], whole >> K.index_bits);
        return x < K.last_normal ? frame::status_underflow : frame::status_ok;
    }
};

}  // namespace orv::vecmath
