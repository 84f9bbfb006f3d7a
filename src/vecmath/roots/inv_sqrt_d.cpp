// dInvSqrt: 1 / sqrt(x).
//
// x = 4^h m with m in [1/2, 2). The processor's approximation of 1 / sqrt(m) in float, 1.5 * 2^-12 relative, is cut to y of so
// few bits that e = 1 - m y^2 comes out (nearly) exact; then 1 / sqrt(m) = y (1 - e)^(-1/2) = y + y e (1/2 + 3/8 e + ...), whose
// last sum is the only rounding that counts.
//
// "LA" and "EP": the approximation takes one step to 2^-22 first. y of 26 bits, so that y^2 is exact and e has one rounding.
// "HA": y of 13 bits, and the 27 leading bits of m apart from the others, so that the part of e next to 1 is exact. |e| stays
// below 2^-9.6 (the cut adds 2^-12 to y), and the series ends with e^5, which leaves 2^-59.
//
// Subnormal arguments are scaled by 2^54. A result is never subnormal.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/roots/normal.h"

#include <cmath>

namespace {

using namespace orv;
using simd::bits_of;
using simd::doubles;
using simd::Splat;
using simd::SplatBits;

struct Constants {
    Splat<double> one{1.0}, half{0.5}, three_eighths{0.375}, five_sixteenths{0.3125};
    Splat<double> c4{0x1.18p-2}, c5{0x1.f8p-3};  // 35/128, 63/256
    SplatBits<uint64_t> below_quarters{0x001FFFFFFFFFFFFF}, exponent_of_half{0x3FE0000000000000};
    SplatBits<uint64_t> exponent{0x7FF0000000000000}, twice_the_middle{uint64_t{1023 + 511} << 52};
    SplatBits<uint64_t> keep_26{~uint64_t{0} << 27}, keep_13{~uint64_t{0} << 40}, keep_27{~uint64_t{0} << 26};
};
constexpr Constants K;

template <bool High>
struct InvSqrt : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return vecmath::not_positive_normal(x); }
    static __m128d lanes(__m128d x) {
        const __m128i bits = bits_of(x);
        const __m128d m = doubles(simd::bit_or(simd::bit_and(bits, K.below_quarters), K.exponent_of_half));
        const __m128d y0 = _mm_cvtps_pd(_mm_rsqrt_ps(_mm_cvtpd_ps(m)));
        __m128d y, result;
        if constexpr (High) {
            y = doubles(simd::bit_and(bits_of(y0), K.keep_13));
            const __m128d square = y * y;
            const __m128d m_high = doubles(simd::bit_and(bits_of(m), K.keep_27));
            const __m128d e = (K.one - m_high * square) - (m - m_high) * square, e2 = e * e;
            result = y + (y * e) * ((K.half + e * K.three_eighths) + e2 * ((K.five_sixteenths + e * K.c4) + e2 * K.c5));
        } else {
            const __m128d y1 = y0 + y0 * ((K.one - m * y0 * y0) * K.half);
            y = doubles(simd::bit_and(bits_of(y1), K.keep_26));
            const __m128d e = K.one - m * (y * y);
            result = y + y * (e * (K.half + e * K.three_eighths));
        }
        const __m128i h = simd::bit_and(simd::shift_right<1>(bits), K.exponent);
        return result * doubles(simd::subtract(K.twice_the_middle, h));
    }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (x == 0) {
            *y = 1.0 / vecmath::at_run_time(x);
            return frame::status_singularity;
        }
        if (vecmath::is_nan(x) || x < 0 || !vecmath::is_finite(x)) {
            *y = 1.0 / std::sqrt(x);
            return *y == *y || vecmath::is_nan(x) ? frame::status_ok : frame::status_domain;
        }
        simd::store_one(y, lanes(simd::splat(x * 0x1p+54)) * simd::splat(0x1p+27));
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dInvSqrt, la, InvSqrt<false>)
ORV_ONE_INPUT(dInvSqrt, ha, InvSqrt<true>)
