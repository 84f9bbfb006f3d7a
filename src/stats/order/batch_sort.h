// Sorting a batch of numbers, which is what a stream's summary does with every one that it takes up.
#pragma once

#include "simd/lanes.h"
#include "stats/order/keys.h"

namespace orv::stats {

// In ascending order; operator[] gives the numbers.
template <class T>
struct SortedBatch {
    const KeyOf<T>* keys;
    Shift<KeyOf<T>> shift;

    T operator[](int32_t i) const { return number_of<T>(shift.back(keys[i])); }
};

// The key of what is not a NaN.
template <class T>
KeyOf<T> key_of_number(T x) {
    using Key = KeyOf<T>;
    const Key bits = std::bit_cast<Key>(x);
    const Key negative = static_cast<Key>(static_cast<std::make_signed_t<Key>>(bits) >> (8 * sizeof(T) - 1));
    return bits ^ (negative | Key{1} << (8 * sizeof(T) - 1));
}

// The bits in which some of the numbers differ; those of their keys are the same, but for signs.
template <class T>
KeyOf<T> varying_bits(const T* x, int32_t n) {
    using Key = KeyOf<T>;
    constexpr int32_t width = 16 / sizeof(T);
    Key first[width], lanes[width], varying = 0;
    for (Key& lane : first) lane = std::bit_cast<Key>(x[0]);
    const __m128i origin = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    __m128i all = _mm_setzero_si128();
    int32_t i = 0;
    for (; i + width <= n; i += width)
        all = _mm_or_si128(all, _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i)), origin));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), all);
    for (const Key lane : lanes) varying |= lane;
    for (; i < n; ++i) varying |= std::bit_cast<Key>(x[i]) ^ first[0];
    return varying;
}

// The two rooms, for n keys each, are the result's.
template <class T>
SortedBatch<T> sort_batch(const T* x, KeyOf<T>* keys, KeyOf<T>* spare, int32_t n) {
    const Shift<KeyOf<T>> shift(key_of_number(x[0]), varying_bits(x, n));
    if (n < shortest_by_digits) {
        for (int32_t i = 0; i < n; ++i) keys[i] = key_of_number(x[i]) << shift.bits;
        quick_sort(Spaced<KeyOf<T>>{keys, 1}, n);
        return {keys, shift};
    }
    HalfCounts counts = {};
    for (int32_t i = 0; i < n; ++i) {
        keys[i] = key_of_number(x[i]) << shift.bits;
        count_digits(counts, upper_half(keys[i]));
    }
    return {sort_counted(keys, spare, n, counts), shift};
}

}  // namespace orv::stats
