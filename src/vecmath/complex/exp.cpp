// Exp of complex numbers: e^x (cos y + i sin y).
//
// `z` "HA": the three factors in two doubles each (growth.h), each product
// rounded once and a little. "LA" and "EP": the sine and the cosine in one. The
// vector path serves |x| below 708 and |y| below 90112; others are done in
// extended precision. `c`: in double, a sine and a cosine in one part.
//
// Infinite x: an infinity or a zero in the direction of cos y + i sin y, or
// real for y = 0. An infinite y is outside the domain unless x is minus
// infinity, which gives zero (C99 Annex G.6.3.1).
#include "vecmath/complex/growth.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

constexpr uint32_t end_of_x = 0x40862000;  // 708

orv_complex_d special_exp(orv_complex_d z, int32_t* status) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    *status = frame::status_ok;
    if (z.re == -infinity && !is_finite(z.im)) return {0.0, __builtin_copysign(0.0, z.im)};
    if (__builtin_isinf(z.re) && is_finite(z.im)) {
        const double size = z.re > 0 ? infinity : 0.0;
        if (z.im == 0) return {size, z.im};
        const WideSineCosine turn(z.im);
        return {__builtin_copysign(size, static_cast<double>(turn.cosine)),
                __builtin_copysign(size, static_cast<double>(turn.sine))};
    }
    if (__builtin_isinf(z.im) && !is_nan(z.re)) *status = frame::status_domain;
    if (z.re == infinity) return {infinity, nan};
    return {nan, is_nan(z.re) && z.im == 0 ? z.im : nan};
}

int32_t scalar_exp(const orv_complex_d* z, orv_complex_d* y) {
    const WideArithmetic extended;
    if (!all_finite(*z)) {
        int32_t status;
        put_special(special_exp(*z, &status), any_nan(*z), y);
        return status;
    }
    const long double power = wide_power_of_e(z->re);
    const WideSineCosine turn(z->im);
    return put_wide(power * turn.cosine, power * turn.sine, y);
}

template <bool InParts>
struct ExpZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) {
        // x may be as small as it likes.
        const D large = simd::exceeds(simd::magnitude(z.re), splat(707.99));
        return simd::bit_or(large, beyond_growth<end_of_x>(z.im, D{}));
    }
    static ComplexD lanes(ComplexD z) {
        const PowerOfE power = power_of_e(z.re);
        const D scale = power_of_two(power.k);
        const Pair value = normal(power.value);
        SineCosine turn{};
        if constexpr (InParts)
            turn = sine_cosine(simd::magnitude(z.im));
        else
            sincos_128(simd::magnitude(z.im), turn.sine.high, turn.cosine.high);
        const D re = rounded_product(value, turn.cosine), im = rounded_product(value, turn.sine);
        return {re * scale, simd::bit_xor(im * scale, simd::sign_of(z.im))};
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return scalar_exp(z, y); }
};

struct ExpC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        return simd::bit_or(simd::exceeds(simd::magnitude(z.re), splat(88.0f)),
                            simd::exceeds(simd::magnitude(z.im), splat(8191.0f)));
    }
    static ComplexS lanes(ComplexS z) {
        const auto power = [](ComplexD x) {
            const PowerOfE e = power_of_e(x.re);
            const D size = (e.value.high + e.value.low) * power_of_two(e.k);
            const D u = simd::magnitude(x.im);
            const Nearest<half_pi> nearest(u);
            D sine, cosine;
            quarter_turns<eighth_33>((u - nearest.k * half_pi.high) - nearest.k * half_pi.middle, nearest.shifted, sine,
                                     cosine);
            return ComplexD{size * cosine, simd::bit_xor(size * sine, simd::sign_of(x.im))};
        };
        return by_double(power, z);
    }
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* y) {
        return scalar_by_double<scalar_exp>(z, y, all_finite(*z));
    }
};

using ExpZHA = ExpZ<true>;
using ExpZLA = ExpZ<false>;

}  // namespace

ORV_ONE_INPUT(cExp, la, ExpC)
ORV_ONE_INPUT(cExp, ha, ExpC)
ORV_ONE_INPUT(zExp, la, ExpZLA)
ORV_ONE_INPUT(zExp, ha, ExpZHA)
