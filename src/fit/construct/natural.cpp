// The cubic with continuous second derivative, its system's matrix being that of all functions: factored once, and solved for
// each function's right side.
#include "fit/construct/natural_system.h"
#include "fit/construct/tridiagonal.h"

namespace orv::fit {
namespace {

// Runs part(from, to) over tiles of cells that stay in the nearest cache from one pass over them to the next.
template <class Part>
void by_tiles(int32_t cells, Part part) {
    constexpr int32_t tile = 256;
    for (int32_t from = 0; from < cells; from += tile) part(from, from + tile < cells ? from + tile : cells);
}

// Turns column `column`, a right side or already a solution, into the cells of `function`.
template <class T, bool interleaved, bool uniform>
bool finish(const Construction<T>& c, const Scratch<T>& w, int32_t function, int32_t column, bool solved) {
    const int32_t n = c.partition.count;
    T* s = w.slopes + static_cast<ptrdiff_t>(column) * (n - 1);
    T* x = w.sides + static_cast<ptrdiff_t>(column) * n;
    int32_t info = 0;
    if (!solved) tridiagonal::solve(unknowns(c), 1, w.lower, w.diagonal, w.upper, x, n, info);
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
        tridiagonal::factor_and_solve(size_of_system, w.lower, w.diagonal, w.upper, w.sides, info);
        if (info == 0) finish<T, interleaved, uniform>(c, w, 0, 0, true);
        orv_serv_deallocate(block);
        return info == 0 ? ORV_DF_OK : ORV_DF_SINGULAR;
    }
    by_tiles(n - 1, [&](int32_t from, int32_t to) { matrix_tile<T, uniform>(c, w, from, to); });
    end_matrix<T, uniform>(c, w);
    tridiagonal::factor(size_of_system, w.lower, w.diagonal, w.upper, info);
    if (info == 0 && c.boundary == periodic)
        tridiagonal::solve(size_of_system, 1, w.lower, w.diagonal, w.upper, w.z, n, info);
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
        tridiagonal::solve(size_of_system, functions, w.lower, w.diagonal, w.upper, w.sides, n, info);
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

ORV_FIT_CONSTRUCTION(NaturalCubic, construct_natural)
