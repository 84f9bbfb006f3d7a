// Quadratic splines.
//
// Type 0: knots at the breaks, continuous first derivative, and the value in the middle of the first cell. With slopes s,
// m[i+1] = 2 s[i] - m[i], and the value v at the middle gives m[0] = 4 (v - y[0])/h[0] - s[0].
//
// Type 1: knots t[i] inside the cells, so that piece i, between t[i-1] and t[i], contains break i. The derivative is linear
// between neighbouring knots. With p[i] = t[i] - x[i] and q[i] = x[i+1] - t[i] its value at knot i follows from the rise
// over the cell, v[i] = 2 s[i] - (p[i] m[i] + q[i] m[i+1])/h[i], and piece i being one line in the derivative gives the rows
//   (p[i] p[i-1]/h[i-1]) m[i-1] + (p[i] + q[i-1] + q[i-1] p[i]/h[i] + p[i] q[i-1]/h[i-1]) m[i] + (q[i-1] q[i]/h[i]) m[i+1]
//     = 2 (s[i] q[i-1] + s[i-1] p[i]),
// diagonally dominant, since p < h and q < h (de Boor, A Practical Guide to Splines, ch. VI).
#include "fit/construct/construct.h"
#include "fit/construct/tridiagonal.h"

namespace orv::fit {
namespace {

template <class T, bool interleaved, bool uniform>
orv_df_status from_middle_value(const Construction<T>& c, const orv_services* services) {
    const int32_t cells = c.partition.count - 1;
    const int32_t workers = threads_for(services, c.functions);
    const auto work = [&](int32_t index) {
        for (int32_t f = index; f < c.functions; f += workers) {
            const auto y = values_of<interleaved>(c, f);
            T inverse = inverse_width_of<uniform>(c.partition, 0);
            T slope = (y[1] - y[0]) * inverse;
            T m = 4 * (c.bc[0] - y[0]) * inverse - slope;
            T* out = c.coeffs[f];
            for (int32_t i = 0;;) {
                out[0] = y[i];
                out[1] = m;
                out[2] = (slope - m) * inverse;
                if (++i == cells) break;
                m = 2 * slope - m;
                inverse = inverse_width_of<uniform>(c.partition, i);
                slope = (y[i + 1] - y[i]) * inverse;
                out += 3;
            }
        }
    };
    parallel(services, workers, work);
    return ORV_DF_OK;
}

// A break or knot to a cell: what the rows are made of.
template <class T>
struct KnotCell {
    T h, s, p, q;
};

template <bool interleaved, bool uniform, class T>
KnotCell<T> knot_cell(const Construction<T>& c, Values<T, interleaved> y, int32_t i) {
    const Partition<T>& part = c.partition;
    const T left = uniform ? part.first + static_cast<T>(i) * part.width : part.breaks[i];
    const T h = width_of<uniform>(part, i);
    const T p = c.ic[i] - left;
    return {h, slope_of<interleaved, uniform>(c, y, i), p, h - p};
}

template <class T>
struct Row {
    T lower, diagonal, upper, side;
};

// End rows, from the cell at the end: at the left end p is the part of the cell before the knot; at the right end the
// cell comes mirrored, and `direction` is -1.
template <class T>
Row<T> end_one_parabola(const KnotCell<T>& e, T, T) {
    return {0, 1, 1, 2 * e.s};
}
template <class T>
Row<T> end_second(const KnotCell<T>& e, T given, T direction) {
    return {0, 1 + e.p / e.h, e.q / e.h, 2 * e.s - direction * given * e.p};
}
template <class T>
Row<T> end_first(const KnotCell<T>&, T given, T) {
    return {0, 1, 0, given};
}

template <class T>
using EndRowFunction = Row<T> (*)(const KnotCell<T>&, T given, T direction);

template <class T>
constexpr EndRowFunction<T> end_rows[first_second + 1][2] = {
    {end_one_parabola<T>, end_one_parabola<T>},
    {end_second<T>, end_second<T>},
    {end_first<T>, end_first<T>},
    {end_first<T>, end_second<T>},
};

template <class T, bool interleaved, bool uniform>
orv_df_status between_knots(const Construction<T>& c, const orv_services*) {
    const int32_t n = c.partition.count, last = n - 2;
    auto* block = static_cast<T*>(orv_serv_allocate(4 * static_cast<size_t>(n) * sizeof(T), block_alignment));
    if (!block) return ORV_DF_NO_MEMORY;
    T *lower = block, *diagonal = block + n, *upper = block + 2 * n, *m = block + 3 * n;
    int32_t info = 0;
    for (int32_t f = 0; info == 0 && f < c.functions; ++f) {
        const auto y = values_of<interleaved>(c, f);
        const T given_left = c.boundary >= first_first ? c.bc[0] : T{},
                given_right = c.boundary >= first_first ? c.bc[1] : T{};
        const Row<T> first = end_rows<T>[c.boundary][0](knot_cell<interleaved, uniform>(c, y, 0), given_left, T(1));
        KnotCell<T> before = knot_cell<interleaved, uniform>(c, y, last);
        const KnotCell<T> mirrored = {before.h, before.s, before.q, before.p};
        const Row<T> final_row = end_rows<T>[c.boundary][1](mirrored, given_right, T(-1));
        diagonal[0] = first.diagonal;
        upper[0] = first.upper;
        m[0] = first.side;
        diagonal[n - 1] = final_row.diagonal;
        lower[n - 2] = final_row.upper;
        m[n - 1] = final_row.side;
        before = knot_cell<interleaved, uniform>(c, y, 0);
        for (int32_t i = 1; i <= last; ++i) {
            const KnotCell<T> after = knot_cell<interleaved, uniform>(c, y, i);
            const T across = before.q * after.p;
            lower[i - 1] = after.p * before.p / before.h;
            diagonal[i] = after.p + before.q + across / after.h + across / before.h;
            upper[i] = before.q * after.q / after.h;
            m[i] = 2 * (after.s * before.q + before.s * after.p);
            before = after;
        }
        tridiagonal::factor_and_solve(n, lower, diagonal, upper, m, info);
        // Each piece from the cell in which its outer half lies: the left half of the cell, the last piece the right half.
        T* out = c.coeffs[f];
        for (int32_t i = 0; info == 0 && i < n; ++i, out += 3) {
            const KnotCell<T> cell = knot_cell<interleaved, uniform>(c, y, i <= last ? i : last);
            const int32_t left = i <= last ? i : last;
            const T v = 2 * cell.s - (cell.p * m[left] + cell.q * m[left + 1]) / cell.h;
            out[0] = y[i];
            out[1] = m[i];
            out[2] = (i <= last ? (v - m[i]) / cell.p : (m[i] - v) / cell.q) / 2;
        }
    }
    orv_serv_deallocate(block);
    return info == 0 ? ORV_DF_OK : ORV_DF_SINGULAR;
}

template <class T>
constexpr WorkerTable<T> middle_workers = {
    {from_middle_value<T, true, false>, from_middle_value<T, true, true>},
    {from_middle_value<T, false, false>, from_middle_value<T, false, true>},
};
template <class T>
constexpr WorkerTable<T> knot_workers = {
    {between_knots<T, true, false>, between_knots<T, true, true>},
    {between_knots<T, false, false>, between_knots<T, false, true>},
};

template <class T>
int32_t construct_quadratic(const DFTask* task, int64_t, const orv_services* services) {
    if (!task) return ORV_DF_NULL_TASK;
    const bool by_middle = task->splineType == ORV_DF_TYPE_DEFAULT;
    if (!by_middle && task->splineType != ORV_DF_TYPE_KNOTS) return ORV_DF_BAD_METHOD;
    if (task->breakCount < 2) return ORV_DF_BAD_BREAK_COUNT;
    if (!known_function_layout(*task)) return ORV_DF_BAD_FUNCTION_HINT;
    Construction<T> c;
    if (by_middle) {
        if (task->bcType != ORV_DF_MIDDLE_VALUE) return ORV_DF_BAD_BOUNDARY_CONDITION;
        if (!task->bcData) return ORV_DF_NULL_BOUNDARY_DATA;
    } else {
        if (!(task->icType & ORV_DF_INTERNAL_KNOTS)) return ORV_DF_BAD_INTERNAL_CONDITION;
        const orv_df_status status = boundary_index(*task, c.boundary);
        if (status != ORV_DF_OK) return status;
        if (c.boundary > first_second) return ORV_DF_BAD_BOUNDARY_CONDITION;
        if (c.boundary == not_a_knot && task->breakCount == 2) return ORV_DF_BAD_BREAK_COUNT;
        if (!task->icData) return ORV_DF_NULL_INTERNAL_DATA;
    }
    const orv_df_status status = prepare_data(*task, c);
    if (status != ORV_DF_OK) return status;
    return (by_middle ? middle_workers<T> : knot_workers<T>)[!c.interleaved][c.uniform](c, services);
}

}  // namespace
}  // namespace orv::fit

ORV_FIT_CONSTRUCTION(Quadratic, construct_quadratic)
