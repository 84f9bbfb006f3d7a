// Cell search as interpolation and integration use it.
#pragma once

#include "fit/task.h"
#include "simd/fours.h"

namespace orv::fit {

using namespace simd;

enum SearchKind : int32_t { uniform, quasi_uniform, sorted, peak, hybrid, user_def, uni_user_def };

constexpr int64_t wide_cells = 1;  // the flag of the search methods

template <class T>
using SearchMethod = int32_t (*)(int64_t, const T*, int64_t, const T*, int64_t*, T, orv_df_search_callback, void*,
                                 int64_t, const orv_df_bucket*, void*);

// What a search needs to know besides its sites.
template <class T>
struct SearchPlan {
    Partition<T> partition;
    SearchKind kind;
    T scale;
    const orv_df_bucket* table;
    orv_df_search_callback callback;
    void* param;
};

template <class T>
orv_df_status plan_search(const DFTask& task, int64_t siteHint, const T* dataHint, orv_df_search_callback callback,
                          void* param, SearchPlan<T>& plan);

// Runs the plan's method over `count` sites. `state` is the Sorted method's.
template <class T>
int32_t run_search(const SearchPlan<T>& plan, int64_t count, const T* sites, int64_t* state, int64_t flags,
                   void* cells);

// The cell of one site, by bisection: where a sorted search that starts in the middle of its sites begins.
template <class T>
int64_t cell_of(const Partition<T>& partition, bool is_uniform_partition, T site);

// ---- One site of each method, for a handful of sites ----------------------------------------------------------------

template <class T>
int32_t uniform_cell(const Partition<T>& p, T x) {
    if (!(x <= p.last)) return p.count;  // above, or not a number
    if (x == p.last) return p.count - 1;
    if (x < p.first) return 0;
    const auto cell = static_cast<int32_t>((x - p.first) * p.inverse_width) + 1;
    return cell < p.count - 1 ? cell : p.count - 1;
}

// Walks from cell `start` to the cell of x; at(i) is break i.
template <class T, class BreakAt>
int32_t walk(const Partition<T>& p, BreakAt at, int32_t start, T x) {
    int32_t cell = start;
    if (!(x <= p.last)) return p.count;
    if (x == p.last) return p.count - 1;
    if (cell < p.count && !(x < at(cell))) {
        while (cell < p.count && !(at(cell) > x)) ++cell;
    } else {
        while (cell > 0 && at(cell - 1) > x) --cell;
    }
    return cell;
}

template <class T>
int32_t hybrid_cell(const Partition<T>& p, const orv_df_bucket* table, T scale, T x) {
    constexpr int32_t longest_walk = 40;
    if (x < p.first) return 0;
    if (!(x <= p.last)) return p.count;
    if (x == p.last) return p.count - 1;
    int32_t lo = 0, hi = p.count - 1;
    if (table) {
        const T place = (x - p.first) * scale;
        const orv_df_bucket bucket = table[place >= 1 && place < T{1 << 20} ? static_cast<int32_t>(place) : 0];
        // A table of more breaks than there are now leads beyond the last.
        hi = bucket.hi < p.count ? bucket.hi : p.count - 1;
        lo = bucket.lo < hi ? bucket.lo : hi;
    }
    if (hi - lo > longest_walk) {
        int32_t stop = hi - longest_walk;
        while (lo < stop) {
            const int32_t mid = (lo + hi) >> 1;
            if (p.breaks[mid] > x) {
                hi = mid;
                stop = mid - longest_walk;
            } else {
                lo = mid;
            }
        }
    }
    while (lo < hi && !(p.breaks[lo] > x)) ++lo;
    return lo;
}

}  // namespace orv::fit
