// Sinh, Cosh, Sin and Cos of complex numbers, by products of real functions:
//
//   sinh(x + i y) = sinh x cos y + i cosh x sin y     sin(x + i y) = sin x cosh y + i cos x sinh y
//   cosh(x + i y) = cosh x cos y + i sinh x sin y     cos(x + i y) = cos x cosh y - i sin x sinh y
//
// `z`: the factors in two doubles each (growth.h), each product rounded once and a little. The vector path serves angles below 90112
// and the other part below 708, neither so small that a product leaves the range; others are done in extended precision.
// `c`: in double, one part of each factor, of angles below 8192.
//
// Where one factor is infinite and the other zero the zero prevails; an infinite angle is outside the domain (C99 Annex G.6.2).
#include "vecmath/complex/growth.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

enum class Function { sinh, cosh, sin, cos };
constexpr bool turns_with_re(Function f) { return f == Function::sin || f == Function::cos; }
constexpr bool is_even(Function f) { return f == Function::cosh || f == Function::cos; }

// The angle u and the growing part v.
template <Function F, class Z>
inline auto angle_of(const Z& z) {
    return turns_with_re(F) ? z.re : z.im;
}
template <Function F, class Z>
inline auto growth_of(const Z& z) {
    return turns_with_re(F) ? z.im : z.re;
}

// Arguments that are not both finite. A factor of zero prevails over an infinite or undefined one.
template <Function F>
orv_complex_d special(double u, double v, int32_t* status) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    *status = __builtin_isinf(u) && !is_nan(v) ? frame::status_domain : frame::status_ok;
    double sine = __builtin_copysign(nan, u), cosine = nan;
    if (is_finite(u)) {
        const WideSineCosine turn(u);
        sine = static_cast<double>(turn.sine);
        cosine = static_cast<double>(turn.cosine);
    }
    const double size = __builtin_fabs(v);  // of cosh, if v is not finite
    const auto product = [](double turn, double growth) {
        if (turn == 0 || growth == 0) return __builtin_copysign(0.0, turn) * __builtin_copysign(1.0, growth);
        return turn * growth;
    };
    if (__builtin_isinf(v) && !is_finite(u)) return is_even(F) ? orv_complex_d{size, nan} : orv_complex_d{v, nan};
    if (is_even(F)) return {v == 0 ? nan : product(cosine, size), product(sine, v)};
    return {product(cosine, v), v == 0 ? nan : product(sine, size)};
}

template <Function F>
int32_t scalar(const orv_complex_d* z, orv_complex_d* y) {
    const WideArithmetic extended;
    const double u = angle_of<F>(*z), v = growth_of<F>(*z);
    if (!all_finite(*z)) {
        int32_t status;
        orv_complex_d w;
        {
            const QuietFlags quiet;
            w = special<F>(u, v, &status);
        }
        if (F == Function::sin) w = {w.im, w.re};
        if (F == Function::cos) w.im = -w.im;
        put_special(w, any_nan(*z), y);
        return status;
    }
    const WideSineCosine turn(u);
    const WideSinhCosh growth(v);
    switch (F) {
        case Function::sinh:
            return put_wide(growth.sinh * turn.cosine, growth.cosh * turn.sine, y);
        case Function::cosh:
            return put_wide(growth.cosh * turn.cosine, growth.sinh * turn.sine, y);
        case Function::sin:
            return put_wide(growth.cosh * turn.sine, growth.sinh * turn.cosine, y);
        default:
            return put_wide(growth.cosh * turn.cosine, -(growth.sinh * turn.sine), y);
    }
}

// The products of the cosine of |u| and of its sine, with a hyperbolic function of |v| each, as the parts of the result.
template <Function F>
inline ComplexD with_signs(D of_cosine, D of_sine, D u, D v) {
    if constexpr (is_even(F)) {
        const D sign = simd::bit_xor(simd::sign_of(u), simd::sign_of(v));
        return {of_cosine, simd::bit_xor(of_sine, F == Function::cos ? simd::bit_xor(sign, splat(-0.0)) : sign)};
    }
    of_cosine = simd::bit_xor(of_cosine, simd::sign_of(v));
    of_sine = simd::bit_xor(of_sine, simd::sign_of(u));
    if constexpr (F == Function::sinh) return {of_cosine, of_sine};
    return {of_sine, of_cosine};
}

template <Function F>
struct ProductsZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) { return beyond_growth<0x40862000u>(angle_of<F>(z), growth_of<F>(z)); }  // 708
    static ComplexD lanes(ComplexD z) {
        const D u = angle_of<F>(z), v = growth_of<F>(z);
        const SineCosine turn = sine_cosine(simd::magnitude(u));
        const SinhCosh growth = sinh_cosh(simd::magnitude(v));
        const D scale = power_of_two_by(growth.n);
        if constexpr (is_even(F))
            return with_signs<F>(rounded_product(growth.cosh, turn.cosine) * scale,
                                 rounded_product(growth.sinh, turn.sine) * scale, u, v);
        return with_signs<F>(rounded_product(growth.sinh, turn.cosine) * scale,
                             rounded_product(growth.cosh, turn.sine) * scale, u, v);
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return ::scalar<F>(z, y); }
};

template <Function F>
struct ProductsC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        return simd::bit_or(simd::exceeds(simd::magnitude(angle_of<F>(z)), splat(8191.0f)),
                            simd::exceeds(simd::magnitude(growth_of<F>(z)), splat(88.0f)));
    }
    static ComplexS lanes(ComplexS z) {
        const auto products = [](ComplexD x) {
            const D u = angle_of<F>(x), v = growth_of<F>(x);
            const ShortFactors f = short_factors(simd::magnitude(u), simd::magnitude(v));
            if constexpr (is_even(F)) return with_signs<F>(f.cosh * f.cosine, f.sinh * f.sine, u, v);
            return with_signs<F>(f.sinh * f.cosine, f.cosh * f.sine, u, v);
        };
        return by_double(products, z);
    }
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* y) {
        return scalar_by_double<::scalar<F>>(z, y, all_finite(*z));
    }
};

}  // namespace

ORV_ONE_INPUT(cSinh, la, ProductsC<Function::sinh>)
ORV_ONE_INPUT(zSinh, la, ProductsZ<Function::sinh>)
ORV_ONE_INPUT(cCosh, la, ProductsC<Function::cosh>)
ORV_ONE_INPUT(zCosh, la, ProductsZ<Function::cosh>)
ORV_ONE_INPUT(cSin, la, ProductsC<Function::sin>)
ORV_ONE_INPUT(zSin, la, ProductsZ<Function::sin>)
ORV_ONE_INPUT(cCos, la, ProductsC<Function::cos>)
ORV_ONE_INPUT(zCos, la, ProductsZ<Function::cos>)
