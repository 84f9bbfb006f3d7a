// Sine, cosine and tangent of angles in half turns and in degrees, for doubles.
//
// |x| = k step + f with step 1/512 of a turn is exact in these units, and so is every reduction here; only then is f taken
// to radians, in two parts, for the table of 512 rows ("LA" and "HA"). "EP" takes whole half turns (of the tangent: quarter
// turns) away and uses short polynomials of the unit itself (of the tangent: their quotient).
//
// From Unit::limit on the argument is folded to an equal angle below it first; below 2^-950, where parts of products would
// underflow, the result is x times radians per unit, formed in a higher range. Both, and the poles of the tangent, are rare
// and leave the main path through the mask.
//
// Signs of zeros: the sine of a multiple of a half turn has the sign of x; the cosine of an odd multiple of a quarter turn
// is +0; the tangent is their quotient.
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

#include <bit>
#include <limits>

namespace orv::vecmath {

struct UnitConstants {
    Splat<double> half{0.5}, two{2.0};
    Splat<double> least{0x1p-950};                  // the least that the main path serves
    Splat<double> raised{0x1p200}, back{0x1p-200};  // the higher range of what is below
    Splat<double> eights{0x1.8p+91};                // adding it rounds to multiples of 8 * 2^36
    Splat<double> by_2_36{0x1p-36};
};
inline constexpr UnitConstants unit;

struct HalfTurns {
    static constexpr double half_turn = 1.0, inverse = 1.0;
    static constexpr double radians = 0x1.921fb54442d18p+1;
    static constexpr Splat<double> radians_high{0x1.921fb54p+1}, radians_low{0x1.10b4611a62633p-29};  // 27 bits, rest
    static constexpr double limit = 0x1p43;  // below it the multiple of 1/256 has fewer than 52 bits

    // An equal angle in [-1, 1].
    static D fold(D a) { return a - unit.two * simd::round<_MM_FROUND_TO_NEAREST_INT>(a * unit.half); }
};

struct Degrees {
    static constexpr double half_turn = 180.0, inverse = 0x1.6c16c16c16c17p-8;
    static constexpr double radians = 0x1.1df46a2529d39p-6;
    static constexpr Splat<double> radians_high{0x1.1df46ap-6}, radians_low{0x1.294e9c8ae0ec6p-33};  // 24 bits, rest
    static constexpr double limit = 0x1p46;  // below it a multiple of 360/512 is exact

