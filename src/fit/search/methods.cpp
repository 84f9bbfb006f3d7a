// The search methods that work on the library's own, four sites at a time where they can.
#include "fit/search/search.h"

namespace orv::fit {
namespace {

// The cells of sites below the first break become 0, at the last break n - 1, above it and of NaNs n.
template <class T>
__m128i settle_ends(const Partition<T>& p, const Four<T>& x, __m128i cell) {
    const auto first = splat(p.first), last = splat(p.last);
    const __m128i below = narrow_mask(map(x, [&](auto v) { return less(v, first); }));
    const __m128i at_last = narrow_mask(map(x, [&](auto v) { return equal(v, last); }));
    const __m128i within = narrow_mask(map(x, [&](auto v) { return less_equal(v, last); }));
    cell = select(at_last, splat_32(p.count - 1), cell);
    cell = bit_and_not(below, cell);
    return select(within, cell, splat_32(p.count));
}

// Cells on equal widths. The product is cut to the partition before truncation, so that no lane overflows.
template <class T>
__m128i uniform_cells(const Partition<T>& p, T scale, const Four<T>& x) {
    const auto first = splat(p.first), factor = splat(scale), top = splat(static_cast<T>(p.count));
    const Four<T> place = map(x, [&](auto v) { return least((v - first) * factor, top); });
    const __m128i cell = add_32(truncate(place), splat_32(1));
    return settle_ends(p, x, least_32(cell, splat_32(p.count - 1)));
}

// Calls group(sites, cells) for groups of four sites; the last group is filled up with its last site.
template <class T, class Cell, class Group>
void by_fours(int64_t siteCount, const T* sites, Cell* cells, Group group) {
    int64_t i = 0;
    for (; i + 4 <= siteCount; i += 4) store_four(cells + i, group(load_four(sites + i)));
    if (i == siteCount) return;
    T rest[4];
    int32_t found[4];
    for (int64_t k = 0; k < 4; ++k) rest[k] = sites[i + k < siteCount ? i + k : siteCount - 1];
    store_four(found, group(load_four(rest)));
    for (int64_t k = 0; i + k < siteCount; ++k) cells[i + k] = found[k];
}

template <class T, class Cell>
void search_uniform(const Partition<T>& p, int64_t siteCount, const T* sites, T scale, Cell* cells) {
    by_fours(siteCount, sites, cells, [&](const Four<T>& x) { return uniform_cells(p, scale, x); });
}

// Starts where equal widths would put the site and walks from there; the starts of 32 sites are found together.
template <class T, class Cell>
void search_quasi_uniform(const Partition<T>& p, int64_t siteCount, const T* sites, T scale, Cell* cells) {
    constexpr int64_t group = 32;
    int32_t start[group];
    const auto at = [&](int32_t i) { return p.breaks[i]; };
    for (int64_t i = 0; i < siteCount; i += group) {
        const int64_t count = siteCount - i < group ? siteCount - i : group;
        search_uniform(p, count, sites + i, scale, start);
        for (int64_t k = 0; k < count; ++k) cells[i + k] = walk(p, at, start[k], sites[i + k]);
    }
}

// A group of sites below the next break needs no walk.
template <class T, class Cell>
void search_sorted(const Partition<T>& p, int64_t siteCount, const T* sites, int64_t* state, Cell* cells) {
    int64_t from = *state;
    if (from < 0) from = 0;
    if (from > p.count - 1) from = p.count - 1;
    auto c = static_cast<int32_t>(from);
    const auto step = [&](T x) -> int32_t {
        if (x == p.last) return c = p.count - 1;
        if (!(x <= p.last)) {
            // A NaN must not carry the numbers after it to the end.
            if (x > p.last) c = p.count;
            return p.count;
        }
        while (c < p.count && !(p.breaks[c] > x)) ++c;
        return c;
    };
    const int32_t n = p.count;
    int64_t i = 0;
    for (; i + 4 <= siteCount; i += 4) {
        if (c < n) {
            const auto next = splat(p.breaks[c]);
            const Four<T> x = load_four(sites + i);
            bool same = true;
            for (int k = 0; k < Four<T>::parts; ++k)
                same &= lane_bits(less(x.part[k], next)) == (1u << Lanes<T>::width) - 1;
            if (same) {
                store_four(cells + i, splat_32(c));
                continue;
            }
        }
        for (int64_t k = i; k < i + 4; ++k) cells[k] = step(sites[k]);
    }
    for (; i < siteCount; ++i) cells[i] = step(sites[i]);
    *state = c;
}

template <class T, class Cell>
void search_peak(const Partition<T>& p, int64_t siteCount, const T* sites, T peak_cell, Cell* cells) {
    const auto start = static_cast<int32_t>(peak_cell);
    const auto at = [&](int32_t i) { return p.breaks[i]; };
    for (int64_t i = 0; i < siteCount; ++i) cells[i] = walk(p, at, start, sites[i]);
}

// The bucket of a site bounds its cell; within it four sites are bisected together, on one schedule, without a branch:
// the number of breaks not above x lies in [lo, lo + length], and each probe halves the length.
template <class T>
__m128i hybrid_cells(const Partition<T>& p, const orv_df_bucket* table, T scale, const Four<T>& x) {
    const auto first = splat(p.first), last = splat(p.last), factor = splat(scale);
    const Four<T> inside = map(x, [&](auto v) { return least(greatest(v, first), last); });
    const __m128i last_index = splat_32(p.count - 1);
    __m128i lo = splat_32(0);
    int32_t length = p.count - 1;
    if (table) {
        const __m128i bucket = greatest_32(truncate(map(inside, [&](auto v) { return (v - first) * factor; })), lo);
        const TwoWords bounds = gather_pairs(table, bucket);
        lo = bounds.first;
        length = greatest_word(subtract_32(bounds.second, lo));
    }
    while (length > 0) {
        const int32_t half = (length + 1) >> 1;
        const __m128i probe = least_32(add_32(lo, splat_32(half - 1)), last_index);
        const Four<T> passed = map(gather(p.breaks, probe), inside, [](auto a, auto b) { return less_equal(a, b); });
        lo = add_32(lo, bit_and(narrow_mask(passed), splat_32(half)));
        length -= half;
    }
    return settle_ends(p, x, least_32(lo, last_index));
}

template <class T, class Cell>
void search_hybrid(const Partition<T>& p, int64_t siteCount, const T* sites, T scale, const orv_df_bucket* table,
                   Cell* cells) {
    by_fours(siteCount, sites, cells, [&](const Four<T>& x) { return hybrid_cells(p, table, scale, x); });
}

}  // namespace
}  // namespace orv::fit

