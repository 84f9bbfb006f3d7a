// The total order of the sorted results: -0 before +0 and NaNs last. Integers in that order stand for the numbers, and long
// columns of them are sorted by digits.
#pragma once

#include "stats/order/quick_sort.h"

#include <string.h>

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace orv::stats {

template <class T>
using KeyOf = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

template <class T>
KeyOf<T> key_of(T x) {
    using Key = KeyOf<T>;
    constexpr Key sign = Key{1} << (8 * sizeof(T) - 1);
    Key bits = std::bit_cast<Key>(x);
    if (x != x) bits &= ~sign;  // behind all infinities
    return bits & sign ? ~bits : bits | sign;
}

template <class T>
T number_of(KeyOf<T> key) {
    using Key = KeyOf<T>;
    constexpr Key sign = Key{1} << (8 * sizeof(T) - 1);
    return std::bit_cast<T>(static_cast<Key>(key & sign ? key & ~sign : ~key));
}

inline constexpr int digit_bits = 11, digit_values = 1 << digit_bits;

// Sorts keys by digits from the lowest up. `spare` has room for n more; the sorted keys end in one of the two, which is
// returned.
template <class Key>
Key* sort_by_digits(Key* keys, Key* spare, int32_t n) {
    constexpr int digits = (8 * sizeof(Key) + digit_bits - 1) / digit_bits;
    uint32_t start[digit_values];
    for (int digit = 0; digit < digits; ++digit) {
        const int shift = digit * digit_bits;
        memset(start, 0, sizeof start);
        for (int32_t i = 0; i < n; ++i) ++start[keys[i] >> shift & (digit_values - 1)];
        // A digit that all have in common changes nothing.
        if (start[keys[0] >> shift & (digit_values - 1)] == static_cast<uint32_t>(n)) continue;
        uint32_t sum = 0;
        for (uint32_t& count : start) {
            const uint32_t own = count;
            count = sum;
            sum += own;
        }
        for (int32_t i = 0; i < n; ++i) spare[start[keys[i] >> shift & (digit_values - 1)]++] = keys[i];
        std::swap(keys, spare);
    }
    return keys;
}

// Below this many the digits' tables cost more than comparisons.
inline constexpr int32_t shortest_by_digits = 1500;

template <class Key>
Key* sort_keys(Key* keys, Key* spare, int32_t n) {
    if (n >= shortest_by_digits) return sort_by_digits(keys, spare, n);
    quick_sort(Spaced<Key>{keys, 1}, n);
    return keys;
}

}  // namespace orv::stats
