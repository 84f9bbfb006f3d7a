// The frame of the local cubics. Cells are worked in tiles whose widths, slopes and derivatives stay in the nearest
// cache; a tile sees two cells to either side.
#include "fit/construct/local.h"

namespace orv::fit {
namespace {

constexpr int32_t block_cells = 2048, block_functions = 4;
constexpr int64_t blocked_values = 512;
constexpr int32_t tile_cells = 256;
constexpr int32_t reach = 2;  // slopes to either side of a break that a rule may read

template <class T>
struct Tile {
    static constexpr int32_t length = tile_cells + 2 * reach + 2 * Lanes<T>::width;
    T h[length], inverse[length], s[length], m[length];
};

// What an end action sees of one end: `outer` and `inner` are its first two cells, `far` and `far_inner` those of the
// other end, `left` the left break of its two cells.
template <bool interleaved, bool uniform, class T>
End<T> end_at(const Construction<T>& c, Values<T, interleaved> y, bool right) {
    const Partition<T>& p = c.partition;
    const int32_t last = p.count - 2;
    const int32_t outer = right ? last : 0, inner = right ? last - 1 : 1, left = right ? last - 1 : 0;
    const int32_t far = last - outer, far_inner = last - inner;
    End<T> end;
    end.h0 = width_of<uniform>(p, outer);
    end.h1 = width_of<uniform>(p, inner);
    end.s0 = slope_of<interleaved, uniform>(c, y, outer);
    end.s1 = slope_of<interleaved, uniform>(c, y, inner);
    end.rise = y[left + 2] - y[left];
    end.inverse_width = p.inverse_width;
    // One period has one end: its value stands first.
    end.given = c.bc ? c.bc[right && c.boundary != periodic] : T{};
    end.side = right ? -1 : 1;
    end.far_h0 = width_of<uniform>(p, far);
    end.far_s0 = slope_of<interleaved, uniform>(c, y, far);
    end.far_s1 = slope_of<interleaved, uniform>(c, y, far_inner);
    end.around = y[1] - y[0] + y[last + 1] - y[last];
    end.uniform = uniform;
    return end;
}

// Harmless numbers outside the tile's known cells, so that whole registers can run over its ends.
template <class T>
void pad(Tile<T>& tile, int32_t known_from, int32_t known_to) {
    for (int32_t k = 0; k < known_from; ++k) tile.h[k] = 1, tile.s[k] = 0;
    for (int32_t k = known_to; k < Tile<T>::length; ++k) tile.h[k] = 1, tile.s[k] = 0;
}

template <class T, bool interleaved, bool uniform>
void work_tile(const Construction<T>& c, const LocalFamily<T>& family, Tile<T>& tile, int32_t a, int32_t b,
               int32_t first, int32_t end) {
    const Partition<T>& p = c.partition;
    const int32_t cells = p.count - 1;
    const int32_t base = a - reach;
    const int32_t lo = base > 0 ? base : 0, hi = b + reach < cells ? b + reach : cells;
    // Widths are for the rule, which on a uniform partition has no use for them.
    const bool together = end - first == 1 && (uniform || !family.reads_widths);
    if (!together)
        cell_widths<uniform>(p, lo, hi, family.reads_widths ? tile.h + (lo - base) : nullptr,
                             tile.inverse + (lo - base));
    pad(tile, lo - base, hi - base);
    const DerivativeRule<T> rule = uniform ? family.uniform_rule : family.rule;
    const int32_t from = a > 1 ? a : 1, to = b < cells - 1 ? b : cells - 1;
    for (int32_t f = first; f < end; ++f) {
        const auto y = values_of<interleaved>(c, f);
        if (together)
            widths_and_slopes<uniform>(p, y, lo, hi, tile.inverse + (lo - base), tile.s + (lo - base));
        else
            slopes(y, lo, hi, tile.inverse + (lo - base), tile.s + (lo - base));
        if (family.extends_slopes && a == 0) {
            const auto e = end_at<interleaved, uniform>(c, y, false);
            tile.s[reach - 1] = c.boundary == periodic ? e.far_s0 : 2 * e.s0 - e.s1;
        }
        if (family.extends_slopes && b >= cells - 1) {
            const auto e = end_at<interleaved, uniform>(c, y, true);
            tile.s[cells - base] = c.boundary == periodic ? e.far_s0 : 2 * e.s0 - e.s1;
        }
        const T* given =
            family.needs_internal_data ? c.ic + static_cast<ptrdiff_t>(f) * (cells - 1) + (from - 1) : nullptr;
        rule(tile.s + (from - base), tile.h + (from - base), given, tile.m + (from - a), to - from + 1);
        if (a == 0) {
            auto e = end_at<interleaved, uniform>(c, y, false);
            e.m1 = tile.m[1];
            tile.m[0] = family.ends.rows[c.boundary].left(e);
        }
        if (b == cells) {
            auto e = end_at<interleaved, uniform>(c, y, true);
            e.m1 = tile.m[cells - 1 - a];
            tile.m[cells - a] = family.ends.rows[c.boundary].right(e);
        }
        cubic_cells(y, a, b, tile.m, tile.s + reach, tile.inverse + reach, c.coeffs[f]);
    }
}

template <class T, bool interleaved, bool uniform>
orv_df_status construct(const Construction<T>& c, const LocalFamily<T>& family, const orv_services* services) {
    const int32_t cells = c.partition.count - 1;
    // The last block takes what the ends leave over.
    const int32_t inner_cells = c.partition.count - 5;
    int32_t cell_blocks = inner_cells / block_cells;
    if (cell_blocks <= 0 || inner_cells % block_cells != 0) ++cell_blocks;
    const int32_t function_blocks = (c.functions + block_functions - 1) / block_functions;
    const int64_t blocks = int64_t{cell_blocks} * function_blocks;
    const bool blocked = int64_t{c.partition.count} * c.functions >= blocked_values;
    const int32_t workers = blocked ? threads_for(services, blocks) : 1;
    auto* tiles =
        static_cast<Tile<T>*>(orv_serv_allocate(static_cast<size_t>(workers) * sizeof(Tile<T>), block_alignment));
    if (!tiles) return ORV_DF_NO_MEMORY;
    const auto work = [&](int32_t index) {
        const Share share = share_of(blocks, 1, index, workers);
        for (int64_t block = share.begin; block < share.end; ++block) {
            const auto cell_block = static_cast<int32_t>(block % cell_blocks);
            const auto first = static_cast<int32_t>(block / cell_blocks) * block_functions;
            const int32_t end = first + block_functions < c.functions ? first + block_functions : c.functions;
            const int32_t from = cell_block * block_cells;
            const int32_t to = cell_block == cell_blocks - 1 ? cells : from + block_cells;
            for (int32_t a = from; a < to; a += tile_cells) {
                const int32_t b = a + tile_cells < to ? a + tile_cells : to;
                work_tile<T, interleaved, uniform>(c, family, tiles[index], a, b, first, end);
            }
        }
    };
    parallel(services, workers, work);
    orv_serv_deallocate(tiles);
    return ORV_DF_OK;
}

template <class T>
using LocalWorker = orv_df_status (*)(const Construction<T>&, const LocalFamily<T>&, const orv_services*);

}  // namespace

template <class T>
orv_df_status local_cubic(const DFTask* task, const LocalFamily<T>& family, const orv_services* services) {
    static constexpr LocalWorker<T> workers[2][2] = {
        {construct<T, true, false>, construct<T, true, true>},
        {construct<T, false, false>, construct<T, false, true>},
    };
    Construction<T> c;
    orv_df_status status = prepare(task, family.least_breaks, family.no_condition_is, c);
    if (status != ORV_DF_OK) return status;
    if (family.needs_internal_data && !c.ic) return ORV_DF_NULL_INTERNAL_DATA;
    // Without a neighbour on the other side the derivative at a periodic end is the caller's, whatever the type code.
    if (family.needs_internal_data && c.boundary == periodic && !c.bc) return ORV_DF_NULL_BOUNDARY_DATA;
    status = check_periodic(c);
    return status != ORV_DF_OK ? status : workers[!c.interleaved][c.uniform](c, family, services);
}

template orv_df_status local_cubic(const DFTask*, const LocalFamily<double>&, const orv_services*);
template orv_df_status local_cubic(const DFTask*, const LocalFamily<float>&, const orv_services*);

}  // namespace orv::fit
