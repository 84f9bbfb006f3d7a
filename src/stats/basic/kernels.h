// The arithmetic of the basic pass on one block of observations. Everything is done in double lanes, for float data too.
#pragma once

#include "simd/lanes.h"
#include "stats/data.h"

namespace orv::stats {

using simd::first_lane_alone, simd::interleave_high, simd::interleave_low, simd::load, simd::load_doubles,
    simd::load_one, simd::load_one_double, simd::load_splat, simd::splat, simd::store, simd::store_doubles,
    simd::sum_of_lanes;
using Pair = simd::Lanes<double>::V;

// ---- Sums of powers ------------------------------------------------------------------------------------------------

// Running sums of the first `order` powers, two observations a lane pair.
template <int order>
struct PowerLanes {
    Pair s1{}, s2{}, s3{}, s4{};

    // d is the deviation, t = w d.
    void add(Pair d, Pair t) {
        s1 += t;
        if constexpr (order >= 2) s2 += t *= d;
        if constexpr (order >= 3) s3 += t *= d;
        if constexpr (order >= 4) s4 += t * d;
    }
    void add(const PowerLanes& other) {
        s1 += other.s1;
        if constexpr (order >= 2) s2 += other.s2;
        if constexpr (order >= 3) s3 += other.s3;
        if constexpr (order >= 4) s4 += other.s4;
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
    const Pair centre = splat(shift);
    PowerLanes<order> a, b, c, d;
    const auto pair = [&](PowerLanes<order>& lanes, int32_t at) {
        Pair deviation = load_doubles(x + at);
        if constexpr (shifted) deviation -= centre;
        lanes.add(deviation, weighted ? deviation * load_doubles(w + at) : deviation);
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
        Pair deviation = load_one_double(x + i);
        if constexpr (shifted) deviation -= centre;
        // The idle upper lane must add zeros, not the shift.
        deviation = first_lane_alone(deviation);
        a.add(deviation, weighted ? deviation * load_one_double(w + i) : deviation);
    }
    if constexpr (sets >= 4) {
        c.add(d);
        b.add(c);
    }
    if constexpr (sets >= 2) a.add(b);
    return {sum_of_lanes(a.s1), sum_of_lanes(a.s2), sum_of_lanes(a.s3), sum_of_lanes(a.s4)};
}

struct WeightSums {
    double w, w2;
};

template <class T>
[[gnu::noinline]] WeightSums weight_sums(const T* w, int32_t count) {
    PowerLanes<2> lanes;
    int32_t i = 0;
    for (; i + 2 <= count; i += 2) lanes.add(load_doubles(w + i), load_doubles(w + i));
    if (i < count) lanes.add(load_one_double(w + i), load_one_double(w + i));
    return {sum_of_lanes(lanes.s1), sum_of_lanes(lanes.s2)};
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
        const Pair centre = splat(shift ? shift[j] : 0);
        int32_t i = 0;
        if (scale) {
            for (; i + 2 <= count; i += 2) store_doubles(to + i, (load_doubles(from + i) - centre) * load(scale + i));
        } else {
            for (; i + 4 <= count; i += 4) {
                store_doubles(to + i, load_doubles(from + i) - centre);
                store_doubles(to + i + 2, load_doubles(from + i + 2) - centre);
            }
            for (; i + 2 <= count; i += 2) store_doubles(to + i, load_doubles(from + i) - centre);
        }
        if (i < count) {
            Pair last = load_one_double(from + i) - centre;
            if (scale) last *= load_one(scale + i);
            store_doubles(to + i, first_lane_alone(last));
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
        const Pair centre = shift ? load(shift + j) : Pair{};
        U* first = out + ptrdiff_t{j} * stride;
        U* second = first + stride;
        const T* from = x + j;
        int32_t i = 0;
        for (; i + 2 <= count; i += 2, from += 2 * next) {
            Pair a = load_doubles(from) - centre;
            Pair b = load_doubles(from + next) - centre;
            if (scale) {
                a *= load_splat(scale + i);
                b *= load_splat(scale + i + 1);
            }
            store_doubles(first + i, interleave_low(a, b));
            store_doubles(second + i, interleave_high(a, b));
        }
        if (i < count) {
            Pair a = load_doubles(from) - centre;
            if (scale) a *= load_splat(scale + i);
            store_doubles(first + i, interleave_low(a, Pair{}));
            store_doubles(second + i, interleave_high(a, Pair{}));
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
    Pair c00{}, c10{}, c01{}, c11{};
    for (int32_t k = 0; k < count; k += 2) {
        Pair a0 = load(a + k);
        Pair a1 = rows == 2 ? load(a + stride + k) : a0;
        if constexpr (weighted) {
            const Pair weight = load(w + k);
            a0 *= weight;
            a1 *= weight;
        }
        const Pair b0 = load(b + k);
        c00 += a0 * b0;
        if constexpr (rows == 2) c10 += a1 * b0;
        if constexpr (columns == 2) {
            const Pair b1 = load(b + stride + k);
            c01 += a0 * b1;
            if constexpr (rows == 2) c11 += a1 * b1;
        }
    }
    c[0] += sum_of_lanes(c00);
    if (rows == 2 && !diagonal) c[1] += sum_of_lanes(c10);
    if constexpr (columns == 2) {
        c[c_stride] += sum_of_lanes(c01);
        if constexpr (rows == 2) c[c_stride + 1] += sum_of_lanes(c11);
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
