// sSinh, sCosh, sTanh, "HA" and what lies beyond the vector paths of "LA" and "EP" (hyperbolic_float_s.cpp).
//
// With c the quarter next to |x| and r = |x| - c, which is exact and at most 1/8,
//
//   sinh |x| = sinh c cosh r + cosh c sinh r,  cosh x = cosh c cosh r + sinh c sinh r
//
// in doubles, from a table of sinh c and cosh c. In the first row sinh r stands alone, so that small arguments need no path of
// their own. The polynomials' errors make 0.01 ulp.
//
// Adding 1.5 * 2^21 rounds to the nearest quarter and leaves its place in the low bits.
//
// sTanh is by the double kernel's lanes in one part (tanh_d.h).
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/hyperbolic/tanh_d.h"
#include "vecmath/inverse/by_double.h"

#include <math.h>

namespace orv::vecmath::float_by_double {

struct QuartersBlock {
    simd::Splat<float> shifter{0x1.8p+21f};
    // fpminimax(cosh(sqrt(x)), 2, [|D...|], [2^-60;1/64], absolute): 2^-32.5
    simd::Splat<double> c0{0x1.00000000b6256p+0}, c1{0x1.fffff331ad147p-2}, c2{0x1.55999f7e29567p-5};
    // fpminimax((sinh(sqrt(x))/sqrt(x)-1)/x, 1, [|D...|], [2^-60;1/64], absolute): 2^-33.3
    simd::Splat<double> s1{0x1.5555548536fd5p-3}, s2{0x1.112b142316d5ap-7}, one{1.0};
    alignas(16) double rows[359][2] = {
    // sinh k/4, cosh k/4
#include "vecmath/tables/sinh_cosh_quarters.inc"
    };
};
inline constexpr QuartersBlock quarters;

// The sine or the cosine, by two rows.
template <bool Odd>
inline __m128d by_quarters(const double* row0, const double* row1, __m128d r) {
    const __m128d first = _mm_load_pd(row0), second = _mm_load_pd(row1), z = r * r;
    const __m128d sinh_c = _mm_unpacklo_pd(first, second), cosh_c = _mm_unpackhi_pd(first, second);
    const __m128d cosh_r = quarters.c0 + z * (quarters.c1 + z * quarters.c2);
    const __m128d sinh_r = r * (quarters.one + z * (quarters.s1 + z * quarters.s2));
    return Odd ? sinh_c * cosh_r + cosh_c * sinh_r : cosh_c * cosh_r + sinh_c * sinh_r;
}

// The vector path up to 89.4, beyond which floats overflow.
template <bool Odd>
struct Growing : frame::OneInput<float, 8, frame::Tail::masked> {
    static constexpr uint32_t last_bits = 0x42B2D4FC;  // 89.4159851
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, last_bits); }
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::magnitude(x), shifted = size + quarters.shifter;
        const __m128 r = size - (shifted - quarters.shifter);
        constexpr uint32_t row_bytes = sizeof quarters.rows[0], at_0 = 0x4A400000 * row_bytes;  // the shifter's bits
        const simd::Indices<4> at(simd::shift_left_32<4>(simd::bits_of(shifted)));
        static_assert(row_bytes == 1 << 4);
        const auto row = [&](int lane) { return simd::behind(quarters.rows[0], at.lane[lane] - at_0); };
        const __m128 y = simd::narrow(by_quarters<Odd>(row(0), row(1), simd::widen_low(r)),
                                      by_quarters<Odd>(row(2), row(3), simd::widen_high(r)));
        return Odd ? simd::bit_or(y, simd::sign_of(x)) : y;
    }
    static int32_t scalar(const float* at, float* y) {
        const float x = *at, sign = Odd ? std::copysign(1.0f, x) : 1.0f;
        if (!is_finite(x)) {
            *y = is_nan(x) ? quiet(x) : std::copysign(x, sign);
            return frame::status_ok;
        }
        *y = std::copysign(overflow<float>(), sign);
        return frame::status_overflow;
    }
};

struct Tanh : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return tanh_lanes<false>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        *y = is_nan(*at) ? quiet(*at) : std::copysign(1.0f, *at);
        return frame::status_ok;
    }
};

using Sinh = Growing<true>;
using Cosh = Growing<false>;

}  // namespace orv::vecmath::float_by_double
