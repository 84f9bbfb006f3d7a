// The arithmetic of the basic pass on one block of observations. Everything is done in double lanes, for float data too.
#pragma once

#include "stats/data.h"

#include <smmintrin.h>

namespace orv::stats {

inline __m128d load_two(const double* at) { return _mm_loadu_pd(at); }
inline __m128d load_two(const float* at) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at))));
}
inline __m128d load_one(const double* at) { return _mm_load_sd(at); }
inline __m128d load_one(const float* at) { return _mm_cvtss_sd(_mm_setzero_pd(), _mm_load_ss(at)); }

inline void store_two(double* at, __m128d value) { _mm_storeu_pd(at, value); }
inline void store_two(float* at, __m128d value) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(at), _mm_castps_si128(_mm_cvtpd_ps(value)));
}
inline void store_one(double* at, __m128d value) { _mm_store_sd(at, value); }
inline void store_one(float* at, __m128d value) { _mm_store_ss(at, _mm_cvtpd_ps(value)); }

inline double add_lanes(__m128d value) { return _mm_cvtsd_f64(_mm_add_sd(value, _mm_unpackhi_pd(value, value))); }

// ---- Sums of powers ------------------------------------------------------------------------------------------------

// Running sums of the first `order` powers, two observations a lane pair.
template <int order>
struct PowerLanes {
    __m128d s1 = _mm_setzero_pd(), s2 = _mm_setzero_pd(), s3 = _mm_setzero_pd(), s4 = _mm_setzero_pd();

    // d is the deviation, t = w d.
    void add(__m128d d, __m128d t) {
        s1 = _mm_add_pd(s1, t);
        if constexpr (order >= 2) s2 = _mm_add_pd(s2, t = _mm_mul_pd(t, d));
        if constexpr (order >= 3) s3 = _mm_add_pd(s3, t = _mm_mul_pd(t, d));
        if constexpr (order >= 4) s4 = _mm_add_pd(s4, _mm_mul_pd(t, d));
    }
    void add(const PowerLanes& other) {
        s1 = _mm_add_pd(s1, other.s1);
        if constexpr (order >= 2) s2 = _mm_add_pd(s2, other.s2);
        if constexpr (order >= 3) s3 = _mm_add_pd(s3, other.s3);
        if constexpr (order >= 4) s4 = _mm_add_pd(s4, other.s4);
    }
};

struct PowerSums {
    double s1 = 0, s2 = 0, s3 = 0, s4 = 0;
};

// Adds up w (x - shift)^k, k = 1 to `order`. The additions of one set of lanes wait for each other, four cycles each: with
// few sums several sets hide that wait; with four sums one set fills both adders and the eight registers.
template <int order, bool weighted, bool shifted, class T, class V>
[[gnu::noinline]] PowerSums power_sums(const T* x, const V* w, int32_t count, double shift) {
    constexpr int32_t sets = order == 1 ? 4 : order <= 3 ? 2 : 1;
    const __m128d centre = _mm_set1_pd(shift);
    PowerLanes<order> a, b, c, d;
    const auto pair = [&](PowerLanes<order>& lanes, int32_t at) {
        __m128d deviation = load_two(x + at);
        if constexpr (shifted) deviation = _mm_sub_pd(deviation, centre);
        lanes.add(deviation, weighted ? _mm_mul_pd(deviation, load_two(w + at)) : deviation);
    };
    int32_t i = 0;
    for (; i + 2 * sets <= count; i += 2 * sets) {
        pair(a, i);
        if constexpr (sets >= 2) pair(b, i + 2);
        if constexpr (sets >= 4) {
            pair(c, i + 4);
            pair(d, i + 6);
        }
    }
    for (; i + 2 <= count; i += 2) pair(a, i);
    if (i < count) {
        __m128d deviation = load_one(x + i);
        if constexpr (shifted) deviation = _mm_sub_sd(deviation, centre);
        // The idle upper lane must add zeros, not the shift.
        deviation = _mm_move_sd(_mm_setzero_pd(), deviation);
        a.add(deviation, weighted ? _mm_mul_pd(deviation, load_one(w + i)) : deviation);
    }
    if constexpr (sets >= 4) {
        c.add(d);
        b.add(c);
    }
    if constexpr (sets >= 2) a.add(b);
    return {add_lanes(a.s1), add_lanes(a.s2), add_lanes(a.s3), add_lanes(a.s4)};
}

