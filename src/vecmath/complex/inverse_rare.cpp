// The notation is that of inverse_d.h. Where a part is beyond 2^140 or below 2^-140 the formulas have one leading term,
// of a relative error below 2^-140:
//
//   asin and acos   far from 0: v = ln 2|z|, the angle that of the point (y, x);
//                   y small: for x < 1 arc sine or cosine of x, v = y / sqrt(1 - x^2); for x > 1 v = acosh x and the arc cosine
//                   y / sqrt(x^2 - 1); for x = 1 both are sqrt y;
//                   x small: the arc sine x / sqrt(1 + y^2), v = asinh y.
//   atanh           far from 0: x / |z|^2 and a quarter turn;
//                   y small: atanh x, or for x > 1 that of 1/x; y / (1 - x^2) or a quarter turn; for x = 1 ln(2/y) / 2 and an eighth of a turn;
//                   x small: x / (1 + y^2) and atan y.
#include "vecmath/complex/inverse_rare.h"

#include "vecmath/complex/inverse_d.h"
#include "vecmath/inverse/asin_d.h"

#include <math.h>

namespace orv::vecmath {
namespace {

constexpr double greatest_part = 0x1p+140, least_part = 0x1p-140;
constexpr double infinity = std::numeric_limits<double>::infinity();

const Pair nothing{_mm_setzero_pd(), _mm_setzero_pd()};

double of_lane(__m128d x) { return simd::first_lane(x); }
Pair pair_of(double x) { return {simd::splat(x), _mm_setzero_pd()}; }
double turns(int eighths) { return part_of_turn<turn_radians>(eighths); }

// x 2^n / d for x >= 0, rounded once.
double over(double x, Pair d, int n = 0) {
    if (x == 0) return 0;
    int x_exponent, exponent;
    const Pair q = quotient(pair_of(fraction_of(x, &x_exponent)), d);
    const double high = fraction_of(of_lane(q.high), &exponent);
    n += x_exponent + exponent;
    if (n < -1080) return underflow<double>();
    return scaled_sum(high, std::ldexp(of_lane(q.low), -exponent), n);
}

// (factor log2(a) + k) ln 2.
double ln_of_scaled(Pair a, double factor, double k) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    int exponent;
    fraction_of(of_lane(a.high), &exponent);
    const Log2Pair log = log2_pair<inverse_log>(a.high, a.low * simd::splat(power_of_two_d(1 - exponent)));
    const Pair total = two_sum(simd::splat(k), log.high * simd::splat(factor));
    const __m128d leading = upper_26(total.high);
    const __m128d rest = (total.high - leading) + (total.low + log.low * simd::splat(factor));
    return of_lane(leading * K.ln2_high + (leading * K.ln2_low + rest * K.ln2));
}

// x^2 + y^2 = scale^2 (squares), of finite parts.
struct Modulus {
    Pair squares;
    int exponent;
    double x, y;  // scaled, what is far below the other 0
};
Modulus modulus(double x, double y) {
    Modulus m;
    fraction_of(std::fmax(x, y), &m.exponent);
    const auto down = [&](double part) {
        return part < std::fmax(x, y) * 0x1p-70 ? 0.0 : std::ldexp(part, -m.exponent);
    };
    m.x = down(x);
    m.y = down(y);
    m.squares = sum_of_positive(square(simd::splat(m.x)), square(simd::splat(m.y)));
    return m;
}

// 1 - x^2 for x < 1, or x^2 - 1.
Pair unit_less_square(double x) {
    const Pair q = beyond_unit_circle(square(simd::splat(x)), nothing);
    return x < 1 ? Pair{-q.high, -q.low} : q;
}

// The angle of asin or acos and v, for x and y that are not negative; acos is that of -x + i y with `minus`.
struct Arc {
    double angle, size;
};
enum class Side { sine, cosine };

Arc rare_arc(double x, double y, Side side, bool minus) {
    const bool sine = side == Side::sine;
    if (is_nan(x) || is_nan(y)) {
        const double nan = x + y;
        return {x == 0 ? (sine ? 0 : turns(4)) : nan, x == infinity || y == infinity ? infinity : nan};
    }
    if (x >= greatest_part || y >= greatest_part) {
        const double angle = vecmath::angle<atan_radians, turn_radians, false>(sine ? x : y, sine ? y : x, minus);
        if (x == infinity || y == infinity) return {angle, infinity};
        const Modulus m = modulus(x, y);
        return {angle, ln_of_scaled(m.squares, 0.5, m.exponent + 1)};
    }
    if (y < least_part) {
        if (x < 1) {
            const __m128d at = simd::splat(minus ? -x : x);
            const double angle =
                of_lane(sine ? asin_by_rows<sine_rows_radians>(at) : acos_by_rows<sine_rows_radians>(at));
            return {angle, over(y, root(unit_less_square(x)))};
        }
        const double end = sine ? turns(4) : turns(8);
        const bool at_end = sine || minus;
        if (x == 1) {
            const double root_of_y = std::sqrt(y);
            return {at_end ? end : root_of_y, root_of_y};
        }
        return {at_end ? end : over(y, root(unit_less_square(x))),
                of_lane(arc_size(arc_parts(simd::splat(x), _mm_setzero_pd()).sinh_squared))};
    }
    return {sine ? over(x, root(one_more(square(simd::splat(y))))) : turns(4),
            of_lane(arc_size(arc_parts(_mm_setzero_pd(), simd::splat(y)).sinh_squared))};
}

// Likewise both parts of atanh, but at the pole.
orv_complex_d rare_atanh_parts(double x, double y) {
    if (is_nan(x) || is_nan(y)) {
        const double nan = x + y;
        return {x == 0 || x == infinity || y == infinity ? 0 : nan, y == infinity ? turns(4) : nan};
    }
    if (x >= greatest_part || y >= greatest_part) {
        if (x == infinity || y == infinity) return {0, turns(4)};
        const Modulus m = modulus(x, y);
        return {over(x, m.squares, -2 * m.exponent), turns(4)};
    }
    if (y < least_part) {
        if (x == 1) return {ln_of_scaled(pair_of(std::ldexp(y, 600)), -0.5, 300.5), turns(2)};
        const double re = x < least_part ? x : of_lane(atanh_real(simd::splat(x), square(simd::splat(x)), nothing));
        return {re, x < 1 ? over(y, unit_less_square(x)) : turns(4)};
    }
    return {over(x, one_more(square(simd::splat(y)))), of_lane(atan_lanes<atan_radians, false>(simd::splat(y)))};
}

}  // namespace