    // An equal angle below 2^39. From 2^55 on a is a multiple of 8, and as 2^12 = 1 modulo 45, 8 m 2^12 = 8 m modulo 360: 12
    // may be taken from the exponent as long as that stays so. For the same reason what the rest, below 2^67, has in
    // multiples of 8 * 2^36 counts with 2^-36.
    static D fold(D a) {
        const __m128i bits = simd::bits_of(a);
        const __m128i above = _mm_subs_epu16(simd::shift_right<52>(bits), simd::splat_bits(1023 + 55));
        const __m128i dozens = _mm_mulhi_epu16(above, simd::splat_bits(5462));  // above/12, above being less than 970
        const D b =
            simd::doubles(simd::subtract(bits, simd::shift_left<52>(_mm_mullo_epi16(dozens, simd::splat_bits(12)))));
        const D high = (b + unit.eights) - unit.eights;
        return high * unit.by_2_36 + (b - high);
    }
};

enum class Function { sin, cos, tan };

// An angle as a multiple of a part of a half turn, whose number is in the low bits of `shifted`, and the rest: a is
// multiple + f exactly. The cosine takes the multiples halfway between.
template <class V>
struct Nearby {
    V shifted, multiple, f;
};
template <class Unit, int Parts, bool Halfway, class V>
inline Nearby<V> nearby(V a) {
    using T = std::remove_cvref_t<decltype(V{}[0])>;
    constexpr T step = T(Unit::half_turn / Parts), whole = sizeof(T) == 4 ? T(0x1.8p23) : T(0x1.8p52);
    V shifted, multiple;
    if constexpr (Unit::half_turn == 1) {
        // A sum whose last bit is worth a step: no multiplication.
        shifted = (Halfway ? a + splat(step / 2) : a) + splat(whole * step);
        multiple = shifted - splat(whole * step);
        if constexpr (Halfway) multiple -= splat(step / 2);
    } else {
        V steps = a * splat(T(Parts * Unit::inverse));
        if constexpr (Halfway) steps += splat(T(0.5));
        shifted = steps + splat(whole);
        V k = shifted - splat(whole);
        if constexpr (Halfway) k -= splat(T(0.5));
        multiple = k * splat(step);
    }
    return {shifted, multiple, a - multiple};
}

// f in radians as a pair, for f of 53 bits.
template <class Unit>
inline Pair in_radians(D f) {
    const D lead = upper_26(f);
    const D product = lead * Unit::radians_high;
    const D rest = (f - lead) * Unit::radians_high + f * Unit::radians_low;
    const D r = product + rest;
    return {r, (product - r) + rest};
}

// a is any angle below the limit in magnitude.
template <class Unit>
inline Reduced reduce_unit(D a) {
    const auto [shifted, multiple, f] = nearby<Unit, 256, false>(a);
    const Pair r = in_radians<Unit>(f);
    return {r.high, r.low, simd::bits_of(shifted)};
}

// The function of angles in [0, limit), or of folded ones; the tangent where it has no pole.
template <class Unit, Function F, Sums Kind>
inline D by_table(D a) {
    if constexpr (F == Function::tan)
        return Tangent512(reduce_unit<Unit>(a)).value();
    else
        return Step512<Kind>(reduce_unit<Unit>(a)).sin(F == Function::cos ? 1 : 0);
}

// The polynomials of a unit.
template <class Unit>
inline constexpr SinePolynomial sine_26_of = in_unit(sine_26, Unit::radians);
template <class Unit>
inline constexpr SinePolynomial sine_35_of = in_unit(sine_35, Unit::radians);
template <class Unit>
inline constexpr TangentQuotient tan_33_of = in_unit(tan_33, Unit::radians);
template <class Unit>
inline constexpr TangentQuotient tan_52_of = in_unit(tan_52, Unit::radians);

// The lanes, by their sign bits, where the tangent of an angle below the limit has a pole.
template <class Unit>
inline D at_odd_quarter(D a) {
    const auto quarter = nearby<Unit, 2, false>(a);
    return simd::bit_and(simd::equal(quarter.multiple, a), odd_sign(quarter.shifted));
}

// The tangent of an angle below the limit, by the nearest quarter turn.
template <class Unit, const TangentQuotient& P>
inline D tangent_of_unit(D a) {
    const auto [shifted, multiple, f] = nearby<Unit, 2, false>(a);
    const D odd = odd_sign(shifted);
    // The zero at an odd half turn is negative.
    const D half_turns = simd::doubles(simd::shift_left<62>(simd::bits_of(shifted)));
    const D minus = simd::sign_of(simd::bit_and(simd::equal(multiple, a), half_turns));
    return simd::bit_xor(simd::bit_xor(tangent<P>(f, odd), minus), odd);
}

template <class Unit, Function F>
inline D by_half_turns(D a) {
    if constexpr (F == Function::tan) {
        return tangent_of_unit<Unit, tan_52_of<Unit>>(a);
    } else {
        const auto [shifted, multiple, f] = nearby<Unit, 1, F == Function::cos>(a);
        return simd::bit_xor(sine<sine_26_of<Unit>>(f), odd_sign(shifted)) + trig.zero;
    }
}

// An equal angle below the limit.
template <class Unit>
inline D folded(D a) {
    constexpr double last = std::bit_cast<double>(std::bit_cast<uint64_t>(Unit::limit) - 1);
    return simd::select_by_sign(simd::exceeds(a, splat(last)), Unit::fold(a), a);
}

// The tangent's result where it has a pole: infinities, of which every other one along the axis is negative.
template <class Unit, class T>
inline int32_t at_pole(double x, T* y) {
    const D a = simd::magnitude(splat(x));
    const D small = folded<Unit>(a);
    const double quarters = _mm_cvtsd_f64(small) * (2 / Unit::half_turn);
    const bool negative = (static_cast<int64_t>(quarters) & 2) != 0;
    *y = negative != (x < 0) ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
    return frame::status_singularity;
}

// Outside [least, limit): one comparison of the high words, those below the first wrapping round to the top.
template <class Unit>
inline D outside(D a) {
    constexpr auto high_word = [](double v) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(v) >> 32); };
    constexpr uint32_t first = high_word(unit.least), end = high_word(Unit::limit);
    const __m128i offset = _mm_sub_epi32(simd::bits_of(a), _mm_set1_epi32(static_cast<int32_t>(first + 0x80000000u)));
    return simd::doubles(_mm_cmpgt_epi32(offset, _mm_set1_epi32(static_cast<int32_t>(end - 1 - first - 0x80000000u))));
}

