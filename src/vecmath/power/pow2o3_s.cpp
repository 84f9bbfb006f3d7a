// sPow2o3: a^(2/3), as a t with t = |a|^(-1/3).
//
// A third of the bits of |a| taken from a constant, as integers, is the bits of a t with e = 1 - |a| t^3 up to 0.103 in
// magnitude; then t (1 + e/3 + 2 e^2 / 9 + 14 e^3 / 81) is |a|^(-1/3) to 2^-16. "EP" multiplies it with |a|. "LA" and "HA"
// correct it once more in double, a^(2/3) = a t (1 + e/3 + 2 e^2 / 9) to 2^-44 with the new e, so that the rounding to float is
// the one that counts; "LA" leaves the last term out, 2^-31.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Pow2o3SBlock {
    Splat<float> third{0x1.555556p-2f}, one{1.0f};
    Splat<float> c1{0x1.555556p-2f}, c2{0x1.c71c72p-3f}, c3{0x1.61f9aep-3f};
    Splat<double> one_d{1.0}, c1_d{0x1.5555555555555p-2}, c2_d{0x1.c71c71c71c71cp-3};
    SplatBits<uint32_t> magnitude{0x7FFFFFFF}, cube_root{0x54A20000};
    SplatBits<uint32_t> least_normal{0x00800000}, greatest{0x7F7FFFFF};
};
constexpr Pow2o3SBlock K;

// x^(-1/3) for normal x above 0, to 2^-16.
inline __m128 inverse_cube_root(__m128 x) {
    const __m128i third = _mm_cvtps_epi32(_mm_cvtepi32_ps(simd::bits_of(x)) * K.third);
    const __m128 t = simd::floats(_mm_sub_epi32(K.cube_root, third));
    const __m128 e = K.one - (x * t) * (t * t);
    return t + t * (e * (K.c1 + e * (K.c2 + e * K.c3)));
}

template <bool Short>
inline __m128d corrected(__m128d x, __m128d t) {
    const __m128d y = x * t;
    const __m128d e = K.one_d - y * (t * t);
    if constexpr (Short) return y + (y * e) * K.c1_d;
    return y + y * (e * (K.c1_d + e * K.c2_d));
}

template <bool Rough, bool Short>
struct Pow2o3 : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        const __m128i bits = _mm_and_si128(simd::bits_of(x), K.magnitude);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.least_normal, bits), _mm_cmpgt_epi32(bits, K.greatest)));
    }

    static __m128 lanes(__m128 x) {
        x = simd::magnitude(x);
        const __m128 t = inverse_cube_root(x);
        if constexpr (Rough) return x * t;
        const __m128d low = corrected<Short>(_mm_cvtps_pd(x), _mm_cvtps_pd(t));
        const __m128d high = corrected<Short>(_mm_cvtps_pd(_mm_movehl_ps(x, x)), _mm_cvtps_pd(_mm_movehl_ps(t, t)));
        return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
    }

    static int32_t scalar(const float* at, float* y) {
        if (vecmath::is_nan(*at)) {
            *y = vecmath::quiet(*at);
            return frame::status_ok;
        }
        const float x = std::fabs(*at);
        if (x == 0 || !vecmath::is_finite(x))
            *y = x + x;
        else
            *y = _mm_cvtss_f32(lanes(simd::splat(x * 0x1p+24f))) * 0x1p-16f;
        return frame::status_ok;
    }
};

using SPow2o3La = Pow2o3<false, true>;
using SPow2o3Ha = Pow2o3<false, false>;
using SPow2o3Ep = Pow2o3<true, true>;

}  // namespace

ORV_ONE_INPUT(sPow2o3, la, SPow2o3La)
ORV_ONE_INPUT(sPow2o3, ha, SPow2o3Ha)
ORV_ONE_INPUT(sPow2o3, ep, SPow2o3Ep)
