// Lanes: one SSE register of elements, as overloads over the element type. No mathematics.
//
// Arithmetic is written with the operators that the compiler gives its vector types; what they cannot say stands here.
#pragma once

#include <smmintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <type_traits>

namespace orv::simd {

// V: the register, width: elements in it, Scalar: the number an element is made of.
template <class Element>
struct Lanes;

template <>
struct Lanes<float> {
    using V = __m128;
    using Scalar = float;
    static constexpr int width = 4;
};
template <>
struct Lanes<double> {
    using V = __m128d;
    using Scalar = double;
    static constexpr int width = 2;
};

// ---- Whole registers -----------------------------------------------------------------------------------------------

inline __m128 load(const float* p) { return _mm_loadu_ps(p); }
inline __m128d load(const double* p) { return _mm_loadu_pd(p); }

inline __m128 load_aligned(const float* p) { return _mm_load_ps(p); }
inline __m128d load_aligned(const double* p) { return _mm_load_pd(p); }

inline void store(float* p, __m128 v) { _mm_storeu_ps(p, v); }
inline void store(double* p, __m128d v) { _mm_storeu_pd(p, v); }

inline void store_aligned(float* p, __m128 v) { _mm_store_ps(p, v); }
inline void store_aligned(double* p, __m128d v) { _mm_store_pd(p, v); }

template <class Element>
auto splat(Element x);
template <>
inline auto splat(float x) {
    return _mm_set1_ps(x);
}
template <>
inline auto splat(double x) {
    return _mm_set1_pd(x);
}

// One element in every lane.
inline __m128 load_splat(const float* p) { return _mm_load1_ps(p); }
inline __m128d load_splat(const double* p) { return _mm_loaddup_pd(p); }

// ---- One element, the other lanes zero -------------------------------------------------------------------------------

inline __m128 load_one(const float* p) { return _mm_load_ss(p); }
inline __m128d load_one(const double* p) { return _mm_load_sd(p); }

inline void store_one(float* p, __m128 v) { _mm_store_ss(p, v); }
inline void store_one(double* p, __m128d v) { _mm_store_sd(p, v); }

// ---- Scattered and strided elements ----------------------------------------------------------------------------------

// One lane from each place; and half a register from each of two.
inline __m128d gather(const double* p0, const double* p1) { return _mm_loadh_pd(_mm_load_sd(p0), p1); }
inline __m128 gather(const float* p0, const float* p1, const float* p2, const float* p3) {
    const __m128 low = _mm_unpacklo_ps(_mm_load_ss(p0), _mm_load_ss(p1));
    const __m128 high = _mm_unpacklo_ps(_mm_load_ss(p2), _mm_load_ss(p3));
    return _mm_movelh_ps(low, high);
}
inline __m128 gather_halves(const float* p0, const float* p1) {
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p0));
    return _mm_loadh_pi(_mm_castsi128_ps(low), reinterpret_cast<const __m64*>(p1));
}

// Strides are counted in elements; lanes go in rising order, so the last of several stores to one place holds.
inline __m128 load_strided(const float* p, ptrdiff_t step) {
    const __m128 low = _mm_unpacklo_ps(_mm_load_ss(p), _mm_load_ss(p + step));
    const __m128 high = _mm_unpacklo_ps(_mm_load_ss(p + 2 * step), _mm_load_ss(p + 3 * step));
    return _mm_movelh_ps(low, high);
}
inline __m128d load_strided(const double* p, ptrdiff_t step) { return _mm_loadh_pd(_mm_load_sd(p), p + step); }

inline void store_strided(float* p, ptrdiff_t step, __m128 v) {
    _mm_store_ss(p, v);
    _mm_store_ss(p + step, _mm_shuffle_ps(v, v, 1));
    _mm_store_ss(p + 2 * step, _mm_movehl_ps(v, v));
    _mm_store_ss(p + 3 * step, _mm_shuffle_ps(v, v, 3));
}
inline void store_strided(double* p, ptrdiff_t step, __m128d v) {
    _mm_store_sd(p, v);
    _mm_storeh_pd(p + step, v);
}

