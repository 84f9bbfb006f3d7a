// The total order of the sorted results: -0 before +0 and NaNs last. Integers in that order stand for the numbers, and long
// columns of them are sorted by digits.
#pragma once

#include "simd/lanes.h"
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

// The keys of n contiguous numbers.
template <class T>
void put_keys(const T* x, int32_t n, KeyOf<T>* keys) {
    constexpr int32_t width = simd::Lanes<T>::width;
    const auto sign = simd::splat(-T{0});
    int32_t i = 0;
    for (; i + width <= n; i += width) {
        const auto number = simd::load(x + i);
        const auto ordered = simd::equal(number, number);
        const __m128i bits = simd::bits_of(simd::bit_and_not(simd::bit_and_not(ordered, sign), number));
        // Of the upper halves, the sign everywhere.
        __m128i negative = _mm_srai_epi32(bits, 31);
        if (sizeof(T) == 8) negative = _mm_shuffle_epi32(negative, _MM_SHUFFLE(3, 3, 1, 1));
        const __m128i flipped = _mm_or_si128(negative, simd::bits_of(sign));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(keys + i), _mm_xor_si128(bits, flipped));
    }
    for (; i < n; ++i) keys[i] = key_of(x[i]);
}

template <class T>
T number_of(KeyOf<T> key) {
    using Key = KeyOf<T>;
    constexpr Key sign = Key{1} << (8 * sizeof(T) - 1);
    return std::bit_cast<T>(static_cast<Key>(key & sign ? key & ~sign : ~key));
}

// ---- Sorting -------------------------------------------------------------------------------------------------------
//
// Keys are shifted up by the bits that all have in common. Most then differ in their upper half, which is sorted by three digits;
// insertions put right what the lower half decides. Where that takes too many moves, the lower half's three digits are sorted
// before.

inline constexpr int digit_bits = 11, digit_values = 1 << digit_bits;
inline constexpr int half_digits = 3;
using HalfCounts = uint32_t[half_digits][digit_values];

inline uint32_t upper_half(uint64_t key) { return static_cast<uint32_t>(key >> 32); }
inline uint32_t upper_half(uint32_t key) { return key; }
inline uint32_t lower_half(uint64_t key) { return static_cast<uint32_t>(key); }

inline void count_digits(HalfCounts& counts, uint32_t bits) {
    ++counts[0][bits & (digit_values - 1)];
    ++counts[1][bits >> digit_bits & (digit_values - 1)];
    ++counts[2][bits >> 2 * digit_bits];
}

// Three passes over 32 bits of each key, 11, 11 and 10. Returns where the keys end: in one of the two.
template <auto half, class Key>
Key* sort_half(Key* keys, Key* spare, int32_t n, HalfCounts& counts) {
    const uint32_t first = half(keys[0]);
    for (int digit = 0; digit < half_digits; ++digit) {
        const int shift = digit * digit_bits;
        uint32_t* start = counts[digit];
        // A digit that all have in common changes nothing.
        if (start[first >> shift & (digit_values - 1)] == static_cast<uint32_t>(n)) continue;
        uint32_t sum = 0;
        for (int value = 0; value < digit_values; ++value) {
            const uint32_t own = start[value];
            start[value] = sum;
            sum += own;
        }
        for (int32_t i = 0; i < n; ++i) {
            const Key key = keys[i];
            spare[start[half(key) >> shift & (digit_values - 1)]++] = key;
        }
        std::swap(keys, spare);
    }
    return keys;
}

// Sorts by insertion unless that takes more moves than allowed; then the keys are in some order.
template <class Key>
bool insert_all(Key* keys, int32_t n, int32_t moves) {
    Key before = keys[0];
    for (int32_t i = 1; i < n; ++i) {
        const Key held = keys[i];
        if (before <= held) {
            before = held;
            continue;
        }
        int32_t j = i - 1;
        do keys[j + 1] = keys[j];
        while (--j >= 0 && keys[j] > held);
        keys[j + 1] = held;
        before = keys[i];
        moves -= i - j;
        if (moves < 0) return false;
    }
    return true;
}

// Sorts keys whose upper halves' digits are counted. The sorted ones end in one of the two, which is returned.
template <class Key>
Key* sort_counted(Key* keys, Key* spare, int32_t n, HalfCounts& counts) {
    const auto upper = [](Key key) { return upper_half(key); };
    Key* sorted = sort_half<upper>(keys, spare, n, counts);
    if constexpr (sizeof(Key) == 8) {
        if (insert_all(sorted, n, n / 2)) return sorted;
        const auto lower = [](Key key) { return lower_half(key); };
        Key* other = sorted == keys ? spare : keys;
        HalfCounts both[2] = {};
        for (int32_t i = 0; i < n; ++i) {
            count_digits(both[0], lower_half(sorted[i]));
            count_digits(both[1], upper_half(sorted[i]));
        }
        Key* half_sorted = sort_half<lower>(sorted, other, n, both[0]);
        sorted = sort_half<upper>(half_sorted, half_sorted == sorted ? other : sorted, n, both[1]);
    }
    return sorted;
}

// Keys shifted up by the bits that all have in common.
template <class Key>
struct Shift {
    int bits;
    Key common;

    Shift(Key first, Key varying) : bits(std::countl_zero(varying | Key{1})), common(0) {
        constexpr int width = 8 * sizeof(Key);
        if (bits > 0) common = first >> (width - bits) << (width - bits);
    }
    Key back(Key key) const { return common | key >> bits; }
};

// The bits in which some of the numbers, or keys, differ; those of numbers and of their keys are the same, but for signs.
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

// Below this many the digits' tables cost more than comparisons.
inline constexpr int32_t shortest_by_digits = 1500;

template <class Key>
Key* sort_keys(Key* keys, Key* spare, int32_t n) {
    if (n < shortest_by_digits) {
        quick_sort(keys, n);
        return keys;
    }
    const Shift<Key> shift(keys[0], varying_bits(keys, n));
    HalfCounts counts = {};
    for (int32_t i = 0; i < n; ++i) {
        keys[i] <<= shift.bits;
        count_digits(counts, upper_half(keys[i]));
    }
    Key* sorted = sort_counted(keys, spare, n, counts);
    if (shift.bits > 0)
        for (int32_t i = 0; i < n; ++i) sorted[i] = shift.back(sorted[i]);
    return sorted;
}

}  // namespace orv::stats
