// Sine, cosine and tangent of angles in half turns and in degrees, for floats.
//
// |x| = k step + f with step a half turn (of the tangent: a quarter turn) is exact in float, and the rest is the sine of
// +-f or the tangent of f, or its -1/tangent for odd k, in polynomials and quotients of polynomials of the unit itself.
//
// "LA" and "HA": those in double, where a polynomial of "HA" has one term more; large arguments are folded in double.
// "EP": in float with a short polynomial; the tangent as "LA".
//
// Worst errors measured: "LA" 0.62 ulp, the tangents 0.51 ulp; "HA" 0.501 ulp; "EP" 2^-12.6 relative.
//
// Signs of zeros and poles are those of the kernels of doubles.
#pragma once

#include "vecmath/trig/reduction_s.h"
#include "vecmath/trig/unit_angles_d.h"

namespace orv::trig {

enum class Method { in_float, in_double, in_double_longer };

// Below 2^17 the sum that rounds to k has room in a float, and k steps are exact.
inline constexpr float last_in_float = 0x1.fffffep16f;

template <class Unit>
inline constexpr ShortSine short_sine_of = in_unit(short_sine, Unit::radians);

// ---- Sine and cosine -------------------------------------------------------------------------------------------------

template <class Unit, Function F, Method How>
struct UnitAngleS : frame::OneInput<float, 8, frame::Tail::masked> {
    static constexpr bool halfway = F == Function::cos;

    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), splat(last_in_float)); }
    static S lanes(S x) {
        const auto [shifted, multiple, f] = nearby<Unit, 1, halfway>(simd::magnitude(x));
        S y;
        if constexpr (How == Method::in_float)
            y = sine<short_sine_of<Unit>>(f);
        else
            y = join(in_double(low_half(f)), in_double(high_half(f)));
        // A zero is positive here.
        y = simd::bit_xor(y, simd::floats(_mm_slli_epi32(simd::bits_of(shifted), 31))) + splat(0.0f);
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
        const S result = join(of_doubles(low_half(a)), of_doubles(high_half(a))) + splat(0.0f);
        return simd::select_by_sign(mask, with_sign_of(x, result), y);
    }
    static int32_t scalar(const float* x, float* y) { return not_finite(x, y); }
};

// ---- Tangent ---------------------------------------------------------------------------------------------------------

template <class Unit, Method How>
struct UnitAngleS<Unit, Function::tan, How> : frame::OneInput<float, 4, frame::Tail::masked> {
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
        const S pole = simd::bit_and(q.axis, simd::floats(_mm_slli_epi32(q.k, 31)));
        return simd::bit_or(simd::exceeds(simd::magnitude(x), splat(last_in_float)), pole);
    }
    static S lanes(S x) {
        const Quarters q(x);
        const __m128i odd = _mm_slli_epi32(q.k, 31);
        const S y = join(tangent<tan_33_of<Unit>>(low_half(q.f), simd::doubles(_mm_unpacklo_epi32(odd, odd))),
                         tangent<tan_33_of<Unit>>(high_half(q.f), simd::doubles(_mm_unpackhi_epi32(odd, odd))));
        // The zero at an odd half turn is negative.
        const S half_turns = simd::floats(_mm_slli_epi32(q.k, 30));
        const S minus = simd::bit_and(simd::bit_and(q.axis, splat(-0.0f)), half_turns);
        return simd::bit_xor(simd::bit_xor(y, minus), simd::bit_xor(simd::floats(odd), simd::sign_of(x)));
    }

    static S settle(S x, S y, S& doubt) {
        const S mask = doubt;
        const S infinite_or_nan = simd::not_finite(x);
        const S a = simd::bit_and_not(infinite_or_nan, simd::magnitude(x));
        D low = folded<Unit>(low_half(a)), high = folded<Unit>(high_half(a));
        const D low_pole = at_odd_quarter<Unit>(low), high_pole = at_odd_quarter<Unit>(high);
        low = simd::select_by_sign(low_pole, splat(0.0), low);
        high = simd::select_by_sign(high_pole, splat(0.0), high);
        const S result =
            join(tangent_of_unit<Unit, tan_33_of<Unit>>(low), tangent_of_unit<Unit, tan_33_of<Unit>>(high));
        const S pole = _mm_shuffle_ps(simd::floats(simd::bits_of(low_pole)), simd::floats(simd::bits_of(high_pole)),
                                      _MM_SHUFFLE(3, 1, 3, 1));
        doubt = simd::bit_or(infinite_or_nan, pole);
        return simd::select_by_sign(mask, simd::bit_xor(result, simd::sign_of(x)), y);
    }

    static int32_t scalar(const float* x, float* y) {
        if (!(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::trig

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE_S(function, Unit, which)                                                                     \
    namespace {                                                                                                     \
    struct function##LA                                                                                             \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::in_double> {        \
        static constexpr char name[] = "vs" #function;                                                              \
    };                                                                                                              \
    struct function##HA                                                                                             \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::in_double_longer> { \
        static constexpr char name[] = "vs" #function;                                                              \
    };                                                                                                              \
    struct function##EP                                                                                             \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::in_float> {         \
        static constexpr char name[] = "vs" #function;                                                              \
    };                                                                                                              \
    }                                                                                                               \
    ORV_ONE_INPUT(s##function, la, function##LA)                                                                    \
    ORV_ONE_INPUT(s##function, ha, function##HA)                                                                    \
    ORV_ONE_INPUT(s##function, ep, function##EP)
