// Sums of two products, to all digits that count however much they cancel.
#pragma once

#include "vecmath/complex/parts.h"

namespace orv::vecmath {

// a b + c d of factors whose products are exact in two parts: what rounding takes from the sum of the leading parts is kept too.
inline Pair sum_of_products(Pair ab, Pair cd) {
    const Pair sum = two_sum(ab.high, cd.high);
    return {sum.high, sum.low + (ab.low + cd.low)};
}
// The pair rounded. A zero has the sign of the leading part, which is that of the sum of the products.
inline D rounded(Pair x) {
    const D y = x.high + x.low;
    return simd::bit_or(y, simd::bit_and(simd::equal(y, D{}), x.high));
}
inline Pair minus(Pair x) { return {simd::bit_xor(x.high, splat(-0.0)), simd::bit_xor(x.low, splat(-0.0))}; }

// a b, or a times the conjugate of b.
struct Product {
    Pair re, im;
};
template <bool Conjugate>
inline Product product_in_two(ComplexD a, ComplexD b) {
    const Halves a_re = halves_of(a.re), a_im = halves_of(a.im), b_re = halves_of(b.re), b_im = halves_of(b.im);
    const Pair re_re = exact_product(a.re, a_re, b.re, b_re), im_im = exact_product(a.im, a_im, b.im, b_im);
    const Pair re_im = exact_product(a.re, a_re, b.im, b_im), im_re = exact_product(a.im, a_im, b.re, b_re);
    if constexpr (Conjugate) return {sum_of_products(re_re, im_im), sum_of_products(im_re, minus(re_im))};
    return {sum_of_products(re_re, minus(im_im)), sum_of_products(re_im, im_re)};
}

// The same in one part. Of floats widened the products are exact.
template <bool Conjugate, class Z>
inline Z plain_product(Z a, Z b) {
    if constexpr (Conjugate) return {a.re * b.re + a.im * b.im, a.im * b.re - a.re * b.im};
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// ---- One element in extended precision: the range of the exponent is no matter ------------------------------------------

// a b + c d in one rounding and a little.
inline long double wide_sum_of_products(double a, double b, double c, double d) {
    using Wide = long double;
    const auto rest = [](double x, double y, Wide p) {
        const auto upper = [](double v) {
            return Wide{std::bit_cast<double>(std::bit_cast<uint64_t>(v) & ~uint64_t{0} << 27)};
        };
        const Wide x1 = upper(x), y1 = upper(y), x2 = x - x1, y2 = y - y1;
        return ((x1 * y1 - p) + x1 * y2 + x2 * y1) + x2 * y2;
    };
    const Wide p = Wide{a} * b, q = Wide{c} * d;
    const Wide sum = p + q;
    const Wide of_q = sum - p;
    return sum + (((p - (sum - of_q)) + (q - of_q)) + (rest(a, b, p) + rest(c, d, q)));
}

// The parts of an infinite number as ones and zeros of their signs; and a NaN as a zero of its sign.
inline double part_of_direction(double x) { return __builtin_copysign(__builtin_isinf(x) ? 1.0 : 0.0, x); }
inline orv_complex_d as_direction(orv_complex_d z) { return {part_of_direction(z.re), part_of_direction(z.im)}; }
inline double without_nan(double x) { return is_nan(x) ? __builtin_copysign(0.0, x) : x; }
inline orv_complex_d without_nan(orv_complex_d z) { return {without_nan(z.re), without_nan(z.im)}; }
inline bool any_infinite(orv_complex_d z) { return __builtin_isinf(z.re) || __builtin_isinf(z.im); }

}  // namespace orv::vecmath
