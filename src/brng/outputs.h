// How 32-bit words become outputs: r = x s + a in double precision, in this order, or the words themselves.
//
// A word in the low half of a 64-bit lane under the high half of 2^52 is the double 2^52 + x; subtracting 2^52 leaves x
// exactly, under every rounding mode.
#pragma once

#include <smmintrin.h>
#include <stdint.h>

namespace orv::brng {

inline constexpr uint32_t high_of_2p52 = 0x43300000;
inline constexpr double two_52 = 0x1p52;

// The doubles of two words below 2^32 in 64-bit lanes.
inline __m128d to_double(__m128i lanes) {
    const __m128i biased = _mm_or_si128(lanes, _mm_castpd_si128(_mm_set1_pd(two_52)));
    return _mm_sub_pd(_mm_castsi128_pd(biased), _mm_set1_pd(two_52));
}

// The doubles of the lower and the upper two of four words.
inline __m128d lower_to_double(__m128i words) {
    const __m128i biased = _mm_unpacklo_epi32(words, _mm_set1_epi32(high_of_2p52));
    return _mm_sub_pd(_mm_castsi128_pd(biased), _mm_set1_pd(two_52));
}
inline __m128d upper_to_double(__m128i words) {
    const __m128i biased = _mm_unpackhi_epi32(words, _mm_set1_epi32(high_of_2p52));
    return _mm_sub_pd(_mm_castsi128_pd(biased), _mm_set1_pd(two_52));
}

// An output writes one word, four words of a vector, or four words in the 64-bit lanes of two vectors.
struct RawOutput {
    using Element = uint32_t;

    void one(Element* r, uint32_t x) const { *r = x; }
    void four(Element* r, __m128i x) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(r), x); }
    void four(Element* r, __m128i x01, __m128i x23) const {
        four(r, _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(x01), _mm_castsi128_ps(x23), 0x88)));
    }
};

struct DoubleOutput {
    using Element = double;
    double scale, shift;

    void one(Element* r, uint32_t x) const { *r = static_cast<double>(x) * scale + shift; }
    void four(Element* r, __m128i x) const { store(r, lower_to_double(x), upper_to_double(x)); }
    void four(Element* r, __m128i x01, __m128i x23) const { store(r, to_double(x01), to_double(x23)); }

    __m128d map(__m128d x) const { return _mm_add_pd(_mm_mul_pd(x, _mm_set1_pd(scale)), _mm_set1_pd(shift)); }
    void store(Element* r, __m128d x01, __m128d x23) const {
        _mm_storeu_pd(r, map(x01));
        _mm_storeu_pd(r + 2, map(x23));
    }
};

// Computed in double precision and rounded once.
struct FloatOutput {
    using Element = float;
    double scale, shift;

    void one(Element* r, uint32_t x) const { *r = static_cast<float>(static_cast<double>(x) * scale + shift); }
    void four(Element* r, __m128i x) const { store(r, lower_to_double(x), upper_to_double(x)); }
    void four(Element* r, __m128i x01, __m128i x23) const { store(r, to_double(x01), to_double(x23)); }

    __m128 map(__m128d x) const {
        return _mm_cvtpd_ps(_mm_add_pd(_mm_mul_pd(x, _mm_set1_pd(scale)), _mm_set1_pd(shift)));
    }
    void store(Element* r, __m128d x01, __m128d x23) const { _mm_storeu_ps(r, _mm_movelh_ps(map(x01), map(x23))); }
};

inline DoubleOutput double_output(double a, double b, double unit) { return {(b - a) * unit, a}; }
inline FloatOutput float_output(float a, float b, double unit) {
    return {(static_cast<double>(b) - static_cast<double>(a)) * unit, static_cast<double>(a)};
}

}  // namespace orv::brng
