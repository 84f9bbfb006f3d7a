// The workers' moments.
//
// A block's sums of powers are taken about a shift and added to the part's. BasicFast takes 0, BasicUserMean the caller's mean
// and, beside it, 0. BasicOnePass takes the mean of all before the block, and moves the sums to the new mean afterwards: that
// is Welford's update with a block in the place of one observation, and costs no division an element. It loses nothing
// to cancellation: with W_a before and W_b in the block, the sums about the old mean exceed the central ones by
// W_b d^2 at most, d being the distance of the two means, and Chan's own term W_a W_b / (W_a + W_b) d^2 is at least half of
// that once W_a >= W_b.
#pragma once

#include "stats/basic/kernels.h"
#include "stats/basic/workers.h"

namespace orv::stats {

inline constexpr int32_t moment_block = 1024;      // observations; 8 KB of a column
inline constexpr int32_t tile_components = 8;      // a cache line of each observation
inline constexpr int32_t tile_observations = 256;  // 16 KB packed, half of the first-level cache

constexpr int32_t even(int32_t count) { return (count + 1) & ~1; }
constexpr int32_t least(int32_t a, int32_t b) { return a < b ? a : b; }

template <class T>
Steps steps_of(const Part<T>& part, bool by_columns) {
    return by_columns ? Steps{1, part.p} : Steps{part.n, 1};
}

template <class T>
const T* element(const Part<T>& part, Steps steps, int32_t component, int32_t observation) {
    return part.x + component * steps.by_component + observation * steps.by_observation;
}

template <int order>
void add_sums(double* const (&rows)[4], int32_t j, const PowerSums& sums) {
    rows[0][j] += sums.s1;
    if (order >= 2) rows[1][j] += sums.s2;
    if (order >= 3) rows[2][j] += sums.s3;
    if (order >= 4) rows[3][j] += sums.s4;
}

// Any value near the data will do to begin with: the mean of the first few observations, each as far as it weighs. What
// weighs nothing may lie anywhere.
template <bool weighted, class T>
[[gnu::always_inline]] inline void first_shift(const Part<T>& part, Steps steps) {
    constexpr int32_t few = 32;
    int32_t first = part.first;
    if constexpr (weighted)
        while (first < part.last && part.w[first] == 0) ++first;
    const int32_t count = least(part.last - first, few);
    double whole = count;
    if constexpr (weighted) {
        whole = 0;
        for (int32_t i = 0; i < count; ++i) whole += __builtin_fabs(static_cast<double>(part.w[first + i]));
    }
    for (int32_t j = part.component_first; j < part.component_last; ++j) {
        const T* at = element(part, steps, j, first);
        double sum = 0;
        for (int32_t i = 0; i < count; ++i) {
            const double value = static_cast<double>(at[i * steps.by_observation]);
            sum += weighted ? value * __builtin_fabs(static_cast<double>(part.w[first + i])) : value;
        }
        part.rows.shift[j] = count > 0 ? sum / whole : 0;
    }
}

template <bool weighted, class T>
[[gnu::always_inline]] inline void add_weights(const Part<T>& part, int32_t first, int32_t count) {
    const WeightSums sums = weighted ? weight_sums(part.w + first, count)
                                     : WeightSums{static_cast<double>(count), static_cast<double>(count)};
    part.weights[0] += sums.w;
    part.weights[1] += sums.w2;
}

// One block of contiguous columns, or, with by_columns, packed tile by tile first.
template <uint64_t method, int order, bool weighted, bool by_columns, class T>
[[gnu::always_inline]] inline void block_moments(const Part<T>& part, int32_t first, int32_t count) {
    constexpr bool shifted = method != BasicFast;
    const Steps steps = steps_of(part, by_columns);
    const T* w = weighted ? part.w + first : nullptr;
    const auto take = [&](int32_t j, const PowerSums& sums) {
        add_sums<order>(part.rows.sums, j, sums);
        if constexpr (method == BasicOnePass) {
            Powers moved = part.rows.at(j);
            move_to_mean(moved, part.weights[0], order);
            part.rows.set(j, moved);
        }
    };
    // With a centre far from the data the sums about 0 are no longer to be had from those about the centre.
    const auto take_raw = [&](int32_t j, const PowerSums& sums) { add_sums<order>(part.rows.raw, j, sums); };
    const bool raw = method == BasicUserMean && part.rows.raw[0];
    if constexpr (by_columns) {
        double tile[tile_components * tile_observations];
        for (int32_t j = part.component_first; j < part.component_last; j += tile_components) {
            const int32_t width = least(tile_components, part.component_last - j);
            const auto each = [&](const double* shift, auto to) {
                pack_columns(element(part, steps, j, first), steps, width, count, shift, nullptr, tile,
                             tile_observations);
                for (int32_t k = 0; k < width; ++k)
                    to(j + k, power_sums<order, weighted, false>(tile + k * tile_observations, w, count, 0));
            };
            each(shifted ? part.rows.shift + j : nullptr, take);
            if (raw) each(nullptr, take_raw);
        }
    } else {
        for (int32_t j = part.component_first; j < part.component_last; ++j) {
            const T* x = element(part, steps, j, first);
            take(j, power_sums<order, weighted, shifted>(x, w, count, shifted ? part.rows.shift[j] : 0));
            if (raw) take_raw(j, power_sums<order, weighted, false>(x, w, count, 0));
        }
    }
}

template <uint64_t method, int order, bool weighted, bool by_columns, class T>
[[gnu::always_inline]] inline void moments(const Part<T>& part) {
    constexpr int32_t step = by_columns ? tile_observations : moment_block;
    if constexpr (method == BasicOnePass) first_shift<weighted>(part, steps_of(part, by_columns));
    for (int32_t i = part.first; i < part.last; i += step) {
        const int32_t count = least(step, part.last - i);
        add_weights<weighted>(part, i, count);
        block_moments<method, order, weighted, by_columns>(part, i, count);
    }
}

}  // namespace orv::stats
