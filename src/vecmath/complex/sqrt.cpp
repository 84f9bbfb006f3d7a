// Sqrt of complex numbers: the root in the right half plane.
//
// With m = |z| + |re z|, where nothing cancels, the larger part is t = sqrt(m /
// 2) and the smaller |im z| / 2t; the larger is the real part on the right half
// plane, and the imaginary one, with its sign, on the left. `z`: the modulus,
// m, t and the quotient in two doubles each. The vector path serves parts that
// are zero or in [2^-500, 2^500); others, which are few, are done in extended
// precision, whose exponents hold any square. `c`: in double.
//
// An infinite imaginary part makes both parts infinite, beside a NaN too (C99
// Annex G.6.4.2). Nothing is outside the domain.
#include "vecmath/complex/parts.h"
#include "vecmath/roots/hypot_d.h"
#include "vecmath/special/extended.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

// What m gives, put where it belongs.
inline ComplexD root_of(D larger, D smaller, ComplexD z) {
    return {simd::select_by_sign(z.re, smaller, larger),
            simd::bit_or(simd::select_by_sign(z.re, larger, smaller), simd::sign_of(z.im))};
}

orv_complex_d special_root(orv_complex_d z) {
    const double infinity = std::numeric_limits<double>::infinity();
    if (__builtin_isinf(z.im)) return {infinity, z.im};
    if (z.re == infinity) return {infinity, is_nan(z.im) ? z.im : __builtin_copysign(0.0, z.im)};
    if (z.re == -infinity) return {is_nan(z.im) ? z.im : 0.0, __builtin_copysign(infinity, z.im)};
    if (z.re == 0 && z.im == 0) return {0.0, z.im};
    const double nan = z.re + z.im;
    return {nan, nan};
}

int32_t scalar_root(const orv_complex_d* at, orv_complex_d* y) {
    const orv_complex_d z = *at;
    if (!all_finite(z) || (z.re == 0 && z.im == 0)) {
        *y = special_root(z);
        return frame::status_ok;
    }
    const WideArithmetic wide;
    using Wide = long double;
    const Wide re = z.re, im = z.im;
    const Wide larger = x87_root((x87_root(re * re + im * im) + (re < 0 ? -re : re)) * 0.5L);
    const Wide smaller = __builtin_fabsl(im) / (larger + larger);
    y->re = static_cast<double>(__builtin_signbit(z.re) ? smaller : larger);
    y->im = __builtin_copysign(static_cast<double>(__builtin_signbit(z.re) ? larger : smaller), z.im);
    return frame::status_ok;
}

struct RootZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) { return simd::bit_or(any_part_outside<0x20B00000u, 0x5F300000u>(z), both_zero(z)); }
    static ComplexD lanes(ComplexD z) {
        Pair modulus;
        compensated_root(z.re, z.im, modulus.high, modulus.low);
        const Pair twice = sum(modulus.high, simd::magnitude(z.re));
        const D half = splat(0.5);
        const Pair m = {twice.high * half, (twice.low + modulus.low) * half};

        const D t = simd::square_root(m.high);
        const D t1 = upper_26(t), t2 = t - t1;
        const D inverse = half / t;
        const D t_low = (((m.high - t1 * t1) - (t1 + t1) * t2 - t2 * t2) + m.low) * inverse;
        // y / 2t, with the remainder of a quotient so short that its products are
        // exact.
        const D y = simd::magnitude(z.im);
        const D q = upper_26(y * inverse);
        const D q_low = ((y - (q + q) * t1) - (q + q) * (t2 + t_low)) * inverse;
        return root_of(t + t_low, q + q_low, z);
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return scalar_root(z, y); }
};

struct RootC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) { return simd::bit_or(any_part_from<infinity_s>(z), both_zero(z)); }
    static ComplexS lanes(ComplexS z) {
        const auto root = [](ComplexD x) {
            const D m = simd::square_root(x.re * x.re + x.im * x.im) + simd::magnitude(x.re);
            const D half = splat(0.5);
            const D t = simd::square_root(m * half);
            return root_of(t, simd::magnitude(x.im) * (half / t), x);
        };
        return by_double(root, z);
    }
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* y) {
        return scalar_by_double<scalar_root>(z, y, false);
    }
};

}  // namespace

ORV_ONE_INPUT(cSqrt, la, RootC)
ORV_ONE_INPUT(cSqrt, ha, RootC)
ORV_ONE_INPUT(zSqrt, la, RootZ)
