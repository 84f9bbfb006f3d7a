// What the construction kernels share: the task reduced to an element type and to indices, slopes, coefficient cells.
#pragma once

#include "fit/task.h"
#include "fit/workers.h"
#include "simd/lanes.h"

namespace orv::fit {

using namespace simd;

// Boundary conditions, as indices of the tables of workers and of end actions.
enum BoundaryIndex : int32_t {
    not_a_knot,
    free_end,
    first_first,
    first_second,
    second_first,
    second_second,
    periodic,
    no_condition,
    boundary_indices
};

// ORV_DF_OK and the index, or the status that refuses the code or the lack of its data.
orv_df_status boundary_index(const DFTask& task, BoundaryIndex& index);

// A construction: task, codes and data. `interleaved` and `uniform` choose the worker.
template <class T>
struct Construction {
    Partition<T> partition;
    int32_t functions;  // at least 1
    const T* const* funcs;
    T* const* coeffs;
    const T* bc;
    const T* ic;
    BoundaryIndex boundary;
    bool interleaved, uniform;
};

enum class NoCondition { refused, taken };

// The tests that all kernels but Quadratic make, in their order, and the construction.
template <class T>
orv_df_status prepare(const DFTask* task, int64_t least_breaks, NoCondition no_condition_is,
                      Construction<T>& construction);

// Its last part: layout, functions and coefficients, without the boundary code.
template <class T>
orv_df_status prepare_data(const DFTask& task, Construction<T>& construction);

// The layout is refused before the boundary code is looked at.
inline bool known_function_layout(const DFTask& task) {
    return task.funcHint == ORV_DF_COLUMNS || task.funcHint == ORV_DF_ROWS || task.funcHint == ORV_DF_ROW_POINTERS ||
           task.funcHint == ORV_DF_NO_HINT;
}

// ORV_DF_NOT_PERIODIC when first and last value of a function differ or are unordered.
template <class T>
orv_df_status check_periodic(const Construction<T>& construction);

// The values of one function.
template <class T, bool interleaved>
struct Values {
    const T* y;
    int32_t step;
    T operator[](int32_t i) const { return y[interleaved ? i * step : i]; }
    typename Lanes<T>::V lanes(int32_t i) const {
        if constexpr (!interleaved) {
            return load(y + i);
        } else {
            T row[Lanes<T>::width];
            for (int k = 0; k < Lanes<T>::width; ++k) row[k] = (*this)[i + k];
            return load(row);
        }
    }
};

template <bool interleaved, class T>
Values<T, interleaved> values_of(const Construction<T>& c, int32_t function) {
    return interleaved ? Values<T, interleaved>{c.funcs[0] + function, c.functions}
                       : Values<T, interleaved>{c.funcs[function], 1};
}

template <bool uniform, class T>
T width_of(const Partition<T>& p, int32_t cell) {
    return uniform ? p.width : p.breaks[cell + 1] - p.breaks[cell];
}

template <bool uniform, class T>
T inverse_width_of(const Partition<T>& p, int32_t cell) {
    return uniform ? p.inverse_width : 1 / (p.breaks[cell + 1] - p.breaks[cell]);
}

template <bool interleaved, bool uniform, class T>
T slope_of(const Construction<T>& c, Values<T, interleaved> y, int32_t cell) {
    return (y[cell + 1] - y[cell]) * inverse_width_of<uniform>(c.partition, cell);
}

// Widths and inverse widths of cells `from` to `to` - 1, written from `h` and `inverse` on. Null `h` leaves widths out.
template <bool uniform, class T>
void cell_widths(const Partition<T>& p, int32_t from, int32_t to, T* h, T* inverse) {
    constexpr int32_t width = Lanes<T>::width;
    const auto one = splat(T{1});
    int32_t i = from;
    for (; i + width <= to; i += width, inverse += width) {
        const auto cell = uniform ? splat(p.width) : load(p.breaks + i + 1) - load(p.breaks + i);
        store(inverse, uniform ? splat(p.inverse_width) : one / cell);
        if (h) {
            store(h, cell);
            h += width;
        }
    }
    for (; i < to; ++i) {
        *inverse++ = inverse_width_of<uniform>(p, i);
        if (h) *h++ = width_of<uniform>(p, i);
    }
}

// Inverse widths and divided differences of cells `from` to `to` - 1 in one pass, for a single function.
template <bool uniform, class T, bool interleaved>
void widths_and_slopes(const Partition<T>& p, Values<T, interleaved> y, int32_t from, int32_t to, T* inverse, T* s) {
    constexpr int32_t width = Lanes<T>::width;
    const auto one = splat(T{1});
    int32_t i = from;
    for (; i + width <= to; i += width, inverse += width, s += width) {
        const auto r = uniform ? splat(p.inverse_width) : one / (load(p.breaks + i + 1) - load(p.breaks + i));
        store(inverse, r);
        store(s, (y.lanes(i + 1) - y.lanes(i)) * r);
    }
    for (; i < to; ++i) {
        *inverse = inverse_width_of<uniform>(p, i);
        *s++ = (y[i + 1] - y[i]) * *inverse++;
    }
}

// Divided differences of cells `from` to `to` - 1, written from `s` on; `inverse` holds the inverse widths of the same.
template <class T, bool interleaved>
void slopes(Values<T, interleaved> y, int32_t from, int32_t to, const T* inverse, T* s) {
    constexpr int32_t width = Lanes<T>::width;
    int32_t i = from;
    for (; i + width <= to; i += width, s += width, inverse += width)
        store(s, (y.lanes(i + 1) - y.lanes(i)) * load(inverse));
    for (; i < to; ++i) *s++ = (y[i + 1] - y[i]) * *inverse++;
}

inline void store_cells(double* out, __m128d c0, __m128d c1, __m128d c2, __m128d c3) {
    store(out, interleave_low(c0, c1));
    store(out + 2, interleave_low(c2, c3));
    store(out + 4, interleave_high(c0, c1));
    store(out + 6, interleave_high(c2, c3));
}
inline void store_cells(float* out, __m128 c0, __m128 c1, __m128 c2, __m128 c3) {
    transpose(c0, c1, c2, c3);
    store(out, c0);
    store(out + 4, c1);
    store(out + 8, c2);
    store(out + 12, c3);
}

// Cubic cells `from` to `to` - 1 from values, first derivatives and slopes; `m`, `s` and `inverse` start at `from`. With
// bend = m[i] + m[i+1] - 2 s[i], c2 = (3 s[i] - 2 m[i] - m[i+1])/h is (s[i] - m[i] - bend)/h and c3 is bend/h^2.
template <class T, bool interleaved>
void cubic_cells(Values<T, interleaved> y, int32_t from, int32_t to, const T* m, const T* s, const T* inverse,
                 T* coeffs) {
    constexpr int32_t width = Lanes<T>::width;
    T* out = coeffs + 4 * static_cast<ptrdiff_t>(from);
    int32_t i = from, k = 0;
    for (; i + width <= to; i += width, k += width, out += 4 * width) {
        const auto left = load(m + k), right = load(m + k + 1), slope = load(s + k), r = load(inverse + k);
        const auto bend = (left + right) - (slope + slope);
        store_cells(out, y.lanes(i), left, ((slope - left) - bend) * r, bend * r * r);
    }
    for (; i < to; ++i, ++k, out += 4) {
        out[0] = y[i];
        out[1] = m[k];
        const T bend = (m[k] + m[k + 1]) - (s[k] + s[k]);
        out[2] = ((s[k] - m[k]) - bend) * inverse[k];
        out[3] = bend * inverse[k] * inverse[k];
    }
}

// Workers by layout and spacing.
template <class T>
using Worker = orv_df_status (*)(const Construction<T>&, const orv_services*);
template <class T>
using WorkerTable = Worker<T>[2][2];

}  // namespace orv::fit

// The two exported entries of a kind of spline: construct<T>(task, method, services) of orv::fit makes the coefficients.
#define ORV_FIT_CONSTRUCTION(name, construct)                                                                       \
    ORV_API int32_t orv_df_kernel_dDF##name##Spline1D(const DFTask* task, const void*, const void*, int64_t method, \
                                                      const orv_services* services) {                               \
        return orv::fit::construct<double>(task, method, services);                                                 \
    }                                                                                                               \
    ORV_API int32_t orv_df_kernel_sDF##name##Spline1D(const DFTask* task, const void*, const void*, int64_t method, \
                                                      const orv_services* services) {                               \
        return orv::fit::construct<float>(task, method, services);                                                  \
    }
