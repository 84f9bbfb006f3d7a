// sPow3o2: a^(3/2).
//
// With s the root of a rounded to float, s (3a - s^2) / 2 is a^(3/2) to 2^-46 of itself: "LA" and "HA" take that in double, and the
// rounding to float is the one that counts. "EP" is a s.
//
// The vector path serves [2^-83, 2^85), where results are normal.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/power/pow3o2.h"

#include <math.h>

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Pow3o2SBlock {
    Splat<double> half{0.5}, one_and_a_half{1.5};
    SplatBits<uint32_t> first{(127 - 83) << 23}, last{((127 + 85) << 23) - 1};
};
constexpr Pow3o2SBlock K;

inline __m128d from_root(__m128d a, __m128d s) { return s * (a * K.one_and_a_half - (s * s) * K.half); }

struct Pow3o2 : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 a) {
        const __m128i bits = simd::bits_of(a);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128 lanes(__m128 a) {
        const __m128 s = _mm_sqrt_ps(a);
        const __m128d low = from_root(_mm_cvtps_pd(a), _mm_cvtps_pd(s));
        const __m128d high = from_root(_mm_cvtps_pd(_mm_movehl_ps(a, a)), _mm_cvtps_pd(_mm_movehl_ps(s, s)));
        return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
    }
    static int32_t scalar(const float* a, float* y) {
        return vecmath::pow3o2_cases(*a, y, [](float x, float* result) {
            *result = static_cast<float>(double{x} * std::sqrt(double{x}));
            return vecmath::status_of_size(*result);
        });
    }
};

struct Pow3o2Ep : Pow3o2 {
    static __m128 lanes(__m128 a) { return a * _mm_sqrt_ps(a); }
};

}  // namespace

ORV_ONE_INPUT(sPow3o2, la, Pow3o2)
ORV_ONE_INPUT(sPow3o2, ha, Pow3o2)
ORV_ONE_INPUT(sPow3o2, ep, Pow3o2Ep)
