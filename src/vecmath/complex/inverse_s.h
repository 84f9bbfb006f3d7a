// The inverse functions of complex floats, by the formulas of inverse_d.h in one double each.
//
// The square of a float is exact in double, and so is what x^2 and 1 leave when they cancel, so that q = (x^2 - 1) + y^2 is off by
// 2^-52 of the larger of |q| and y^2 at the most; nothing else cancels. All that follows is good to 2^-30, rounded once. Any finite
// arguments are served but the poles of atanh.
#pragma once

#include "vecmath/complex/parts.h"
#include "vecmath/exp_log/log1p.h"
#include "vecmath/inverse/atan2_d.h"

namespace orv::vecmath {

struct ComplexInverseBlockS {
    simd::Splat<double> one{1.0}, half{0.5}, quarter{0.25};
    // Below all that occurs but zero.
    simd::Splat<double> least{0x1p-600};
};
inline constexpr ComplexInverseBlockS complex_inverse_s;

// The angle of (b, a); a b of zero counts as what is next to it, so that no division by zero is raised.
inline __m128d short_angle(__m128d a, __m128d b) {
    const __m128d not_zero =
        simd::bit_or(simd::greatest(simd::magnitude(b), complex_inverse_s.least), simd::sign_of(b));
    return atan2_lanes<atan_radians, turn_radians, true>(a, not_zero);
}

struct ArcPartsS {
    __m128d w, v;
};
inline ArcPartsS arc_parts_s(__m128d x, __m128d y) {
    constexpr const ComplexInverseBlockS& K = complex_inverse_s;
    const __m128d y_squared = y * y, q = (x * x - K.one) + y_squared;
    const __m128d two_y = y + y;
    const __m128d d = simd::square_root(q * q + two_y * two_y);
    const __m128d larger = simd::greatest((d + simd::magnitude(q)) * K.half, K.least), other = y_squared / larger;
    const __m128d sinh_squared = simd::select_by_sign(q, other, larger);
    const __m128d cos_squared = simd::select_by_sign(q, larger, other);
    const __m128d s = simd::square_root(sinh_squared * (sinh_squared + K.one)), total = sinh_squared + s;
    return {simd::square_root(cos_squared + y_squared), log1p_lanes<log1p_ep>(total + total) * K.half};
}

inline ComplexD asin_lanes_s(ComplexD z) {
    const __m128d x = simd::magnitude(z.re);
    const ArcPartsS p = arc_parts_s(x, simd::magnitude(z.im));
    return {simd::bit_or(short_angle(x, p.w), simd::sign_of(z.re)), simd::bit_or(p.v, simd::sign_of(z.im))};
}
inline ComplexD acos_lanes_s(ComplexD z) {
    const ArcPartsS p = arc_parts_s(simd::magnitude(z.re), simd::magnitude(z.im));
    return {short_angle(p.w, z.re), simd::bit_or(p.v, simd::bit_and_not(z.im, simd::splat(-0.0)))};
}
inline ComplexD atanh_lanes_s(ComplexD z) {
    constexpr const ComplexInverseBlockS& K = complex_inverse_s;
    const __m128d x = simd::magnitude(z.re), y = simd::magnitude(z.im);
    const __m128d y_squared = y * y, across = K.one - x;
    const __m128d twice = x + x;
    const __m128d re = log1p_lanes<log1p_ep>((twice + twice) / (across * across + y_squared)) * K.quarter;
    const __m128d b = simd::bit_xor((x * x - K.one) + y_squared, simd::splat(-0.0));
    return {simd::bit_or(re, simd::sign_of(z.re)), simd::bit_or(short_angle(y + y, b) * K.half, simd::sign_of(z.im))};
}

}  // namespace orv::vecmath
