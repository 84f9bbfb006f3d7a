// What Cbrt and InvCbrt of doubles share.
//
// |x| = 2^(3k + j) m with j in {0, 1, 2} and m in [1, 2). With c a short reciprocal of the middle of m's 64th, u = m c - 1 is
// at most 0.0084, and |x|^(p/3) = 2^(pk) (2^j / c)^(p/3) (1 + u)^(p/3) with p = 1 or -1: the second factor stands in the
// table as a high and a low part, 192 rows of it, and the third is 1 + u q(u). c has 11 bits, so that its product with the 40
// leading bits of m, less 1, is exact.
//
// The exponent's third is its product with 21846 / 65536, off by less than 1/3 as long as it has 11 bits.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/roots/normal.h"

namespace orv::vecmath {

struct CubeRootD {
    simd::Splat<double> q0, q1, q2, q3, q4, q5, q6;
    simd::Splat<double> one{1.0};
    simd::SplatBits<uint64_t> significand{0x000FFFFFFFFFFFFF}, exponent_of_1{0x3FF0000000000000};
    simd::SplatBits<uint64_t> leading{0xFFFFFFFFFFFFE000}, exponent{0x7FF}, exponent_and_64th{0x1FFFF};
    simd::SplatBits<uint64_t> sign{uint64_t{1} << 63};
    simd::SplatBits<uint64_t> third{21846}, rows_per_third{192};
    simd::SplatBits<uint64_t> bias;   // of 2^(pk): 1023 less p 341
    alignas(16) double rows[192][4];  // c, the two parts of (2^j / c)^(p/3), nothing
};

// With u exact to its last bit, or to one rounding of m c.
enum class Product { exact, rounded };

template <const CubeRootD& K, bool Inverse, Product Of>
inline __m128d cube_root(__m128d x) {
    using namespace simd;
    const __m128i bits = bits_of(x);
    const __m128i at = bit_and(shift_right<46>(bits), K.exponent_and_64th);
    const __m128i k = _mm_mulhi_epu16(shift_right<6>(at), K.third);
    const __m128i index = subtract(at, _mm_madd_epi16(k, K.rows_per_third));
    const Indices<2> row(index);
    const double *row0 = K.rows[row.lane[0]], *row1 = K.rows[row.lane[1]];
    const __m128d first = load_aligned(row0), second = load_aligned(row1);
    const __m128d c = interleave_low(first, second), high = interleave_high(first, second);
    const __m128d low = gather(row0 + 2, row1 + 2);

    const __m128d m = doubles(bit_or(bit_and(bits, K.significand), K.exponent_of_1));
    __m128d u;
    if constexpr (Of == Product::exact) {
        const __m128d m_high = doubles(bit_and(bits_of(m), K.leading));
        u = (m_high * c - K.one) + (m - m_high) * c;
    } else {
        u = m * c - K.one;
    }
    __m128d q = K.q3 + u * (K.q4 + u * K.q5);
    if constexpr (Inverse) q = K.q3 + u * (K.q4 + u * (K.q5 + u * K.q6));
    q = K.q0 + u * (K.q1 + u * (K.q2 + u * q));
    const __m128d root = high + (low + high * (u * q));

    const __m128i scaled = Inverse ? subtract(K.bias, k) : add(K.bias, k);
    return root * doubles(bit_or(shift_left<52>(scaled), bit_and(bits, K.sign)));
}

}  // namespace orv::vecmath
