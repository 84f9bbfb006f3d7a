// What Sobol and Niederr have in common: a stream that holds the current point and its index, hands out the coordinates of
// one point after the other as a flat sequence, and jumps by way of the Gray code.
#pragma once

#include "brng/outputs.h"
#include "brng/quasi/threads.h"

#include <orv/streams.h>

#include <stddef.h>

namespace orv::brng::quasi {

// The head of either state.
struct Head {
    Stream header;
    uint32_t pointIndex;  // of the current point in Gray code order; the point of zeros, index 0, does not occur
    int32_t dimension;
    int32_t selectedDim;  // the one coordinate that is handed out, or -1 for all
    int32_t coordsLeft;   // coordinates of the current point still to be handed out, 0 for a point not begun
};
static_assert(sizeof(Head) == 32);

inline constexpr int32_t all_dimensions = -1;

// A state with room for the numbers of `capacity` coordinates.
template <int capacity>
struct State {
    Head head;
    uint32_t point[capacity];
    uint32_t directions[capacity][bits + 1];                                // row by coordinate
    alignas(64) uint32_t directionsByBit[bits][(capacity + 15) / 16 * 16];  // row by bit, padded with zeros
};

inline int32_t padded(int32_t dimension) { return (dimension + 15) / 16 * 16; }

inline Head& head_of(Stream* stream) { return *reinterpret_cast<Head*>(stream); }

inline bool head_is_sound(const Stream* stream) {
    const Head& head = *reinterpret_cast<const Head*>(stream);
    return head.dimension >= 1 && head.selectedDim >= all_dimensions && head.selectedDim < head.dimension &&
           head.coordsLeft >= 0 && head.coordsLeft < head.dimension;
}

inline void start(Head& head, int32_t dimension) {
    head.pointIndex = 1;
    head.dimension = dimension;
    head.selectedDim = all_dimensions;
    head.coordsLeft = 0;
}

// How words become numbers: (x >> 1) s + a, which keeps the word in the range of signed integers. Floats are computed in
// single precision throughout.
template <class Real>
struct Output {
    using Element = Real;
    Real scale, shift;

    void one(Element* r, uint32_t x) const { *r = static_cast<Real>(static_cast<int32_t>(x >> 1)) * scale + shift; }
    void four(double* r, __m128i x) const {
        LinearOutput<double>{scale, shift}.four_short(r, simd::shift_right_32<1>(x));
    }
    void four(float* r, __m128i x) const {
        const __m128 v = simd::to_floats(simd::shift_right_32<1>(x));
        simd::store(r, v * simd::splat(scale) + simd::splat(shift));
    }
};

struct Outputs {
    template <class Real>
    static Output<Real> numbers(Real a, Real b) {
        const double low = a, high = b;
        return {static_cast<Real>((high - low) * 0x1p-31), a};
    }
    static RawOutput words() { return {}; }
};

inline const Division& division_of(const Output<double>&) { return double_division; }
inline const Division& division_of(const Output<float>&) { return float_division; }
inline const Division& division_of(const RawOutput&) { return word_division; }

template <class Out>
int32_t generate(Head& head, const Tables& t, int32_t n, typename Out::Element* r, const Out& output) {
    // Counts numbers as if they were points, which is stricter than the counter needs: part of the contract.
    if (int64_t{head.pointIndex} + n > 0xFFFFFFFF) return BrngStatusQrngExhausted;
    if (n <= 0) return StatusOk;
    if (head.selectedDim != all_dimensions) {
        const Tables one = {t.by_bit + head.selectedDim, t.row, t.point + head.selectedDim};
        walk(one, 1, head.pointIndex, n, r, output);
        head.pointIndex += static_cast<uint32_t>(n);
        return StatusOk;
    }
    const int32_t dimension = head.dimension;
    int32_t left = n;
    if (head.coordsLeft > 0) {
        const int32_t count = left < head.coordsLeft ? left : head.coordsLeft;
        put(t.point + (dimension - head.coordsLeft), count, r, output);
        head.coordsLeft -= count;
        if (head.coordsLeft == 0) add_numbers(t, dimension, step_bit(head.pointIndex++));
        left -= count;
        r += count;
    }
    const int32_t points = left / dimension, rest = left % dimension;
    if (!walk_by_threads(division_of(output), t, dimension, head.pointIndex, points, r, output))
        walk(t, dimension, head.pointIndex, points, r, output);
    head.pointIndex += static_cast<uint32_t>(points);
    if (rest > 0) {
        put(t.point, rest, r + (left - rest), output);
        head.coordsLeft = dimension - rest;
    }
    return StatusOk;
}

// find_tables(stream, &tables) is false where chunks are missing.
using FindTables = bool (*)(const Stream* stream, Tables* t);
using Seed = int32_t (*)(Stream* stream, int32_t n, const uint32_t* words);

template <class Out>
int32_t generate(Stream* stream, FindTables find_tables, int32_t n, typename Out::Element* r, const Out& output) {
    Tables t;
    if (!find_tables(stream, &t)) return StreamStatusBadImage;
    return generate(head_of(stream), t, n, r, output);
}

// The chunk of the point is written to, so it must not be shared.
bool tables_are_sound(const Stream* stream, FindTables find_tables, int32_t point_chunk);

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params, Seed seed, FindTables find_tables);

}  // namespace orv::brng::quasi
