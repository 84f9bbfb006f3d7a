// Tridiagonal elimination from both ends.
//
// Plain elimination is one long chain of divisions, r[i] = 1/(d[i] - l[i-1] u[i-1] r[i-1]), each waiting for the one
// before. Two things break it. The halves of the matrix are eliminated at the same time, one in each lane of a register,
// down from the first row and up from the last one, until they meet in a middle row. And two rows are taken per division:
// with a = l[i-1] u[i-1], b = l[i] u[i],
//   d'[i]         = d[i] - a r[i-1],
//   d'[i] d'[i+1] = (d[i+1] d[i] - b) - d[i+1] a r[i-1],
// so that r[i+1] is the quotient of the two and does not wait for r[i]. Where the product leaves the range of the format
// the pair is done row by row.
//
// After elimination x[i] = z[i] - w[i] x[i'], i' being the neighbour on the side of the middle, z[i] = y[i] r[i] and w[i]
// the coupling to i' times r[i]. Substitution takes two rows at a time as well:
//   x[i] = (z[i] - w[i] z[i']) + (w[i] w[i']) x[i''].
//
// Stored: at `diagonal` r; at the coupling of row i to its outer neighbour the multiplier g of that neighbour's row, at
// its coupling to the inner one w. "Outer" is lower[i-1] in the upper half of the matrix and upper[i] in the lower half.
#include "services/export.h"

#include <orv/tridiagonal.h>

#include <cmath>
#include <cstddef>
#include <emmintrin.h>

namespace {

using V = __m128d;  // lane 0: the half that runs down from the first row; lane 1: the half that runs up from the last

V load2(const double* p) { return _mm_loadu_pd(p); }
V load2(const float* p) { return _mm_cvtps_pd(_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(p)))); }
void store2(double* p, V v) { _mm_storeu_pd(p, v); }
void store2(float* p, V v) { _mm_storel_pi(reinterpret_cast<__m64*>(p), _mm_cvtpd_ps(v)); }

// Two rows of both halves: outer[0] and outer[1] are the outer row and the inner row of each.
struct Rows {
    V outer, inner;
};

// Elements p[i], p[i+1] of the upper half and q[j], q[j-1] of the lower one.
template <class T>
Rows rows_at(const T* p, ptrdiff_t i, const T* q, ptrdiff_t j) {
    const V down = load2(p + i), up = load2(q + j - 1);
    return {_mm_shuffle_pd(down, up, 2), _mm_shuffle_pd(down, up, 1)};
}

template <class T>
void store_rows(T* p, ptrdiff_t i, T* q, ptrdiff_t j, const Rows& rows) {
    store2(p + i, _mm_unpacklo_pd(rows.outer, rows.inner));
    store2(q + j - 1, _mm_unpackhi_pd(rows.inner, rows.outer));
}

V pair(double down, double up) { return _mm_set_pd(up, down); }
double down_lane(V v) { return _mm_cvtsd_f64(v); }
double up_lane(V v) { return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v)); }

// Products of two pivots below this, or above its inverse, may have lost digits or all of them.
constexpr double least_product = 0x1p-900;

bool usable(double pivot) { return pivot != 0 && std::isfinite(pivot); }

// Which rows make up the halves: 0 to half - 1 above, last down to last - half + 1 below; then, when the row count is
// even, one row more below; then the middle.
struct Halves {
    ptrdiff_t half, middle, last;
    bool extra;
    explicit Halves(ptrdiff_t n) : half((n - 1) / 2), middle(half), last(n - 1), extra((n & 1) == 0) {}
};

template <class T>
struct System {
    T *lower, *diagonal, *upper, *rhs;
};

// One row of one half, as scalars: coupling `l` to the outer row, whose inner coupling is `u`.
struct Step {
    double r, y;
    bool eliminate(double d, double l, double u, double b) {
        const double pivot = d - l * r * u;  // in this order no product leaves the range of the matrix
        y = b - l * r * y;
        r = 1 / pivot;
        return usable(pivot);
    }
};

