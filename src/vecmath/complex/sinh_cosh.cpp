// Sinh, Cosh, Sin and Cos of complex numbers, by products of real functions:
//
//   sinh(x + i y) = sinh x cos y + i cosh x sin y     sin(x + i y) = sin x cosh y + i cos x sinh y
//   cosh(x + i y) = cosh x cos y + i sinh x sin y     cos(x + i y) = cos x cosh y - i sin x sinh y
//
// `z`: the factors in two doubles each (growth.h), each product rounded once and a little. The vector path serves angles below 90112
// and the other part below 708, neither so small that a product leaves the range; others are done in extended precision.
// `c`: by the same factors.
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

template <Function F>
struct ProductsZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) { return beyond_growth<0x40862000u>(angle_of<F>(z), growth_of<F>(z)); }  // 708
    static ComplexD lanes(ComplexD z) {
        const D u = angle_of<F>(z), v = growth_of<F>(z);
        const SineCosine turn = sine_cosine(simd::magnitude(u));
        const SinhCosh growth = sinh_cosh(simd::magnitude(v));
        const D scale = power_of_two_by(growth.n);
        if constexpr (is_even(F)) {
            const D sign = simd::bit_xor(simd::sign_of(u), simd::sign_of(v));
            const D im = rounded_product(growth.sinh, turn.sine) * scale;
            return {rounded_product(growth.cosh, turn.cosine) * scale,
                    simd::bit_xor(im, F == Function::cos ? simd::bit_xor(sign, splat(-0.0)) : sign)};
        } else {
            const D of_sinh = simd::bit_xor(rounded_product(growth.sinh, turn.cosine) * scale, simd::sign_of(v));
            const D of_cosh = simd::bit_xor(rounded_product(growth.cosh, turn.sine) * scale, simd::sign_of(u));
            if constexpr (F == Function::sinh)
                return {of_sinh, of_cosh};
            else
                return {of_cosh, of_sinh};
        }
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return ::scalar<F>(z, y); }
};

template <Function F>
struct ProductsC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        return simd::bit_or(simd::exceeds(simd::magnitude(angle_of<F>(z)), splat(90000.0f)),
                            simd::exceeds(simd::magnitude(growth_of<F>(z)), splat(88.0f)));
    }
    static ComplexS lanes(ComplexS z) { return by_double(ProductsZ<F>::lanes, z); }
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
