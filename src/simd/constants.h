// Constants in every lane, as a kernel's constant block holds them, and the rows of its table by lane.
#pragma once

#include "simd/lanes.h"

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

// The low words of 64-bit lanes, as indices or byte offsets; below 65536.
struct Offsets2 {
    uint32_t at0, at1;
};
inline Offsets2 offsets_of(__m128i low_words) {
    return {static_cast<uint32_t>(_mm_cvtsi128_si32(low_words)), static_cast<uint32_t>(_mm_extract_epi16(low_words, 4))};
}
// What stands `offset` bytes behind `start`.
template <class T>
inline const T* behind(const T* start, uint32_t offset) {
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(start) + offset);
}
inline __m128d gather(const double* p0, const double* p1) { return _mm_loadh_pd(_mm_load_sd(p0), p1); }
inline __m128i gather(const uint64_t* p0, const uint64_t* p1) {
    return bits_of(gather(reinterpret_cast<const double*>(p0), reinterpret_cast<const double*>(p1)));
}

}  // namespace orv::simd