struct WeightSums {
    double w, w2;
};

template <class T>
[[gnu::noinline]] WeightSums weight_sums(const T* w, int32_t count) {
    PowerLanes<2> lanes;
    int32_t i = 0;
    for (; i + 2 <= count; i += 2) lanes.add(load_two(w + i), load_two(w + i));
    if (i < count) lanes.add(load_one(w + i), load_one(w + i));
    return {add_lanes(lanes.s1), add_lanes(lanes.s2)};
}

// ---- Packing -------------------------------------------------------------------------------------------------------

// Writes the block's deviations component by component, `stride` apart, to `out`: (x - shift) times `scale` (one factor for
// each observation) if there is one. `shift` null means 0. An odd count is padded with a zero, so stride is even.
template <class T, class U>
void pack_rows(const T* x, Steps steps, int32_t components, int32_t count, const double* shift, const double* scale,
               U* out, int32_t stride) {
    for (int32_t j = 0; j < components; ++j) {
        const T* from = x + j * steps.by_component;
        U* to = out + ptrdiff_t{j} * stride;
        const __m128d centre = _mm_set1_pd(shift ? shift[j] : 0);
        int32_t i = 0;
        if (scale) {
            for (; i + 2 <= count; i += 2)
                store_two(to + i, _mm_mul_pd(_mm_sub_pd(load_two(from + i), centre), _mm_loadu_pd(scale + i)));
        } else {
            for (; i + 4 <= count; i += 4) {
                store_two(to + i, _mm_sub_pd(load_two(from + i), centre));
                store_two(to + i + 2, _mm_sub_pd(load_two(from + i + 2), centre));
            }
            for (; i + 2 <= count; i += 2) store_two(to + i, _mm_sub_pd(load_two(from + i), centre));
        }
        if (i < count) {
            __m128d last = _mm_sub_sd(load_one(from + i), centre);
            if (scale) last = _mm_mul_sd(last, _mm_load_sd(scale + i));
            store_two(to + i, _mm_move_sd(_mm_setzero_pd(), last));
        }
    }
}

// The same from observations that are each contiguous: two by two, transposed in registers.
template <class T, class U>
void pack_columns(const T* x, Steps steps, int32_t components, int32_t count, const double* shift, const double* scale,
                  U* out, int32_t stride) {
    const ptrdiff_t next = steps.by_observation;
    int32_t j = 0;
    for (; j + 2 <= components; j += 2) {
        const __m128d centre = shift ? _mm_loadu_pd(shift + j) : _mm_setzero_pd();
        U* first = out + ptrdiff_t{j} * stride;
        U* second = first + stride;
        const T* from = x + j;
        int32_t i = 0;
        for (; i + 2 <= count; i += 2, from += 2 * next) {
            __m128d a = _mm_sub_pd(load_two(from), centre);
            __m128d b = _mm_sub_pd(load_two(from + next), centre);
            if (scale) {
                a = _mm_mul_pd(a, _mm_loaddup_pd(scale + i));
                b = _mm_mul_pd(b, _mm_loaddup_pd(scale + i + 1));
            }
            store_two(first + i, _mm_unpacklo_pd(a, b));
            store_two(second + i, _mm_unpackhi_pd(a, b));
        }
        if (i < count) {
            __m128d a = _mm_sub_pd(load_two(from), centre);
            if (scale) a = _mm_mul_pd(a, _mm_loaddup_pd(scale + i));
            store_two(first + i, _mm_unpacklo_pd(a, _mm_setzero_pd()));
            store_two(second + i, _mm_unpackhi_pd(a, _mm_setzero_pd()));
        }
    }
    if (j < components) {
        const double centre = shift ? shift[j] : 0;
        U* to = out + ptrdiff_t{j} * stride;
        for (int32_t i = 0; i < count; ++i)
            to[i] = static_cast<U>((static_cast<double>(x[j + i * next]) - centre) * (scale ? scale[i] : 1));
        if (count & 1) to[count] = 0;
    }
}

