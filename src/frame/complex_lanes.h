// Lanes of complex elements: the real parts in one register and the imaginary parts in another, so that a register's worth
// of complex elements is as many as of their parts.
#pragma once

#include "simd/lanes.h"

#include <orv/vecmath.h>

namespace orv::simd {

template <class Part>
struct Complex {
    typename Lanes<Part>::V re, im;
};

template <>
struct Lanes<orv_complex_s> {
    using V = Complex<float>;
    using Scalar = float;
    static constexpr int width = 4;
};
template <>
struct Lanes<orv_complex_d> {
    using V = Complex<double>;
    using Scalar = double;
    static constexpr int width = 2;
};

// Two pairs in a register, and from pairs to parts and back.
inline __m128 load_pairs(const orv_complex_s* p0, const orv_complex_s* p1) {
    const __m128 low = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p0)));
    return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(p1));
}
inline Complex<float> parts_of(__m128 pairs01, __m128 pairs23) {
    return {_mm_shuffle_ps(pairs01, pairs23, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm_shuffle_ps(pairs01, pairs23, _MM_SHUFFLE(3, 1, 3, 1))};
}
inline Complex<double> parts_of(__m128d pair0, __m128d pair1) {
    return {_mm_unpacklo_pd(pair0, pair1), _mm_unpackhi_pd(pair0, pair1)};
}

inline Complex<float> load(const orv_complex_s* p) { return parts_of(_mm_loadu_ps(&p[0].re), _mm_loadu_ps(&p[2].re)); }
inline Complex<double> load(const orv_complex_d* p) { return parts_of(_mm_loadu_pd(&p[0].re), _mm_loadu_pd(&p[1].re)); }
inline void store(orv_complex_s* p, Complex<float> v) {
    _mm_storeu_ps(&p[0].re, _mm_unpacklo_ps(v.re, v.im));
    _mm_storeu_ps(&p[2].re, _mm_unpackhi_ps(v.re, v.im));
}
inline void store(orv_complex_d* p, Complex<double> v) {
    _mm_storeu_pd(&p[0].re, _mm_unpacklo_pd(v.re, v.im));
    _mm_storeu_pd(&p[1].re, _mm_unpackhi_pd(v.re, v.im));
}

inline Complex<float> load_splat(const orv_complex_s* p) { return {_mm_load1_ps(&p->re), _mm_load1_ps(&p->im)}; }
inline Complex<double> load_splat(const orv_complex_d* p) { return {_mm_loaddup_pd(&p->re), _mm_loaddup_pd(&p->im)}; }

inline void store_one(orv_complex_s* p, Complex<float> v) {
    _mm_storel_pi(reinterpret_cast<__m64*>(p), _mm_unpacklo_ps(v.re, v.im));
}
inline void store_one(orv_complex_d* p, Complex<double> v) { _mm_storeu_pd(&p->re, _mm_unpacklo_pd(v.re, v.im)); }

inline Complex<float> load_strided(const orv_complex_s* p, ptrdiff_t step) {
    return parts_of(load_pairs(p, p + step), load_pairs(p + 2 * step, p + 3 * step));
}
inline Complex<double> load_strided(const orv_complex_d* p, ptrdiff_t step) {
    return parts_of(_mm_loadu_pd(&p->re), _mm_loadu_pd(&p[step].re));
}
inline void store_strided(orv_complex_s* p, ptrdiff_t step, Complex<float> v) {
    const __m128 low = _mm_unpacklo_ps(v.re, v.im), high = _mm_unpackhi_ps(v.re, v.im);
    _mm_storel_pi(reinterpret_cast<__m64*>(p), low);
    _mm_storeh_pi(reinterpret_cast<__m64*>(p + step), low);
    _mm_storel_pi(reinterpret_cast<__m64*>(p + 2 * step), high);
    _mm_storeh_pi(reinterpret_cast<__m64*>(p + 3 * step), high);
}
inline void store_strided(orv_complex_d* p, ptrdiff_t step, Complex<double> v) {
    _mm_storeu_pd(&p->re, _mm_unpacklo_pd(v.re, v.im));
    _mm_storeu_pd(&p[step].re, _mm_unpackhi_pd(v.re, v.im));
}

// The first `count` lanes, at least one and fewer than all. A load fills both parts of the others.
inline Complex<float> load_part(const orv_complex_s* p, ptrdiff_t step, int32_t count, float fill) {
    const orv_complex_s absent = {fill, fill};
    return parts_of(load_pairs(p, count > 1 ? p + step : &absent),
                    load_pairs(count > 2 ? p + 2 * step : &absent, &absent));
}
inline Complex<double> load_part(const orv_complex_d* p, ptrdiff_t, int32_t, double fill) {
    return parts_of(_mm_loadu_pd(&p->re), _mm_set1_pd(fill));
}
inline void store_part(orv_complex_s* p, ptrdiff_t step, int32_t count, Complex<float> v) {
    const __m128 low = _mm_unpacklo_ps(v.re, v.im);
    _mm_storel_pi(reinterpret_cast<__m64*>(p), low);
    if (count > 1) _mm_storeh_pi(reinterpret_cast<__m64*>(p + step), low);
    if (count > 2) _mm_storel_pi(reinterpret_cast<__m64*>(p + 2 * step), _mm_unpackhi_ps(v.re, v.im));
}
inline void store_part(orv_complex_d* p, ptrdiff_t, int32_t, Complex<double> v) { store_one(p, v); }

// ---- Pairs left as they lie, for operations on bits that go part by part ---------------------------------------------

template <class Part>
struct Pair {
    Part re, im;
};
template <class Part>
struct Lanes<Pair<Part>> {
    using V = typename Lanes<Part>::V;
    using Scalar = Part;
    static constexpr int width = Lanes<Part>::width / 2;
};

inline __m128 load(const Pair<float>* p) { return _mm_loadu_ps(&p->re); }
inline __m128d load(const Pair<double>* p) { return _mm_loadu_pd(&p->re); }
inline __m128 load_splat(const Pair<float>* p) {
    return _mm_castpd_ps(_mm_loaddup_pd(reinterpret_cast<const double*>(p)));
}
inline __m128d load_splat(const Pair<double>* p) { return load(p); }
inline __m128 load_strided(const Pair<float>* p, ptrdiff_t step) {
    const __m128 low = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(p + step));
}
inline __m128d load_strided(const Pair<double>* p, ptrdiff_t) { return load(p); }
inline void store(Pair<float>* p, __m128 v) { _mm_storeu_ps(&p->re, v); }
inline void store(Pair<double>* p, __m128d v) { _mm_storeu_pd(&p->re, v); }
inline void store_one(Pair<float>* p, __m128 v) { _mm_storel_pi(reinterpret_cast<__m64*>(p), v); }
inline void store_one(Pair<double>* p, __m128d v) { store(p, v); }
inline void store_strided(Pair<float>* p, ptrdiff_t step, __m128 v) {
    _mm_storel_pi(reinterpret_cast<__m64*>(p), v);
    _mm_storeh_pi(reinterpret_cast<__m64*>(p + step), v);
}
inline void store_strided(Pair<double>* p, ptrdiff_t, __m128d v) { store(p, v); }

}  // namespace orv::simd
