// The inverse functions of complex numbers, in doubles, from lanes to lanes.
//
// asin(x + i y) = u + i v of x, y >= 0 has sin u cosh v = x and cos u sinh v = y. With q = x^2 + y^2 - 1 and D = sqrt(q^2 + 4 y^2),
//
//   sinh^2 v = (D + q) / 2,  cos^2 u = (D - q) / 2,  of product y^2,
//
// so that the one in which nothing cancels gives the other by division. Then
//
//   u = atan2(x, w),  w = sqrt(cos^2 u + y^2);  acos takes atan2(w, x);
//   v = 1/2 asinh(2 S) = 1/2 ln(1 + 2 sinh^2 v + 2 S),  S = sinh v cosh v.
//
// The case analysis of Hull, Fairgrieve and Tang ("Implementing the complex arcsine and arccosine functions using exception handling", ACM
// TOMS 23, 1997) is for one double each; here the squares are exact in two parts, and so is what of q they leave when they
// cancel, and all further steps are sums of positive terms in two parts, which one method serves.
//
// atanh(x + i y) = 1/4 ln(N/M) + i/2 atan2(2 y, -q) with N = (1 + x)^2 + y^2, M = (1 - x)^2 + y^2. Where t = 2 x / (1 + x^2 + y^2)
// is below 1/8 the real part is 1/2 atanh t.
#pragma once

#include "vecmath/complex/parts.h"
#include "vecmath/hyperbolic/inverse_d.h"
#include "vecmath/inverse/atan2_d.h"

