// Sine, cosine and tangent of angles in half turns and in degrees, for floats.
//
// "LA" and "HA": in double, where taking away half turns (of the tangent: quarter turns) and folding large arguments are
// exact, as in the kernels of doubles; "HA" has a polynomial of one more term.
// "EP": in float with a short polynomial; the tangent as "LA".
//
// Worst errors measured: "LA" 0.62 ulp, the tangents 0.56 ulp; "HA" 0.501 ulp; "EP" 2^-12.6 relative.
//
// Signs of zeros and poles are those of the kernels of doubles.
#pragma once

#include "vecmath/trig/reduction_s.h"
#include "vecmath/trig/unit_angles_d.h"

namespace orv::trig {

enum class Method { in_float, in_double, in_double_longer };

template <class Unit, Function F, Method How>
struct UnitAngleS : frame::OneInput<float, 8, frame::Tail::masked, frame::Rejected::settled> {
    // Below it k half turns are exact in float, and the multiple of 1/2^22 that rounds them has room.
    static constexpr float limit = How == Method::in_float ? 0x1p17f : static_cast<float>(Unit::limit);

    static S lanes(S x, S& doubt) {
        const S a = simd::magnitude(x);
        doubt = simd::not_less(a, splat(limit));
        S y;
        if constexpr (How == Method::in_float)
            y = by_floats(a);
        else
            y = by_doubles(a);
        if constexpr (F == Function::tan) doubt = simd::bit_or(doubt, infinite(y));
        return with_sign_of(x, y);
    }

    static S by_floats(S a) {
        S turns = a * splat(static_cast<float>(Unit::inverse));
        if constexpr (F == Function::cos) turns += splat(0.5f);
        const S shifted = turns + splat(shifter_s);
        S k = shifted - splat(shifter_s);
        if constexpr (F == Function::cos) k -= splat(0.5f);
        const S r = (a - k * splat(static_cast<float>(Unit::half_turn))) * splat(static_cast<float>(Unit::radians));
        const S z = r * r;
        const S q = splat(0.999885321f) + z * (splat(-0.165920958f) + z * splat(0.00757660158f));
        return simd::bit_xor(r * q, simd::floats(_mm_slli_epi32(simd::bits_of(shifted), 31))) + splat(0.0f);
    }

    static S by_doubles(S a) { return join(of_doubles(low_half(a)), of_doubles(high_half(a))); }

    // Angles below the limit of doubles, or folded ones.
    static D of_doubles(D a) {
        if constexpr (F == Function::tan) {
            const D shifted = a * splat(2 * Unit::inverse) + splat(shifter);
            const D k = shifted - splat(shifter);
            const D r = (a - k * splat(Unit::half_turn / 2)) * splat(Unit::radians);
            D sine, cosine;
            if constexpr (How == Method::in_double_longer)
                quarter_turns_33(r, shifted, sine, cosine);
            else
                quarter_turns_26(r, shifted, sine, cosine);
            return (sine + splat(0.0)) / (cosine + splat(0.0));
        } else {
            D turns = a * splat(Unit::inverse);
            if constexpr (F == Function::cos) turns += splat(0.5);
            const D shifted = turns + splat(shifter);
            D k = shifted - splat(shifter);
            if constexpr (F == Function::cos) k -= splat(0.5);
            const D r = (a - k * splat(Unit::half_turn)) * splat(Unit::radians);
            const D sine = How == Method::in_double_longer ? sine_35(r) : sine_26(r);
            return simd::bit_xor(sine, odd_sign(shifted)) + splat(0.0);
        }
    }

    static S with_sign_of(S x, S y) { return F == Function::cos ? y : simd::bit_xor(y, simd::sign_of(x)); }
    static S infinite(S y) { return simd::equal(simd::magnitude(y), splat(std::numeric_limits<float>::infinity())); }

    static S settle(S x, S y, S& doubt) {
        const S a = simd::magnitude(x);
        const auto folded = [](D half) {
            return simd::select(simd::not_less(half, splat(Unit::limit)), Unit::fold(half), half);
        };
        const S result = with_sign_of(x, join(of_doubles(folded(low_half(a))), of_doubles(folded(high_half(a)))));
        const S mask = doubt;
        doubt = simd::not_finite(x);
        if constexpr (F == Function::tan) doubt = simd::bit_or(doubt, infinite(result));
        return simd::select(mask, result, y);
    }

    static int32_t scalar(const float* x, float* y) {
        if (F != Function::tan || !(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::trig

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE_S(function, Unit, which, ep_method)                                                            \
    namespace {                                                                                                       \
    struct function##LA                                                                                               \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::in_double> {};        \
    struct function##HA                                                                                               \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::in_double_longer> {}; \
    struct function##EP                                                                                               \
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::ep_method> {};        \
    }                                                                                                                 \
    ORV_ONE_INPUT(s##function, la, function##LA)                                                                      \
    ORV_ONE_INPUT(s##function, ha, function##HA)                                                                      \
    ORV_ONE_INPUT(s##function, ep, function##EP)
