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

// The six state words of two lanes as doubles.
struct MrgPair {
    __m128d x[3], y[3];
};

// The word i of both components in 64-bit lanes: x in the low one, y in the high one.
struct MrgVector {
    __m128i at[3];
};

inline __m128i words_in_lanes(uint32_t x, uint32_t y) {
    return _mm_unpacklo_epi64(_mm_cvtsi32_si128(static_cast<int>(x)), _mm_cvtsi32_si128(static_cast<int>(y)));
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

inline __m128d exact_doubles(__m128i lanes) {
    const __m128d bias = _mm_set1_pd(0x1p52);
    return _mm_sub_pd(_mm_castsi128_pd(_mm_or_si128(lanes, _mm_castpd_si128(bias))), bias);
}

inline void start_lanes(MrgPair* pairs, const MrgState& s, int log_rows) {
    MrgVector v;
    for (int i = 0; i < 3; ++i) v.at[i] = words_in_lanes(s.x[i], s.y[i]);
    for (int32_t pair = 0; pair < mrg_lanes / 2; ++pair) {
        const MrgVector even = v;
        const MrgVector odd = jump(even, mrg_powers1.power[log_rows], mrg_powers2.power[log_rows]);
        for (int i = 0; i < 3; ++i) {
            pairs[pair].x[i] = exact_doubles(_mm_unpacklo_epi64(even.at[i], odd.at[i]));
            pairs[pair].y[i] = exact_doubles(_mm_unpackhi_epi64(even.at[i], odd.at[i]));
        }
        if (pair + 1 < mrg_lanes / 2) v = jump(odd, mrg_powers1.power[log_rows], mrg_powers2.power[log_rows]);
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

// Four steps of a pair of lanes: four outputs of each.
template <class Output>
void four_steps(MrgPair& s, typename Output::Element* even, typename Output::Element* odd, const Output& output) {
    const __m128d x3 = next_x(s.x[1], s.x[0]), y3 = next_y(s.y[2], s.y[0]);
    const __m128d x4 = next_x(s.x[2], s.x[1]), y4 = next_y(y3, s.y[1]);
    const __m128i z34 = combine(canonical(low_words(x3, x4), m1), canonical(low_words(y3, y4), m2));
    const __m128d x5 = next_x(x3, s.x[2]), y5 = next_y(y4, s.y[2]);
    const __m128d x6 = next_x(x4, x3), y6 = next_y(y5, y3);
    const __m128i z56 = combine(canonical(low_words(x5, x6), m1), canonical(low_words(y5, y6), m2));
    s = {{x4, x5, x6}, {y4, y5, y6}};
    const __m128 early = _mm_castsi128_ps(z34), late = _mm_castsi128_ps(z56);
    output.four(even, _mm_castps_si128(_mm_shuffle_ps(early, late, 0x88)));
    output.four(odd, _mm_castps_si128(_mm_shuffle_ps(early, late, 0xDD)));
}

// Writes 8 << log_rows outputs (log_rows at least 2) and returns the state behind them.
template <class Output>
MrgState generate_block(const MrgState& s, int log_rows, typename Output::Element* r, const Output& output) {
    MrgPair pairs[mrg_lanes / 2];
    start_lanes(pairs, s, log_rows);
    const int32_t rows = 1 << log_rows;
    for (int32_t i = 0; i < rows; i += 4)
        for (int32_t pair = 0; pair < mrg_lanes / 2; ++pair)
            four_steps(pairs[pair], r + 2 * pair * rows + i, r + (2 * pair + 1) * rows + i, output);
    MrgState end;
    for (int i = 0; i < 3; ++i) {
        const MrgPair& last = pairs[mrg_lanes / 2 - 1];
        end.x[i] = static_cast<uint32_t>(_mm_extract_epi32(canonical(low_words(last.x[i], last.x[i]), m1), 1));
        end.y[i] = static_cast<uint32_t>(_mm_extract_epi32(canonical(low_words(last.y[i], last.y[i]), m2), 1));
    }
    return end;
}

}  // namespace orv::brng
