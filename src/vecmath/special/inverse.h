// The inverses of the error functions and of the normal distribution, all by one core.
//
// With v the value of erf and q = 1 - |v|, both exact where they are used:
//
//   q from 1/2 on:  erf's inverse is v S(v), S expanded in v + 1/2;
//   q below 1/2:    it is +-T(q), T expanded in q, by the powers of two down to 2^-10;
//   below 2^-10:    it is +-U(s) with s = sqrt(-ln q), in extended precision, one element at a time.
//
// v is split into 26 bits and the rest, so that the leading product is exact and all is rounded once, but for what is small.
// The normal distribution's inverse is the same with all coefficients times the root of 2, of v = 2p - 1.
//
// "EP" of doubles is v C(q), a cubic for each sixteenth of each power of two of q down to 2^-53.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/special/expansions.h"
#include "vecmath/special/extended.h"

namespace orv::vecmath {

// Cubics in the distance from the middle of the interval, q from 1 downward; and the least q that they serve.
struct InverseCubics {
    double rows[847][4] = {
#include "vecmath/tables/cdf_norm_inv_cubic.inc"
    };
    double least = 0x1.1p-53;
};
static_assert(sizeof(void*) != 4 || sizeof(InverseCubics) == 27112);
struct ShortInverseBlock {
    simd::Splat<double> below_one{0.99999999999999989}, one{1.0}, middle{1.03125}, root_half{0x1.6a09e667f3bcdp-1};
    simd::SplatBits<uint64_t> within_row{0x0000FFFFFFFFFFFF};
    static constexpr uint32_t top = 0x3FEF;  // of the first row's q
    alignas(16) InverseCubics cubics;
};
inline constexpr ShortInverseBlock short_inverse_block;

struct InverseBlock {
    simd::Splat<double> one{1.0}, two{2.0}, half{0.5};
    alignas(16) ExpansionRow erf[321] = {
#include "vecmath/tables/erf_inv.inc"
    };
    alignas(16) ExpansionRow normal[321] = {
#include "vecmath/tables/cdf_norm_inv.inc"
    };
    alignas(16) ExpansionRow tail[128] = {
#include "vecmath/tables/erfc_inv_tail.inc"
    };
};
inline constexpr InverseBlock inverse_block;

enum class Inverse { erf, erfc, normal };

// The value of erf and one less its magnitude, of an argument.
struct ErfValue {
    __m128d v, q;
};
template <Inverse Which>
inline ErfValue erf_value(__m128d x) {
    constexpr const auto& K = inverse_block;
    if constexpr (Which == Inverse::erf) return {x, K.one - simd::magnitude(x)};
    const __m128d p = Which == Inverse::normal ? x + x : x;
    const __m128d q = simd::least(p, K.two - p);
    return {Which == Inverse::normal ? p - K.one : K.one - p, q};
}

// For q from 2^-10 on. `Pairs` of coefficients; OneRounding where the result is for doubles and of the highest accuracy.
template <Inverse Which, int Pairs, bool OneRounding>
inline __m128d inverse_lanes(__m128d x) {
    constexpr const auto& K = inverse_block;
    const auto [signed_v, q] = erf_value<Which>(x);
    const __m128d v = simd::magnitude(signed_v);
    const __m128d tail = simd::less(q, K.half);
    const __m128d shift = simd::bit_and_not(tail, K.half);
    const __m128d w = simd::select_by_sign(tail, q, v);
    const __m128d t = w + shift;
    const __m128d d = w - (expansion_centre(t) - shift);
    const Expanded f = expand<-10, Pairs>(Which == Inverse::normal ? K.normal : K.erf, t, d);
    const __m128d factor = simd::select_by_sign(tail, K.one, v);
    __m128d y;
    if constexpr (OneRounding) {
        const __m128d leading = upper_26(factor);
        y = leading * f.high + ((factor - leading) * f.high + factor * f.low);
    } else {
        y = factor * (f.high + f.low);
    }
    return simd::bit_or(y, simd::sign_of(signed_v));
}

// For q from `least` on, to 2^-27 or so.
template <Inverse Which>
inline __m128d short_inverse_lanes(__m128d x) {
    constexpr const auto& K = short_inverse_block;
    auto [v, q] = erf_value<Which>(x);
    q = simd::least(q, K.below_one);
    const __m128i bits = simd::bits_of(q);
    const simd::Indices<2> at(_mm_srli_epi64(bits, 48));
    const __m128d d = simd::bit_or(simd::doubles(_mm_and_si128(bits, K.within_row)), K.one) - K.middle;
    const double *row0 = K.cubics.rows[K.top - at.lane[0]], *row1 = K.cubics.rows[K.top - at.lane[1]];
    const __m128d first0 = _mm_load_pd(row0), first1 = _mm_load_pd(row1);
    const __m128d second0 = _mm_load_pd(row0 + 2), second1 = _mm_load_pd(row1 + 2);
    const __m128d c0 = _mm_unpacklo_pd(first0, first1), c1 = _mm_unpackhi_pd(first0, first1);
    const __m128d c2 = _mm_unpacklo_pd(second0, second1), c3 = _mm_unpackhi_pd(second0, second1);
    if constexpr (Which != Inverse::normal) v = v * K.root_half;
    return v * ((c0 + c1 * d) + (d * d) * (c2 + c3 * d));
}

// Any element: the ends, what lies beyond, and what is near them; near zero too.
template <Inverse Which, class T>
inline int32_t inverse_scalar(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    const T first = Which == Inverse::erf ? T{-1} : T{0}, last = Which == Inverse::erfc ? T{2} : T{1};
    if (x < first || x > last) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    if (x == first || x == last) {
        const T infinity = minus_infinity_at_pole<T>();
        *y = (x == first) == (Which == Inverse::erfc) ? -infinity : infinity;
        return frame::status_singularity;
    }
    const ExtendedPrecision extended;
    const long double e = x;
    const long double p = Which == Inverse::normal ? 2 * e : e;
    const long double v = Which == Inverse::erf ? e : Which == Inverse::normal ? p - 1 : 1 - p;
    const long double q = Which == Inverse::erf ? (e < 0 ? 1 + e : 1 - e) : p < 1 ? p : 2 - p;
    const long double root_2 = 1.41421356237309504880168872420969808L;
    if (q > 0.5L) {
        // Next to zero, where the inverse is linear.
        *y = static_cast<T>(v * 0.886226925452758013649083741670572591L);
        return frame::status_ok;
    }
    long double magnitude = expand_extended<1>(inverse_block.tail, x87_root(-x87_ln(q)));
    if (Which == Inverse::normal) magnitude *= root_2;
    *y = static_cast<T>(v < 0 ? -magnitude : magnitude);
    return frame::status_ok;
}

}  // namespace orv::vecmath
