// a^b = exp(b ln a), with
//
//   a^0 = 1 of every a, NaN too; 0^b a zero for Re b > 0, infinity for real negative b, a NaN elsewhere, the last two outside the domain;
//   a zero taking no part beside an infinity, so that real powers of real numbers are as they are;
//   exp of an infinite real part as C99 has it: zeros or infinities in the direction of the imaginary part, which is unknown, and
//   invalid, where that is infinite.
//
// Ordinary numbers go the way of pow_d.h with a scaled and the result put together from its exponent, so that each part is
// rounded once and overflows for itself.
#include "vecmath/complex/pow_rare.h"

#include "vecmath/complex/inverse_d.h"
#include "vecmath/complex/pow_d.h"
#include "vecmath/trig/sincos_d.h"

#include "frame/error_report.h"

#include <math.h>

#include <algorithm>

namespace orv::vecmath {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

double of_lane(__m128d x) { return simd::first_lane(x); }
Pair pair_of(double high, double low = 0) { return {simd::splat(high), simd::splat(low)}; }
bool infinite(orv_complex_d z) { return std::fabs(z.re) == infinity || std::fabs(z.im) == infinity; }

// 2^n (power) x, rounded once, of any n.
double scaled_part(const Exp2Parts& power, __m128d x, int n) {
    const double direction = of_lane(x);
    if (direction == 0) return direction;
    const Pair part = part_of(power, x);
    int exponent;
    fraction_of(of_lane(part.high + part.low), &exponent);
    const int top = n + exponent;
    if (top > 1024) return std::copysign(overflow<double>(), direction);
    if (top < -1080) return std::copysign(underflow<double>(), direction);
    return scaled_sum(std::ldexp(of_lane(part.high), -exponent), std::ldexp(of_lane(part.low), -exponent), top);
}

// ln|a| and arg a of a finite a other than 0.
struct Logarithm {
    Pair size, angle;
};
Logarithm ln(orv_complex_d a) {
    const double x = std::fabs(a.re), y = std::fabs(a.im);
    int x_exponent = -5000, y_exponent = -5000, k;
    if (x != 0) fraction_of(x, &x_exponent);
    if (y != 0) fraction_of(y, &y_exponent);
    fraction_of(std::fmax(x, y), &k);
    if (k > -140 && k < 140) k = 0;  // next to 1 the logarithm is as it is

    const auto down = [&](double part, int exponent) { return exponent < k - 400 ? 0.0 : std::ldexp(part, -k); };
    Logarithm log;
    log.size = ln_modulus(simd::splat(down(x, x_exponent)), simd::splat(down(y, y_exponent)));
    // ln 2 to 40 bits, and the rest.
    const Pair of_k{simd::splat(k * 0x1.62e42fefap-1), simd::splat(k * 0x1.cf79abc9e3b3ap-40)};
    log.size = at_26_bits(plus(of_k, log.size));

    const __m128d sign = simd::sign_of(simd::splat(a.im));
    const Pair half_turn = pair_of(turn_radians.half_high, turn_radians.half_low);
    if (std::abs(x_exponent - y_exponent) < 140) {
        log.angle = angle_of(simd::splat(std::ldexp(a.re, -x_exponent)), simd::splat(std::ldexp(a.im, -x_exponent)));
    } else {
        // Next to an axis.
        const bool on_side = x_exponent < y_exponent;
        const double ratio = on_side ? a.re / y : y / x;
        Pair angle = pair_of(ratio);
        if (on_side)
            angle = {half_turn.high * simd::splat(0.5), half_turn.low * simd::splat(0.5) - angle.high};
        else if (std::signbit(a.re))
            angle = {half_turn.high, half_turn.low - angle.high};
        else if (ratio > 0x1p-900)
            angle = quotient(pair_of(std::ldexp(y, -x_exponent)), pair_of(std::ldexp(x, -x_exponent)));
        log.angle = with_sign(at_26_bits(angle), sign);
    }
    return log;
}

// Sine and cosine of any finite angle; the high part alone may be any size beside the low one.
Direction2 any_direction(Pair angle) {
    if (std::fabs(of_lane(angle.high)) <= last_128) return direction(angle);
    Direction2 large, small;
    sincos_large(angle.high, large.sine, large.cosine);
    sincos_large(angle.low, small.sine, small.cosine);
    return {large.sine * small.cosine + large.cosine * small.sine,
            large.cosine * small.cosine - large.sine * small.sine};
}

// exp(re + i im) of which a part is not finite; `zero` stands for a zero angle.
int32_t exp_of_infinite(double re, double im, double zero, orv_complex_d* y) {
    if (is_nan(re)) {
        *y = {re, re};
        return frame::status_ok;
    }
    if (!is_finite(im)) {
        const bool invalid_angle = !is_nan(im) && re != -infinity;
        if (re == -infinity)
            *y = {0, std::copysign(0.0, im)};
        else
            *y = {re == infinity ? infinity : im - im, im - im};
        return invalid_angle ? frame::status_domain : frame::status_ok;
    }
    const Direction2 d = any_direction(pair_of(im));
    const double size = re > 0 ? infinity : 0.0;
    *y = {std::copysign(size, of_lane(d.cosine)), im == 0 ? zero : std::copysign(size, of_lane(d.sine))};
    return frame::status_ok;
}

// a^b where a or b is infinite, of ln|a| and arg a.
int32_t pow_of_infinite(orv_complex_d b, double size, double angle, double zero, orv_complex_d* y) {
    // What is finite beside an infinity need not be exact, and is not to overflow.
    const auto times = [](double factor, double x) {
        if (factor == 0 || x == 0) return 0.0;
        return x * (is_finite(factor) ? std::clamp(factor, -0x1p+1000, 0x1p+1000) : factor);
    };
    const double re = times(b.re, size) - times(b.im, angle), turned = times(b.re, angle), more = times(b.im, size);
    // Of a vanishing power the direction may be unknown without more ado.
    const bool known = re != -infinity || (is_finite(turned) && is_finite(more));
    return exp_of_infinite(re, known ? turned + more : std::copysign(infinity, more), zero, y);
}

}  // namespace

