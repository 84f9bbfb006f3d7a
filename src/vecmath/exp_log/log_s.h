// What the single precision logarithms share: the reduction and the scalar path.
//
// x = 2^k m with m in [2/3, 4/3), taken from the bits: those of x less those of 2/3 have k above the fraction, and taken
// from the bits of x that leaves m. Then r = m - 1 is exact, |r| <= 1/3, and next to 1 k is zero on both
// sides, so that nothing cancels. The logarithm of base b is k log_b 2 + log_b(1 + r); kernels get k as k 2^23 and hold
// log_b 2 as log_b 2 2^-23.
//
// The vector path serves positive normal arguments. Subnormals are scaled by 2^23, which k then makes up for.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/log_special.h"

namespace orv::vecmath {

// The constants of the reduction, part of each kernel's block.
struct LogReduction {
    simd::SplatBits<uint32_t> least_normal{0x00800000};
    simd::SplatBits<uint32_t> least_m{0x3F2AAAAB}, above_fraction{0xFF800000};
    simd::Splat<float> one{1.0f};

    // Zero, subnormals, negative values, infinities and NaNs: adding the least normal number's bits turns the sign bit on
    // or taking them away does.
    __m128 doubt(__m128 x) const {
        const __m128i bits = simd::bits_of(x);
        return simd::floats(_mm_or_si128(_mm_add_epi32(bits, least_normal), _mm_sub_epi32(bits, least_normal)));
    }
    // Gives m in bits, and k 2^23, since the bits have it so and a constant factor can make up for it.
    __m128i reduce(__m128 x, __m128i k_shift, __m128& k_2_23, __m128& r) const {
        const __m128i k = _mm_and_si128(_mm_sub_epi32(simd::bits_of(x), least_m), above_fraction);
        const __m128i m = _mm_sub_epi32(simd::bits_of(x), k);
        k_2_23 = _mm_cvtepi32_ps(_mm_add_epi32(k, k_shift));
        r = simd::floats(m) - one;
        return m;
    }
};

// Kernel::log(x, k_shift) is log_b(2^j x) for positive normal x and k_shift = j 2^23.
template <class Kernel>
int32_t scalar_log_s(const float* at, float* y) {
    const float x = *at;
    int32_t status;
    if (settled_log(x, 0.0f, y, status)) return status;
    const bool subnormal = x < std::numeric_limits<float>::min();
    const __m128 scaled = simd::splat(subnormal ? x * 0x1p+23f : x);
    simd::store_one(y, Kernel::log(scaled, _mm_set1_epi32(subnormal ? -23 * (1 << 23) : 0)));
    return frame::status_ok;
}

// The kernel of base b, from its `log`.
template <class Kernel>
struct LogS : frame::OneInput<float, 32, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return Kernel::K.reduction.doubt(x); }
    static __m128 lanes(__m128 x) { return Kernel::log(x, _mm_setzero_si128()); }
    static int32_t scalar(const float* x, float* y) { return scalar_log_s<Kernel>(x, y); }
};

}  // namespace orv::vecmath
