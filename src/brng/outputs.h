// How 32-bit words become outputs: r = x s + a in double precision, in this order, or the words themselves.
#pragma once

#include "simd/integers.h"

namespace orv::brng {

inline constexpr double two_52 = 0x1p52;
inline constexpr uint32_t high_of_2p52 = 0x43300000;

// A word below the high half of 2^52 is the double 2^52 + x; subtracting 2^52 leaves x exactly.
inline __m128d without_bias(__m128i biased) { return simd::doubles(biased) - simd::splat(two_52); }

// The doubles of two words in 64-bit lanes, and of the lower and upper two of four words.
inline __m128d to_double(__m128i lanes) {
    return without_bias(simd::bit_or(lanes, simd::bits_of(simd::splat(two_52))));
}
inline __m128d lower_to_double(__m128i words) {
    return without_bias(simd::interleave_low_32(words, simd::splat_32(high_of_2p52)));
}
inline __m128d upper_to_double(__m128i words) {
    return without_bias(simd::interleave_high_32(words, simd::splat_32(high_of_2p52)));
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
    void four(Element* r, __m128i x) const { simd::store(r, x); }
    void four_short(Element* r, __m128i x) const { four(r, x); }
};

// Numbers x s + a, computed in double precision and rounded once where they are floats.
template <class Real>
struct LinearOutput {
    using Element = Real;
    double scale, shift;

    void one(Element* r, uint32_t x) const { *r = static_cast<Real>(static_cast<double>(x) * scale + shift); }
    void four(Element* r, __m128i x) const { put(r, lower_to_double(x), upper_to_double(x)); }
    void four_short(Element* r, __m128i x) const {
        alignas(16) int32_t words[4];
        simd::store_aligned(words, x);
        put(r, to_double(words), to_double(words + 2));
    }

    __m128d map(__m128d x) const { return x * simd::splat(scale) + simd::splat(shift); }
    void put(double* r, __m128d x01, __m128d x23) const {
        simd::store(r, map(x01));
        simd::store(r + 2, map(x23));
    }
    void put(float* r, __m128d x01, __m128d x23) const { simd::store(r, simd::narrow(map(x01), map(x23))); }
};

// The outputs on [a, b) of words that count in `unit`s, and of the words as they are.
template <const double& unit>
struct LinearOutputs {
    template <class Real>
    static LinearOutput<Real> numbers(Real a, Real b) {
        return {(static_cast<double>(b) - static_cast<double>(a)) * unit, static_cast<double>(a)};
    }
    static RawOutput words() { return {}; }
};

// Numbers x s + m of words counted as signed, throughout in the precision of the number.
template <class Real>
struct SignedOutput;

template <>
struct SignedOutput<double> {
    using Element = double;
    double scale, middle;

    void one(Element* r, uint32_t x) const { *r = static_cast<double>(static_cast<int32_t>(x)) * scale + middle; }
    void four(Element* r, __m128i x) const {
        simd::store(r, map(simd::to_doubles(x)));
        simd::store(r + 2, map(simd::to_doubles(simd::high_halves(x, x))));
    }
    __m128d map(__m128d x) const { return x * simd::splat(scale) + simd::splat(middle); }
};

template <>
struct SignedOutput<float> {
    using Element = float;
    float scale, middle;

    void one(Element* r, uint32_t x) const { *r = static_cast<float>(static_cast<int32_t>(x)) * scale + middle; }
    void four(Element* r, __m128i x) const {
        simd::store(r, simd::to_floats(x) * simd::splat(scale) + simd::splat(middle));
    }
};

struct SignedOutputs {
    template <class Real>
    static SignedOutput<Real> numbers(Real a, Real b) {
        constexpr double unit = 0x1p-32;
        const double low = a, high = b;
        return {static_cast<Real>((high - low) * unit), static_cast<Real>((low + high) * 0.5)};
    }
    static RawOutput words() { return {}; }
};

}  // namespace orv::brng
