// The workers' matrices.
//
// BasicOnePass forms products of packed deviations from the running mean in registers and moves them along. BasicFast and
// BasicUserMean take a part's means first (the caller's are at hand) and leave the products to rank updates.
#pragma once

#include "stats/basic/worker_moments.h"

#include <string.h>

namespace orv::stats {

// ---- Matrices about the running mean -------------------------------------------------------------------------------

inline constexpr int32_t one_pass_bytes = 24 << 10;

inline int32_t one_pass_block(int32_t p, int32_t count) {
    const int32_t fitting = one_pass_bytes / (8 * p);
    const int32_t block = fitting > 256 ? 256 : fitting < 32 ? 32 : fitting & ~1;
    return least(block, even(count));
}

// sum w (x_i - s_i - e_i)(x_j - s_j - e_j) = C_ij - e_i A_j - e_j A_i + W e_i e_j, with A_j the first sums about s; taken
// together as C_ij - e_i g_j - g_i e_j with g = A - W e / 2.
inline void move_cross(double* c, ptrdiff_t p, int32_t first, int32_t last, const double* e, const double* g) {
    for (int32_t j = first; j < last; ++j) {
        double* column = c + j * p;
        const Pair ej = splat(e[j]), gj = splat(g[j]);
        int32_t i = first;
        for (; i + 2 <= j + 1; i += 2) {
            const Pair change = load(e + i) * gj + load(g + i) * ej;
            store(column + i, load(column + i) - change);
        }
        if (i <= j) column[i] -= e[i] * g[j] + g[i] * e[j];
    }
}

template <int order, bool weighted, bool by_columns, class T>
[[gnu::always_inline]] inline void one_pass_with_cross(const Part<T>& part) {
    const Steps steps = steps_of(part, by_columns);
    const int32_t block = one_pass_block(part.p, part.last - part.first);
    double* packed = static_cast<double*>(part.scratch);
    double* weights = packed + ptrdiff_t{block} * part.p;
    double* e = weights + block;
    double* g = e + part.p;
    const int32_t from = part.component_first, to = part.component_last;
    first_shift<weighted>(part, steps);
    for (int32_t first = part.first; first < part.last; first += block) {
        const int32_t count = least(block, part.last - first);
        add_weights<weighted>(part, first, count);
        if constexpr (weighted) {
            for (int32_t i = 0; i < count; ++i) weights[i] = static_cast<double>(part.w[first + i]);
            if (count & 1) weights[count] = 0;
        }
        pack(element(part, steps, from, first), steps, to - from, count, part.rows.shift + from, nullptr, packed,
             block);
        for (int32_t j = from; j < to; ++j) {
            const double* deviations = packed + ptrdiff_t{j - from} * block;
            add_sums<order>(part.rows.sums, j, power_sums<order, weighted, false>(deviations, weights, count, 0));
            Powers sums = part.rows.at(j);
            const double a1 = sums.a1;
            e[j] = move_to_mean(sums, part.weights[0], order);
            g[j] = a1 - 0.5 * part.weights[0] * e[j];
            part.rows.set(j, sums);
        }
        cross_products<weighted>(packed, block, weights, even(count), to - from,
                                 part.cross + from * (ptrdiff_t{part.p} + 1), part.p);
        move_cross(part.cross, part.p, from, to, e, g);
    }
}

// ---- Matrices by rank updates --------------------------------------------------------------------------------------

// Observations of one update: 256 KB of them, twice that many bytes an observation with weights.
inline int32_t rank_block(int32_t p, int32_t count, bool weighted) {
    const int32_t fitting = 0x40000 / (8 * p * (weighted ? 2 : 1));
    return least(fitting > 64 ? fitting : 64, count);
}

// Float products gather in a float matrix for one block only and then go to the double one.
inline void accumulate(double* sums, float* block, int32_t p, int32_t first, int32_t last) {
    for (int32_t j = first; j < last; ++j)
        for (int32_t i = first; i <= j; ++i) {
            const ptrdiff_t at = ptrdiff_t{j} * p + i;
            sums[at] += static_cast<double>(block[at]);
            block[at] = 0;
        }
}

template <bool weighted, bool by_columns, class T>
[[gnu::always_inline]] inline void cross_by_rank_updates(const Part<T>& part, const double* centre) {
    const Steps steps = steps_of(part, by_columns);
    const int32_t p = part.p, from = part.component_first, width = part.component_last - from;
    const int32_t block = rank_block(p, part.last - part.first, weighted);
    const int32_t stride = even(block);  // room for the zero that pads an odd count
    double* roots = static_cast<double*>(part.scratch);
    double* packed_exactly = roots + stride;
    T* packed = reinterpret_cast<T*>(packed_exactly);
    constexpr bool gathers = sizeof(T) < sizeof(double);
    T* products;
    if constexpr (gathers) {
        products = reinterpret_cast<T*>(packed_exactly + ptrdiff_t{stride} * p);
        memset(products, 0, sizeof(T) * p * p);
    } else {
        products = part.cross;
    }
    const ptrdiff_t corner = from * (ptrdiff_t{p} + 1);
    const T one = 1;
    const int32_t unit = 1;

    int32_t first = part.first;
    if (!weighted || part.w[first] >= 0) {
        if constexpr (weighted) roots[0] = __builtin_sqrt(static_cast<double>(part.w[first]));
        // One observation: its components lie one after another.
        const T* x = element(part, steps, from, first);
        for (int32_t j = 0; j < width; ++j)
            packed[j] = static_cast<T>((static_cast<double>(x[j * steps.by_component]) - centre[from + j]) *
                                       (weighted ? roots[0] : 1));
        part.rank_1("u", &width, &one, packed, &unit, products + corner, &p);
        ++first;
    }
    for (; first < part.last; first += block) {
        const int32_t count = least(block, part.last - first);
        const T* x = element(part, steps, from, first);
        bool negative = false;
        if constexpr (weighted) {
            for (int32_t i = 0; i < count; ++i) {
                negative |= part.w[first + i] < 0;
                roots[i] = __builtin_sqrt(static_cast<double>(part.w[first + i]));
            }
        }
        if (negative) {
            // No real root: weights go into the products instead.
            for (int32_t i = 0; i < count; ++i) roots[i] = static_cast<double>(part.w[first + i]);
            if (count & 1) roots[count] = 0;
            pack(x, steps, width, count, centre + from, nullptr, packed_exactly, stride);
            cross_products<true>(packed_exactly, stride, roots, even(count), width, part.cross + corner, p);
            continue;
        }
        pack(x, steps, width, count, centre + from, weighted ? roots : nullptr, packed, stride);
        part.rank_k("u", "t", &width, &count, &one, packed, &stride, &one, products + corner, &p);
        if constexpr (gathers) accumulate(part.cross, products, p, from, part.component_last);
    }
    if constexpr (gathers) accumulate(part.cross, products, p, from, part.component_last);
}

}  // namespace orv::stats
