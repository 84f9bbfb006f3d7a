// The cubic whose second derivatives at the interior breaks are given. A cell is
//   y[i] + (s - h (2 M[i] + M[i+1])/6) u + M[i]/2 u^2 + (M[i+1] - M[i])/(6 h) u^3.
#include "fit/construct/construct.h"

namespace orv::fit {
namespace {

// What determines M at one end: the outer cell's width and slope, the next width, M at the next two breaks, the boundary
// value, and 1 at the left end or -1 at the right one.
template <class T>
struct Curvatures {
    T h0, h1, s0, m1, m2, given, side;
};

template <class T>
T extrapolated(const Curvatures<T>& e) {
    return e.m1 + (e.m1 - e.m2) * e.h0 / e.h1;
}
template <class T>
T zero(const Curvatures<T>&) {
    return 0;
}
template <class T>
T from_first(const Curvatures<T>& e) {
    return e.side * 3 * (e.s0 - e.given) / e.h0 - e.m1 * T(0.5);
}
template <class T>
T given(const Curvatures<T>& e) {
    return e.given;
}

template <class T>
using CurvatureRule = T (*)(const Curvatures<T>&);

template <class T>
constexpr CurvatureRule<T> end_rules[no_condition][2] = {
    {extrapolated<T>, extrapolated<T>}, {zero<T>, zero<T>},   {from_first<T>, from_first<T>}, {from_first<T>, given<T>},
    {given<T>, from_first<T>},          {given<T>, given<T>}, {given<T>, given<T>},
};

template <class T, bool interleaved, bool uniform>
T end_curvature(const Construction<T>& c, Values<T, interleaved> y, const T* inner, bool right) {
    const int32_t last = c.partition.count - 2, last_inner = c.partition.count - 3;
    const int32_t outer = right ? last : 0, next = right ? last - 1 : 1;
    Curvatures<T> e;
    e.h0 = width_of<uniform>(c.partition, outer);
    e.h1 = width_of<uniform>(c.partition, next);
    e.s0 = slope_of<interleaved, uniform>(c, y, outer);
    e.m1 = inner[right ? last_inner : 0];
    // A single interior break gives no line to extrapolate; its second derivative holds throughout.
    e.m2 = last_inner == 0 ? e.m1 : inner[right ? last_inner - 1 : 1];
    e.given = c.bc ? c.bc[right && c.boundary != periodic] : T{};
    e.side = right ? -1 : 1;
    return end_rules<T>[c.boundary][right](e);
}

// Coefficients of a cell, or of a register of cells: V is the element type or its lanes.
template <class V>
struct Cell {
    V c0, c1, c2, c3;
};

template <class V>
Cell<V> cell_between(V y_left, V y_right, V h, V inverse, V left, V right, V half, V two, V sixth) {
    const V slope = (y_right - y_left) * inverse;
    return {y_left, slope - h * (two * left + right) * sixth, left * half, (right - left) * (inverse * sixth)};
}

template <class T>
constexpr T sixth = T(1) / 6;

// Cells `from` to `to` - 1 of one function.
template <class T, bool interleaved, bool uniform>
void cells(const Construction<T>& c, int32_t function, int32_t from, int32_t to) {
    using V = typename Lanes<T>::V;
    constexpr int32_t width = Lanes<T>::width;
    const Partition<T>& p = c.partition;
    const int32_t last = p.count - 2;
    const auto y = values_of<interleaved>(c, function);
    const T* inner = c.ic + static_cast<ptrdiff_t>(function) * last;
    const auto one_cell = [&](int32_t i) {
        const T left = i == 0 ? end_curvature<T, interleaved, uniform>(c, y, inner, false) : inner[i - 1];
        const T right = i == last ? end_curvature<T, interleaved, uniform>(c, y, inner, true) : inner[i];
        const auto cell = cell_between(y[i], y[i + 1], width_of<uniform>(p, i), inverse_width_of<uniform>(p, i), left,
                                       right, T(0.5), T(2), sixth<T>);
        __builtin_memcpy(c.coeffs[function] + 4 * static_cast<ptrdiff_t>(i), &cell, sizeof cell);
    };
    int32_t i = from;
    if (i == 0) one_cell(i++);
    for (; i + width <= to && i + width <= last; i += width) {
        const V h = uniform ? splat(p.width) : load(p.breaks + i + 1) - load(p.breaks + i);
        const V inverse = uniform ? splat(p.inverse_width) : splat(T(1)) / h;
        const auto cell = cell_between(y.lanes(i), y.lanes(i + 1), h, inverse, load(inner + i - 1), load(inner + i),
                                       splat(T(0.5)), splat(T(2)), splat(sixth<T>));
        store_cells(c.coeffs[function] + 4 * static_cast<ptrdiff_t>(i), cell.c0, cell.c1, cell.c2, cell.c3);
    }
    for (; i < to; ++i) one_cell(i);
}

constexpr int32_t block_cells = 2048;

template <class T, bool interleaved, bool uniform>
orv_df_status from_curvatures(const Construction<T>& c, const orv_services* services) {
    const int32_t count = c.partition.count - 1;
    const int32_t blocks = (count + block_cells - 1) / block_cells;
    const int64_t pieces = int64_t{blocks} * c.functions;
    const int32_t workers = threads_for(services, pieces);
    const auto work = [&](int32_t index) {
        const Share share = share_of(pieces, 1, index, workers);
        for (int64_t piece = share.begin; piece < share.end; ++piece) {
            const auto from = static_cast<int32_t>(piece % blocks) * block_cells;
            const int32_t to = from + block_cells < count ? from + block_cells : count;
            cells<T, interleaved, uniform>(c, static_cast<int32_t>(piece / blocks), from, to);
        }
    };
    parallel(services, workers, work);
    return ORV_DF_OK;
}

template <class T>
int32_t construct_default(const DFTask* task, int64_t, const orv_services* services) {
    static constexpr WorkerTable<T> workers = {
        {from_curvatures<T, true, false>, from_curvatures<T, true, true>},
        {from_curvatures<T, false, false>, from_curvatures<T, false, true>},
    };
    Construction<T> c;
    orv_df_status status = prepare(task, 3, NoCondition::refused, c);
    if (status != ORV_DF_OK) return status;
    if (!c.ic) return ORV_DF_NULL_INTERNAL_DATA;
    // Periodic end values are the caller's, whatever the type code.
    if (c.boundary == periodic && !c.bc) return ORV_DF_NULL_BOUNDARY_DATA;
    status = check_periodic(c);
    return status != ORV_DF_OK ? status : workers[!c.interleaved][c.uniform](c, services);
}

}  // namespace
}  // namespace orv::fit

ORV_FIT_CONSTRUCTION(DefaultCubic, construct_default)
