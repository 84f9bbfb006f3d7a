// Linear splines: the chord of each cell.
#include "fit/construct/construct.h"

namespace orv::fit {
namespace {

constexpr int64_t blocked_values = 128;
constexpr int32_t block_cells = 1024, block_functions = 4;
constexpr int64_t threaded_blocks = 5;

inline void store_lines(double* out, __m128d c0, __m128d c1) {
    store(out, interleave_low(c0, c1));
    store(out + 2, interleave_high(c0, c1));
}
inline void store_lines(float* out, __m128 c0, __m128 c1) {
    store(out, interleave_low(c0, c1));
    store(out + 4, interleave_high(c0, c1));
}

template <class T, bool interleaved, bool uniform>
void lines(const Construction<T>& c, int32_t function, int32_t from, int32_t to) {
    constexpr int32_t width = Lanes<T>::width;
    const auto y = values_of<interleaved>(c, function);
    const T* x = c.partition.breaks;
    const auto inverse = splat(c.partition.inverse_width);
    T* out = c.coeffs[function] + 2 * static_cast<ptrdiff_t>(from);
    int32_t i = from;
    for (; i + width <= to; i += width, out += 2 * width) {
        const auto left = y.lanes(i);
        const auto rise = y.lanes(i + 1) - left;
        store_lines(out, left, uniform ? rise * inverse : rise / (load(x + i + 1) - load(x + i)));
    }
    for (; i < to; ++i, out += 2) {
        out[0] = y[i];
        out[1] = uniform ? (y[i + 1] - y[i]) * c.partition.inverse_width : (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
    }
}

template <class T, bool interleaved, bool uniform>
orv_df_status linear(const Construction<T>& c, const orv_services* services) {
    const int32_t cells = c.partition.count - 1;
    if (int64_t{c.partition.count} * c.functions < blocked_values) {
        for (int32_t f = 0; f < c.functions; ++f) lines<T, interleaved, uniform>(c, f, 0, cells);
        return ORV_DF_OK;
    }
    const int32_t cell_blocks = (cells + block_cells - 1) / block_cells;
    const int32_t function_blocks = (c.functions + block_functions - 1) / block_functions;
    const int64_t blocks = int64_t{cell_blocks} * function_blocks;
    const int32_t workers = blocks >= threaded_blocks ? threads_for(services, blocks) : 1;
    const auto work = [&](int32_t index) {
        const Share share = share_of(blocks, 1, index, workers);
        for (int64_t block = share.begin; block < share.end; ++block) {
            const auto from = static_cast<int32_t>(block % cell_blocks) * block_cells;
            const auto first = static_cast<int32_t>(block / cell_blocks) * block_functions;
            const int32_t to = from + block_cells < cells ? from + block_cells : cells;
            const int32_t end = first + block_functions < c.functions ? first + block_functions : c.functions;
            for (int32_t f = first; f < end; ++f) lines<T, interleaved, uniform>(c, f, from, to);
        }
    };
    parallel(services, workers, work);
    return ORV_DF_OK;
}

template <class T>
int32_t construct_linear(const DFTask* task, int64_t method, const orv_services* services) {
    static constexpr WorkerTable<T> workers = {
        {linear<T, true, false>, linear<T, true, true>},
        {linear<T, false, false>, linear<T, false, true>},
    };
    if (method != 0) return ORV_DF_BAD_METHOD;
    Construction<T> c;
    orv_df_status status = prepare(task, 2, NoCondition::refused, c);
    if (status == ORV_DF_OK) status = check_periodic(c);
    return status != ORV_DF_OK ? status : workers[!c.interleaved][c.uniform](c, services);
}

}  // namespace
}  // namespace orv::fit

ORV_FIT_CONSTRUCTION(Linear, construct_linear)
