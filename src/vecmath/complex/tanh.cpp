// Tanh and Tan of complex numbers:
//
//   tanh(x + i y) = (sinh x cosh x + i sin y cos y) / (sinh^2 x + cos^2 y),   tan z = -i tanh(i z),
//
// where nothing cancels. The vector path serves angles below 90112 and a growing part below 200, neither so small that a product
// leaves the range; others are done in extended precision.
// `z`: everything in two doubles. `c`: in double, of angles below 8192.
//
// An infinite growing part gives 1 with its sign, whatever the angle; an infinite angle beside a finite part is outside the domain
// (C99 Annex G.6.2.6).
#include "vecmath/complex/growth.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

// tanh(v + i u) of arguments that are not both finite.
orv_complex_d special_tanh(double u, double v, int32_t* status) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    *status = frame::status_ok;
    if (__builtin_isinf(v)) {
        double im = __builtin_copysign(0.0, u);
        if (is_finite(u)) {
            const WideSineCosine turn(u);
            im = __builtin_copysign(0.0, static_cast<double>(turn.sine * turn.cosine));
        }
        return {__builtin_copysign(1.0, v), im};
    }
    if (__builtin_isinf(u) && !is_nan(v)) *status = frame::status_domain;
    return {nan, u == 0 ? u : nan};
}

int32_t wide_tanh(double u, double v, bool nan, orv_complex_d* y) {
    const WideArithmetic extended;
    if (!is_finite(u) || !is_finite(v)) {
        int32_t status;
        put_special(special_tanh(u, v, &status), nan, y);
        return status;
    }
    const WideSineCosine turn(u);
    const WideSinhCosh growth(v);
    const long double divisor = growth.sinh * growth.sinh + turn.cosine * turn.cosine;
    return put_wide(growth.sinh * growth.cosh / divisor, turn.sine * turn.cosine / divisor, y);
}

// The leading part an exact product of halves, so short that it has room for half the digits of a sum.
inline Pair product(Pair a, Pair b) {
    const D a1 = upper_26(a.high), b1 = upper_26(b.high);
    const D cross = a1 * (b.high - b1) + (a.high - a1) * b.high;
    return {a1 * b1, cross + (a.high * b.low + a.low * b.high)};
}

// tanh(v + i u) of what is not negative, but for signs of the table's quarter turns.
inline ComplexD tanh_in_two(D u, D v) {
    const SineCosine turn = sine_cosine(u);
    SinhCosh growth = sinh_cosh(v);
    const D scale = power_of_two_by(growth.n);
    for (Pair* p : {&growth.sinh, &growth.cosh}) *p = {p->high * scale, p->low * scale};
    const Pair divisor = sum_of_positive(product(growth.sinh, growth.sinh), product(turn.cosine, turn.cosine));
    const Pair re = quotient(product(growth.sinh, growth.cosh), divisor);
    const Pair im = quotient(product(turn.sine, turn.cosine), divisor);
    return {re.high + re.low, im.high + im.low};
}
inline ComplexD tanh_in_one(D u, D v) {
    const ShortFactors f = short_factors(u, v);
    const D inverse = splat(1.0) / (f.sinh * f.sinh + f.cosine * f.cosine);
    return {f.sinh * f.cosh * inverse, f.sine * f.cosine * inverse};
}

// Of tan the angle is the real part, and so is what tanh has as its imaginary one.
template <bool Tan, class Z>
inline Z turned(Z z) {
    if constexpr (Tan) return {z.im, z.re};
    return z;
}

template <bool Tan, auto Lanes>
inline ComplexD signed_tanh(ComplexD z) {
    const ComplexD t = turned<Tan>(z);
    const ComplexD y = Lanes(simd::magnitude(t.im), simd::magnitude(t.re));
    return turned<Tan>(ComplexD{simd::bit_xor(y.re, simd::sign_of(t.re)), simd::bit_xor(y.im, simd::sign_of(t.im))});
}

template <bool Tan>
int32_t scalar_tanh(const orv_complex_d* z, orv_complex_d* y) {
    const orv_complex_d t = turned<Tan>(*z);
    orv_complex_d w;
    const int32_t status = wide_tanh(t.im, t.re, any_nan(t), &w);
    *y = turned<Tan>(w);
    return status;
}

template <bool Tan>
struct TanhZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) {
        const ComplexD t = turned<Tan>(z);
        return beyond_growth<0x40690000u>(t.im, t.re);  // 200
    }
    static ComplexD lanes(ComplexD z) { return signed_tanh<Tan, tanh_in_two>(z); }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return scalar_tanh<Tan>(z, y); }
};

template <bool Tan>
struct TanhC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        const ComplexS t = turned<Tan>(z);
        return simd::bit_or(simd::exceeds(simd::magnitude(t.im), splat(8191.0f)),
                            simd::exceeds(simd::magnitude(t.re), splat(200.0f)));
    }
    static ComplexS lanes(ComplexS z) { return by_double(signed_tanh<Tan, tanh_in_one>, z); }
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* y) {
        return scalar_by_double<scalar_tanh<Tan>>(z, y, all_finite(*z));
    }
};

}  // namespace

ORV_ONE_INPUT(cTanh, la, TanhC<false>)
ORV_ONE_INPUT(zTanh, la, TanhZ<false>)
ORV_ONE_INPUT(cTan, la, TanhC<true>)
ORV_ONE_INPUT(zTan, la, TanhZ<true>)