template <class Unit, Function F, bool ByTable, Sums Kind>
struct UnitAngle : frame::OneInput<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static D of_magnitude(D a) {
        if constexpr (ByTable)
            return by_table<Unit, F, Kind>(a);
        else
            return by_half_turns<Unit, F>(a);
    }
    static D with_sign_of(D x, D y) { return F == Function::cos ? y : simd::bit_xor(y, simd::sign_of(x)); }

    static D doubt(D x) {
        const D a = simd::magnitude(x);
        if constexpr (F != Function::tan) return outside<Unit>(a);
        return simd::bit_or(outside<Unit>(a), at_odd_quarter<Unit>(a));
    }
    static D lanes(D x) { return with_sign_of(x, of_magnitude(simd::magnitude(x))); }

    static D settle(D x, D y, D& doubt) {
        const D mask = doubt;
        doubt = simd::not_finite(x);
        D a = simd::bit_and_not(doubt, simd::magnitude(x));
        const D tiny = simd::less(a, unit.least);
        const D small = a;
        a = folded<Unit>(simd::bit_and_not(tiny, a));
        if constexpr (F == Function::tan) {
            const D pole = at_odd_quarter<Unit>(a);
            doubt = simd::bit_or(doubt, pole);
            a = simd::select_by_sign(pole, trig.zero, a);
        }
        D result = of_magnitude(a);
        if constexpr (F != Function::cos) {
            const Pair r = in_radians<Unit>(simd::bit_and(tiny, small) * unit.raised);
            result = simd::select(tiny, (r.high + r.low) * unit.back, result);
        }
        return simd::select_by_sign(mask, with_sign_of(x, result), y);
    }
    // An infinity, a NaN, or a pole of the tangent.
    static int32_t scalar(const double* x, double* y) {
        if (F != Function::tan || !(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::vecmath

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE(function, Unit, which)                                                               \
    namespace {                                                                                             \
    struct function##LA : orv::vecmath::UnitAngle<orv::vecmath::Unit, orv::vecmath::Function::which, true,  \
                                                  orv::vecmath::Sums::plain> {};                            \
    struct function##HA : orv::vecmath::UnitAngle<orv::vecmath::Unit, orv::vecmath::Function::which, true,  \
                                                  orv::vecmath::Sums::compensated> {};                      \
    struct function##EP : orv::vecmath::UnitAngle<orv::vecmath::Unit, orv::vecmath::Function::which, false, \
                                                  orv::vecmath::Sums::plain> {};                            \
    }                                                                                                       \
    ORV_ONE_INPUT(d##function, la, function##LA)                                                            \
    ORV_ONE_INPUT(d##function, ha, function##HA)                                                            \
    ORV_ONE_INPUT(d##function, ep, function##EP)