namespace orv::vecmath {

struct ComplexInverseBlock {
    simd::Splat<double> one{1.0}, two{2.0}, half{0.5}, quarter{0.25}, four{4.0}, eighth{0.125};
    simd::SplatBits<uint64_t> sign{0x8000000000000000};
};
inline constexpr ComplexInverseBlock complex_inverse;

// Exponents of the parts that the vector path serves: no power of them that occurs leaves the range.
inline constexpr int inverse_span = 140;
inline __m128d outside_inverse(ComplexD z) {
    return any_part_beyond<uint32_t{1023 - inverse_span} << 20, uint32_t{1023 + inverse_span} << 20>(z);
}

inline Pair scaled(Pair a, __m128d power_of_two) { return {a.high * power_of_two, a.low * power_of_two}; }
inline Pair select(__m128d mask, Pair a, Pair b) {
    return {simd::select_by_sign(mask, a.high, b.high), simd::select_by_sign(mask, a.low, b.low)};
}
// 1 added to what is not negative.
inline Pair one_more(Pair a) { return sum_of_positive(a, {complex_inverse.one, _mm_setzero_pd()}); }

// x^2 + y^2 - 1, of exact squares.
inline Pair beyond_unit_circle(Pair x_squared, Pair y_squared) {
    const Pair first = two_sum(x_squared.high, simd::splat(-1.0));
    const Pair second = two_sum(first.high, y_squared.high);
    return sum(second.high, second.low + (first.low + (x_squared.low + y_squared.low)));
}

// sinh^2 v, cos^2 u and y^2 for u + i v the arc sine of x + i y.
struct ArcParts {
    Pair sinh_squared, cos_squared, y_squared;
};
inline ArcParts arc_parts(__m128d x, __m128d y) {
    constexpr const ComplexInverseBlock& K = complex_inverse;
    const Pair y_squared = square(y);
    const Pair q = beyond_unit_circle(square(x), y_squared);
    const Pair d = root(sum_of_positive(square(q), scaled(y_squared, K.four)));
    const __m128d inside = simd::sign_of(q.high);
    const Pair twice = sum(d.high, simd::bit_xor(q.high, inside));
    const Pair larger = scaled({twice.high, twice.low + (d.low + simd::bit_xor(q.low, inside))}, K.half);
    const Pair ratio = quotient(y_squared, larger), other = sum(ratio.high, ratio.low);
    return {select(inside, other, larger), select(inside, larger, other), y_squared};
}
// w.
inline Pair arc_across(const ArcParts& p) { return root(sum_of_positive(p.cos_squared, p.y_squared)); }

inline __m128d arc_size(Pair sinh_squared) {
    constexpr const ComplexInverseBlock& K = complex_inverse;
    const Pair two_s = scaled(root(sum_of_positive(sinh_squared, square(sinh_squared))), K.two);
    const __m128d small = simd::less(two_s.high, K.eighth);
    // asinh 2S keeps its low part below 1/8; elsewhere that is in the logarithm's argument.
    const __m128d t = simd::bit_and(small, two_s.high);
    const __m128d below = t + (two_s.low + asinh_rest(t));
    const Pair twice = sum(two_s.high, sinh_squared.high + sinh_squared.high);
    const __m128d above = ln(one_more({twice.high, twice.low + (two_s.low + (sinh_squared.low + sinh_squared.low))}));
    return simd::select(small, below, above) * K.half;
}

// The real part of atanh(x + i y), given x^2 and y^2.
inline __m128d atanh_real(__m128d x, Pair x_squared, Pair y_squared) {
    constexpr const ComplexInverseBlock& K = complex_inverse;
    const __m128d twice = x + x;
    const Pair total = one_more(sum_of_positive(x_squared, y_squared));
    const __m128d small = simd::less(twice, total.high * K.eighth);
    const Pair past = two_sum(K.one, simd::bit_xor(x, simd::doubles(K.sign)));
    const Pair numerator = sum_of_positive(total, {twice, _mm_setzero_pd()});
    const Pair denominator = sum_of_positive(square(past), y_squared);
    const Pair ratio = quotient(select(small, {twice, _mm_setzero_pd()}, numerator), select(small, total, denominator));
    const Pair r = sum(ratio.high, ratio.low);
    const __m128d t = simd::bit_and(small, r.high);
    const __m128d below = (t + (r.low + atanh_rest(t))) * K.half;
    const __m128d above = ln(r) * K.quarter;
    return simd::select(small, below, above);
}

// ---- By function, with signs -----------------------------------------------------------------------------------------

inline ComplexD asin_lanes(ComplexD z) {
    const __m128d x = simd::magnitude(z.re), y = simd::magnitude(z.im);
    const ArcParts p = arc_parts(x, y);
    const Pair w = arc_across(p);
    const __m128d u = atan2_lanes<atan_radians, turn_radians, false>(x, w.high, _mm_setzero_pd(), w.low);
    return {simd::bit_or(u, simd::sign_of(z.re)), simd::bit_or(arc_size(p.sinh_squared), simd::sign_of(z.im))};
}
inline ComplexD acos_lanes(ComplexD z) {
    const __m128d x = simd::magnitude(z.re), y = simd::magnitude(z.im);
    const ArcParts p = arc_parts(x, y);
    const Pair w = arc_across(p);
    const __m128d u = atan2_lanes<atan_radians, turn_radians, false>(w.high, z.re, w.low, _mm_setzero_pd());
    const __m128d opposite = simd::bit_and_not(z.im, simd::doubles(complex_inverse.sign));
    return {u, simd::bit_or(arc_size(p.sinh_squared), opposite)};
}
inline ComplexD atanh_lanes(ComplexD z) {
    constexpr const ComplexInverseBlock& K = complex_inverse;
    const __m128d x = simd::magnitude(z.re), y = simd::magnitude(z.im);
    const Pair x_squared = square(x), y_squared = square(y), q = beyond_unit_circle(x_squared, y_squared);
    const __m128d minus = simd::doubles(K.sign);
    const __m128d angle = atan2_lanes<atan_radians, turn_radians, false>(y + y, simd::bit_xor(q.high, minus),
                                                                         _mm_setzero_pd(), simd::bit_xor(q.low, minus));
    return {simd::bit_or(atanh_real(x, x_squared, y_squared), simd::sign_of(z.re)),
            simd::bit_or(angle * K.half, simd::sign_of(z.im))};
}

}  // namespace orv::vecmath