// Eliminates. Solving: rhs receives z. Otherwise diagonal receives r and the outer couplings g. Returns 0 or a bad row.
template <bool solving, class T>
int32_t eliminate(ptrdiff_t n, const System<T>& m) {
    const Halves rows(n);
    const auto rhs = [&](ptrdiff_t i) { return solving ? static_cast<double>(m.rhs[i]) : 0.0; };
    const auto keep = [&](ptrdiff_t i, const Step& s) {
        if (solving)
            m.rhs[i] = static_cast<T>(s.y * s.r);
        else
            m.diagonal[i] = static_cast<T>(s.r);
    };
    Step down = {0, 0}, up = {0, 0};
    // Row i of the upper half or of the lower one, with scalars; it leaves g and w at its outer coupling.
    const auto row_down = [&](ptrdiff_t i) {
        const double r = down.r, l = i > 0 ? m.lower[i - 1] : T{}, u = i > 0 ? m.upper[i - 1] : T{};
        const bool good = down.eliminate(m.diagonal[i], l, u, rhs(i));
        if (i > 0) {
            if (!solving) m.lower[i - 1] = static_cast<T>(l * r);
            m.upper[i - 1] = static_cast<T>(u * r);
        }
        keep(i, down);
        return good;
    };
    const auto row_up = [&](ptrdiff_t i) {
        const double r = up.r, l = i < rows.last ? m.upper[i] : T{}, u = i < rows.last ? m.lower[i] : T{};
        const bool good = up.eliminate(m.diagonal[i], l, u, rhs(i));
        if (i < rows.last) {
            if (!solving) m.upper[i] = static_cast<T>(l * r);
            m.lower[i] = static_cast<T>(u * r);
        }
        keep(i, up);
        return good;
    };

    ptrdiff_t i = 0;
    if (rows.half > 0) {
        if (!row_down(0)) return 1;
        if (!row_up(rows.last)) return static_cast<int32_t>(n);
        i = 1;
    }
    const V zero = _mm_setzero_pd(), one = _mm_set1_pd(1);
    V r = pair(down.r, up.r), y = pair(down.y, up.y);
    for (; i + 2 <= rows.half; i += 2) {
        const ptrdiff_t j = rows.last - i;
        const Rows l = rows_at(m.lower, i - 1, m.upper, j);
        const Rows u = rows_at(m.upper, i - 1, m.lower, j);
        const Rows d = rows_at(m.diagonal, i, m.diagonal, j);
        const V a = l.outer * u.outer, b = l.inner * u.inner;
        const V pivot = d.outer - a * r;
        const V product = (d.inner * d.outer - b) - (d.inner * a) * r;
        Rows inverse = {one / pivot, pivot / product};
        const V size = _mm_andnot_pd(_mm_set1_pd(-0.0), product);
        const V in_range = _mm_and_pd(_mm_cmple_pd(_mm_set1_pd(least_product), size),
                                      _mm_cmple_pd(size, _mm_set1_pd(1 / least_product)));
        if (_mm_movemask_pd(_mm_and_pd(in_range, _mm_cmpneq_pd(pivot, zero))) != 3) {
            const V first = d.outer - l.outer * r * u.outer;
            inverse.outer = one / first;
            const V second = d.inner - l.inner * inverse.outer * u.inner;
            inverse.inner = one / second;
            if (!usable(down_lane(first))) return static_cast<int32_t>(i + 1);
            if (!usable(up_lane(first))) return static_cast<int32_t>(j + 1);
            if (!usable(down_lane(second))) return static_cast<int32_t>(i + 2);
            if (!usable(up_lane(second))) return static_cast<int32_t>(j);
        }
        const Rows g = {l.outer * r, l.inner * inverse.outer};
        store_rows(m.upper, i - 1, m.lower, j, {u.outer * r, u.inner * inverse.outer});
        if (solving) {
            const Rows f = rows_at(m.rhs, i, m.rhs, j);
            const V y0 = f.outer - g.outer * y;
            y = f.inner - g.inner * y0;
            store_rows(m.rhs, i, m.rhs, j, {y0 * inverse.outer, y * inverse.inner});
        } else {
            store_rows(m.lower, i - 1, m.upper, j, g);
            store_rows(m.diagonal, i, m.diagonal, j, inverse);
        }
        r = inverse.inner;
    }
    down = {down_lane(r), down_lane(y)};
    up = {up_lane(r), up_lane(y)};
    for (; i < rows.half; ++i) {
        if (!row_down(i)) return static_cast<int32_t>(i + 1);
        if (!row_up(rows.last - i)) return static_cast<int32_t>(rows.last - i + 1);
    }
    const ptrdiff_t k = rows.middle;
    if (rows.extra && !row_up(k + 1)) return static_cast<int32_t>(k + 2);

    // The middle row has two outer neighbours.
    double pivot = m.diagonal[k], right = rhs(k);
    if (k > 0) {
        const double l = m.lower[k - 1], u = m.upper[k - 1];
        pivot -= l * down.r * u;
        right -= l * down.r * down.y;
        if (!solving) m.lower[k - 1] = static_cast<T>(l * down.r);
        m.upper[k - 1] = static_cast<T>(u * down.r);
    }
    if (k < rows.last) {
        const double l = m.upper[k], u = m.lower[k];
        pivot -= l * up.r * u;
        right -= l * up.r * up.y;
        if (!solving) m.upper[k] = static_cast<T>(l * up.r);
        m.lower[k] = static_cast<T>(u * up.r);
    }
    if (!usable(pivot)) return static_cast<int32_t>(k + 1);
    keep(k, {1 / pivot, right});
    return 0;
}