// ---- The first `count` lanes, at least one and fewer than all; a load fills the others -------------------------------

inline __m128 load_part(const float* p, ptrdiff_t step, int32_t count, float fill) {
    __m128 v = _mm_move_ss(_mm_set1_ps(fill), _mm_load_ss(p));
    if (count > 1) v = _mm_insert_ps(v, _mm_load_ss(p + step), 0x10);
    if (count > 2) v = _mm_insert_ps(v, _mm_load_ss(p + 2 * step), 0x20);
    return v;
}
inline __m128d load_part(const double* p, ptrdiff_t, int32_t, double fill) {
    return _mm_unpacklo_pd(_mm_load_sd(p), _mm_set1_pd(fill));
}

inline void store_part(float* p, ptrdiff_t step, int32_t count, __m128 v) {
    _mm_store_ss(p, v);
    if (count > 1) _mm_store_ss(p + step, _mm_shuffle_ps(v, v, 1));
    if (count > 2) _mm_store_ss(p + 2 * step, _mm_movehl_ps(v, v));
}
inline void store_part(double* p, ptrdiff_t, int32_t, __m128d v) { _mm_store_sd(p, v); }

// ---- Bits ------------------------------------------------------------------------------------------------------------

inline __m128 bit_and(__m128 a, __m128 b) { return _mm_and_ps(a, b); }
inline __m128d bit_and(__m128d a, __m128d b) { return _mm_and_pd(a, b); }
inline __m128 bit_or(__m128 a, __m128 b) { return _mm_or_ps(a, b); }
inline __m128d bit_or(__m128d a, __m128d b) { return _mm_or_pd(a, b); }
inline __m128 bit_xor(__m128 a, __m128 b) { return _mm_xor_ps(a, b); }
inline __m128d bit_xor(__m128d a, __m128d b) { return _mm_xor_pd(a, b); }
// The bits of b that a does not have.
inline __m128 bit_and_not(__m128 a, __m128 b) { return _mm_andnot_ps(a, b); }
inline __m128d bit_and_not(__m128d a, __m128d b) { return _mm_andnot_pd(a, b); }

inline __m128i bits_of(__m128 x) { return _mm_castps_si128(x); }
inline __m128i bits_of(__m128d x) { return _mm_castpd_si128(x); }
inline __m128 floats(__m128i bits) { return _mm_castsi128_ps(bits); }
inline __m128d doubles(__m128i bits) { return _mm_castsi128_pd(bits); }

inline __m128 sign_of(__m128 x) { return bit_and(x, splat(-0.0f)); }
inline __m128d sign_of(__m128d x) { return bit_and(x, splat(-0.0)); }

// Shifts of 64-bit lanes, 64-bit integers in both lanes.
template <int Bits>
inline __m128i shift_left(__m128i x) {
    return _mm_slli_epi64(x, Bits);
}
template <int Bits>
inline __m128i shift_right(__m128i x) {
    return _mm_srli_epi64(x, Bits);
}
inline __m128i splat_bits(uint64_t x) { return _mm_set1_epi64x(static_cast<int64_t>(x)); }

inline __m128 magnitude(__m128 x) { return bit_and_not(splat(-0.0f), x); }
inline __m128d magnitude(__m128d x) { return bit_and_not(splat(-0.0), x); }

// a in the lanes where the mask is all ones, b in the others.
inline __m128 select(__m128 mask, __m128 a, __m128 b) { return bit_or(bit_and(mask, a), bit_and_not(mask, b)); }
inline __m128d select(__m128d mask, __m128d a, __m128d b) { return bit_or(bit_and(mask, a), bit_and_not(mask, b)); }

// The same by the sign bits of the mask alone.
inline __m128 select_by_sign(__m128 mask, __m128 a, __m128 b) { return _mm_blendv_ps(b, a, mask); }
inline __m128d select_by_sign(__m128d mask, __m128d a, __m128d b) { return _mm_blendv_pd(b, a, mask); }