template <class T, class U>
void pack(const T* x, Steps steps, int32_t components, int32_t count, const double* shift, const double* scale, U* out,
          int32_t stride) {
    if (steps.by_observation == 1)
        pack_rows(x, steps, components, count, shift, scale, out, stride);
    else
        pack_columns(x, steps, components, count, shift, scale, out, stride);
}

// ---- Cross-products ------------------------------------------------------------------------------------------------

// Adds sum_k w_k a_i(k) b_j(k) for `rows` by `columns` components to c, by columns. Two by two keeps four independent sums in
// registers and uses each load twice. On the diagonal the lower corner is left out.
template <int rows, int columns, bool weighted>
inline void cross_tile(const double* a, const double* b, int32_t stride, const double* w, int32_t count, double* c,
                       ptrdiff_t c_stride, bool diagonal) {
    __m128d c00 = _mm_setzero_pd(), c10 = c00, c01 = c00, c11 = c00;
    for (int32_t k = 0; k < count; k += 2) {
        __m128d a0 = _mm_loadu_pd(a + k);
        __m128d a1 = rows == 2 ? _mm_loadu_pd(a + stride + k) : a0;
        if constexpr (weighted) {
            const __m128d weight = _mm_loadu_pd(w + k);
            a0 = _mm_mul_pd(a0, weight);
            a1 = _mm_mul_pd(a1, weight);
        }
        const __m128d b0 = _mm_loadu_pd(b + k);
        c00 = _mm_add_pd(c00, _mm_mul_pd(a0, b0));
        if constexpr (rows == 2) c10 = _mm_add_pd(c10, _mm_mul_pd(a1, b0));
        if constexpr (columns == 2) {
            const __m128d b1 = _mm_loadu_pd(b + stride + k);
            c01 = _mm_add_pd(c01, _mm_mul_pd(a0, b1));
            if constexpr (rows == 2) c11 = _mm_add_pd(c11, _mm_mul_pd(a1, b1));
        }
    }
    c[0] += add_lanes(c00);
    if (rows == 2 && !diagonal) c[1] += add_lanes(c10);
    if constexpr (columns == 2) {
        c[c_stride] += add_lanes(c01);
        if constexpr (rows == 2) c[c_stride + 1] += add_lanes(c11);
    }
}

// The upper triangle, by columns, of the cross-products of packed deviations; `count` is even.
template <bool weighted>
[[gnu::noinline]] void cross_products(const double* packed, int32_t stride, const double* w, int32_t count,
                                      int32_t components, double* c, ptrdiff_t c_stride) {
    const auto component = [&](int32_t j) { return packed + ptrdiff_t{j} * stride; };
    int32_t j = 0;
    for (; j + 2 <= components; j += 2)
        for (int32_t i = 0; i <= j; i += 2)
            cross_tile<2, 2, weighted>(component(i), component(j), stride, w, count, c + j * c_stride + i, c_stride,
                                       i == j);
    if (j == components) return;
    int32_t i = 0;
    for (; i < j; i += 2)
        cross_tile<2, 1, weighted>(component(i), component(j), stride, w, count, c + j * c_stride + i, c_stride, false);
    cross_tile<1, 1, weighted>(component(j), component(j), stride, w, count, c + j * c_stride + i, c_stride, true);
}

}  // namespace orv::stats