// From a right side to z, with a factored matrix.
template <class T>
void forward(ptrdiff_t n, const T* lower, const T* diagonal, const T* upper, T* x) {
    const Halves rows(n);
    double down = 0, up = 0;
    const auto row_down = [&](ptrdiff_t i) {
        down = x[i] - (i > 0 ? lower[i - 1] * down : 0);
        x[i] = static_cast<T>(down * diagonal[i]);
    };
    const auto row_up = [&](ptrdiff_t i) {
        up = x[i] - (i < rows.last ? upper[i] * up : 0);
        x[i] = static_cast<T>(up * diagonal[i]);
    };
    ptrdiff_t i = 0;
    if (rows.half > 0) {
        row_down(0);
        row_up(rows.last);
        i = 1;
    }
    V y = pair(down, up);
    for (; i + 2 <= rows.half; i += 2) {
        const ptrdiff_t j = rows.last - i;
        const Rows g = rows_at(lower, i - 1, upper, j), r = rows_at(diagonal, i, diagonal, j), f = rows_at(x, i, x, j);
        const V y0 = f.outer - g.outer * y;
        y = f.inner - g.inner * y0;
        store_rows(x, i, x, j, {y0 * r.outer, y * r.inner});
    }
    down = down_lane(y);
    up = up_lane(y);
    for (; i < rows.half; ++i) {
        row_down(i);
        row_up(rows.last - i);
    }
    const ptrdiff_t k = rows.middle;
    if (rows.extra) row_up(k + 1);
    double middle = x[k];
    if (k > 0) middle -= lower[k - 1] * down;
    if (k < rows.last) middle -= upper[k] * up;
    x[k] = static_cast<T>(middle * diagonal[k]);
}

// From z to the solution, from the middle to both ends.
template <class T>
void backward(ptrdiff_t n, const T* lower, const T* upper, T* x) {
    const Halves rows(n);
    const ptrdiff_t k = rows.middle;
    double down = x[k], up = x[k];
    const auto row_down = [&](ptrdiff_t i) { x[i] = static_cast<T>(down = x[i] - upper[i] * down); };
    const auto row_up = [&](ptrdiff_t i) { x[i] = static_cast<T>(up = x[i] - lower[i - 1] * up); };
    if (rows.extra) row_up(k + 1);
    V v = pair(down, up);
    ptrdiff_t i = rows.half;
    for (; i >= 2; i -= 2) {
        const ptrdiff_t top = i - 2, j = rows.last - top;
        const Rows z = rows_at(x, top, x, j), w = rows_at(upper, top, lower, j - 1);
        const V inner = z.inner - w.inner * v;
        v = (z.outer - w.outer * z.inner) + (w.outer * w.inner) * v;
        store_rows(x, top, x, j, {v, inner});
    }
    if (i == 1) {
        down = down_lane(v);
        up = up_lane(v);
        row_down(0);
        row_up(rows.last);
    }
}

template <class T>
int32_t solve(const T* lower, const T* diagonal, const T* upper, ptrdiff_t n, ptrdiff_t nrhs, T* rhs, ptrdiff_t ld) {
    for (ptrdiff_t column = 0; column < nrhs; ++column) {
        forward(n, lower, diagonal, upper, rhs + column * ld);
        backward(n, lower, upper, rhs + column * ld);
    }
    return 0;
}

template <class T>
int32_t factor_and_solve(ptrdiff_t n, ptrdiff_t nrhs, const System<T>& m, ptrdiff_t ld) {
    if (n <= 0) return 0;
    if (nrhs == 1) {
        const int32_t bad_row = eliminate<true>(n, m);
        if (bad_row == 0) backward(n, m.lower, m.upper, m.rhs);
        return bad_row;
    }
    const int32_t bad_row = eliminate<false>(n, m);
    return bad_row != 0 ? bad_row : solve(m.lower, m.diagonal, m.upper, n, nrhs, m.rhs, ld);
}

}  // namespace

#define ORV_TRIDIAGONAL_ENTRIES(letter, T)                                                                             \
    ORV_API void letter##dtsvb_4dfl(const int32_t* n, const int32_t* nrhs, T* lower, T* diagonal, T* upper, T* rhs,    \
                                    const int32_t* ld, int32_t* info) {                                                \
        *info = factor_and_solve<T>(*n, *nrhs, {lower, diagonal, upper, rhs}, *ld);                                    \
    }                                                                                                                  \
    ORV_API void letter##dttrfb_4dfl(const int32_t* n, T* lower, T* diagonal, T* upper, int32_t* info) {               \
        *info = *n <= 0 ? 0 : eliminate<false, T>(*n, {lower, diagonal, upper, nullptr});                              \
    }                                                                                                                  \
    ORV_API void letter##dttrsb_4dfl(const char* transposition, const int32_t* n, const int32_t* nrhs, const T* lower, \
                                     const T* diagonal, const T* upper, T* rhs, const int32_t* ld, int32_t* info) {    \
        if (*transposition != 'N')                                                                                     \
            *info = -1;                                                                                                \
        else                                                                                                           \
            *info = *n <= 0 ? 0 : solve<T>(lower, diagonal, upper, *n, *nrhs, rhs, *ld);                               \
    }

ORV_TRIDIAGONAL_ENTRIES(d, double)
ORV_TRIDIAGONAL_ENTRIES(s, float)