int32_t rare_pow(orv_complex_d a, orv_complex_d b, orv_complex_d* y) {
    const double zero = std::copysign(0.0, std::signbit(a.im) == std::signbit(b.re) ? 1.0 : -1.0);
    if (b.re == 0 && b.im == 0) {
        *y = {1, zero};
        return frame::status_ok;
    }
    if (any_nan(a) || any_nan(b)) {
        double nan = 0;
        for (const double part : {a.re, a.im, b.re, b.im})
            if (is_nan(part)) nan = quiet(part);
        *y = {nan, nan};
        return frame::status_ok;
    }
    if (a.re == 0 && a.im == 0) {
        if (b.re > 0) {
            *y = {0, zero};
            return frame::status_ok;
        }
        if (b.re < 0 && b.im == 0)
            *y = {b.re == -infinity ? infinity : -minus_infinity_at_pole<double>(), zero};
        else
            *y = {invalid<double>(), invalid<double>()};
        return frame::status_domain;
    }
    if (infinite(a) || infinite(b)) {
        const double arg =
            angle<atan_radians, turn_radians, false>(std::fabs(a.im), std::fabs(a.re), std::signbit(a.re));
        return pow_of_infinite(b, infinite(a) ? infinity : of_lane(ln(a).size.high), std::copysign(arg, a.im), zero, y);
    }

    // Products with a huge b are formed on a smaller scale.
    const Logarithm log = ln(a);
    const bool huge = std::fmax(std::fabs(b.re), std::fabs(b.im)) > 0x1p+500;
    const __m128d down = simd::splat(huge ? 0x1p-600 : 1.0), up = simd::splat(huge ? 0x1p+600 : 1.0);
    ComplexExponent w = exponent_of({simd::splat(b.re) * down, simd::splat(b.im) * down}, log.size, log.angle);
    // What is beyond 2^1000 is as good as that.
    const auto whole = [&](Pair x) {
        const double high = of_lane(x.high);
        return huge && std::fabs(high) > 0x1p+400 ? pair_of(std::copysign(0x1p+1000, high)) : scaled(x, up);
    };
    w = {whole(w.re), whole(w.im)};
    Direction2 d = any_direction(w.im);
    if (of_lane(w.im.high) == 0) d.sine = simd::splat(zero);
    const double size = of_lane(w.re.high);
    Exp2Parts power{simd::splat(1.0), _mm_setzero_pd(), _mm_setzero_si128()};
    int n = size > 0 ? 4000 : -4000;
    if (std::fabs(size) < 2500) {
        power = exp_parts(w.re);
        n = _mm_cvtsi128_si32(power.shifted) >> 7;
    }
    *y = {scaled_part(power, d.cosine, n), scaled_part(power, d.sine, n)};
    return infinite(*y) ? frame::status_overflow : frame::status_ok;
}

}  // namespace orv::vecmath