int32_t rare_asin(orv_complex_d z, orv_complex_d* w) {
    const Arc arc = rare_arc(std::fabs(z.re), std::fabs(z.im), Side::sine, false);
    *w = {std::copysign(arc.angle, z.re), std::copysign(arc.size, z.im)};
    return frame::status_ok;
}

int32_t rare_acos(orv_complex_d z, orv_complex_d* w) {
    const Arc arc = rare_arc(std::fabs(z.re), std::fabs(z.im), Side::cosine, std::signbit(z.re));
    *w = {arc.angle, std::copysign(arc.size, -z.im)};
    return frame::status_ok;
}

// acosh keeps no angle of 0 + i NaN, where acos has a quarter turn.
int32_t rare_acosh(orv_complex_d z, orv_complex_d* w) {
    const Arc arc = rare_arc(std::fabs(z.re), std::fabs(z.im), Side::cosine, std::signbit(z.re));
    *w = {arc.size, z.re == 0 && is_nan(z.im) ? z.im : std::copysign(arc.angle, z.im)};
    return frame::status_ok;
}

int32_t rare_atanh(orv_complex_d z, orv_complex_d* w) {
    if (std::fabs(z.re) == 1 && z.im == 0) {
        *w = {z.re / at_run_time(0.0), z.im};
        return frame::status_singularity;
    }
    const orv_complex_d parts = rare_atanh_parts(std::fabs(z.re), std::fabs(z.im));
    *w = {std::copysign(parts.re, z.re), std::copysign(parts.im, z.im)};
    return frame::status_ok;
}

}  // namespace orv::vecmath
