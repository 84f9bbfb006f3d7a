// Sine, cosine and tangent of angles in half turns and in degrees, for floats.
//
// |x| = k step + f with step a half turn (of the tangent: a quarter turn) is exact in float; of the cosine, whose k is halfway
// between integers, in double. The rest is the sine of +-f or the tangent of f, or its -1/tangent for odd k, by polynomials
// and quotients of polynomials of the unit itself.
//
// "LA" and "HA": those in double, where a polynomial of "HA" has one term more; large arguments are folded in double.
// "EP": in float with a short polynomial; the tangent as "LA".
//
// Signs of zeros and poles are those of the kernels of doubles.
#pragma once

#include "vecmath/trig/reduction_s.h"
#include "vecmath/trig/unit_angles_d.h"

namespace orv::vecmath {

enum class Method { in_float, in_double, in_double_longer };

// Below 2^17 the sum that rounds to k has room in a float, and k steps are exact.
inline constexpr Splat<float> last_in_float{0x1.fffffep+16f};

template <class Unit>
inline constexpr ShortSine short_sine_of = in_unit(short_sine, Unit::radians);

// ---- Sine and cosine -------------------------------------------------------------------------------------------------

template <class Unit, Function F, Method How>
struct UnitAngleS : frame::OneInput<float, 8, frame::Tail::masked, frame::Rejected::settled> {
    static constexpr bool halfway = F == Function::cos;

    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), last_in_float); }
    static S lanes(S x) {
        const S a = simd::magnitude(x);
        const auto [shifted, multiple, f] = nearby<Unit, 1, halfway>(a);
        S y;
        if constexpr (How == Method::in_float)
            y = sine<short_sine_of<Unit>>(f);
        else if constexpr (halfway)  // of a small angle f has more digits than a float
            y = simd::narrow(in_double(simd::widen_low(a) - simd::widen_low(multiple)),
                             in_double(simd::widen_high(a) - simd::widen_high(multiple)));
        else
            y = simd::narrow(in_double(simd::widen_low(f)), in_double(simd::widen_high(f)));
        // A zero is positive here.
        y = simd::bit_xor(y, simd::floats(simd::shift_left_32<31>(simd::bits_of(shifted)))) + trig_s.zero;
        return with_sign_of(x, y);
    }
    static D in_double(D f) {
        if constexpr (How == Method::in_double_longer)
            return sine<sine_35_of<Unit>>(f);
        else
            return sine<sine_26_of<Unit>>(f);
    }
    static S with_sign_of(S x, S y) { return F == Function::cos ? y : simd::bit_xor(y, simd::sign_of(x)); }

    static S settle(S x, S y, S& doubt) {
        const S mask = doubt;
        doubt = simd::not_finite(x);
        const S a = simd::bit_and_not(doubt, simd::magnitude(x));
        const auto of_doubles = [](D half) {
            const auto [shifted, multiple, f] = nearby<Unit, 1, halfway>(folded<Unit>(half));
            return simd::bit_xor(in_double(f), odd_sign(shifted));
        };
        const S result = simd::narrow(of_doubles(simd::widen_low(a)), of_doubles(simd::widen_high(a))) + trig_s.zero;
        return simd::select_by_sign(mask, with_sign_of(x, result), y);
    }
    static int32_t scalar(const float* x, float* y) { return not_finite(x, y); }
};

// ---- Tangent ---------------------------------------------------------------------------------------------------------

template <class Unit, Method How>
struct UnitAngleS<Unit, Function::tan, How> : frame::OneInput<float, 4, frame::Tail::masked, frame::Rejected::settled> {
    // The multiple of a quarter turn next to |x|, and the lanes where that is x itself.
    struct Quarters {
        S f, axis;
        __m128i k;
        explicit Quarters(S x) {
            const S a = simd::magnitude(x);
            const auto quarter = nearby<Unit, 2, false>(a);
            f = quarter.f;
            axis = simd::equal(quarter.multiple, a);
            k = simd::bits_of(quarter.shifted);
        }
    };
    static S doubt(S x) {
        const Quarters q(x);
        const S pole = simd::bit_and(q.axis, simd::floats(simd::shift_left_32<31>(q.k)));
        return simd::bit_or(simd::exceeds(simd::magnitude(x), last_in_float), pole);
    }
    static S lanes(S x) {
        const Quarters q(x);
        const __m128i odd = simd::shift_left_32<31>(q.k);
        const S y = simd::narrow(
            tangent<tan_33_of<Unit>>(simd::widen_low(q.f), simd::doubles(simd::interleave_low_32(odd, odd))),
            tangent<tan_33_of<Unit>>(simd::widen_high(q.f), simd::doubles(simd::interleave_high_32(odd, odd))));
        // The zero at an odd half turn is negative.
        const S half_turns = simd::floats(simd::shift_left_32<30>(q.k));
        const S minus = simd::sign_of(simd::bit_and(q.axis, half_turns));
        return simd::bit_xor(simd::bit_xor(y, minus), simd::bit_xor(simd::floats(odd), simd::sign_of(x)));
    }

    static S settle(S x, S y, S& doubt) {
        const S mask = doubt;
        const S infinite_or_nan = simd::not_finite(x);
        const S a = simd::bit_and_not(infinite_or_nan, simd::magnitude(x));
        D low = folded<Unit>(simd::widen_low(a)), high = folded<Unit>(simd::widen_high(a));
        const D low_pole = at_odd_quarter<Unit>(low), high_pole = at_odd_quarter<Unit>(high);
        low = simd::select_by_sign(low_pole, trig.zero, low);
        high = simd::select_by_sign(high_pole, trig.zero, high);
        const S result =
            simd::narrow(tangent_of_unit<Unit, tan_33_of<Unit>>(low), tangent_of_unit<Unit, tan_33_of<Unit>>(high));
        const S pole = simd::floats(simd::odd_words(simd::bits_of(low_pole), simd::bits_of(high_pole)));
        doubt = simd::bit_or(infinite_or_nan, pole);
        return simd::select_by_sign(mask, simd::bit_xor(result, simd::sign_of(x)), y);
    }

    static int32_t scalar(const float* x, float* y) {
        if (!(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::vecmath

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE_S(function, Unit, which)                                                       \
    namespace {                                                                                       \
    struct function##LA : orv::vecmath::UnitAngleS<orv::vecmath::Unit, orv::vecmath::Function::which, \
                                                   orv::vecmath::Method::in_double> {};               \
    struct function##HA : orv::vecmath::UnitAngleS<orv::vecmath::Unit, orv::vecmath::Function::which, \
                                                   orv::vecmath::Method::in_double_longer> {};        \
    struct function##EP : orv::vecmath::UnitAngleS<orv::vecmath::Unit, orv::vecmath::Function::which, \
                                                   orv::vecmath::Method::in_float> {};                \
    }                                                                                                 \
    ORV_ONE_INPUT(s##function, la, function##LA)                                                      \
    ORV_ONE_INPUT(s##function, ha, function##HA)                                                      \
    ORV_ONE_INPUT(s##function, ep, function##EP)
