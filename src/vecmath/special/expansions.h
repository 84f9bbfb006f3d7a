// Functions as expansions about the middles of short intervals: for each power of two of the argument t 32 rows, so that with c the
// middle, |t - c| is at most 2^-6 t. A row has the constant term in a part of 26 bits and the rest, and eight coefficients.
//
//   f = high + low,  low = low_part + d (c1 + c2 d + ... + c8 d^7),  d = t - c.
//
// `low` is a small part of f, so that f is good to 2^-58 or so, and products of `high` with numbers of 26 bits are exact.
#pragma once

#include "simd/constants.h"

#include <bit>

namespace orv::vecmath {

using ExpansionRow = double[10];
// For results of fewer digits: c0 in one part, coefficients up to the fifth power.
using ShortRow = double[6];

struct ExpansionBits {
    simd::SplatBits<uint64_t> row{0xFFFF800000000000}, half_row{0x0000400000000000};
    simd::SplatBits<uint64_t> upper_26{0xFFFFFFFFF8000000};
};
inline constexpr ExpansionBits expansion_bits;

inline __m128d upper_26(__m128d x) { return simd::doubles(_mm_and_si128(simd::bits_of(x), expansion_bits.upper_26)); }

// The middle of the interval of t.
inline __m128d expansion_centre(__m128d t) {
    return simd::doubles(_mm_or_si128(_mm_and_si128(simd::bits_of(t), expansion_bits.row), expansion_bits.half_row));
}

struct Expanded {
    __m128d high, low;
};

// The rows of both lanes of t, the first row being that of 2^First.
template <int First, size_t Width>
struct RowsOf {
    const double *row0, *row1;
    RowsOf(const double (*rows)[Width], __m128d t) {
        constexpr uint32_t first = uint32_t{1023 + First} << 5;
        const simd::Indices<2> at(_mm_srli_epi64(simd::bits_of(t), 47));
        row0 = rows[at.lane[0] - first];
        row1 = rows[at.lane[1] - first];
    }
    void pair(int k, __m128d& a, __m128d& b) const {
        const __m128d from0 = _mm_load_pd(row0 + 2 * k), from1 = _mm_load_pd(row1 + 2 * k);
        a = _mm_unpacklo_pd(from0, from1);
        b = _mm_unpackhi_pd(from0, from1);
    }
};

// f of c + d for the intervals of t; with `Pairs` pairs of coefficients.
template <int First, int Pairs, size_t Width>
inline Expanded expand(const double (*rows)[Width], __m128d t, __m128d d) {
    const RowsOf<First, Width> row(rows, t);
    __m128d high, low, a, b;
    row.pair(0, high, low);
    row.pair(Pairs, a, b);
    __m128d sum = a + b * d;
    const __m128d square = d * d;
#pragma GCC unroll 4
    for (int k = Pairs - 1; k > 0; --k) {
        row.pair(k, a, b);
        sum = (a + b * d) + square * sum;
    }
    return {high, low + d * sum};
}
template <int First, int Pairs>
inline __m128d expand_short(const ShortRow* rows, __m128d t, __m128d d) {
    const RowsOf<First, 6> row(rows, t);
    __m128d a, b;
    row.pair(Pairs - 1, a, b);
    __m128d sum = a + b * d;
    const __m128d square = d * d;
#pragma GCC unroll 2
    for (int k = Pairs - 2; k >= 0; --k) {
        row.pair(k, a, b);
        sum = (a + b * d) + square * sum;
    }
    return sum;
}

// The same for one number, in extended precision.
template <int First>
inline long double expand_extended(const ExpansionRow* rows, long double t) {
    const uint64_t bits = std::bit_cast<uint64_t>(static_cast<double>(t));
    const double* row = rows[static_cast<uint32_t>(bits >> 47) - (uint32_t{1023 + First} << 5)];
    const double centre = std::bit_cast<double>((bits >> 47 << 47) | uint64_t{1} << 46);
    const long double d = t - centre;
    long double sum = row[9];
    for (int k = 8; k > 1; --k) sum = sum * d + row[k];
    return row[0] + (row[1] + d * sum);
}

}  // namespace orv::vecmath
