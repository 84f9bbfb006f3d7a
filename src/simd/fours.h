// Groups of four numbers beside four 32-bit integers: one register of floats or two of doubles.
#pragma once

#include "simd/integers.h"

namespace orv::simd {

template <class T>
struct Four {
    static constexpr int parts = 4 / Lanes<T>::width;
    typename Lanes<T>::V part[parts];
};

template <class T>
Four<T> load_four(const T* p) {
    Four<T> group;
    for (int i = 0; i < Four<T>::parts; ++i) group.part[i] = load(p + i * Lanes<T>::width);
    return group;
}
template <class T>
void store_four(T* p, const Four<T>& group) {
    for (int i = 0; i < Four<T>::parts; ++i) store(p + i * Lanes<T>::width, group.part[i]);
}
inline void store_four(int32_t* p, __m128i words) { store(p, words); }
inline void store_four(int64_t* p, __m128i words) {
    store(p, widen_low(words));
    store(p + 2, widen_low(high_halves(words, words)));
}

// op over the registers of one group or of two.
template <class T, class Op>
Four<T> map(const Four<T>& a, Op op) {
    Four<T> result;
    for (int i = 0; i < Four<T>::parts; ++i) result.part[i] = op(a.part[i]);
    return result;
}
template <class T, class Op>
Four<T> map(const Four<T>& a, const Four<T>& b, Op op) {
    Four<T> result;
    for (int i = 0; i < Four<T>::parts; ++i) result.part[i] = op(a.part[i], b.part[i]);
    return result;
}

// Toward zero; what does not fit becomes the most negative integer.
inline __m128i truncate(const Four<float>& v) { return truncate(v.part[0]); }
inline __m128i truncate(const Four<double>& v) { return low_halves(truncate(v.part[0]), truncate(v.part[1])); }

// A mask of four numbers as a mask of four words.
inline __m128i narrow_mask(const Four<float>& m) { return bits_of(m.part[0]); }
inline __m128i narrow_mask(const Four<double>& m) { return even_words(bits_of(m.part[0]), bits_of(m.part[1])); }

// Four signed words as numbers.
template <class T>
Four<T> to_four(__m128i words);
template <>
inline Four<float> to_four(__m128i words) {
    return {{to_floats(words)}};
}
template <>
inline Four<double> to_four(__m128i words) {
    return {{to_doubles(words), to_doubles(high_halves(words, words))}};
}

// base[index] of four words.
inline Four<float> gather(const float* base, __m128i index) {
    return {{gather(base + word<0>(index), base + word<1>(index), base + word<2>(index), base + word<3>(index))}};
}
inline Four<double> gather(const double* base, __m128i index) {
    return {
        {gather(base + word<0>(index), base + word<1>(index)), gather(base + word<2>(index), base + word<3>(index))}};
}
// Likewise of rows of two words, by columns.
struct TwoWords {
    __m128i first, second;
};
inline TwoWords gather_pairs(const void* rows, __m128i index) {
    const auto row = [&](int32_t i) { return load_half(static_cast<const int32_t(*)[2]>(rows)[i]); };
    const __m128i low = low_halves(row(word<0>(index)), row(word<1>(index)));
    const __m128i high = low_halves(row(word<2>(index)), row(word<3>(index)));
    return {even_words(low, high), odd_words(low, high)};
}

}  // namespace orv::simd
