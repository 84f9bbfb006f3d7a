// MRG32K3A's constants and state, and vectors of both components:
//   x(n) = a12 x(n-2) - a13 x(n-3) mod m1,  y(n) = b21 y(n-1) - b23 y(n-3) mod m2,  z(n) = x(n) - y(n) mod m1.
#pragma once

#include "simd/integers.h"

namespace orv::brng::mrg32k3a {

inline constexpr uint32_t m1 = 4294967087;  // 2^32 - 209
inline constexpr uint32_t m2 = 4294944443;  // 2^32 - 22853
inline constexpr uint32_t a12 = 1403580;
inline constexpr uint32_t a13 = 810728;
inline constexpr uint32_t b21 = 527612;
inline constexpr uint32_t b23 = 1370589;

struct Residues {
    uint32_t x[3];  // x(n-3), x(n-2), x(n-1), below m1
    uint32_t y[3];
};

// Word i of both components in 64-bit lanes: x in the low one, y in the high one.
struct Both {
    __m128i at[3];
};

inline Both load_both(const Residues& s) {
    Both v;
    for (int i = 0; i < 3; ++i) v.at[i] = simd::words_in_lanes(s.x[i], s.y[i]);
    return v;
}

inline void store_both(Residues& s, const Both& v) {
    for (int i = 0; i < 3; ++i) {
        s.x[i] = static_cast<uint32_t>(simd::word<0>(v.at[i]));
        s.y[i] = static_cast<uint32_t>(simd::word<2>(v.at[i]));
    }
}

// Constants of both components, in memory: made in registers they would be made anew at every use.
struct alignas(16) BothWords {
    uint64_t x, y;
    __m128i lanes() const { return simd::load_aligned(&x); }
};
inline constexpr BothWords moduli = {m1, m2};
inline constexpr BothWords below_2p32 = {0 - m1, 0 - m2};

// (t >> 32) c + (t mod 2^32) for the moduli 2^32 - c: the same residues, 15 bits above the 32nd for any t, 30 bits of the
// 33rd the second time, none the third.
inline __m128i fold(__m128i t) {
    const __m128i low = simd::low_and_high_words(t, simd::splat_bits(0));
    return simd::add(simd::multiply_words(simd::shift_right<32>(t), below_2p32.lanes()), low);
}

// Values below 2^32, which is below twice the moduli, to residues.
inline __m128i below_moduli(__m128i t) { return simd::least_unsigned_32(t, simd::subtract_32(t, moduli.lanes())); }

// (x - y) mod m1 of four residues each.
inline __m128i combine(__m128i x, __m128i y) {
    const __m128i not_below = simd::equal_32(simd::greatest_unsigned_32(x, y), x);
    return simd::add_32(simd::subtract_32(x, y), simd::bit_and_not(not_below, simd::splat_32(m1)));
}

}  // namespace orv::brng::mrg32k3a
