// The cubic with continuous second derivative. Its first derivatives m at the breaks solve the tridiagonal system
//   m[i-1]/h[i-1] + 2 (1/h[i-1] + 1/h[i]) m[i] + m[i+1]/h[i] = 3 (s[i-1]/h[i-1] + s[i]/h[i]),
// diagonally dominant by 2 to 1, with a row at each end by boundary index. The matrix is that of all functions.
//
// Periodic ends join the rows of the first and the last break into one, which makes the system cyclic in the first n - 1
// unknowns. With b the corner element, the matrix is T + u v', T tridiagonal, u = (g, 0, ..., 0, b), v = (1, 0, ..., 0, b/g),
// g = -d[0], and (Sherman & Morrison 1950) m = x - z (v'x)/(1 + v'z) with T x = right side, T z = u.
#include "fit/construct.h"
#include "services/tridiagonal.h"

namespace orv::fit {
namespace {

struct Solver {
    static void both(int32_t n, double* l, double* d, double* u, double* b, int32_t& info) {
        const int32_t one = 1;
        ddtsvb_4dfl(&n, &one, l, d, u, b, &n, &info);
    }
    static void both(int32_t n, float* l, float* d, float* u, float* b, int32_t& info) {
        const int32_t one = 1;
        sdtsvb_4dfl(&n, &one, l, d, u, b, &n, &info);
    }
    static void factor(int32_t n, double* l, double* d, double* u, int32_t& info) { ddttrfb_4dfl(&n, l, d, u, &info); }
    static void factor(int32_t n, float* l, float* d, float* u, int32_t& info) { sdttrfb_4dfl(&n, l, d, u, &info); }
    static void solve(int32_t n, int32_t sides, double* l, double* d, double* u, double* b, int32_t ld, int32_t& info) {
        ddttrsb_4dfl("N", &n, &sides, l, d, u, b, &ld, &info);
    }
    static void solve(int32_t n, int32_t sides, float* l, float* d, float* u, float* b, int32_t ld, int32_t& info) {
        sdttrsb_4dfl("N", &n, &sides, l, d, u, b, &ld, &info);
    }
};

// One block of scratch: the matrix, a column of z for periodic ends, and for each function at work a column of slopes
// and one of right sides, which the solver turns into derivatives.
template <class T>
struct Scratch {
    T *inverse, *lower, *upper, *diagonal, *z, *slopes, *sides;
};

// Elements of scratch for n breaks and a functions at work.
int64_t scratch_elements(int64_t n, int64_t a) { return (2 * a + 3) * (n - 1) + 2 * n + (a + 2) * n - 2; }

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

// Runs part(from, to) over tiles of cells that stay in the nearest cache from one pass over them to the next.
template <class Part>
void by_tiles(int32_t cells, Part part) {
    constexpr int32_t tile = 256;
    for (int32_t from = 0; from < cells; from += tile) part(from, from + tile < cells ? from + tile : cells);
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

// Turns column `column`, a right side or already a solution, into the cells of `function`.
template <class T, bool interleaved, bool uniform>
bool finish(const Construction<T>& c, const Scratch<T>& w, int32_t function, int32_t column, bool solved) {
    const int32_t n = c.partition.count;
    T* s = w.slopes + static_cast<ptrdiff_t>(column) * (n - 1);
    T* x = w.sides + static_cast<ptrdiff_t>(column) * n;
    int32_t info = 0;
    if (!solved) Solver::solve(unknowns(c), 1, w.lower, w.diagonal, w.upper, x, n, info);
    if (info != 0) return false;
    if (c.boundary == periodic) close_period<T, uniform>(n, w, x);
    cubic_cells(values_of<interleaved>(c, function), 0, n - 1, x, s, w.inverse, c.coeffs[function]);
    return true;
}

// Three breaks under not-a-knot ends leave one condition for two: the parabola through them is the cubic of least degree.
template <class T, bool interleaved, bool uniform>
void parabola(const Construction<T>& c) {
    const Partition<T>& p = c.partition;
    for (int32_t f = 0; f < c.functions; ++f) {
        const auto y = values_of<interleaved>(c, f);
        T inverse[2], s[2];
        cell_widths<uniform>(p, 0, 2, static_cast<T*>(nullptr), inverse);
        slopes(y, 0, 2, inverse, s);
        const T h0 = width_of<uniform>(p, 0), h1 = width_of<uniform>(p, 1);
        const T middle = (h1 * s[0] + h0 * s[1]) / (h0 + h1);
        const T m[3] = {2 * s[0] - middle, middle, 2 * s[1] - middle};
        cubic_cells(y, 0, 2, m, s, inverse, c.coeffs[f]);
    }
}

template <class T, bool interleaved, bool uniform>
orv_df_status natural(const Construction<T>& c, const orv_services* services) {
    const int32_t n = c.partition.count, functions = c.functions;
    if (c.boundary == not_a_knot && n == 3) {
        parabola<T, interleaved, uniform>(c);
        return ORV_DF_OK;
    }
    const int32_t threads = threads_for(services, functions);
    const bool shared_out = functions != 1 && threads != 1 && n >= 300 && (n >= 600 || threads >= 8);
    const int32_t columns = shared_out ? threads : functions;
    const auto size = static_cast<size_t>(scratch_elements(n, columns)) * sizeof(T);
    auto* block = static_cast<T*>(orv_serv_allocate(size, block_alignment));
    if (!block) return ORV_DF_NO_MEMORY;
    const Scratch<T> w = lay_out(block, n, columns);
    const auto slopes_of = [&](int32_t column) { return w.slopes + static_cast<ptrdiff_t>(column) * (n - 1); };
    const auto sides_of = [&](int32_t column) { return w.sides + static_cast<ptrdiff_t>(column) * n; };
    const auto build_sides = [&](int32_t f, int32_t column) {
        by_tiles(n - 1, [&](int32_t from, int32_t to) {
            side_tile<T, interleaved, uniform>(c, f, w.inverse, slopes_of(column), sides_of(column), from, to);
        });
        end_sides<T, uniform>(c, w.inverse, slopes_of(column), sides_of(column));
    };
    const int32_t size_of_system = unknowns(c);
    int32_t info = 0;
    if (functions == 1 && c.boundary != periodic) {
        by_tiles(n - 1, [&](int32_t from, int32_t to) {
            matrix_tile<T, uniform>(c, w, from, to);
            side_tile<T, interleaved, uniform>(c, 0, w.inverse, w.slopes, w.sides, from, to);
        });
        end_matrix<T, uniform>(c, w);
        end_sides<T, uniform>(c, w.inverse, w.slopes, w.sides);
        Solver::both(size_of_system, w.lower, w.diagonal, w.upper, w.sides, info);
        if (info == 0) finish<T, interleaved, uniform>(c, w, 0, 0, true);
        orv_serv_deallocate(block);
        return info == 0 ? ORV_DF_OK : ORV_DF_SINGULAR;
    }
    by_tiles(n - 1, [&](int32_t from, int32_t to) { matrix_tile<T, uniform>(c, w, from, to); });
    end_matrix<T, uniform>(c, w);
    Solver::factor(size_of_system, w.lower, w.diagonal, w.upper, info);
    if (info == 0 && c.boundary == periodic)
        Solver::solve(size_of_system, 1, w.lower, w.diagonal, w.upper, w.z, n, info);
    if (info == 0 && shared_out) {
        // Each thread takes every threads-th function through its own column.
        const auto work = [&](int32_t index) {
            for (int32_t f = index; f < functions; f += threads) {
                build_sides(f, index);
                if (!finish<T, interleaved, uniform>(c, w, f, index, false))
                    __atomic_store_n(&info, 1, __ATOMIC_RELAXED);
            }
        };
        parallel(services, threads, work);
    } else if (info == 0) {
        for (int32_t f = 0; f < functions; ++f) build_sides(f, f);
        Solver::solve(size_of_system, functions, w.lower, w.diagonal, w.upper, w.sides, n, info);
        for (int32_t f = 0; info == 0 && f < functions; ++f) finish<T, interleaved, uniform>(c, w, f, f, true);
    }
    orv_serv_deallocate(block);
    return info == 0 ? ORV_DF_OK : ORV_DF_SINGULAR;
}

template <class T>
int32_t construct_natural(const DFTask* task, int64_t method, const orv_services* services) {
    static constexpr WorkerTable<T> workers = {
        {natural<T, true, false>, natural<T, true, true>},
        {natural<T, false, false>, natural<T, false, true>},
    };
    if (method != 0) return ORV_DF_BAD_METHOD;
    const int64_t least = task && task->bcType == ORV_DF_NOT_A_KNOT ? 3 : 2;
    Construction<T> c;
    orv_df_status status = prepare(task, least, NoCondition::refused, c);
    if (status == ORV_DF_OK) status = check_periodic(c);
    return status != ORV_DF_OK ? status : workers[!c.interleaved][c.uniform](c, services);
}

}  // namespace
}  // namespace orv::fit

ORV_API int32_t orv_df_kernel_dDFNaturalCubicSpline1D(const DFTask* task, const void*, const void*, int64_t method,
                                                      const orv_services* services) {
    return orv::fit::construct_natural<double>(task, method, services);
}

ORV_API int32_t orv_df_kernel_sDFNaturalCubicSpline1D(const DFTask* task, const void*, const void*, int64_t method,
                                                      const orv_services* services) {
    return orv::fit::construct_natural<float>(task, method, services);
}
