// Ln and Log10 of complex numbers: half the logarithm of re^2 + im^2, and the angle.
//
// The squares are exact in two parts, and so is their sum as far as it counts when its leading part is 1: next to the unit circle the
// logarithm keeps its relative accuracy. The logarithm is that of 513 rows (log_d.h), the angle that of atan2_d.h, in two parts where
// it is divided by ln 10. `z` "EP" has a shorter angle; `c` is done in double.
//
// The vector path serves parts in [2^-150, 2^150). Others are done in extended precision with the processor's own logarithm and
// arc tangent, next to the unit circle as above.
//
// An infinite part makes the real part infinite, beside a NaN too; the angle is as atan2 has it (C99 Annex G.6.3.2).
#include "vecmath/complex/parts.h"
#include "vecmath/exp_log/ln_513.h"
#include "vecmath/exp_log/log10_513.h"
#include "vecmath/inverse/atan2_d.h"
#include "vecmath/special/extended.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

// The logarithm to base e or 10: its rows, and what divides the angle.
template <const Log513Block& Rows, bool Natural>
struct Base {
    static constexpr const Log513Block& rows = Rows;
    static constexpr bool natural = Natural;
};
using BaseE = Base<ln_513, true>;
using Base10 = Base<log10_513, false>;
constexpr Pair inverse_ln_10() {
    return {__m128d{0x1.bcb7b1526e50ep-2, 0x1.bcb7b1526e50ep-2}, __m128d{0x1.95355baaafad3p-57, 0x1.95355baaafad3p-57}};
}
constexpr long double log10_of_e = 0.434294481903251827651128918916605082L;

// re^2 + im^2 to all digits that count when its leading part is next to 1: high + low, and what rounding takes from low.
struct SquareOfModulus {
    Pair sum;
    D tail;
};
inline SquareOfModulus square_of_modulus(ComplexD z) {
    const D re = simd::magnitude(z.re), im = simd::magnitude(z.im);
    const Pair larger = exact_square(simd::greatest(re, im)), smaller = exact_square(simd::least(re, im));
    const Pair leading = sum(larger.high, smaller.high), rest = two_sum(larger.low, smaller.low);
    const Pair low = two_sum(leading.low, rest.high);
    return {sum(leading.high, low.high), low.low + rest.low};
}
// Of floats, whose squares are exact.
inline Pair square_of_float_modulus(ComplexD z) {
    const D re = z.re * z.re, im = z.im * z.im;
    return sum(simd::greatest(re, im), simd::least(re, im));
}

template <class Base, class... Tail>
inline D log_modulus(Pair square, Tail... tail) {
    // The rest in units of the leading part's exponent.
    const __m128i exponent = simd::bit_and(simd::bits_of(square.high), simd::splat_bits(uint64_t{0x7FF} << 52));
    const D scale = simd::doubles(simd::subtract(simd::splat_bits(uint64_t{2046} << 52), exponent));
    return log_513<Base::rows>(square.high, square.low * scale, tail * scale...) * splat(0.5);
}

template <class Base>
inline D log_modulus(const SquareOfModulus& square) {
    return log_modulus<Base>(square.sum, square.tail);
}

template <class Base, bool Short>
inline D angle_in_base(ComplexD z) {
    if constexpr (Base::natural) {
        return atan2_lanes<atan_radians, turn_radians, Short>(z.im, z.re);
    } else {
        const Pair angle = atan2_in_two<atan_radians, turn_radians, Short>(z.im, z.re);
        return simd::bit_or(rounded_product(normal(angle), inverse_ln_10()), simd::sign_of(z.im));
    }
}

template <class Base>
int32_t scalar_log(const orv_complex_d* at, orv_complex_d* y) {
    const orv_complex_d z = *at;
    const long double unit = Base::natural ? 1.0L : log10_of_e;
    const WideArithmetic extended;
    const bool infinite = __builtin_isinf(z.re) || __builtin_isinf(z.im);
    if (any_nan(z)) {
        const double nan = z.re + z.im;
        *y = {infinite ? std::numeric_limits<double>::infinity() : nan, nan};
        return frame::status_ok;
    }
    const long double re = z.re, im = z.im;
    long double angle;
    __asm__("fpatan" : "=t"(angle) : "0"(re), "u"(im) : "st(1)");
    y->im = static_cast<double>(angle * unit);
    if (infinite) {
        y->re = std::numeric_limits<double>::infinity();
        return frame::status_ok;
    }
    if (z.re == 0 && z.im == 0) {
        y->re = minus_infinity_at_pole<double>();
        return frame::status_singularity;
    }
    const long double square = re * re + im * im;
    if (square > 0.5L && square < 2)
        y->re = simd::first_lane(log_modulus<Base>(square_of_modulus({splat(z.re), splat(z.im)})));
    else
        y->re = static_cast<double>(x87_ln(square) * 0.5L * unit);
    return frame::status_ok;
}

template <class Base, bool Short>
struct LogZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked> {
    static D doubt(ComplexD z) { return any_part_beyond<(1023 - 150) << 20, (1023 + 150) << 20>(z); }
    static ComplexD lanes(ComplexD z) {
        return {log_modulus<Base>(square_of_modulus(z)), angle_in_base<Base, Short>(z)};
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* y) { return scalar_log<Base>(z, y); }
};

template <class Base>
struct LogC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        const __m128 on_axis = simd::bit_or(simd::equal(z.re, __m128{}), simd::equal(z.im, __m128{}));
        return simd::bit_or(on_axis, any_part_from<infinity_s>(z));
    }
    static ComplexS lanes(ComplexS z) {
        const auto logarithm = [](ComplexD x) {
            D angle = atan2_lanes<atan_radians, turn_radians, true>(x.im, x.re);
            if constexpr (!Base::natural) angle = angle * inverse_ln_10().high;
            return ComplexD{log_modulus<Base>(square_of_float_modulus(x)), angle};
        };
        return by_double(logarithm, z);
    }
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* y) {
        return scalar_by_double<scalar_log<Base>>(z, y, false);
    }
};

using LnC = LogC<BaseE>;
using LnZ = LogZ<BaseE, false>;
using LnZEP = LogZ<BaseE, true>;
using Log10C = LogC<Base10>;
using Log10Z = LogZ<Base10, false>;

}  // namespace

ORV_ONE_INPUT(cLn, la, LnC)
ORV_ONE_INPUT(cLn, ha, LnC)
ORV_ONE_INPUT(cLn, ep, LnC)
ORV_ONE_INPUT(zLn, la, LnZ)
ORV_ONE_INPUT(zLn, ep, LnZEP)
ORV_ONE_INPUT(cLog10, la, Log10C)
ORV_ONE_INPUT(zLog10, la, Log10Z)
