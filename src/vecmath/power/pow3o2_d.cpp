// dPow3o2: a^(3/2).
//
// With s the rounded root of a and d = a - s^2, the root is s + d / (2s) to 2^-106 of itself, so a^(3/2) = a s + s d / 2. "LA" and
// "HA" take d and the rounding error of a s exactly, by products of halves of 26 and 27 bits; "EP" is a s.
//
// The vector path keeps to [2^-600, 2^682), where no part of these products leaves the normal range. Beyond it the scalar
// path scales a by a power of 4 first and the result last.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/power/pow3o2.h"

#include <math.h>

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Pow3o2Block {
    Splat<double> half{0.5};
    SplatBits<uint64_t> upper{0xFFFFFFFFF8000000};
    SplatBits<uint32_t> first{(1023 - 600) << 20}, last{((1023 + 682) << 20) - 1};
};
constexpr Pow3o2Block K;

struct Sum {
    __m128d high, rest;
};
inline Sum parts(__m128d a) {
    const __m128d s = _mm_sqrt_pd(a);
    const __m128d s_high = simd::bit_and(s, simd::doubles(K.upper)), s_low = s - s_high;
    const __m128d a_high = simd::bit_and(a, simd::doubles(K.upper)), a_low = a - a_high;
    const __m128d y = a * s;
    const __m128d y_lost = ((a_high * s_high - y) + (a_high * s_low + a_low * s_high)) + a_low * s_low;
    // s_high^2 and a agree in their leading half, so each difference is exact.
    const __m128d d = ((a - s_high * s_high) - (s_high + s_high) * s_low) - s_low * s_low;
    return {y, y_lost + (s * d) * K.half};
}

struct Pow3o2 : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d a) {
        const __m128i high = simd::bits_of(a);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.first, high), _mm_cmpgt_epi32(high, K.last)));
    }
    static __m128d lanes(__m128d a) {
        const Sum sum = parts(a);
        return sum.high + sum.rest;
    }
    static int32_t scalar(const double* a, double* y) {
        return vecmath::pow3o2_cases(*a, y, [](double x, double* result) {
            int exponent;
            const double m = vecmath::fraction_of(x, &exponent);  // in [1/2, 1)
            const int quarter = (exponent - 1) >> 1;              // x = 4^quarter m', m' in [1, 4)
            const Sum sum = parts(simd::splat(std::ldexp(m, exponent - 2 * quarter)));
            int octave;
            const double high = 2 * vecmath::fraction_of(_mm_cvtsd_f64(sum.high), &octave);  // in [1, 2)
            const double rest = std::ldexp(_mm_cvtsd_f64(sum.rest), 1 - octave);
            const int n = 3 * quarter + octave - 1;
            if (n > 1024)
                *result = vecmath::overflow<double>();
            else
                *result = n < -1080 ? vecmath::underflow<double>() : vecmath::scaled_sum(high, rest, n);
            return vecmath::status_of_size(*result);
        });
    }
};

struct Pow3o2Ep : Pow3o2 {
    static __m128d lanes(__m128d a) { return a * _mm_sqrt_pd(a); }
};

}  // namespace

ORV_ONE_INPUT(dPow3o2, la, Pow3o2)
ORV_ONE_INPUT(dPow3o2, ha, Pow3o2)
ORV_ONE_INPUT(dPow3o2, ep, Pow3o2Ep)
