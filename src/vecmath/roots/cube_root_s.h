// What Cbrt and InvCbrt of floats share: the method of cube_root_d.h in float, four lanes at a time.
//
// |x| = 2^(3k + j - 1) m; c has 11 bits, so that its product with the 13 leading bits of m, less 1, is exact.
//
// "HA" has u exact and q of degree 2; "LA" rounds m c once; "EP" has q of degree 0 and no low part.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/roots/normal.h"

namespace orv::vecmath {

struct CubeRootS {
    simd::Splat<float> q0, q1, q2;
    simd::Splat<float> q0_alone;
    simd::Splat<float> one{1.0f};
    simd::SplatBits<uint32_t> significand{0x007FFFFF}, exponent_of_1{0x3F800000}, leading{0xFFFFF800};
    simd::SplatBits<uint32_t> exponent_and_64th{0x3FFF}, sign{0x80000000};
    simd::SplatBits<uint32_t> third{21846}, rows_per_third{192};
    simd::SplatBits<uint32_t> bias;  // of 2^(pk): 127 less p 42
    alignas(16) float rows[192][4];  // c, the two parts of (2^(j - 1) / c)^(p/3), nothing
};

enum class Precision { la, ha, ep };

template <const CubeRootS& K, bool Inverse, Precision Of>
inline __m128 cube_root(__m128 x) {
    using namespace simd;
    const __m128i bits = bits_of(x);
    const __m128i at = bit_and(shift_right_32<17>(bits), K.exponent_and_64th);
    const __m128i k = _mm_mulhi_epu16(shift_right_32<6>(at), K.third);
    const __m128i index = subtract_32(at, _mm_madd_epi16(k, K.rows_per_third));
    __m128 c, high, low;
    gather_triples(K.rows[0], Indices<4>(shift_left_32<4>(index)), c, high, low);

    const __m128 m = floats(bit_or(bit_and(bits, K.significand), K.exponent_of_1));
    __m128 root;
    if constexpr (Of == Precision::ep) {
        root = high + high * ((m * c - K.one) * K.q0_alone);
    } else {
        __m128 u = m * c - K.one;
        if constexpr (Of == Precision::ha) {
            const __m128 m_high = floats(bit_and(bits_of(m), K.leading));
            u = (m_high * c - K.one) + (m - m_high) * c;
        }
        root = high + (low + high * (u * (K.q0 + u * (K.q1 + u * K.q2))));
    }
    const __m128i scaled = Inverse ? subtract_32(K.bias, k) : add_32(K.bias, k);
    return root * floats(bit_or(shift_left_32<23>(scaled), bit_and(bits, K.sign)));
}

}  // namespace orv::vecmath
