// Sine, cosine and tangent of angles in half turns and in degrees, for doubles.
//
// |x| = k step + f with step 1/512 of a turn is exact in these units, and so is every reduction here; only then is f taken
// to radians, in two parts, for the table of 512 rows ("LA" and "HA"). "EP" takes whole half turns (of the tangent: quarter
// turns) away and uses short polynomials.
//
// From Unit::limit on the argument is folded to an equal angle below it first; below 2^-950, where parts of products would
// underflow, the result is x times radians per unit, formed in a higher range. Both, and the poles of the tangent, are rare
// and leave the main path through the mask.
//
// Worst errors measured: "LA" 0.76 ulp, "HA" 0.503 ulp, "EP" 2^-27.1 relative; the tangents "LA" and "HA" 0.503 ulp. Subnormal
// results are within 0.75 of the smallest subnormal.
//
// Signs of zeros: the sine of a multiple of a half turn has the sign of x; the cosine of an odd multiple of a quarter turn
// is +0; the tangent is their quotient.
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/half_turns_d.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

#include <bit>
#include <limits>

namespace orv::trig {

struct HalfTurns {
    static constexpr double half_turn = 1.0, inverse = 1.0;
    static constexpr double radians = 3.1415926535897931;
    static constexpr double radians_high = 3.1415926516056061,
                            radians_low = 1.9841871593610808e-09;  // 27 bits and the rest
    static constexpr double limit = 0x1p43;  // below it the multiple of 1/256 has fewer than 52 bits

    // An equal angle in [-1, 1].
    static D fold(D a) { return a - splat(2.0) * simd::round<_MM_FROUND_TO_NEAREST_INT>(a * splat(0.5)); }
};

struct Degrees {
    static constexpr double half_turn = 180.0, inverse = 0.0055555555555555558;
    static constexpr double radians = 0.017453292519943295;
    static constexpr double radians_high = 0.01745329238474369,
                            radians_low = 1.3519960527851425e-10;  // 24 bits and the rest
    static constexpr double limit = 0x1p46;                        // below it a multiple of 360/512 is exact

    // An equal angle below 2^39. From 2^55 on a is a multiple of 8, and as 2^12 = 1 modulo 45, 8 m 2^12 = 8 m modulo 360: 12
    // may be taken from the exponent as long as that stays so. For the same reason what the rest, below 2^67, has in
    // multiples of 8 * 2^36 counts with 2^-36.
    static D fold(D a) {
        const __m128i bits = simd::bits_of(a);
        const __m128i above = _mm_subs_epu16(simd::shift_right<52>(bits), simd::splat_bits(1023 + 55));
        const __m128i dozens = _mm_mulhi_epu16(above, simd::splat_bits(5462));  // above/12, above being less than 970
        const D b =
            simd::doubles(_mm_sub_epi64(bits, simd::shift_left<52>(_mm_mullo_epi16(dozens, simd::splat_bits(12)))));
        const D high = (b + splat(1.5 * 0x1p91)) - splat(1.5 * 0x1p91);
        return high * splat(0x1p-36) + (b - high);
    }
};

enum class Function { sin, cos, tan };

inline constexpr double least_in_main_path = 0x1p-950;

// f in radians as a pair, for f of 53 bits.
template <class Unit>
inline Pair in_radians(D f) {
    const D lead = simd::bit_and(f, simd::doubles(simd::splat_bits(0xFFFFFFFFF8000000)));
    const D product = lead * splat(Unit::radians_high);
    const D rest = (f - lead) * splat(Unit::radians_high) + f * splat(Unit::radians_low);
    const D r = product + rest;
    return {r, (product - r) + rest};
}

// a is any angle below the limit in magnitude.
template <class Unit>
inline Reduced reduce_unit(D a) {
    constexpr double step = Unit::half_turn / 256;
    const D shifted = a * splat(1 / step) + splat(shifter);
    const D k = shifted - splat(shifter);
    const Pair r = in_radians<Unit>(a - k * splat(step));
    return {r.high, r.low, simd::bits_of(shifted)};
}

// The function of angles in [0, limit), or of folded ones. `pole` is set where the tangent has no value.
template <class Unit, Function F, Sums Kind>
inline D by_table(D a, [[maybe_unused]] D& pole) {
    if constexpr (F == Function::tan) {
        const Tangent512 tangent(reduce_unit<Unit>(a));
        pole = simd::equal(tangent.denominator.high + tangent.denominator.low, splat(0.0));
        return tangent.value();
    } else {
        return Step512<Kind>(reduce_unit<Unit>(a)).sin(F == Function::cos ? 1 : 0);
    }
}

template <class Unit, Function F>
inline D by_half_turns(D a, [[maybe_unused]] D& pole) {
    if constexpr (F == Function::tan) {
        const D shifted = a * splat(2 * Unit::inverse) + splat(shifter);
        const D k = shifted - splat(shifter);
        D sine, cosine;
        quarter_turns_26((a - k * splat(Unit::half_turn / 2)) * splat(Unit::radians), shifted, sine, cosine);
        // No zero is negative here.
        pole = simd::equal(cosine, splat(0.0));
        return (sine + splat(0.0)) / (cosine + splat(0.0));
    } else {
        constexpr double offset = F == Function::cos ? 0.5 : 0.0;
        D turns = a * splat(Unit::inverse);
        if constexpr (F == Function::cos) turns += splat(offset);
        const D shifted = turns + splat(shifter);
        D k = shifted - splat(shifter);
        if constexpr (F == Function::cos) k -= splat(offset);
        const D r = (a - k * splat(Unit::half_turn)) * splat(Unit::radians);
        return simd::bit_xor(sine_26(r), odd_sign(shifted)) + splat(0.0);
    }
}

// The tangent's result where it has a pole: infinities, of which every other one along the axis is negative.
template <class Unit, class T>
inline int32_t at_pole(double x, T* y) {
    const D a = simd::magnitude(splat(x));
    const D small = simd::select(simd::not_less(a, splat(Unit::limit)), Unit::fold(a), a);
    const double quarters = _mm_cvtsd_f64(small) * (2 / Unit::half_turn);
    const bool negative = (static_cast<int64_t>(quarters) & 2) != 0;
    *y = negative != (x < 0) ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
    return frame::status_singularity;
}

template <class Unit, Function F, bool ByTable, Sums Kind>
struct UnitAngle : frame::OneInput<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static D of_magnitude(D a, D& pole) {
        if constexpr (ByTable)
            return by_table<Unit, F, Kind>(a, pole);
        else
            return by_half_turns<Unit, F>(a, pole);
    }
    static D with_sign_of(D x, D y) { return F == Function::cos ? y : simd::bit_xor(y, simd::sign_of(x)); }

