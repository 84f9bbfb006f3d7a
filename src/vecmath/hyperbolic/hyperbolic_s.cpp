// sAsinh, sAcosh, sAtanh in double, all accuracies alike, and sSinh, sCosh, sTanh, "HA".
//
// The inverse functions by the logarithm of one double (pow_ep_d.h), which is good to 2^-52 of itself: x^2, and next to 1 the
// difference x^2 - 1, are exact for a float x. Below 1/8 asinh and atanh are odd polynomials.
#include "vecmath/hyperbolic/hyperbolic_s.h"
#include "vecmath/power/pow_ep_d.h"

namespace {

using namespace orv;
using simd::Splat;

constexpr vecmath::PowEpDBlock logarithm;

struct InverseBlock {
    // fpminimax((asinh(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-6], absolute): 2^-42 of the result
    Splat<double> s0{-0x1.55555554fc6a8p-3}, s1{0x1.33332da03a1aap-4}, s2{-0x1.6da8df0effc2fp-5},
        s3{0x1.e6850944abfe6p-6};
    // The same of atanh: 2^-40
    Splat<double> t0{0x1.5555555494dbp-2}, t1{0x1.9999a59708c0fp-3}, t2{0x1.24835b9aced7dp-3}, t3{0x1.d2f8f3944357cp-4};
    Splat<double> one{1.0}, half{0.5}, eighth{0.125}, quarter{0.25};
};
constexpr InverseBlock K;

inline __m128d odd(__m128d x, __m128d c0, __m128d c1, __m128d c2, __m128d c3) {
    const __m128d z = x * x;
    return x + (x * z) * ((c0 + z * c1) + (z * z) * (c2 + z * c3));
}

inline __m128d asinh_lanes(__m128d v) {
    const __m128d x = simd::magnitude(v), small = simd::less(x, K.eighth);
    const __m128d y = vecmath::ln_ep<logarithm>(x + _mm_sqrt_pd(x * x + K.one));
    return simd::bit_or(simd::select(small, odd(simd::bit_and(small, x), K.s0, K.s1, K.s2, K.s3), y), simd::sign_of(v));
}
inline __m128d acosh_lanes(__m128d x) { return vecmath::ln_ep<logarithm>(x + _mm_sqrt_pd(x * x - K.one)); }
inline __m128d atanh_lanes(__m128d v) {
    const __m128d x = simd::magnitude(v), small = simd::less(x, K.eighth);
    const __m128d w = simd::select(small, K.quarter, x);
    const __m128d y = vecmath::ln_ep<logarithm>((K.one + w) / (K.one - w)) * K.half;
    return simd::bit_or(simd::select(small, odd(x, K.t0, K.t1, K.t2, K.t3), y), simd::sign_of(v));
}

struct Asinh : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) { return vecmath::by_double(x, asinh_lanes); }
    static int32_t scalar(const float* at, float* y) {
        *y = *at + *at;
        return frame::status_ok;
    }
};

struct Acosh : frame::OneInput<float, 4, frame::Tail::masked> {
    static constexpr float fill = 1.5f;
    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        return simd::bit_or(simd::floats(_mm_cmpgt_epi32(_mm_set1_epi32(0x3F800001), bits)), simd::not_finite(x));
    }
    static __m128 lanes(__m128 x) { return vecmath::by_double(x, acosh_lanes); }
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (vecmath::is_nan(x)) {
            *y = vecmath::quiet(x);
            return frame::status_ok;
        }
        if (x < 1) {
            *y = vecmath::invalid<float>();
            return frame::status_domain;
        }
        *y = x == 1 ? 0.0f : x;
        return frame::status_ok;
    }
};

struct Atanh : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::magnitude_beyond(x, 0x3F7FFFFF); }
    static __m128 lanes(__m128 x) { return vecmath::by_double(x, atanh_lanes); }
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (vecmath::is_nan(x)) {
            *y = vecmath::quiet(x);
            return frame::status_ok;
        }
        if (std::fabs(x) > 1) {
            *y = vecmath::invalid<float>();
            return frame::status_domain;
        }
        *y = x / vecmath::at_run_time(0.0f);
        return frame::status_singularity;
    }
};

}  // namespace

using namespace orv::vecmath::float_by_double;
ORV_ONE_INPUT(sSinh, ha, Sinh)
ORV_ONE_INPUT(sCosh, ha, Cosh)
ORV_ONE_INPUT(sTanh, ha, Tanh)
ORV_ONE_INPUT(sAtanh, la, Atanh)
ORV_ONE_INPUT(sAtanh, ha, Atanh)
ORV_ONE_INPUT(sAtanh, ep, Atanh)
ORV_ONE_INPUT(sAsinh, la, Asinh)
ORV_ONE_INPUT(sAsinh, ep, Asinh)
ORV_ONE_INPUT(sAcosh, la, Acosh)
ORV_ONE_INPUT(sAcosh, ep, Acosh)