using namespace orv::fit;

#define ORV_SEARCH_ARGUMENTS(T)                                                                               \
    (int64_t breakCount, const T* breaks, int64_t siteCount, const T* sites, [[maybe_unused]] int64_t* state, \
     [[maybe_unused]] T scale, orv_df_search_callback, void*, [[maybe_unused]] int64_t flags,                 \
     [[maybe_unused]] const orv_df_bucket* cellTable, void* cells)

// One exported form: `call` with Cell as 64-bit integers where `wide`, else as 32-bit ones.
#define ORV_SEARCH_FORM(name, T, uniform_partition, wide, function, ...)              \
    ORV_API int32_t name ORV_SEARCH_ARGUMENTS(T) {                                    \
        if (siteCount <= 0) return ORV_DF_OK;                                         \
        const Partition<T> p = partition_of(breaks, breakCount, uniform_partition);   \
        if (wide)                                                                     \
            function(p, siteCount, sites, __VA_ARGS__, static_cast<int64_t*>(cells)); \
        else                                                                          \
            function(p, siteCount, sites, __VA_ARGS__, static_cast<int32_t*>(cells)); \
        return ORV_DF_OK;                                                             \
    }

#define ORV_SEARCH_METHOD(letter, T, method, uniform_partition, wide32, function, ...)                               \
    ORV_SEARCH_FORM(orv_df_kernel_##letter##DF##method##Search1D, T, uniform_partition, flags& wide_cells, function, \
                    __VA_ARGS__)                                                                                     \
    ORV_SEARCH_FORM(orv_df_kernel_##letter##DF##method##Search1D32, T, uniform_partition, wide32, function, __VA_ARGS__)

#define ORV_SEARCH_METHODS(letter, T)                                                     \
    ORV_SEARCH_METHOD(letter, T, Uniform, true, false, search_uniform, scale)             \
    ORV_SEARCH_METHOD(letter, T, QuasiUniform, false, false, search_quasi_uniform, scale) \
    ORV_SEARCH_METHOD(letter, T, Sorted, false, flags& wide_cells, search_sorted, state)  \
    ORV_SEARCH_METHOD(letter, T, Peak, false, flags& wide_cells, search_peak, scale)      \
    ORV_SEARCH_METHOD(letter, T, Hybrid, false, flags& wide_cells, search_hybrid, scale, cellTable)

ORV_SEARCH_METHODS(d, double)
ORV_SEARCH_METHODS(s, float)
