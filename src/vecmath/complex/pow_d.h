// Complex powers of doubles, from lanes to lanes: a^b = exp(b ln a) with ln a = ln|a| + i arg a.
//
// An error of b ln a is one of a^b relative to its size, so that ln|a| and arg a are taken in two parts each and so are their
// products with the parts of b and the sums of those: what is left is 2^-60 of |b ln a|. ln|a| is half the logarithm of the
// exact |a|^2 = x^2 + y^2. The angle is that of the rows of atan_d.h,
//
//   atan(y / x) = atan c + atan t,  t = (y - c x) / (x + c y),
//
// with t in two parts too. Exponential (log2_exp2_d.h), sine and cosine are rounded to half an ulp each, and the product of
// their upper halves is exact.
#pragma once

#include "vecmath/complex/parts.h"
#include "vecmath/exp_log/pairs_d.h"
#include "vecmath/hyperbolic/inverse_d.h"
#include "vecmath/inverse/atan2_d.h"
#include "vecmath/trig/sincos_d.h"

namespace orv::vecmath {

struct ComplexPowBlock {
    simd::Splat<double> half{0.5};
    simd::Splat<double> log2e{0x1.71547652b82fep+0}, log2e_high{0x1.715474p+0}, log2e_low{0x1.295c17f0bbbe8p-23};
    simd::Splat<double> half_ln2{0x1.62e42fefa39efp-2}, half_ln2_high{0x1.62e42f8p-2},
        half_ln2_low{0x1.be8e7bcd5e4f2p-28};
    // Of real parts of b ln a for which no result overflows or is subnormal, and for floats none overflows.
    simd::Splat<double> last_size{660.0}, last_size_s{87.0};
};
inline constexpr ComplexPowBlock complex_pow;

// The upper 26 bits of a pair, and the rest.
inline Pair at_26_bits(Pair a) {
    const __m128d total = a.high + a.low, high = upper_26(total);
    return {high, (a.high - high) + a.low};
}
// b times a pair of 26 leading bits: an exact part and the rest.
inline Pair times(__m128d b, Pair a) {
    const __m128d b_high = upper_26(b);
    return {b_high * a.high, (b - b_high) * a.high + b * a.low};
}
inline Pair plus(Pair a, Pair b) {
    const Pair total = two_sum(a.high, b.high);
    return two_sum(total.high, total.low + (a.low + b.low));
}
inline Pair without_lanes(Pair a, __m128d lanes) {
    return {simd::select_by_sign(lanes, _mm_setzero_pd(), a.high),
            simd::select_by_sign(lanes, _mm_setzero_pd(), a.low)};
}
inline Pair with_sign(Pair a, __m128d sign) { return {simd::bit_xor(a.high, sign), simd::bit_xor(a.low, sign)}; }

// ln|x + i y|, at 26 bits.
inline Pair ln_modulus(__m128d x, __m128d y) {
    constexpr const ComplexPowBlock& K = complex_pow;
    constexpr const InverseHyperbolicBlock& H = inverse_hyperbolic;
    const Pair squares = sum_of_positive(square(x), square(y));
    const __m128i field = simd::bit_and(simd::bits_of(squares.high), H.exponent_field);
    const __m128d scale = simd::doubles(simd::subtract(H.twice_bias, field));
    const Log2Pair log = log2_pair<inverse_log>(squares.high, squares.low * scale);
    return at_26_bits({log.high * K.half_ln2_high, log.high * K.half_ln2_low + log.low * K.half_ln2});
}

// The angle of (x, y), at 26 bits; x is not 0.
inline Pair angle_of(__m128d x, __m128d y) {
    const __m128d minus = simd::sign_of(x), up = simd::magnitude(y), across = simd::magnitude(x);
    const __m128d q = up / across;
    const AtanRow row = atan_row<atan_radians>(q);
    const __m128d small = simd::equal(row.c, _mm_setzero_pd());
    const __m128d c_small = simd::bit_and(upper_26(q), small);
    const __m128d c = simd::bit_or(row.c, c_small);
    const __m128d across_high = upper_26(across), up_high = upper_26(up);
    const Pair above = two_sum(up - c * across_high, c * (across_high - across));
    const Pair below = two_sum(across, c * up_high);
    const Pair ratio = quotient(above, {below.high, below.low + c * (up - up_high)}), t = sum(ratio.high, ratio.low);
    const __m128d rest = atan_rest<atan_radians, false>(simd::select(small, c_small, t.high));
    const Pair angle = sum(simd::bit_or(row.high, c_small), t.high);
    const __m128d low = angle.low + ((row.low + t.low) + rest);
    // From half a turn for a negative x.
    const __m128d behind = simd::select_by_sign(minus, turn_radians.half_high, _mm_setzero_pd());
    const __m128d behind_low = simd::select_by_sign(minus, turn_radians.half_low, _mm_setzero_pd());
    const Pair total = sum(behind, simd::bit_xor(angle.high, minus));
    return with_sign(at_26_bits({total.high, total.low + (simd::bit_xor(low, minus) + behind_low)}), simd::sign_of(y));
}

// b (size + i angle).
struct ComplexExponent {
    Pair re, im;
};
inline ComplexExponent exponent_of(ComplexD b, Pair size, Pair angle) {
    return {plus(times(b.re, size), with_sign(times(b.im, angle), simd::splat(-0.0))),
            plus(times(b.re, angle), times(b.im, size))};
}

// e^x = 2^k (high + rest) as exp2_parts has it.
inline Exp2Parts exp_parts(Pair x) {
    constexpr const ComplexPowBlock& K = complex_pow;
    const Pair u = at_26_bits(x);
    return exp2_parts<inverse_log>({u.high * K.log2e_high, u.high * K.log2e_low + u.low * K.log2e});
}

// Of |angle| up to last_128, at 26 bits or not.
struct Direction2 {
    __m128d sine, cosine;
};
inline Direction2 direction(Pair angle) {
    const __m128d sign = simd::sign_of(angle.high);
    const __m128d a = simd::bit_xor(angle.high, sign);
    const Nearest<pi_over_64> nearest(a);
    Pair r = less_steps_exactly<pi_over_64>(a, nearest.k);
    r.low = r.low + simd::bit_xor(angle.low, sign);
    const Step128 step(r);
    const simd::Indices<2> j(simd::bits_of(nearest.shifted));
    return {simd::bit_xor(step.sin(j, 0), sign), step.sin(j, 1)};
}

// (high + rest) x, as an exact part and the rest.
inline Pair part_of(const Exp2Parts& power, __m128d x) {
    const __m128d high = upper_26(power.high), low = (power.high - high) + power.rest;
    const __m128d x_high = upper_26(x);
    return {high * x_high, high * (x - x_high) + low * x};
}

// 2^k of exp2_parts, in the range of exponents.
inline __m128d power_of_two(__m128i shifted) {
    constexpr const PowDBlock& K = inverse_log;
    return simd::doubles(simd::bit_and(simd::shift_left<45>(simd::add(shifted, K.bias)), K.exponent_field));
}

// The sine's sign. Of a zero angle it is that of Im a and Re b together, so that conjugates have conjugate powers.
inline __m128d sign_of_sine(__m128d sine, __m128d angle, __m128d a_im, __m128d b_re) {
    const __m128d zero = simd::equal(angle, _mm_setzero_pd());
    return simd::sign_of(simd::select(zero, simd::bit_xor(a_im, b_re), sine));
}

// a^b where a has a real part and all parts are zero or well within range; `doubt` has the lanes whose result is not.
inline ComplexD pow_lanes(ComplexD a, ComplexD b, __m128d& doubt) {
    constexpr const ComplexPowBlock& K = complex_pow;
    ComplexExponent w = exponent_of(b, ln_modulus(a.re, a.im), angle_of(a.re, a.im));
    doubt = simd::bit_or(simd::exceeds(simd::magnitude(w.re.high), K.last_size),
                         simd::exceeds(simd::magnitude(w.im.high), last_128));
    // They raise nothing.
    w = {without_lanes(w.re, doubt), without_lanes(w.im, doubt)};
    const Direction2 d = direction(w.im);
    const Exp2Parts power = exp_parts(w.re);
    const __m128d scale = power_of_two(power.shifted);
    const Pair re = part_of(power, d.cosine), im = part_of(power, d.sine);
    return {(re.high + re.low) * scale,
            simd::bit_or((im.high + im.low) * scale, sign_of_sine(d.sine, w.im.high, a.im, b.re))};
}

// The same of floats in one double each, where |a|^2 is exact in two: an error of 2^-50 of b ln a is enough.
inline ComplexD pow_lanes_s(ComplexD a, ComplexD b, __m128d& doubt) {
    constexpr const ComplexPowBlock& K = complex_pow;
    constexpr const InverseHyperbolicBlock& H = inverse_hyperbolic;
    const __m128d x_squared = a.re * a.re, y_squared = a.im * a.im;
    const Pair squares = sum(simd::greatest(x_squared, y_squared), simd::least(x_squared, y_squared));
    const __m128i field = simd::bit_and(simd::bits_of(squares.high), H.exponent_field);
    const Log2Pair log =
        log2_pair<inverse_log>(squares.high, squares.low * simd::doubles(simd::subtract(H.twice_bias, field)));
    const __m128d size = (log.high + log.low) * K.half_ln2;
    const __m128d angle = atan2_lanes<atan_radians, turn_radians, false>(a.im, a.re);
    __m128d re = b.re * size - b.im * angle, im = b.re * angle + b.im * size;
    doubt =
        simd::bit_or(simd::exceeds(simd::magnitude(re), K.last_size_s), simd::exceeds(simd::magnitude(im), last_128));
    re = simd::select_by_sign(doubt, _mm_setzero_pd(), re);
    im = simd::select_by_sign(doubt, _mm_setzero_pd(), im);
    __m128d sine, cosine;
    sincos_128(im, sine, cosine);
    const Exp2Parts power = exp2_parts<inverse_log>({re * K.log2e, _mm_setzero_pd()});
    const __m128d modulus = (power.high + power.rest) * power_of_two(power.shifted);
    return {modulus * cosine, simd::bit_or(modulus * sine, sign_of_sine(sine, im, a.im, b.re))};
}

}  // namespace orv::vecmath
