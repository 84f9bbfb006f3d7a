// The system of the natural spline.
//
// Its first derivatives m at the breaks solve the tridiagonal system
//   m[i-1]/h[i-1] + 2 (1/h[i-1] + 1/h[i]) m[i] + m[i+1]/h[i] = 3 (s[i-1]/h[i-1] + s[i]/h[i]),
// diagonally dominant by 2 to 1, with a row at each end by boundary index. The matrix is that of all functions.
//
// Periodic ends join the rows of the first and the last break into one, which makes the system cyclic in the first n - 1
// unknowns. With b the corner element, the matrix is T + u v', T tridiagonal, u = (g, 0, ..., 0, b), v = (1, 0, ..., 0, b/g),
// g = -d[0], and (Sherman & Morrison 1950) m = x - z (v'x)/(1 + v'z) with T x = right side, T z = u.
#pragma once

#include "fit/construct/construct.h"

namespace orv::fit {

// One block of scratch: the matrix, a column of z for periodic ends, and for each function at work a column of slopes
// and one of right sides, which the solver turns into derivatives.
template <class T>
struct Scratch {
    T *inverse, *lower, *upper, *diagonal, *z, *slopes, *sides;
};

// Elements of scratch for n breaks and a functions at work.
inline int64_t scratch_elements(int64_t n, int64_t a) { return (2 * a + 3) * (n - 1) + 2 * n + (a + 2) * n - 2; }

template <class T>
Scratch<T> lay_out(T* block, int32_t n, int32_t a) {
    Scratch<T> s;
    s.inverse = block;
    s.lower = s.inverse + (n - 1);
    s.upper = s.lower + (n - 1);
    s.diagonal = s.upper + (n - 1);
    s.z = s.diagonal + n;
    s.slopes = s.z + n;
    s.sides = s.slopes + static_cast<ptrdiff_t>(a) * (n - 1);
    return s;
}

// The row of one end: d m[end] + e m[next] = right side, from the first two widths, slopes and the boundary value.
template <class T>
struct EndRow {
    T diagonal, coupling, side;
};

template <class T>
EndRow<T> row_not_a_knot(T h0, T h1, T s0, T s1, T, T) {
    return {h1, h0 + h1, ((3 * h0 + 2 * h1) * h1 * s0 + h0 * h0 * s1) / (h0 + h1)};
}
template <class T>
EndRow<T> row_first(T, T, T, T, T given, T) {
    return {1, 0, given};
}
// direction is 1 at the left end and -1 at the right one; a free end has second derivative 0.
template <class T>
EndRow<T> row_second(T h0, T, T s0, T, T given, T direction) {
    return {2, 1, 3 * s0 - direction * h0 * given / 2};
}

template <class T>
using EndRowFunction = EndRow<T> (*)(T h0, T h1, T s0, T s1, T given, T direction);

template <class T>
constexpr EndRowFunction<T> end_rows[periodic][2] = {
    {row_not_a_knot<T>, row_not_a_knot<T>}, {row_second<T>, row_second<T>}, {row_first<T>, row_first<T>},
    {row_first<T>, row_second<T>},          {row_second<T>, row_first<T>},  {row_second<T>, row_second<T>},
};

// The row of one end. Slopes enter its right side alone, so the matrix part is the same for all functions.
template <class T, bool uniform>
EndRow<T> end_row(const Construction<T>& c, bool right, T s0, T s1) {
    const int32_t last = c.partition.count - 2;
    const int32_t outer = right ? last : 0, inner = last == 0 ? 0 : right ? last - 1 : 1;
    const T given = c.boundary >= first_first ? c.bc[right] : T{};
    return end_rows<T>[c.boundary][right](width_of<uniform>(c.partition, outer), width_of<uniform>(c.partition, inner),
                                          s0, s1, given, right ? T(-1) : T(1));
}

// Both couplings of cells `from` to `to` - 1, and the diagonal of the interior rows among breaks `from` to `to` - 1.
// Uniform widths cancel.
template <class T, bool uniform>
void interior_matrix(int32_t from, int32_t to, const Scratch<T>& w) {
    constexpr int32_t width = Lanes<T>::width;
    const auto two = splat(T{2});
    int32_t i = from;
    if (i == 0) {
        w.lower[0] = w.upper[0] = uniform ? 1 : w.inverse[0];
        ++i;
    }
    for (; i + width <= to; i += width) {
        const auto right = uniform ? splat(T{1}) : load(w.inverse + i);
        const auto left = uniform ? right : load(w.inverse + i - 1);
        store(w.lower + i, right);
        store(w.upper + i, right);
        store(w.diagonal + i, two * (left + right));
    }
    for (; i < to; ++i) {
        w.lower[i] = w.upper[i] = uniform ? 1 : w.inverse[i];
        w.diagonal[i] = uniform ? 4 : 2 * (w.inverse[i - 1] + w.inverse[i]);
    }
}

// Right sides of the interior rows among breaks `from` to `to` - 1.
template <class T, bool uniform>
void interior_sides(int32_t from, int32_t to, const T* inverse, const T* s, T* side) {
    constexpr int32_t width = Lanes<T>::width;
    const auto three = splat(T{3});
    int32_t i = from > 0 ? from : 1;
    for (; i + width <= to; i += width) {
        const auto left = load(s + i - 1), right = load(s + i);
        store(side + i, three * (uniform ? left + right : left * load(inverse + i - 1) + right * load(inverse + i)));
    }
    for (; i < to; ++i) side[i] = 3 * (uniform ? s[i - 1] + s[i] : s[i - 1] * inverse[i - 1] + s[i] * inverse[i]);
}

// Number of unknowns of the tridiagonal system: a periodic spline has one derivative for both ends.
template <class T>
int32_t unknowns(const Construction<T>& c) {
    return c.boundary == periodic ? c.partition.count - 1 : c.partition.count;
}

template <class T, bool uniform>
void matrix_tile(const Construction<T>& c, const Scratch<T>& w, int32_t from, int32_t to) {
    cell_widths<uniform>(c.partition, from, to, static_cast<T*>(nullptr), w.inverse + from);
    interior_matrix<T, uniform>(from, to, w);
}

// The end rows of the matrix, or what makes it the tridiagonal part of a cyclic one.
template <class T, bool uniform>
void end_matrix(const Construction<T>& c, const Scratch<T>& w) {
    const int32_t n = c.partition.count;
    if (c.boundary != periodic) {
        const EndRow<T> left = end_row<T, uniform>(c, false, 0, 0);
        const EndRow<T> right = end_row<T, uniform>(c, true, 0, 0);
        w.diagonal[0] = left.diagonal;
        w.upper[0] = left.coupling;
        w.diagonal[n - 1] = right.diagonal;
        w.lower[n - 2] = right.coupling;
        return;
    }
    const T corner = uniform ? 1 : w.inverse[n - 2], first = uniform ? 1 : w.inverse[0];
    const T d0 = 2 * (corner + first);
    w.diagonal[0] = d0;
    for (int32_t i = 0; i < n - 1; ++i) w.z[i] = 0;
    const T g = -d0;
    w.z[n - 2] = corner;
    w.z[0] += g;
    w.diagonal[0] -= g;
    w.diagonal[n - 2] -= corner * corner / g;
}

// Slopes and interior right sides of one function, into its columns.
template <class T, bool interleaved, bool uniform>
void side_tile(const Construction<T>& c, int32_t function, const T* inverse, T* s, T* side, int32_t from, int32_t to) {
    slopes(values_of<interleaved>(c, function), from, to, inverse + from, s + from);
    interior_sides<T, uniform>(from, to, inverse, s, side);
}

template <class T, bool uniform>
void end_sides(const Construction<T>& c, const T* inverse, const T* s, T* side) {
    const int32_t n = c.partition.count;
    if (c.boundary == periodic) {
        side[0] = 3 * (uniform ? s[n - 2] + s[0] : s[n - 2] * inverse[n - 2] + s[0] * inverse[0]);
    } else {
        const int32_t last = n - 2, next = n > 2 ? 1 : 0;
        side[0] = end_row<T, uniform>(c, false, s[0], s[next]).side;
        side[n - 1] = end_row<T, uniform>(c, true, s[last], s[last - next]).side;
    }
}

// The correction that turns the solution of the tridiagonal system into that of the cyclic one.
template <class T, bool uniform>
void close_period(int32_t n, const Scratch<T>& w, T* x) {
    const T corner = uniform ? 1 : w.inverse[n - 2], first = uniform ? 1 : w.inverse[0];
    const T tail = corner / (-2 * (corner + first));
    const T factor = (x[0] + tail * x[n - 2]) / (1 + (w.z[0] + tail * w.z[n - 2]));
    for (int32_t i = 0; i < n - 1; ++i) x[i] -= factor * w.z[i];
    x[n - 1] = x[0];
}

}  // namespace orv::fit
