// sAsinh, sAcosh, sAtanh in double, all accuracies alike, and sSinh, sCosh, sTanh, "HA".
//
// asinh and acosh are by the logarithm of one double (pow_ep_d.h), which is good to 2^-52 of itself: x^2, and next to 1 the
// difference x^2 - 1, are exact for a float x. Below 1/8 asinh is an odd polynomial.
//
// atanh is by rows: c next to |x|, and
//
//   atanh |x| = atanh c + atanh t,  t = (|x| - c) / (1 - c |x|),  atanh t = t + t^3 P(t^2),  t up to 1/32.
//
// The exponent and the three leading fraction bits of 2x / (1 - x), which is e^(2 atanh x) - 1, select the row; a rough reciprocal
// is good enough for that. Below 1/33 c is 0 and t is x.
#include "vecmath/hyperbolic/hyperbolic_s.h"
#include "vecmath/hyperbolic/atanh_ends.h"
#include "vecmath/power/pow_ep_d.h"

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

constexpr vecmath::PowEpDBlock logarithm;

struct InverseBlock {
    // fpminimax((asinh(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-6], absolute): 2^-42 of the result
    Splat<double> s0{-0x1.55555554fc6a8p-3}, s1{0x1.33332da03a1aap-4}, s2{-0x1.6da8df0effc2fp-5},
        s3{0x1.e6850944abfe6p-6};
    // fpminimax((atanh(sqrt(x))/sqrt(x)-1)/x, 1, [|D...|], [2^-60;1/900], absolute): 2^-35
    Splat<double> t0{0x1.555553da18cf9p-2}, t1{0x1.99ece46de25bbp-3};
    Splat<double> one{1.0}, eighth{0.125};
    Splat<float> one_s{1.0f};
    SplatBits<uint32_t> before_first{((127 - 4) << 3) - 1}, no_row{0};
    alignas(16) double rows[234][2] = {
    // c, atanh c
#include "vecmath/tables/atanh_rows.inc"
    };
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
// By two rows.
inline __m128d atanh_lanes(const double* row0, const double* row1, __m128d x) {
    const __m128d first = _mm_load_pd(row0), second = _mm_load_pd(row1);
    const __m128d c = _mm_unpacklo_pd(first, second), atanh_c = _mm_unpackhi_pd(first, second);
    const __m128d t = (x - c) / (K.one - c * x), z = t * t;
    return atanh_c + (t + (t * z) * (K.t0 + z * K.t1));
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

struct Atanh : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::magnitude_beyond(x, 0x3F7FFFFF); }
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::magnitude(x);
        const __m128i key = simd::bits_of((size + size) * simd::rough_reciprocal(K.one_s - size));
        const __m128i place = simd::subtract_32(simd::shift_right_32<20>(key), K.before_first);
        const simd::Indices<4> at(_mm_max_epi32(place, K.no_row));
        const auto row = [&](int lane) { return K.rows[at.lane[lane]]; };
        const __m128 y = simd::narrow(atanh_lanes(row(0), row(1), simd::widen_low(size)),
                                      atanh_lanes(row(2), row(3), simd::widen_high(size)));
        return simd::bit_or(y, simd::sign_of(x));
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::atanh_at_ends(*x, y); }
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