    static D lanes(D x, D& doubt) {
        const D a = simd::magnitude(x);
        doubt = outside(a);
        D pole = doubt;
        const D y = of_magnitude(a, pole);
        doubt = simd::bit_or(doubt, pole);
        return with_sign_of(x, y);
    }
    // Outside [least, limit): one comparison of the high words, those below the first wrapping round to the top.
    static D outside(D a) {
        constexpr auto high_word = [](double v) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(v) >> 32); };
        constexpr uint32_t first = high_word(least_in_main_path), end = high_word(Unit::limit);
        const __m128i offset =
            _mm_sub_epi32(simd::bits_of(a), _mm_set1_epi32(static_cast<int32_t>(first + 0x80000000u)));
        return simd::doubles(
            _mm_cmpgt_epi32(offset, _mm_set1_epi32(static_cast<int32_t>(end - 1 - first - 0x80000000u))));
    }

    static D settle(D x, D y, D& doubt) {
        const D a = simd::magnitude(x);
        const D large = simd::not_less(a, splat(Unit::limit));
        D pole = large;
        D result = of_magnitude(simd::select(large, Unit::fold(a), a), pole);
        if constexpr (F != Function::cos) {
            const Pair tiny = in_radians<Unit>(a * splat(0x1p200));
            result = simd::select(simd::less(a, splat(least_in_main_path)), (tiny.high + tiny.low) * splat(0x1p-200),
                                  result);
        }
        // In doubt by the high word alone: all bits are wanted.
        const D mask =
            simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(doubt), 31), _MM_SHUFFLE(3, 3, 1, 1)));
        doubt = simd::not_finite(x);
        if constexpr (F == Function::tan) doubt = simd::bit_or(doubt, pole);
        return simd::select(mask, with_sign_of(x, result), y);
    }

    // An infinity, a NaN, or a pole of the tangent.
    static int32_t scalar(const double* x, double* y) {
        if (F != Function::tan || !(*x - *x == 0)) return not_finite(x, y);
        return at_pole<Unit>(*x, y);
    }
};

}  // namespace orv::trig

// The three kernels of a function of angles in a unit.
#define ORV_UNIT_ANGLE(function, Unit, which)                                                                       \
    namespace {                                                                                                     \
    struct function##LA                                                                                             \
        : orv::trig::UnitAngle<orv::trig::Unit, orv::trig::Function::which, true, orv::trig::Sums::plain> {};       \
    struct function##HA                                                                                             \
        : orv::trig::UnitAngle<orv::trig::Unit, orv::trig::Function::which, true, orv::trig::Sums::compensated> {}; \
    struct function##EP                                                                                             \
        : orv::trig::UnitAngle<orv::trig::Unit, orv::trig::Function::which, false, orv::trig::Sums::plain> {};      \
    }                                                                                                               \
    ORV_ONE_INPUT(d##function, la, function##LA)                                                                    \
    ORV_ONE_INPUT(d##function, ha, function##HA)                                                                    \
    ORV_ONE_INPUT(d##function, ep, function##EP)
