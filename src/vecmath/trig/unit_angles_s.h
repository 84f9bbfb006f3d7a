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
struct UnitAngleS : frame::OneInput<float, 8, frame::Tail::masked> {
    // Below it k half turns are exact in float, and the multiple of 1/2^22 that rounds them has room.
    static constexpr float limit = How == Method::in_float ? 0x1p17f : static_cast<float>(Unit::limit);
    static constexpr float last = std::bit_cast<float>(std::bit_cast<uint32_t>(limit) - 1);

    static S lanes(S x, S& doubt) {
        const S a = simd::magnitude(x);
        doubt = simd::exceeds(a, splat(last));
        const S served = frame::without_doubted(a, doubt);
        S pole = splat(0.0f), y;
        if constexpr (How == Method::in_float)
            y = by_floats(served);
        else
            y = by_doubles(low_half(served), high_half(served), pole);
        if constexpr (F == Function::tan) doubt = simd::bit_or(doubt, pole);
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

    static S by_doubles(D low, D high, S& pole) {
        D low_pole = splat(0.0), high_pole = splat(0.0);
        const S y = join(of_doubles(low, low_pole), of_doubles(high, high_pole));
        pole = _mm_shuffle_ps(simd::floats(simd::bits_of(low_pole)), simd::floats(simd::bits_of(high_pole)),
                              _MM_SHUFFLE(2, 0, 2, 0));
        return y;
    }

    // Angles below the limit of doubles, or folded ones. Poles as in the kernels of doubles.
    static D of_doubles(D a, [[maybe_unused]] D& pole) {
        if constexpr (F == Function::tan) {
            const D shifted = a * splat(2 * Unit::inverse) + splat(shifter);
            const D k = shifted - splat(shifter);
            const D r = (a - k * splat(Unit::half_turn / 2)) * splat(Unit::radians);
            D sine, cosine;
            if constexpr (How == Method::in_double_longer)
                quarter_turns_33(r, shifted, sine, cosine);
            else
                quarter_turns_26(r, shifted, sine, cosine);
            pole = simd::equal(cosine, splat(0.0));
            return (sine + splat(0.0)) / (cosine + simd::bit_and(pole, splat(1.0)));
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

    static S settle(S x, S y, S& doubt) {
        const S mask = doubt;
        doubt = simd::not_finite(x);
        const S a = frame::without_doubted(simd::magnitude(x), doubt);
        S pole = splat(0.0f);
        const S result = with_sign_of(x, by_doubles(folded<Unit>(low_half(a)), folded<Unit>(high_half(a)), pole));
        if constexpr (F == Function::tan) doubt = simd::bit_or(doubt, pole);
        return simd::select_by_sign(mask, result, y);
    }

    static int32_t scalar(const float* x, float* y) {
        if (F != Function::tan || !(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::trig

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE_S(function, Unit, which, ep_method)                                                          \
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
        : orv::trig::UnitAngleS<orv::trig::Unit, orv::trig::Function::which, orv::trig::Method::ep_method> {        \
        static constexpr char name[] = "vs" #function;                                                              \
    };                                                                                                              \
    }                                                                                                               \
    ORV_ONE_INPUT(s##function, la, function##LA)                                                                    \
    ORV_ONE_INPUT(s##function, ha, function##HA)                                                                    \
    ORV_ONE_INPUT(s##function, ep, function##EP)
