// Walking through the points of a sequence in Gray code order. From the point with index i to the next, direction number k
// of every coordinate is added (over GF(2)), k being the number of trailing ones of i.
#pragma once

#include "simd/integers.h"

#include <string.h>

namespace orv::brng::quasi {

inline constexpr int32_t bits = 32;

struct Tables {
    const uint32_t* by_bit;  // direction number k of coordinate j at by_bit[k * row + j]
    ptrdiff_t row;
    uint32_t* point;  // the current point
};

inline ptrdiff_t step_bit(uint32_t index) { return __builtin_ctz(~index); }

inline uint32_t gray_code(uint32_t index) { return index ^ index >> 1; }

// Adds direction number k to `count` coordinates.
inline void add_numbers(const Tables& t, int32_t count, ptrdiff_t k) {
    const uint32_t* numbers = t.by_bit + k * t.row;
    int32_t j = 0;
    for (; j + 4 <= count; j += 4)
        simd::store(t.point + j, simd::bit_xor(simd::load(t.point + j), simd::load(numbers + j)));
    for (; j < count; ++j) t.point[j] ^= numbers[j];
}

// Outputs of coordinates one after the other.
template <class Output>
void put(const uint32_t* coordinates, int32_t count, typename Output::Element* r, Output output) {
    int32_t j = 0;
    for (; j + 4 <= count; j += 4) output.four(r + j, simd::load(coordinates + j));
    for (; j < count; ++j) output.one(r + j, coordinates[j]);
}

template <class Output>
void one_point(Tables t, int32_t count, uint32_t index, typename Output::Element* r, Output output) {
    const uint32_t* numbers = t.by_bit + step_bit(index) * t.row;
    int32_t j = 0;
    for (; j + 4 <= count; j += 4) {
        const __m128i x = simd::load(t.point + j);
        output.four(r + j, x);
        simd::store(t.point + j, simd::bit_xor(x, simd::load(numbers + j)));
    }
    for (; j < count; ++j) {
        output.one(r + j, t.point[j]);
        t.point[j] ^= numbers[j];
    }
}

// `count` coordinates of `points` points, whose outputs stand `length` elements apart. Two points at a time read and
// write the coordinates once: the step from an even index is always number 0. Runs that go to memory go point by point
// where points are long: the processor does not fetch ahead for two such rows that are written by turns.
template <class Output>
void walk_rows(Tables t, int32_t count, uint32_t index, int32_t points, typename Output::Element* r, ptrdiff_t length,
               Output output) {
    int32_t left = points;
    if ((index & 1) != 0 && left > 0) {
        one_point(t, count, index, r, output);
        ++index;
        --left;
        r += length;
    }
    constexpr int64_t most_cached = 1 << 20;
    constexpr int32_t long_point = 60;
    const bool by_turns = count < long_point || int64_t{points} * count <= most_cached;
    for (; left >= 2 && by_turns; left -= 2, index += 2, r += 2 * length) {
        const uint32_t* numbers = t.by_bit + step_bit(index + 1) * t.row;
        int32_t j = 0;
        for (; j + 4 <= count; j += 4) {
            const __m128i first = simd::load(t.point + j);
            const __m128i second = simd::bit_xor(first, simd::load(t.by_bit + j));
            output.four(r + j, first);
            output.four(r + length + j, second);
            simd::store(t.point + j, simd::bit_xor(second, simd::load(numbers + j)));
        }
        for (; j < count; ++j) {
            const uint32_t first = t.point[j], second = first ^ t.by_bit[j];
            output.one(r + j, first);
            output.one(r + length + j, second);
            t.point[j] = second ^ numbers[j];
        }
    }
    for (; left > 0; --left, ++index, r += length) one_point(t, count, index, r, output);
}

// Points of few coordinates, four points at a time as one run of 4 * dimension words. Within four points from a multiple
// of 4 on the steps are 0, 1 and 0; to the next four, numbers 1 and k are added to every point alike, k being 2 for every
// other four.
inline constexpr int32_t most_flat = 16;

struct FlatMasks {
    alignas(16) uint32_t words[bits][4 * most_flat];
    uint32_t ready;  // a bit for each row that is filled
};

inline const uint32_t* flat_mask(FlatMasks& masks, const Tables& t, int32_t dimension, ptrdiff_t k) {
    uint32_t* words = masks.words[k];
    if ((masks.ready >> k & 1) == 0) {
        for (int32_t j = 0; j < dimension; ++j)
            words[j] = words[dimension + j] = words[2 * dimension + j] = words[3 * dimension + j] =
                t.by_bit[t.row + j] ^ t.by_bit[k * t.row + j];
        masks.ready |= uint32_t{1} << k;
    }
    return words;
}

template <class Output>
void walk_flat(Tables t, int32_t dimension, uint32_t index, int32_t points, typename Output::Element* r,
               Output output) {
    constexpr int32_t worth_masks = 16;
    int32_t left = points;
    for (; left > 0 && ((index & 7) != 0 || left < worth_masks); --left, ++index, r += dimension)
        one_point(t, dimension, index, r, output);
    if (left == 0) return;

    const ptrdiff_t length = 4 * static_cast<ptrdiff_t>(dimension);
    alignas(16) uint32_t four[4 * most_flat];
    for (int32_t j = 0; j < dimension; ++j) {
        const uint32_t x = t.point[j], number0 = t.by_bit[j], number1 = t.by_bit[t.row + j];
        four[j] = x;
        four[dimension + j] = x ^ number0;
        four[2 * dimension + j] = x ^ number0 ^ number1;
        four[3 * dimension + j] = x ^ number1;
    }
    FlatMasks masks;
    masks.ready = 0;
    const uint32_t* near = flat_mask(masks, t, dimension, 2);
    for (; left >= 8; left -= 8, index += 8, r += 2 * length) {
        const uint32_t* far = flat_mask(masks, t, dimension, step_bit(index + 7));
        for (ptrdiff_t i = 0; i < length; i += 4) {
            const __m128i first = simd::load_aligned(four + i);
            const __m128i second = simd::bit_xor(first, simd::load_aligned(near + i));
            output.four(r + i, first);
            output.four(r + length + i, second);
            simd::store_aligned(four + i, simd::bit_xor(second, simd::load_aligned(far + i)));
        }
    }
    memcpy(t.point, four, static_cast<size_t>(dimension) * sizeof *four);
    for (; left > 0; --left, ++index, r += dimension) one_point(t, dimension, index, r, output);
}

// `points` whole points.
template <class Output>
void walk(const Tables& t, int32_t dimension, uint32_t index, int32_t points, typename Output::Element* r,
          const Output& output) {
    if (dimension <= most_flat)
        walk_flat(t, dimension, index, points, r, output);
    else
        walk_rows(t, dimension, index, points, r, dimension, output);
}

}  // namespace orv::brng::quasi
