// erf from a table at steps of 1/128: with c the step next to |x|, d = |x| - c, e = erf c and g = erf' c,
//
//   erf |x| = e + g (d + d^2 P(d)),
//
// the coefficients of P being polynomials in c, the Hermite polynomials of erf's derivatives. Beyond 5.99 the last rows give 1.
#pragma once

#include "frame/error_report.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/special/extended.h"

namespace orv::vecmath {

struct ErfBlock {
    simd::Splat<double> limit{5.9921875}, shifter{0x1p+45};
    simd::SplatBits<uint32_t> least_squared{0x2FF00000};  // the high word of 8.6e-78: smaller squares could underflow
    simd::SplatBits<uint64_t> upper_26{0xFFFFFFFFF8000000};
    simd::Splat<double> p0_c{-1.0};
    simd::Splat<double> p1_cc{0.66666666666637431}, p1{-0.33333333333333331};
    simd::Splat<double> p2_ccc{-0.3333333333331433}, p2_c{0.4999999999993861};
    simd::Splat<double> p3_cccc{0.13333346957258876}, p3_cc{-0.40000061307679369}, p3{0.10000027247855717};
    simd::Splat<double> p4_c5{-0.044444492128545655}, p4_ccc{0.2222225798503483}, p4_c{-0.16666698455829951};
    simd::Splat<double> wide_p3_cc{-0.4}, wide_p3{0.1};
    simd::Splat<double> p5_cc{0x1.2492492492492p-3}, p5{-0x1.8618618618618p-6};
    simd::Splat<double> ep_p1_cc{0.66666781107678186}, ep_p0_c{-1.0000014305126206}, ep_p2_c{0.5000019073510884},
        ep_third{-0.33333504994947405};
    alignas(16) double rows[768][2] = {
#include "vecmath/tables/erf_768.inc"
    };
    alignas(16) double wide_rows[768][4] = {
#include "vecmath/tables/erf_768_wide.inc"
    };
};
inline constexpr ErfBlock erf_block;

struct ErfPlace {
    __m128d c, d;
    simd::Indices<2> at;
};
inline ErfPlace erf_place(__m128d x) {
    const __m128d a = simd::least(erf_block.limit, simd::magnitude(x));
    const __m128d shifted = a + erf_block.shifter;
    const __m128d c = shifted - erf_block.shifter;
    return {c, a - c, simd::Indices<2>(simd::bits_of(shifted))};
}

enum class ErfTerms { float_full, short_double, full, wide };

// P(d), without what the terms in use leave out.
template <ErfTerms Terms>
inline __m128d erf_polynomial(__m128d c, __m128d d) {
    constexpr const auto& K = erf_block;
    const __m128d cc = c * c;
    if constexpr (Terms == ErfTerms::float_full) return c * K.p0_c + d * (cc * K.p1_cc + K.p1);
    const __m128d dd = d * d;
    if constexpr (Terms == ErfTerms::short_double)
        return (c * K.ep_p0_c + d * (cc * K.ep_p1_cc + K.ep_third)) + dd * (c * (cc * K.ep_third + K.ep_p2_c));
    // The fitted coefficients make up for the sixth term, which "HA" has.
    constexpr bool wide = Terms == ErfTerms::wide;
    const __m128d p2 = c * (cc * K.p2_ccc + K.p2_c);
    const __m128d p3 = cc * (cc * K.p3_cccc + (wide ? K.wide_p3_cc : K.p3_cc)) + (wide ? K.wide_p3 : K.p3);
    const __m128d p4 = c * (cc * (cc * K.p4_c5 + K.p4_ccc) + K.p4_c);
    const __m128d p5 = wide ? cc * K.p5_cc + K.p5 : _mm_setzero_pd();
    const __m128d even = c * K.p0_c + dd * (p2 + dd * p4);
    const __m128d odd = (cc * K.p1_cc + K.p1) + dd * (wide ? p3 + dd * p5 : p3);
    return even + d * odd;
}

// erf in one part.
template <ErfTerms Terms>
inline __m128d erf_lanes(__m128d x) {
    constexpr const auto& K = erf_block;
    const ErfPlace p = erf_place(x);
    const __m128d row0 = _mm_load_pd(K.rows[p.at.lane[0]]), row1 = _mm_load_pd(K.rows[p.at.lane[1]]);
    const __m128d e = _mm_unpacklo_pd(row0, row1), g = _mm_unpackhi_pd(row0, row1);
    const __m128i high = _mm_shuffle_epi32(simd::bits_of(simd::magnitude(x)), _MM_SHUFFLE(3, 3, 1, 1));
    const __m128d d = simd::bit_and(simd::doubles(_mm_cmpgt_epi32(high, K.least_squared)), p.d);
    const __m128d y = e + g * (p.d + d * d * erf_polynomial<Terms>(p.c, d));
    return simd::bit_or(y, simd::sign_of(x));
}

// erf rounded once, but for parts of 2^-9 of it.
inline __m128d erf_wide_lanes(__m128d x) {
    constexpr const auto& K = erf_block;
    const ErfPlace p = erf_place(x);
    const double *row0 = K.wide_rows[p.at.lane[0]], *row1 = K.wide_rows[p.at.lane[1]];
    const __m128d first0 = _mm_load_pd(row0), first1 = _mm_load_pd(row1);
    const __m128d second0 = _mm_load_pd(row0 + 2), second1 = _mm_load_pd(row1 + 2);
    const __m128d e = _mm_unpacklo_pd(first0, first1), g = _mm_unpackhi_pd(first0, first1);
    const __m128d e_low = _mm_unpacklo_pd(second0, second1), g_low = _mm_unpackhi_pd(second0, second1);
    const __m128d d_high = simd::doubles(_mm_and_si128(simd::bits_of(p.d), K.upper_26));
    const __m128d step = g * d_high;
    const __m128d sum = e + step;
    const __m128d lost = (e - sum) + step;
    const __m128d linear = g * (p.d - d_high) + g_low * p.d;
    const __m128d series = (g + g_low) * (p.d * p.d * erf_polynomial<ErfTerms::wide>(p.c, p.d));
    return simd::bit_or(sum + (((lost + e_low) + linear) + series), simd::sign_of(x));
}

// What the vector path does not serve: NaNs, infinities, and numbers so small that erf is linear.
template <class T>
inline int32_t erf_scalar(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
    } else if (!is_finite(x)) {
        *y = x < 0 ? T{-1} : T{1};
    } else {
        const ExtendedPrecision extended;
        *y = static_cast<T>(1.12837916709551257389615890312154517L * static_cast<long double>(x));
    }
    return frame::status_ok;
}

}  // namespace orv::vecmath
