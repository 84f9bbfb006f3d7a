// Long runs of MRG32K3A in eight lanes. A block of 8 * rows outputs is cut into eight runs of `rows` successive outputs
// (a power of two); lane j starts where the plain walk is after j * rows steps, found by the jump matrix A^rows, and
// walks the plain recurrence from there. Lane 7 ends where the block ends.
//
// The walk is in double precision on residues around zero. With |x| at most m (only at the start) or m/2 plus a little,
// the products and their difference t stay below 2^53 in absolute value and are exact; k, t / m rounded to the nearest,
// is off by at most one part in 2^31 of a unit, so t - k m is exact, congruent, and again m/2 plus a little. No
// correction step is needed, and no step depends on the rounding mode.
#pragma once

#include "brng/jumps/mrg32k3a_powers.h"
#include "brng/outputs.h"

namespace orv::brng::mrg32k3a {

inline constexpr int32_t lanes = 8;
// Binary logarithms of the rows in a block, longest first: the eight starting points of a block cost about 300 cycles.
inline constexpr int row_lengths[] = {8, 6, 4};
inline constexpr int32_t shortest_block = lanes << 4;

// The walk of all lanes through a stretch of a block: step i stands in row i + 3, the three rows before it are the state.
// Lanes 2 p and 2 p + 1 share pair p of a row. The stretch is short enough to stay in the first-level cache, and steps
// of all lanes alternate, since one lane's steps wait for each other.
inline constexpr int32_t pairs = lanes / 2;
inline constexpr int32_t stretch = 16;

struct Rows {
    __m128d x[stretch + 3][pairs];
    __m128d y[stretch + 3][pairs];
};

// The state after a jump. Folded products are below 2^47 + 2^32, so three of them make a sum that two more folds bring
// below 2^32.
inline Both jump(const Both& v, const Matrix3& power1, const Matrix3& power2) {
    Both result;
    for (int i = 0; i < 3; ++i) {
        __m128i sum = simd::splat_bits(0);
        for (int k = 0; k < 3; ++k) {
            const __m128i power = simd::words_in_lanes(power1.at[i][k], power2.at[i][k]);
            sum = simd::add(sum, fold(simd::multiply_words(power, v.at[k])));
        }
        result.at[i] = below_moduli(fold(fold(sum)));
    }
    return result;
}

inline void start_lanes(Rows& rows, const Residues& s, int log_rows) {
    Both v = load_both(s);
    for (int32_t pair = 0; pair < pairs; ++pair) {
        const Both even = v;
        const Both odd = jump(even, powers1.power[log_rows], powers2.power[log_rows]);
        for (int i = 0; i < 3; ++i) {
            rows.x[i][pair] = to_double(simd::low_halves(even.at[i], odd.at[i]));
            rows.y[i][pair] = to_double(simd::high_halves(even.at[i], odd.at[i]));
        }
        if (pair + 1 < pairs) v = jump(odd, powers1.power[log_rows], powers2.power[log_rows]);
    }
}

// (p u - q v) mod m, around zero.
inline __m128d recur(__m128d u, double p, __m128d v, double q, double m, double inverse) {
    const __m128d t = u * simd::splat(p) - v * simd::splat(q);
    const __m128d k = simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(t * simd::splat(inverse));
    return t - k * simd::splat(m);
}

inline __m128d next_x(__m128d x2, __m128d x3) { return recur(x2, a12, x3, a13, m1, 1.0 / m1); }
inline __m128d next_y(__m128d y1, __m128d y3) { return recur(y1, b21, y3, b23, m2, 1.0 / m2); }

// Integers below 2^31 in absolute value as 32-bit words: the low words of 1.5 * 2^52 + v, of two pairs of lanes.
inline __m128i low_words(__m128d first, __m128d second) {
    const __m128d bias = simd::splat(0x1.8p52);
    return simd::even_words(simd::bits_of(first + bias), simd::bits_of(second + bias));
}

// Residues around zero to residues below m.
inline __m128i canonical(__m128i v, uint32_t m) {
    return simd::add_32(v, simd::bit_and(simd::shift_right_signed_32<31>(v), simd::splat_32(m)));
}

// (x - y) mod m1 of two pairs.
inline __m128i outputs_of(const Rows& rows, int32_t row, int32_t pair) {
    const __m128i x = low_words(rows.x[row][pair], rows.x[row + 1][pair]);
    const __m128i y = low_words(rows.y[row][pair], rows.y[row + 1][pair]);
    return combine(canonical(x, m1), canonical(y, m2));
}

inline void walk(Rows& rows) {
    for (int32_t row = 3; row < stretch + 3; ++row)
        for (int32_t pair = 0; pair < pairs; ++pair) {
            rows.x[row][pair] = next_x(rows.x[row - 2][pair], rows.x[row - 3][pair]);
            rows.y[row][pair] = next_y(rows.y[row - 1][pair], rows.y[row - 3][pair]);
        }
}

// The outputs of one pair's two lanes, four at a time.
template <class Output>
void put(const Rows& rows, int32_t pair, typename Output::Element* even, typename Output::Element* odd,
         const Output& output) {
    for (int32_t i = 0; i < stretch; i += 4) {
        const __m128i early = outputs_of(rows, i + 3, pair);
        const __m128i late = outputs_of(rows, i + 5, pair);
        output.four(even + i, simd::even_words(early, late));
        output.four(odd + i, simd::odd_words(early, late));
    }
}

// Writes 8 << log_rows outputs (a multiple of the stretch in each lane) and moves the state behind them.
template <class Output>
void generate_block(Residues& s, int log_rows, typename Output::Element* r, const Output& output) {
    Rows rows;
    start_lanes(rows, s, log_rows);
    const int32_t length = 1 << log_rows;
    for (int32_t i = 0; i < length; i += stretch) {
        if (i != 0)
            for (int row = 0; row < 3; ++row)
                for (int32_t pair = 0; pair < pairs; ++pair) {
                    rows.x[row][pair] = rows.x[stretch + row][pair];
                    rows.y[row][pair] = rows.y[stretch + row][pair];
                }
        walk(rows);
        for (int32_t pair = 0; pair < pairs; ++pair)
            put(rows, pair, r + 2 * pair * length + i, r + (2 * pair + 1) * length + i, output);
    }
    for (int i = 0; i < 3; ++i) {
        const __m128d x = rows.x[stretch + i][pairs - 1], y = rows.y[stretch + i][pairs - 1];
        s.x[i] = static_cast<uint32_t>(simd::word<1>(canonical(low_words(x, x), m1)));
        s.y[i] = static_cast<uint32_t>(simd::word<1>(canonical(low_words(y, y), m2)));
    }
}

}  // namespace orv::brng::mrg32k3a
