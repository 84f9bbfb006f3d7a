// Sorting a batch of numbers, which is what a stream's summary does with every one that it takes up.
#pragma once

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

// The two rooms, for n keys each, are the result's.
template <class T>
SortedBatch<T> sort_batch(const T* x, KeyOf<T>* keys, KeyOf<T>* spare, int32_t n) {
    const Shift<KeyOf<T>> shift(key_of_number(x[0]), varying_bits(x, n));
    if (n < shortest_by_digits) {
        for (int32_t i = 0; i < n; ++i) keys[i] = key_of_number(x[i]) << shift.bits;
        quick_sort(keys, n);
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