// ---- Between lanes and between widths --------------------------------------------------------------------------------

// a and b by turns, from the lower and from the upper half of each.
inline __m128 interleave_low(__m128 a, __m128 b) { return _mm_unpacklo_ps(a, b); }
inline __m128d interleave_low(__m128d a, __m128d b) { return _mm_unpacklo_pd(a, b); }
inline __m128 interleave_high(__m128 a, __m128 b) { return _mm_unpackhi_ps(a, b); }
inline __m128d interleave_high(__m128d a, __m128d b) { return _mm_unpackhi_pd(a, b); }

// The even lanes of a, then those of b; and the odd ones.
inline __m128 even_lanes(__m128 a, __m128 b) { return _mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)); }
inline __m128 odd_lanes(__m128 a, __m128 b) { return _mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)); }

// Half of a, then half of b.
inline __m128 low_halves(__m128 a, __m128 b) { return _mm_movelh_ps(a, b); }
inline __m128 high_halves(__m128 a, __m128 b) { return _mm_movehl_ps(b, a); }
inline __m128 high_and_low_half(__m128 a, __m128 b) { return _mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 3, 2)); }

inline void transpose(__m128& a, __m128& b, __m128& c, __m128& d) {
    const __m128 ab_low = interleave_low(a, b), cd_low = interleave_low(c, d);
    const __m128 ab_high = interleave_high(a, b), cd_high = interleave_high(c, d);
    a = low_halves(ab_low, cd_low);
    b = high_halves(ab_low, cd_low);
    c = low_halves(ab_high, cd_high);
    d = high_halves(ab_high, cd_high);
}

// Lane 0 as a number.
inline float first_lane(__m128 x) { return _mm_cvtss_f32(x); }
inline double first_lane(__m128d x) { return _mm_cvtsd_f64(x); }
// Lane 0, the others zero.
inline __m128 first_lane_alone(__m128 x) { return _mm_move_ss(_mm_setzero_ps(), x); }
inline __m128d first_lane_alone(__m128d x) { return _mm_move_sd(_mm_setzero_pd(), x); }
// The sum of both lanes.
inline double sum_of_lanes(__m128d x) { return _mm_cvtsd_f64(_mm_add_sd(x, _mm_unpackhi_pd(x, x))); }

// Floats as doubles, the lower two or the upper two; and four doubles as floats.
inline __m128d widen_low(__m128 x) { return _mm_cvtps_pd(x); }
inline __m128d widen_high(__m128 x) { return _mm_cvtps_pd(_mm_movehl_ps(x, x)); }
inline __m128 narrow(__m128d low, __m128d high) { return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high)); }

// Numbers of either type in memory as double lanes: two, and one with 0 behind it.
inline __m128d load_doubles(const double* p) { return load(p); }
inline __m128d load_doubles(const float* p) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
inline __m128d load_one_double(const double* p) { return load_one(p); }
inline __m128d load_one_double(const float* p) { return _mm_cvtss_sd(_mm_setzero_pd(), _mm_load_ss(p)); }
inline void store_doubles(double* p, __m128d v) { store(p, v); }
inline void store_doubles(float* p, __m128d v) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(_mm_cvtpd_ps(v)));
}
inline void store_one_double(double* p, __m128d v) { store_one(p, v); }
inline void store_one_double(float* p, __m128d v) { store_one(p, _mm_cvtpd_ps(v)); }

// ---- Rounding, comparison, masks -----------------------------------------------------------------------------------

template <int Control>
inline __m128 round(__m128 x) {
    return _mm_round_ps(x, Control);
}
template <int Control>
inline __m128d round(__m128d x) {
    return _mm_round_pd(x, Control);
}

