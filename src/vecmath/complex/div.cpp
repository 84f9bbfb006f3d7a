// Div of complex numbers: a conj(b) / |b|^2.
//
// `z` "LA" and "HA": the numerators and |b|^2 in two doubles, and 1/|b|^2 too, the upper of its parts so short that the product with
// the upper half of a numerator is exact: each part is within an ulp whatever cancels. The vector path serves parts that are zero
// or in [2^-200, 2^200), where nothing of this leaves the range; beyond it one element is done in extended precision, whose
// exponents hold any square.
// `c` "LA" and "HA": in double, where products are exact.
// "EP": a times conj(b) / |b|^2, in float with the processor's approximation of the reciprocal, 1.5 * 2^-12 at most.
//
// Where no part comes out as a number: a number over zero is infinite, an infinity over a finite number too, and a finite number
// over an infinity is zero (C99 Annex G.5.1); 0/0 and infinity/infinity are outside the domain.
#include "vecmath/complex/products.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

// The quotient where an argument is not finite or the divisor is zero.
orv_complex_d special_quotient(orv_complex_d a, orv_complex_d b) {
    const QuietFlags quiet;
    const double infinity = std::numeric_limits<double>::infinity();
    const auto times = [](double factor, orv_complex_d z) { return orv_complex_d{factor * z.re, factor * z.im}; };
    if (b.re == 0 && b.im == 0) return times(__builtin_copysign(infinity, b.re), a);
    if (any_infinite(a) && all_finite(b)) return times(infinity, plain_product<true>(as_direction(a), b));
    // Only signs count, so what could overflow is made smaller.
    const bool great = __builtin_fabs(a.re) > 1 || __builtin_fabs(a.im) > 1;
    if (any_infinite(b) && all_finite(a))
        return times(0, plain_product<true>(times(great ? 0.25 : 1.0, a), as_direction(b)));
    return {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
}

template <class Z>
int32_t scalar_quotient(const Z* at_a, const Z* at_b, Z* y) {
    using T = decltype(y->re);
    const orv_complex_d a = widened(*at_a), b = widened(*at_b);
    const bool nan = any_nan(a) || any_nan(b), zero = b.re == 0 && b.im == 0;
    if (!all_finite(a) || !all_finite(b) || zero) {
        put_special(special_quotient(a, b), nan, y);
        if (nan) return frame::status_ok;
        if (both_nan(*y)) return frame::status_domain;
        if (!zero || !all_finite(a)) return frame::status_ok;
        const volatile T raised = minus_infinity_at_pole<T>();
        (void)raised;
        return frame::status_singularity;
    }
    const WideArithmetic wide;
    using Wide = long double;
    const Wide divisor = Wide{b.re} * b.re + Wide{b.im} * b.im;
    const Wide re = wide_sum_of_products(a.re, b.re, a.im, b.im) / divisor;
    const Wide im = wide_sum_of_products(a.im, b.re, -a.re, b.im) / divisor;
    *y = {narrowed<T>(re), narrowed<T>(im)};
    return frame::status_ok;
}

// 1 / x to about 2^-76, its upper part of 26 bits.
inline Pair reciprocal(Pair x) {
    const D one = splat(1.0);
    const D high = upper_26(one / x.high);
    const D lead = upper_26(x.high);
    const D missing = ((one - high * lead) - high * (x.high - lead)) - high * x.low;
    return {high, high * missing + high * (missing * missing)};
}
// x times that, rounded. The parts of x may cancel one another. A zero keeps its sign.
inline D times(Pair x, Pair inverse) {
    const Pair sorted = two_sum(x.high, x.low);
    const D lead = upper_26(sorted.high);
    const D rest = (sorted.high - lead) + sorted.low;
    const D y = lead * inverse.high + (rest * inverse.high + sorted.high * inverse.low);
    return simd::bit_or(y, simd::bit_and(simd::equal(y, D{}), simd::sign_of(x.high)));
}

struct QuotientZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD a, ComplexD b) {
        return simd::bit_or(any_part_outside<0x33700000u, 0x4C700000u>(a, b), both_zero(b));
    }
    static ComplexD lanes(ComplexD a, ComplexD b) {
        const Product numerator = product_in_two<true>(a, b);
        const Pair re = exact_square(b.re), im = exact_square(b.im);
        const Pair square = two_sum(re.high, im.high);
        const Pair inverse = reciprocal({square.high, square.low + (re.low + im.low)});
        return {times(numerator.re, inverse), times(numerator.im, inverse)};
    }
    static int32_t scalar(const orv_complex_d* a, const orv_complex_d* b, orv_complex_d* y) {
        return scalar_quotient(a, b, y);
    }
};

// a times conj(b) over |b|^2, of which `inverse` gives the reciprocal.
template <class Z, class Inverse>
inline Z rough_quotient(Z a, Z b, Inverse inverse) {
    const auto scale = inverse(b.re * b.re + b.im * b.im);
    return plain_product<true>(a, Z{b.re * scale, b.im * scale});
}

struct QuotientZEP : QuotientZ {
    // A divisor whose square leaves the range; a dividend from 2^500 on.
    static D doubt(ComplexD a, ComplexD b) {
        const D large = any_part_from<0x5F300000u>(a, b);
        const __m128i words = high_words(b);
        const __m128i larger = simd::greatest_32(words, simd::shuffle_32<2, 3, 0, 1>(words));
        const __m128i small = simd::greater_32(simd::splat_32(0x20B00000), larger);  // 2^-500
        return simd::bit_or(large, simd::doubles(simd::shuffle_32<0, 0, 1, 1>(small)));
    }
    static ComplexD lanes(ComplexD a, ComplexD b) {
        return rough_quotient(a, b, [](D x) { return splat(1.0) / x; });
    }
};

struct QuotientC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS a, ComplexS b) { return simd::bit_or(any_part_from<infinity_s>(a, b), both_zero(b)); }
    static ComplexS lanes(ComplexS a, ComplexS b) {
        const auto quotient = [](ComplexD x, ComplexD z) {
            const ComplexD numerator = plain_product<true>(x, z);
            const D inverse = splat(1.0) / (z.re * z.re + z.im * z.im);
            return ComplexD{numerator.re * inverse, numerator.im * inverse};
        };
        return by_double(quotient, a, b);
    }
    static int32_t scalar(const orv_complex_s* a, const orv_complex_s* b, orv_complex_s* y) {
        return scalar_quotient(a, b, y);
    }
};

struct QuotientCEP : QuotientC {
    // Beyond 2^61; a divisor below 2^-60.
    static __m128 doubt(ComplexS a, ComplexS b) {
        const __m128i larger =
            simd::greatest_32(simd::bits_of(simd::magnitude(b.re)), simd::bits_of(simd::magnitude(b.im)));
        const __m128i small = simd::greater_32(simd::splat_32(0x21800000), larger);
        return simd::bit_or(any_part_from<0x5E000000u>(a, b), simd::floats(small));
    }
    static ComplexS lanes(ComplexS a, ComplexS b) {
        return rough_quotient(a, b, [](__m128 x) { return _mm_rcp_ps(x); });
    }
};

}  // namespace

ORV_TWO_INPUTS(cDiv, la, QuotientC)
ORV_TWO_INPUTS(cDiv, ep, QuotientCEP)
ORV_TWO_INPUTS(zDiv, la, QuotientZ)
ORV_TWO_INPUTS(zDiv, ep, QuotientZEP)
