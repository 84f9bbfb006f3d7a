// asin and acos of doubles by rows, "HA", in radians or multiples of pi.
//
// With s = |x| and k = sqrt(1 - s^2), the exponent and the four leading fraction bits of the smaller of s^2 and k^2 select a row, with
// a c next to s, sqrt(1 - c^2) and the angle of c in two parts. The sine of the difference of the angles is
//
//   t = s sqrt(1 - c^2) - c k = (s - c)(s + c) / (s sqrt(1 - c^2) + c k),
//
// where s - c is exact and nothing cancels. t is 1/64 of the angle at the most, so that its six roundings, that of the root among
// them, are a twentieth of an ulp of the sum of the row's angle and asin t = t + t^3 P(t^2), |t| < 2^-5. Below 2^-5 c is 0, and 1 in the
// place of s in two of three places makes t exactly s. Next to 1 acos has rows down to the least k, 2^-26; where the result is not
// small, c is 1 for k below 2^-5.
//
// In multiples of pi the leading half of t has an exact product with that of 1/pi.
#pragma once

#include "simd/constants.h"

namespace orv::vecmath {

inline constexpr uint32_t near_rows = 146;     // of s^2 up to 1/2, row 0 for what is below 2^-10
inline constexpr uint32_t rows_below_0 = 671;  // of k^2 below 2^-10, for acos
inline constexpr uint32_t asin_row_count = 2 * near_rows, acos_row_count = 4 * near_rows + rows_below_0;

struct SineRowsBlock {
    bool pi;
    double unit = pi ? 0x1.45f306dc9c883p-2 : 1.0;  // of radians
    // fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-10], absolute): 2^-62 of asin t
    simd::Splat<double> c0{0x1.555555555555p-3 * unit}, c1{0x1.333333338d5fap-4 * unit},
        c2{0x1.6db6cd30bf20fp-5 * unit}, c3{0x1.f27e1ef7ce7cdp-6 * unit};
    simd::Splat<double> one{1.0}, minus{-0.0};
    simd::Splat<double> least_row{0x1p-10};
    simd::Splat<double> least_square{0x1p-200};  // what is below has no part in P: its square would underflow
    simd::Splat<double> inv_pi_high{0x1.45f306p-2}, inv_pi_low{0x1.b9391054a7f0ap-27};
    simd::SplatBits<uint64_t> upper{0xFFFFFFFFF8000000};
    // Of high words, right by 16: the exponent and four bits; what stands before row 1.
    simd::SplatBits<uint32_t> before_first{((1023 - 10) << 4) - 1}, no_row{0};
    // Offsets of rows: of k, of arguments below 0, and by how much the rows of k begin sooner there.
    simd::SplatBits<uint32_t> far_asin{near_rows}, far_acos{near_rows + rows_below_0},
        behind{2 * near_rows + rows_below_0}, sooner{rows_below_0};
};
inline constexpr SineRowsBlock sine_rows_radians{false}, sine_rows_half_turns{true};

// c, sqrt(1 - c^2), the angle of c high and low. Of acos the rows of arguments below 0 stand behind the others.
alignas(16) inline constexpr double asin_rows[asin_row_count][4] = {
#include "vecmath/tables/asin_rows.inc"
};
alignas(16) inline constexpr double asinpi_rows[asin_row_count][4] = {
#include "vecmath/tables/asinpi_rows.inc"
};
alignas(16) inline constexpr double acos_rows[acos_row_count][4] = {
#include "vecmath/tables/acos_rows.inc"
};
alignas(16) inline constexpr double acospi_rows[acos_row_count][4] = {
#include "vecmath/tables/acospi_rows.inc"
};

// s, k^2, 1 - k^2, which of the two is the smaller, and the place of that among the rows.
struct SinePlace {
    __m128d s, k_square, s_square, far;
    __m128i place;
};
template <const SineRowsBlock& K>
inline SinePlace sine_place(__m128d x) {
    const __m128d s = simd::magnitude(x), k_square = (K.one - s) * (K.one + s), s_square = K.one - k_square;
    const __m128i high = simd::bits_of(simd::least(s_square, k_square));
    return {s, k_square, s_square, simd::less(k_square, s_square),
            _mm_sub_epi32(_mm_srli_epi32(high, 16), K.before_first)};
}

// The row's angle and t with the sign bits `minus`.
template <const SineRowsBlock& K, size_t Rows>
inline __m128d sine_angle(const double (&rows)[Rows][4], SinePlace at_place, __m128i row, __m128d minus) {
    const __m128d s = at_place.s;
    const simd::Indices<2> at(_mm_srli_epi64(row, 32));
    const double *row0 = rows[at.lane[0]], *row1 = rows[at.lane[1]];
    const __m128d first0 = _mm_load_pd(row0), first1 = _mm_load_pd(row1);
    const __m128d second0 = _mm_load_pd(row0 + 2), second1 = _mm_load_pd(row1 + 2);
    const __m128d c = _mm_unpacklo_pd(first0, first1), cosine = _mm_unpackhi_pd(first0, first1);
    const __m128d high = _mm_unpacklo_pd(second0, second1), low = _mm_unpackhi_pd(second0, second1);

    const __m128d s_or_1 = simd::select_by_sign(simd::less(at_place.s_square, K.least_row), K.one, s);
    const __m128d sine = ((s - c) * (s_or_1 + c)) / (s_or_1 * cosine + c * _mm_sqrt_pd(at_place.k_square));
    const __m128d t = simd::bit_xor(sine, minus);
    const __m128d v = simd::bit_and(t, simd::less(K.least_square, s)), z = v * v;
    const __m128d p = z * ((K.c0 + z * K.c1) + (z * z) * (K.c2 + z * K.c3));
    if constexpr (!K.pi) return high + (t + (low + v * p));
    const __m128d leading = simd::bit_and(t, simd::doubles(K.upper));
    return high + (leading * K.inv_pi_high + ((t - leading) * K.inv_pi_high + (low + t * (K.inv_pi_low + p))));
}

template <const SineRowsBlock& K>
inline __m128d asin_by_rows(__m128d x) {
    const SinePlace at = sine_place<K>(x);
    const __m128i row =
        _mm_add_epi32(_mm_max_epi32(at.place, K.no_row), _mm_and_si128(simd::bits_of(at.far), K.far_asin));
    const __m128d y = sine_angle<K>(K.pi ? asinpi_rows : asin_rows, at, row, _mm_setzero_pd());
    return simd::bit_or(y, simd::sign_of(x));
}

template <const SineRowsBlock& K>
inline __m128d acos_by_rows(__m128d x) {
    const SinePlace at = sine_place<K>(x);
    const __m128i far = simd::bits_of(at.far), behind = simd::bits_of(simd::less(x, _mm_setzero_pd()));
    const __m128i offset = _mm_add_epi32(_mm_and_si128(far, _mm_sub_epi32(K.far_acos, _mm_and_si128(behind, K.sooner))),
                                         _mm_and_si128(behind, K.behind));
    const __m128i row = _mm_max_epi32(_mm_add_epi32(at.place, offset), _mm_and_si128(behind, offset));
    return sine_angle<K>(K.pi ? acospi_rows : acos_rows, at, row, simd::bit_xor(simd::sign_of(x), K.minus));
}

}  // namespace orv::vecmath
