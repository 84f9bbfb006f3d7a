// Sorting a batch of numbers, which is what a stream's summary does with every one that it takes up.
//
// The keys of a batch are shifted up by the bits that all have in common. Most then differ in their upper half, which is sorted
// by three digits; insertions put right what the lower half decides. Where that takes too many moves, the lower half's three digits
// are sorted before.
#pragma once

#include "simd/lanes.h"
#include "stats/order/keys.h"

namespace orv::stats {

// In ascending order; operator[] gives the numbers.
template <class T>
struct SortedBatch {
    const KeyOf<T>* keys;
    int shift;
    KeyOf<T> common;

    T operator[](int32_t i) const { return number_of<T>(common | keys[i] >> shift); }
};

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
    using Key = KeyOf<T>;
    constexpr int width = 8 * sizeof(Key);
    const Key first = key_of_number(x[0]);
    const int shift = std::countl_zero(varying_bits(x, n) | Key{1});
    const Key common = shift == 0 ? 0 : first >> (width - shift) << (width - shift);
    if (n < shortest_by_digits) {
        for (int32_t i = 0; i < n; ++i) keys[i] = key_of_number(x[i]) << shift;
        quick_sort(Spaced<Key>{keys, 1}, n);
        return {keys, shift, common};
    }
    HalfCounts counts = {};
    for (int32_t i = 0; i < n; ++i) {
        keys[i] = key_of_number(x[i]) << shift;
        count_digits(counts, upper_half(keys[i]));
    }
    const auto upper = [](Key key) { return upper_half(key); };
    Key* sorted = sort_half<upper>(keys, spare, n, counts);
    if constexpr (width == 64) {
        if (!insert_all(sorted, n, n / 2)) {
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
    }
    return {sorted, shift, common};
}

}  // namespace orv::stats
