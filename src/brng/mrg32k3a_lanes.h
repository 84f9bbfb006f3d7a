// Long runs of MRG32K3A in eight lanes. A block of 8 * rows outputs is cut into eight runs of `rows` successive outputs
// (a power of two); lane j starts where the plain walk is after j * rows steps, found by the jump matrix A^rows, and
// walks the plain recurrence from there. Lane 7 ends where the block ends.
//
// The walk is in double precision on residues around zero. With |x| at most m (only at the start) or m/2 plus a little,
// the products and their difference t stay below 2^53 in absolute value and are exact; k, t / m rounded to the nearest,
// is off by at most one part in 2^31 of a unit, so t - k m is exact, congruent, and again m/2 plus a little. No
// correction step is needed, and no step depends on the rounding mode.
#pragma once

#include "brng/modular.h"
#include "brng/mrg32k3a_jump.h"
#include "brng/outputs.h"

#include <smmintrin.h>
#include <stdint.h>

namespace orv::brng {

struct MrgState {
    uint32_t x[3];  // x(n-3), x(n-2), x(n-1), below m1
    uint32_t y[3];
};

inline constexpr int32_t mrg_lanes = 8;
// Binary logarithms of the rows in a block, longest first: the eight starting points of a block cost about 300 cycles.
inline constexpr int mrg_row_lengths[] = {8, 6, 4};
inline constexpr int32_t mrg_shortest_block = mrg_lanes << 4;

// The walk of all lanes through a stretch of a block: step i stands in row i + 3, the three rows before it are the state.
// Lanes 2 p and 2 p + 1 share pair p of a row. The stretch is short enough to stay in the first-level cache, and steps
// of all lanes alternate, since one lane's steps wait for each other.
inline constexpr int32_t mrg_pairs = mrg_lanes / 2;
inline constexpr int32_t stretch = 16;

struct MrgRows {
    __m128d x[stretch + 3][mrg_pairs];
    __m128d y[stretch + 3][mrg_pairs];
};

// The word i of both components in 64-bit lanes: x in the low one, y in the high one.
struct MrgVector {
    __m128i at[3];
};

inline __m128i words_in_lanes(uint32_t x, uint32_t y) {
    return _mm_unpacklo_epi64(_mm_cvtsi32_si128(static_cast<int>(x)), _mm_cvtsi32_si128(static_cast<int>(y)));
}

inline MrgVector vector_of(const MrgState& s) {
    MrgVector v;
    for (int i = 0; i < 3; ++i) v.at[i] = words_in_lanes(s.x[i], s.y[i]);
    return v;
}

inline __m128i moduli() { return words_in_lanes(m1, m2); }

// (t >> 32) c + (t mod 2^32), one fold of `reduce` for both components.
inline __m128i fold(__m128i t) {
    const __m128i c = words_in_lanes(0 - m1, 0 - m2);
    const __m128i low = _mm_blend_epi16(t, _mm_setzero_si128(), 0xCC);
    return _mm_add_epi64(_mm_mul_epu32(_mm_srli_epi64(t, 32), c), low);
}

// The state after a jump. Folded products are below 2^47 + 2^32, so three of them make a sum that two more folds bring
// below 2^32.
inline MrgVector jump(const MrgVector& v, const Matrix3& power1, const Matrix3& power2) {
    MrgVector result;
    for (int i = 0; i < 3; ++i) {
        __m128i sum = _mm_setzero_si128();
        for (int k = 0; k < 3; ++k)
            sum = _mm_add_epi64(sum, fold(_mm_mul_epu32(words_in_lanes(power1.at[i][k], power2.at[i][k]), v.at[k])));
        const __m128i low = fold(fold(sum));
        result.at[i] = _mm_min_epu32(low, _mm_sub_epi32(low, moduli()));
    }
    return result;
}

inline void start_lanes(MrgRows& rows, const MrgState& s, int log_rows) {
    MrgVector v = vector_of(s);
    for (int32_t pair = 0; pair < mrg_pairs; ++pair) {
        const MrgVector even = v;
        const MrgVector odd = jump(even, mrg_powers1.power[log_rows], mrg_powers2.power[log_rows]);
        for (int i = 0; i < 3; ++i) {
            rows.x[i][pair] = to_double(_mm_unpacklo_epi64(even.at[i], odd.at[i]));
            rows.y[i][pair] = to_double(_mm_unpackhi_epi64(even.at[i], odd.at[i]));
        }
        if (pair + 1 < mrg_pairs) v = jump(odd, mrg_powers1.power[log_rows], mrg_powers2.power[log_rows]);
    }
}

// (p u - q v) mod m, around zero.
inline __m128d recur(__m128d u, double p, __m128d v, double q, double m, double inverse) {
    const __m128d t = _mm_sub_pd(_mm_mul_pd(u, _mm_set1_pd(p)), _mm_mul_pd(v, _mm_set1_pd(q)));
    const __m128d k = _mm_round_pd(_mm_mul_pd(t, _mm_set1_pd(inverse)), _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    return _mm_sub_pd(t, _mm_mul_pd(k, _mm_set1_pd(m)));
}

inline __m128d next_x(__m128d x2, __m128d x3) { return recur(x2, mrg_a12, x3, mrg_a13, m1, 1.0 / m1); }
inline __m128d next_y(__m128d y1, __m128d y3) { return recur(y1, mrg_b21, y3, mrg_b23, m2, 1.0 / m2); }

// Integers below 2^31 in absolute value as 32-bit words: the low words of 1.5 * 2^52 + v, of two pairs of lanes.
inline __m128i low_words(__m128d first, __m128d second) {
    const __m128d bias = _mm_set1_pd(0x1.8p52);
    return _mm_castps_si128(
        _mm_shuffle_ps(_mm_castpd_ps(_mm_add_pd(first, bias)), _mm_castpd_ps(_mm_add_pd(second, bias)), 0x88));
}

// Residues around zero to residues below m.
inline __m128i canonical(__m128i v, uint32_t m) {
    return _mm_add_epi32(v, _mm_and_si128(_mm_srai_epi32(v, 31), _mm_set1_epi32(static_cast<int>(m))));
}

// (x - y) mod m1 for canonical x and y.
inline __m128i combine(__m128i x, __m128i y) {
    const __m128i not_below = _mm_cmpeq_epi32(_mm_max_epu32(x, y), x);
    return _mm_add_epi32(_mm_sub_epi32(x, y), _mm_andnot_si128(not_below, _mm_set1_epi32(static_cast<int>(m1))));
}

// (x - y) mod m1 of two pairs.
inline __m128i outputs_of(const MrgRows& rows, int32_t row, int32_t pair) {
    const __m128i x = low_words(rows.x[row][pair], rows.x[row + 1][pair]);
    const __m128i y = low_words(rows.y[row][pair], rows.y[row + 1][pair]);
    return combine(canonical(x, m1), canonical(y, m2));
}

inline void walk(MrgRows& rows) {
    for (int32_t row = 3; row < stretch + 3; ++row)
        for (int32_t pair = 0; pair < mrg_pairs; ++pair) {
            rows.x[row][pair] = next_x(rows.x[row - 2][pair], rows.x[row - 3][pair]);
            rows.y[row][pair] = next_y(rows.y[row - 1][pair], rows.y[row - 3][pair]);
        }
}

// The outputs of one pair's two lanes, four at a time.
template <class Output>
void put(const MrgRows& rows, int32_t pair, typename Output::Element* even, typename Output::Element* odd,
         const Output& output) {
    for (int32_t i = 0; i < stretch; i += 4) {
        const __m128 early = _mm_castsi128_ps(outputs_of(rows, i + 3, pair));
        const __m128 late = _mm_castsi128_ps(outputs_of(rows, i + 5, pair));
        output.four(even + i, _mm_castps_si128(_mm_shuffle_ps(early, late, 0x88)));
        output.four(odd + i, _mm_castps_si128(_mm_shuffle_ps(early, late, 0xDD)));
    }
}

// Writes 8 << log_rows outputs (a multiple of the stretch in each lane) and moves the state behind them.
template <class Output>
void generate_block(MrgState& s, int log_rows, typename Output::Element* r, const Output& output) {
    MrgRows rows;
    start_lanes(rows, s, log_rows);
    const int32_t length = 1 << log_rows;
    for (int32_t i = 0; i < length; i += stretch) {
        if (i != 0)
            for (int row = 0; row < 3; ++row)
                for (int32_t pair = 0; pair < mrg_pairs; ++pair) {
                    rows.x[row][pair] = rows.x[stretch + row][pair];
                    rows.y[row][pair] = rows.y[stretch + row][pair];
                }
        walk(rows);
        for (int32_t pair = 0; pair < mrg_pairs; ++pair)
            put(rows, pair, r + 2 * pair * length + i, r + (2 * pair + 1) * length + i, output);
    }
    for (int i = 0; i < 3; ++i) {
        const __m128d x = rows.x[stretch + i][mrg_pairs - 1], y = rows.y[stretch + i][mrg_pairs - 1];
        s.x[i] = static_cast<uint32_t>(_mm_extract_epi32(canonical(low_words(x, x), m1), 1));
        s.y[i] = static_cast<uint32_t>(_mm_extract_epi32(canonical(low_words(y, y), m2), 1));
    }
}

}  // namespace orv::brng
