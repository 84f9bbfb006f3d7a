// Mul and MulByConj of complex numbers: a b and a conj(b).
//
// `z` "LA" and "HA": every product in two doubles, and their sums with what rounding takes from them, so that each part is within
// an ulp whatever cancels. The vector path serves parts that are zero or in [2^-440, 2^480), where the products have all their
// digits; beyond it one element is done in extended precision, whose exponents hold any product.
// `c` "LA" and "HA": in double, where the products are exact.
// "EP": the plain sums, of parts so far from the end of the range that nothing overflows.
//
// A product of which both parts come out as NaNs is an infinity if a factor is one and the other not zero: the parts of the
// infinite factor count as ones and zeros (C99 Annex G.5.1).
#include "vecmath/complex/products.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

// Of factors that are not both finite; or an overflow of finite ones, which stays as it is.
orv_complex_d special_product(orv_complex_d a, orv_complex_d b) {
    const QuietFlags quiet;
    const orv_complex_d y = plain_product<false>(a, b);
    if (!both_nan(y)) return y;
    if (any_infinite(a)) {
        a = as_direction(a);
        b = any_infinite(b) ? as_direction(b) : without_nan(b);
    } else if (any_infinite(b)) {
        b = as_direction(b);
        a = without_nan(a);
    } else {
        return y;
    }
    const orv_complex_d direction = plain_product<false>(a, b);
    const double infinity = std::numeric_limits<double>::infinity();
    return {infinity * direction.re, infinity * direction.im};
}

template <bool Conjugate, class Z>
int32_t scalar_product(const Z* at_a, const Z* at_b, Z* y) {
    using T = decltype(y->re);
    const orv_complex_d a = widened(*at_a);
    orv_complex_d b = widened(*at_b);
    if (Conjugate) b.im = -b.im;
    if (!all_finite(a) || !all_finite(b)) {
        put_special(special_product(a, b), any_nan(a) || any_nan(b), y);
        return frame::status_ok;
    }
    const WideArithmetic wide;
    const long double re = wide_sum_of_products(a.re, b.re, -a.im, b.im);
    const long double im = wide_sum_of_products(a.re, b.im, a.im, b.re);
    *y = {narrowed<T>(re), narrowed<T>(im)};
    return frame::status_ok;
}

template <bool Conjugate>
struct ProductZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD a, ComplexD b) { return any_part_outside<0x24700000u, 0x5DF00000u>(a, b); }
    static ComplexD lanes(ComplexD a, ComplexD b) {
        const Product y = product_in_two<Conjugate>(a, b);
        return {rounded(y.re), rounded(y.im)};
    }
    static int32_t scalar(const orv_complex_d* a, const orv_complex_d* b, orv_complex_d* y) {
        return scalar_product<Conjugate>(a, b, y);
    }
};

template <bool Conjugate>
struct ProductZEP : ProductZ<Conjugate> {
    static D doubt(ComplexD a, ComplexD b) { return any_part_from<0x5F300000u>(a, b); }  // 2^500
    static ComplexD lanes(ComplexD a, ComplexD b) { return plain_product<Conjugate>(a, b); }
};

template <bool Conjugate>
struct ProductC : frame::Elementwise<orv_complex_s, 8, frame::Tail::masked> {
    static __m128 doubt(ComplexS a, ComplexS b) { return any_part_from<infinity_s>(a, b); }
    static ComplexS lanes(ComplexS a, ComplexS b) { return by_double(plain_product<Conjugate, ComplexD>, a, b); }
    static int32_t scalar(const orv_complex_s* a, const orv_complex_s* b, orv_complex_s* y) {
        return scalar_product<Conjugate>(a, b, y);
    }
};

template <bool Conjugate>
struct ProductCEP : ProductC<Conjugate> {
    static __m128 doubt(ComplexS a, ComplexS b) { return any_part_from<0x5E000000u>(a, b); }  // 2^61
    static ComplexS lanes(ComplexS a, ComplexS b) { return plain_product<Conjugate>(a, b); }
};

}  // namespace

ORV_TWO_INPUTS(cMul, la, ProductC<false>)
ORV_TWO_INPUTS(cMul, ep, ProductCEP<false>)
ORV_TWO_INPUTS(zMul, la, ProductZ<false>)
ORV_TWO_INPUTS(zMul, ep, ProductZEP<false>)
ORV_TWO_INPUTS(cMulByConj, la, ProductC<true>)
ORV_TWO_INPUTS(cMulByConj, ep, ProductCEP<true>)
ORV_TWO_INPUTS(zMulByConj, la, ProductZ<true>)
ORV_TWO_INPUTS(zMulByConj, ep, ProductZEP<true>)
