// Lanes for fitting: one register of elements for the streaming loops, and groups of four sites with their cells as four
// 32-bit integers for search and evaluation. Arithmetic is written with the compiler's operators on vector types.
#pragma once

#include <smmintrin.h>
#include <stdint.h>

namespace orv::fit {

template <class T>
struct Lanes;
template <>
struct Lanes<float> {
    using V = __m128;
    static constexpr int width = 4;
};
template <>
struct Lanes<double> {
    using V = __m128d;
    static constexpr int width = 2;
};

inline __m128 load(const float* p) { return _mm_loadu_ps(p); }
inline __m128d load(const double* p) { return _mm_loadu_pd(p); }
inline void store(float* p, __m128 v) { _mm_storeu_ps(p, v); }
inline void store(double* p, __m128d v) { _mm_storeu_pd(p, v); }
inline __m128 splat(float x) { return _mm_set1_ps(x); }
inline __m128d splat(double x) { return _mm_set1_pd(x); }

inline __m128 magnitude(__m128 v) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), v); }
inline __m128d magnitude(__m128d v) { return _mm_andnot_pd(_mm_set1_pd(-0.0), v); }
inline __m128 sign_of(__m128 v) { return _mm_and_ps(_mm_set1_ps(-0.0f), v); }
inline __m128d sign_of(__m128d v) { return _mm_and_pd(_mm_set1_pd(-0.0), v); }
inline __m128 either(__m128 a, __m128 b) { return _mm_or_ps(a, b); }
inline __m128d either(__m128d a, __m128d b) { return _mm_or_pd(a, b); }
inline __m128 both(__m128 a, __m128 b) { return _mm_and_ps(a, b); }
inline __m128d both(__m128d a, __m128d b) { return _mm_and_pd(a, b); }
// The smaller and the larger; the second operand where the two are unordered.
inline __m128 least(__m128 a, __m128 b) { return _mm_min_ps(a, b); }
inline __m128d least(__m128d a, __m128d b) { return _mm_min_pd(a, b); }
inline __m128 most(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
inline __m128d most(__m128d a, __m128d b) { return _mm_max_pd(a, b); }
// Masks: all ones where it holds.
inline __m128 less(__m128 a, __m128 b) { return _mm_cmplt_ps(a, b); }
inline __m128d less(__m128d a, __m128d b) { return _mm_cmplt_pd(a, b); }
inline __m128 less_equal(__m128 a, __m128 b) { return _mm_cmple_ps(a, b); }
inline __m128d less_equal(__m128d a, __m128d b) { return _mm_cmple_pd(a, b); }
inline __m128 equal(__m128 a, __m128 b) { return _mm_cmpeq_ps(a, b); }
inline __m128d equal(__m128d a, __m128d b) { return _mm_cmpeq_pd(a, b); }
// b where the mask is set, else a.
inline __m128 select(__m128 mask, __m128 a, __m128 b) { return _mm_blendv_ps(a, b, mask); }
inline __m128d select(__m128d mask, __m128d a, __m128d b) { return _mm_blendv_pd(a, b, mask); }

inline int lane_bits(__m128 mask) { return _mm_movemask_ps(mask); }
inline int lane_bits(__m128d mask) { return _mm_movemask_pd(mask); }

// ---- Four sites ------------------------------------------------------------------------------------------------------

template <class T>
struct Four {
    static constexpr int parts = 4 / Lanes<T>::width;
    typename Lanes<T>::V part[parts];
};

template <class T>
Four<T> load4(const T* p) {
    Four<T> group;
    for (int i = 0; i < Four<T>::parts; ++i) group.part[i] = load(p + i * Lanes<T>::width);
    return group;
}

template <class T, class Op>
Four<T> map(const Four<T>& a, Op op) {
    Four<T> result;
    for (int i = 0; i < Four<T>::parts; ++i) result.part[i] = op(a.part[i]);
    return result;
}

// Toward zero; what does not fit becomes the most negative integer.
inline __m128i truncate(const Four<float>& v) { return _mm_cvttps_epi32(v.part[0]); }
inline __m128i truncate(const Four<double>& v) {
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(v.part[0]), _mm_cvttpd_epi32(v.part[1]));
}

// A mask of four elements as a mask of four 32-bit integers.
inline __m128i narrow_mask(const Four<float>& m) { return _mm_castps_si128(m.part[0]); }
inline __m128i narrow_mask(const Four<double>& m) {
    return _mm_castps_si128(
        _mm_shuffle_ps(_mm_castpd_ps(m.part[0]), _mm_castpd_ps(m.part[1]), _MM_SHUFFLE(2, 0, 2, 0)));
}

inline Four<float> gather4(const float* base, __m128i index) {
    const __m128 low =
        _mm_unpacklo_ps(_mm_load_ss(base + _mm_cvtsi128_si32(index)), _mm_load_ss(base + _mm_extract_epi32(index, 1)));
    const __m128 high = _mm_unpacklo_ps(_mm_load_ss(base + _mm_extract_epi32(index, 2)),
                                        _mm_load_ss(base + _mm_extract_epi32(index, 3)));
    return {{_mm_movelh_ps(low, high)}};
}
inline Four<double> gather4(const double* base, __m128i index) {
    return {{_mm_loadh_pd(_mm_load_sd(base + _mm_cvtsi128_si32(index)), base + _mm_extract_epi32(index, 1)),
             _mm_loadh_pd(_mm_load_sd(base + _mm_extract_epi32(index, 2)), base + _mm_extract_epi32(index, 3))}};
}

inline void store4(int32_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void store4(int64_t* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_cvtepi32_epi64(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 2), _mm_cvtepi32_epi64(_mm_srli_si128(v, 8)));
}

}  // namespace orv::fit
