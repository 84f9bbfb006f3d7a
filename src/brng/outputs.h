// How 32-bit words become outputs: r = x s + a in double precision, in this order, or the words themselves.
#pragma once

#include <smmintrin.h>
#include <stdint.h>

namespace orv::brng {

inline constexpr uint32_t high_of_2p52 = 0x43300000;
inline constexpr double two_52 = 0x1p52;

// A word below the high half of 2^52 is the double 2^52 + x; subtracting 2^52 leaves x exactly.
inline __m128d without_bias(__m128i biased) { return _mm_sub_pd(_mm_castsi128_pd(biased), _mm_set1_pd(two_52)); }

// The doubles of two words in 64-bit lanes, and of the lower and upper two of four words.
inline __m128d to_double(__m128i lanes) {
    return without_bias(_mm_or_si128(lanes, _mm_castpd_si128(_mm_set1_pd(two_52))));
}
inline __m128d lower_to_double(__m128i words) {
    return without_bias(_mm_unpacklo_epi32(words, _mm_set1_epi32(high_of_2p52)));
}
inline __m128d upper_to_double(__m128i words) {
    return without_bias(_mm_unpackhi_epi32(words, _mm_set1_epi32(high_of_2p52)));
}

// The doubles of two signed words in memory: one instruction, where the words in a register would take a shuffle more.
inline __m128d to_double(const int32_t* words) {
    __m128d result;
    __asm__("cvtdq2pd %1, %0"
            : "=x"(result)
            : "m"(*reinterpret_cast<const uint64_t __attribute__((may_alias))*>(words)));
    return result;
}

// An output writes one word, four words of a vector, or four words below 2^31.
struct RawOutput {
    using Element = uint32_t;

    void one(Element* r, uint32_t x) const { *r = x; }
    void four(Element* r, __m128i x) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(r), x); }
    void four_short(Element* r, __m128i x) const { four(r, x); }
};

struct DoubleOutput {
    using Element = double;
    double scale, shift;

    void one(Element* r, uint32_t x) const { *r = static_cast<double>(x) * scale + shift; }
    void four(Element* r, __m128i x) const { store(r, lower_to_double(x), upper_to_double(x)); }
    void four_short(Element* r, __m128i x) const {
        alignas(16) int32_t words[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(words), x);
        store(r, to_double(words), to_double(words + 2));
    }

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
    void four_short(Element* r, __m128i x) const {
        alignas(16) int32_t words[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(words), x);
        store(r, to_double(words), to_double(words + 2));
    }

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