// The smaller and the larger; b where the two are unordered.
inline __m128 least(__m128 a, __m128 b) { return _mm_min_ps(a, b); }
inline __m128d least(__m128d a, __m128d b) { return _mm_min_pd(a, b); }
inline __m128 greatest(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
inline __m128d greatest(__m128d a, __m128d b) { return _mm_max_pd(a, b); }

// 1/x to 12 bits or so; which ones follow depends on the processor.
inline __m128 rough_reciprocal(__m128 x) { return _mm_rcp_ps(x); }

inline __m128 square_root(__m128 x) { return _mm_sqrt_ps(x); }
inline __m128d square_root(__m128d x) { return _mm_sqrt_pd(x); }

// Masks: all ones where it holds.
inline __m128 equal(__m128 a, __m128 b) { return _mm_cmpeq_ps(a, b); }
inline __m128d equal(__m128d a, __m128d b) { return _mm_cmpeq_pd(a, b); }
inline __m128 less(__m128 a, __m128 b) { return _mm_cmplt_ps(a, b); }
inline __m128d less(__m128d a, __m128d b) { return _mm_cmplt_pd(a, b); }
inline __m128 less_equal(__m128 a, __m128 b) { return _mm_cmple_ps(a, b); }
inline __m128d less_equal(__m128d a, __m128d b) { return _mm_cmple_pd(a, b); }
// True for NaNs too.
inline __m128 not_less(__m128 a, __m128 b) { return _mm_cmpnlt_ps(a, b); }
inline __m128d not_less(__m128d a, __m128d b) { return _mm_cmpnlt_pd(a, b); }
inline __m128 not_less_equal(__m128 a, __m128 b) { return _mm_cmpnle_ps(a, b); }
inline __m128d not_less_equal(__m128d a, __m128d b) { return _mm_cmpnle_pd(a, b); }

// A mask, by its sign bits, of the lanes of a that exceed `last`, NaNs among them; both without signs. By the bits: a
// comparison of numbers would raise invalid for a NaN.
inline __m128 exceeds(__m128 a, __m128 last) { return floats(_mm_sub_epi32(bits_of(last), bits_of(a))); }
inline __m128d exceeds(__m128d a, __m128d last) { return doubles(_mm_sub_epi64(bits_of(last), bits_of(a))); }

// All ones in the lanes where either is a NaN; a quiet one raises nothing.
inline __m128 unordered(__m128 a, __m128 b) { return _mm_cmpunord_ps(a, b); }
inline __m128d unordered(__m128d a, __m128d b) { return _mm_cmpunord_pd(a, b); }

// All ones in the lanes of infinities and NaNs, zero elsewhere.
inline __m128 not_finite(__m128 x) {
    const __m128i exponent = _mm_set1_epi32(0x7F800000);
    return _mm_castsi128_ps(_mm_cmpeq_epi32(_mm_and_si128(_mm_castps_si128(x), exponent), exponent));
}
inline __m128d not_finite(__m128d x) {
    const __m128i exponent = _mm_set1_epi32(0x7FF00000);
    const __m128i high_words = _mm_shuffle_epi32(_mm_castpd_si128(x), _MM_SHUFFLE(3, 3, 1, 1));
    return _mm_castsi128_pd(_mm_cmpeq_epi32(_mm_and_si128(high_words, exponent), exponent));
}

inline bool any_bit(__m128 x) { return !_mm_testz_si128(_mm_castps_si128(x), _mm_castps_si128(x)); }
inline bool any_bit(__m128d x) { return !_mm_testz_si128(_mm_castpd_si128(x), _mm_castpd_si128(x)); }

// One bit per lane, lane 0 lowest.
inline unsigned lane_bits(__m128 mask) { return static_cast<unsigned>(_mm_movemask_ps(mask)); }
inline unsigned lane_bits(__m128d mask) { return static_cast<unsigned>(_mm_movemask_pd(mask)); }
// How many of four such bits are set.
inline int32_t count_bits(unsigned four) {
    static constexpr uint8_t counts[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
    return counts[four];
}

}  // namespace orv::simd
