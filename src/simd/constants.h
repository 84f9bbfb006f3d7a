// Constants in every lane, as a kernel's constant block holds them, and the rows of its table by lane.
#pragma once

#include "simd/integers.h"

namespace orv::simd {

// A number in every lane: lanes among lanes, a number among numbers.
template <class Scalar>
struct alignas(16) Splat {
    Scalar lanes[16 / sizeof(Scalar)];

    constexpr Splat(Scalar x) : lanes{} {
        for (Scalar& lane : lanes) lane = x;
    }
    operator typename Lanes<Scalar>::V() const { return load_aligned(lanes); }
    constexpr operator Scalar() const { return lanes[0]; }
};
#define ORV_SPLAT_OPERATOR(V, Scalar, symbol)                                                        \
    inline V operator symbol(V a, const Splat<Scalar>& b) { return a symbol load_aligned(b.lanes); } \
    inline V operator symbol(const Splat<Scalar>& a, V b) { return load_aligned(a.lanes) symbol b; }
ORV_SPLAT_OPERATOR(__m128, float, +)
ORV_SPLAT_OPERATOR(__m128, float, -)
ORV_SPLAT_OPERATOR(__m128, float, *)
ORV_SPLAT_OPERATOR(__m128d, double, +)
ORV_SPLAT_OPERATOR(__m128d, double, -)
ORV_SPLAT_OPERATOR(__m128d, double, *)
#undef ORV_SPLAT_OPERATOR

// Bits in every lane, of 32 or 64 bits.
template <class Word>
struct alignas(16) SplatBits {
    Word lanes[16 / sizeof(Word)];

    constexpr SplatBits(Word x) : lanes{} {
        for (Word& lane : lanes) lane = x;
    }
    operator __m128i() const { return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes)); }
};

// ---- Table rows by lane ----------------------------------------------------------------------------------------------

// The low 32 bits of each of N lanes, as indices or byte offsets.
template <int N>
struct Indices {
    uint32_t lane[N];

    explicit Indices(__m128i lanes) {
        lane[0] = static_cast<uint32_t>(word<0>(lanes));
        if constexpr (N == 2) {
            lane[1] = static_cast<uint32_t>(word<2>(lanes));
        } else {
            lane[1] = static_cast<uint32_t>(word<1>(lanes));
            lane[2] = static_cast<uint32_t>(word<2>(lanes));
            lane[3] = static_cast<uint32_t>(word<3>(lanes));
        }
    }
};
// What stands `offset` bytes behind `start`.
template <class T>
inline const T* behind(const T* start, uint32_t offset) {
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(start) + offset);
}

// The first and the second members of four pairs.
inline void gather_pairs(const float (*rows)[2], Indices<4> j, __m128& first, __m128& second) {
    const __m128 low = gather_halves(rows[j.lane[0]], rows[j.lane[1]]),
                 high = gather_halves(rows[j.lane[2]], rows[j.lane[3]]);
    first = even_lanes(low, high);
    second = odd_lanes(low, high);
}
// The first three members of four rows of four, at byte offsets.
inline void gather_triples(const float* rows, Indices<4> at, __m128& first, __m128& second, __m128& third) {
    const __m128 row0 = _mm_load_ps(behind(rows, at.lane[0])), row1 = _mm_load_ps(behind(rows, at.lane[1]));
    const __m128 row2 = _mm_load_ps(behind(rows, at.lane[2])), row3 = _mm_load_ps(behind(rows, at.lane[3]));
    const __m128 low01 = _mm_unpacklo_ps(row0, row1), low23 = _mm_unpacklo_ps(row2, row3);
    first = _mm_movelh_ps(low01, low23);
    second = _mm_movehl_ps(low23, low01);
    third = _mm_movelh_ps(_mm_unpackhi_ps(row0, row1), _mm_unpackhi_ps(row2, row3));
}

}  // namespace orv::simd
