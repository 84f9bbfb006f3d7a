// Sines and cosines, powers of e and hyperbolic functions in two doubles each:
// the factors of the functions that turn with one part of their argument and
// grow with the other.
//
// |u| up to 90112 goes by the 128 rows of steps_d.h and any other by the bits
// of 1/(2 pi); powers of e and hyperbolic functions go by the table of
// sinh_cosh_d.h, and come with a power of two beside them.
#pragma once

#include "vecmath/complex/parts.h"
#include "vecmath/hyperbolic/sinh_cosh_d.h"
#include "vecmath/special/extended.h"
#include "vecmath/trig/sincos_d.h"
#include "vecmath/trig/sincos_s.h"

namespace orv::vecmath {

// ---- From lanes to lanes
// -----------------------------------------------------------------------------------------------

// Of |u| up to last_128.
struct SineCosine {
    Pair sine, cosine;
};
inline SineCosine sine_cosine(D size) {
    const Main128 main(size);
    return {normal(main.step.sin_in_two(main.j, 0)), normal(main.step.sin_in_two(main.j, 1))};
}

// e^v = value 2^n, with 2^n as a number, of |v| up to 708.
struct PowerOfE {
    Pair value;
    __m128i k;  // 64 n and the row of the table, in the low words
};
inline PowerOfE power_of_e(D v) {
    constexpr const HyperbolicBlock& K = hyperbolic;
    const D shifted = v * K.scale + K.shifter;
    const D k = shifted - K.shifter;
    const D exact = v - k * K.ln2_high, rest = k * K.ln2_low;
    const D r = exact - rest;
    const D r_low = (exact - r) - rest;
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(simd::bit_and(words, K.index_mask));
    D low;
    const D high = pair_of(j.lane[0], j.lane[1], low);
    const D series = (r * r) * (K.half + r * (K.s3 + r * (K.c4 + r * (K.s5 + r * K.c6))));
    return {{high, low + high * (r + (r_low + series))}, words};
}
// 2^n of the whole part of k / 64, from -1022 to 1023.
inline D power_of_two(__m128i k) {
    const __m128i whole = simd::shift_left<46>(simd::bit_and_not(hyperbolic.index_mask, k));
    return simd::doubles(simd::add(whole, hyperbolic.exponent_0));
}

// sinh |v| and cosh |v|, each times 2^-n, of |v| up to 708.
struct SinhCosh {
    Pair sinh, cosh;
    __m128i n;
};
inline SinhCosh sinh_cosh(D size) {
    const HyperbolicParts v = hyperbolic_parts(size);
    const HyperbolicSeries q = hyperbolic_series(v.r_small);
    const D difference = v.a - v.b, total = v.a + v.b;
    const D s = difference * hyperbolic.half, c = total * hyperbolic.half;
    const D s_low = (((v.a - difference) - v.b) + (v.a_low - v.b_low)) * hyperbolic.half;
    const D c_low = (((v.a - total) + v.b) + (v.a_low + v.b_low)) * hyperbolic.half;
    // While n is 0 r counts beside s, which is larger or zero.
    const __m128i n_twice = simd::shuffle_32<0, 0, 2, 2>(v.n);
    const D first = simd::doubles(simd::equal_32(n_twice, __m128i{}));
    const D leading = simd::bit_and(first, v.r);
    const D beside = c - simd::bit_and(first, hyperbolic.one);
    const Pair sum_of_both = sum(s, leading);
    const D s_rest = (s * q.cosh_less_1 + (beside * v.r_small + c * q.sinh_less_r)) + sum_of_both.low +
                     (s_low + (c * v.r_low + c_low * v.r_small));
    const D c_rest = (c * q.cosh_less_1 + s * (v.r_small + q.sinh_less_r)) + (c_low + s * v.r_low);
    return {normal({sum_of_both.high, s_rest}), normal({c, c_rest}), v.n};
}
inline D power_of_two_by(__m128i n) { return simd::doubles(simd::add(simd::shift_left<52>(n), hyperbolic.exponent_0)); }

// ---- For floats: one part of everything ---------------------------------------------------------------------------------

// Of |u| below 8192.
struct ShortFactors {
    D sine, cosine, sinh, cosh;  // the hyperbolic ones with their power of two
};
inline ShortFactors short_factors(D turn, D growth) {
    ShortFactors y;
    const Nearest<half_pi> nearest(turn);
    quarter_turns<eighth_33>((turn - nearest.k * half_pi.high) - nearest.k * half_pi.middle, nearest.shifted, y.sine,
                             y.cosine);
    const HyperbolicParts v = hyperbolic_parts(growth);
    const HyperbolicSeries q = hyperbolic_series(v.r);
    const D s = (v.a - v.b) * hyperbolic.half, c = (v.a + v.b) * hyperbolic.half;
    const D scale = simd::doubles(simd::add(simd::shift_left<52>(v.n), hyperbolic.exponent_0));
    const D sinh_r = v.r + q.sinh_less_r;
    y.sinh = (s + (s * q.cosh_less_1 + c * sinh_r)) * scale;
    y.cosh = (c + (c * q.cosh_less_1 + s * sinh_r)) * scale;
    return y;
}

// In doubt: an angle from 90112 on; one below 2^-450 but zero, and so a v,
// since products of two such leave the range; a v from `End` on, given by its
// upper word.
template <uint32_t End>
inline D beyond_growth(D u, D v) {
    const auto outside = [](D x, uint32_t end) {
        const __m128i place =
            simd::subtract_32(simd::bits_of(simd::magnitude(x)), simd::splat_32(0x23D00000u + 0x80000000u));
        const D out = simd::doubles(simd::greater_32(place, simd::splat_32(end - (0x23D00000u + 0x80000000u) - 1)));
        return simd::bit_and_not(simd::equal(x, D{}), out);
    };
    return simd::bit_or(outside(u, 0x40F60000u), outside(v, End));
}

// ---- One element: in extended precision, whose exponents hold every power
// that matters ----------------------------------

inline long double wide(Pair x) { return static_cast<long double>(simd::first_lane(x.high)) + simd::first_lane(x.low); }
inline long double times_power_of_two(long double x, int n) {
    const long double power = n;
    __asm__("fscale" : "+t"(x) : "u"(power));
    return x;
}

// Beyond 3000 in magnitude a power of e leaves the doubles whatever it is
// multiplied with.
inline double within_3000(double v) { return v > 3000 ? 3000 : v < -3000 ? -3000 : v; }

// Of a finite u, of any size; a zero gives itself.
struct WideSineCosine {
    long double sine, cosine;
    explicit WideSineCosine(double u) {
        if (__builtin_fabs(u) < 0x1p-100) {
            sine = u;
            cosine = 1;
            return;
        }
        const Step512<> step(reduce_large(splat(u)));
        sine = wide(step.sin_in_two(0));
        cosine = wide(step.sin_in_two(1));
    }
};

inline long double wide_power_of_e(double v) {
    const PowerOfE power = power_of_e(splat(within_3000(v)));
    return times_power_of_two(wide(power.value), _mm_cvtsi128_si32(power.k) >> 6);
}

struct WideSinhCosh {
    long double sinh, cosh;
    explicit WideSinhCosh(double v) {
        const double size = __builtin_fabs(v);
        if (size < 0x1p-100) {
            sinh = v;
            cosh = 1;
            return;
        }
        if (size < 700) {
            const SinhCosh both = sinh_cosh(splat(size));
            const int n = _mm_cvtsi128_si32(both.n);
            sinh = times_power_of_two(wide(both.sinh), n);
            cosh = times_power_of_two(wide(both.cosh), n);
        } else {
            sinh = cosh = wide_power_of_e(size) * 0.5L;
        }
        if (v < 0) sinh = -sinh;
    }
};

// Both parts rounded; what overflows is reported.
inline int32_t put_wide(long double re, long double im, orv_complex_d* y) {
    *y = {narrowed<double>(re), narrowed<double>(im)};
    return all_finite(*y) ? frame::status_ok : frame::status_overflow;
}

}  // namespace orv::vecmath
