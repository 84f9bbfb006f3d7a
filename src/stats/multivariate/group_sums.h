// Sums of groups of observations: weights, means, and the cross-products of the deviations from the groups' means.
//
// A run of observations is cut into blocks. A block's observations are packed group by group; each such segment has its mean,
// its cross-products about that by a rank update, and both join the group's by the pairwise formulas
//
//     C = Ca + Cb + f (ma - mb)(ma - mb)', f = Wa Wb / (Wa + Wb).
//
// Observations are taken relative to the first of their group, so that an offset costs no digits.
//
// Source: T. F. Chan, G. H. Golub, R. J. LeVeque, Algorithms for computing the sample variance, The American Statistician 37
// (1983).
#pragma once

#include "simd/lanes.h"
#include "stats/dense.h"
#include "stats/multivariate/components.h"

#include <string.h>

#include <cmath>

namespace orv::stats {

// Which observations form which groups, and what is wanted of them.
struct Grouping {
    const Data& data;
    Components chosen;
    int32_t groups;
    bool each_matrix;      // each group's own cross-products, not only those of all together
    const double* shifts;  // a row of the chosen components for each group

    int32_t group(int32_t i) const {
        return static_cast<int32_t>(read_integer(data.task->pooledGroupIndices, data.task->wideInts, i));
    }
    ptrdiff_t row() const { return chosen.count; }
    ptrdiff_t matrix() const { return row() * row(); }
};

struct GroupSums {
    double* weights;  // W and W2 of each group
    double* means;    // a row of each, relative to its shift
    double* cross;    // the matrix of each, or one for all; upper triangles by columns

    static uint64_t doubles(const Grouping& by) {
        return uint64_t(by.groups) * (2 + by.row()) + (by.each_matrix ? uint64_t(by.groups) : 1) * by.matrix();
    }
    static GroupSums at(double* memory, const Grouping& by) {
        const ptrdiff_t groups = by.groups;
        return {memory, memory + 2 * groups, memory + groups * (2 + by.row())};
    }
    double* cross_of(int32_t k, const Grouping& by) const { return cross + (by.each_matrix ? k * by.matrix() : 0); }
};

// Brings W and W2 of group k, its mean, and the cross-products about it to the union with a part of weight w with mean m. (The part's own
// cross-products are added apart.) `spare` is room for a row.
inline void join(const Grouping& by, const GroupSums& into, int32_t k, double w, double w2, const double* m,
                 double* spare) {
    double* weights = into.weights + 2 * ptrdiff_t{k};
    double* mean = into.means + k * by.row();
    const int32_t q = by.chosen.count;
    const double whole = weights[0] + w;
    if (weights[0] != 0) {
        const double f = weights[0] * w / whole, share = w / whole;
        for (int32_t a = 0; a < q; ++a) {
            spare[a] = m[a] - mean[a];
            mean[a] += share * spare[a];
        }
        const int32_t step = 1;
        orv_blas_xdsyr("u", &q, &f, spare, &step, into.cross_of(k, by), &q);
    } else {
        memcpy(mean, m, sizeof(double) * q);
    }
    weights[0] = whole;
    weights[1] += w2;
}

// A thread's room for one block of `length` observations.
struct Block {
    int32_t length;   // even
    int32_t stride;   // of the components: not a power of two, which would have them share a few sets of the cache
    double* packed;   // a component after the other
    double* weights;  // and their roots; not used without weights
    double* roots;
    double* mean;
    double* spare;
    int32_t* order;   // the observations, group by group
    int32_t* starts;  // of the groups in that; one more for the end

    static int32_t stride_of(int32_t length) { return length + 8; }
    static uint64_t bytes(const Grouping& by, int32_t length) {
        return sizeof(double) * (uint64_t(stride_of(length)) * by.row() + 2 * uint64_t(length) + 2 * by.row()) +
               sizeof(int32_t) * (uint64_t(length) + by.groups + 2);
    }
    static Block at(void* memory, const Grouping& by, int32_t length) {
        Block block{length, stride_of(length), static_cast<double*>(memory), {}, {}, {}, {}, {}, {}};
        block.weights = block.packed + block.stride * by.row();
        block.roots = block.weights + length;
        block.mean = block.roots + length;
        block.spare = block.mean + by.row();
        block.order = reinterpret_cast<int32_t*>(block.spare + by.row());
        block.starts = block.order + length;
        return block;
    }
};

// By counting. Afterwards starts[k] is where group k starts.
inline void sort_by_group(const Grouping& by, const Block& block, int32_t from, int32_t count) {
    int32_t* starts = block.starts;
    memset(starts, 0, sizeof(int32_t) * (size_t(by.groups) + 1));
    for (int32_t i = 0; i < count; ++i) ++starts[by.group(from + i)];
    int32_t sum = 0;
    for (int32_t k = 0; k <= by.groups; ++k) {
        sum += starts[k];
        starts[k] = sum;
    }
    for (int32_t i = count; i-- > 0;) block.order[--starts[by.group(from + i)]] = from + i;
}

template <class T>
void pack(const Grouping& by, const Block& block, int32_t count) {
    const Data& data = by.data;
    const int32_t q = by.chosen.count;
    for (int32_t k = 0; k < by.groups; ++k) {
        const int32_t first = block.starts[k], last = block.starts[k + 1];
        const double* shift = by.shifts + k * by.row();
        if (data.by_rows) {
            for (int32_t a = 0; a < q && first < last; ++a) {
                const T* x = data.component<T>(by.chosen[a]).first;
                double* to = block.packed + ptrdiff_t{a} * block.stride;
                for (int32_t t = first; t < last; ++t) to[t] = static_cast<double>(x[block.order[t]]) - shift[a];
            }
        } else {
            for (int32_t t = first; t < last; ++t) {
                const T* x = data.observation<T>(block.order[t]).first;
                double* to = block.packed + t;
                for (int32_t a = 0; a < q; ++a, to += block.stride)
                    *to = static_cast<double>(x[by.chosen[a]]) - shift[a];
            }
        }
    }
    const T* w = static_cast<const T*>(data.task->w);
    for (int32_t t = 0; w && t < count; ++t) {
        block.weights[t] = static_cast<double>(w[block.order[t]]);
        block.roots[t] = std::sqrt(block.weights[t]);
    }
}

using Pair = simd::Lanes<double>::V;

// Takes up one group's segment [first, last) of a packed block: deviations from its mean, times the roots of the weights, take the
// place of the observations.
template <bool weighted>
void add_segment(const Grouping& by, const Block& block, const GroupSums& sums, int32_t k, int32_t first,
                 int32_t last) {
    const int32_t q = by.chosen.count, count = last - first;
    const double* weights = block.weights + first;
    const double* roots = block.roots + first;
    double w = count, w2 = count;
    if constexpr (weighted) {
        w = w2 = 0;
        for (int32_t t = 0; t < count; ++t) {
            w += weights[t];
            w2 += weights[t] * weights[t];
        }
    }
    if (w == 0) return;
    for (int32_t a = 0; a < q; ++a) {
        double* x = block.packed + ptrdiff_t{a} * block.stride + first;
        const auto weighed = [&](Pair value, const double* factor) {
            if constexpr (weighted) value *= simd::load(factor);
            return value;
        };
        Pair even{}, odd{};
        int32_t t = 0;
        for (; t + 4 <= count; t += 4) {
            even += weighed(simd::load(x + t), weights + t);
            odd += weighed(simd::load(x + t + 2), weights + t + 2);
        }
        double sum = simd::sum_of_lanes(even + odd);
        for (; t < count; ++t) sum += weighted ? weights[t] * x[t] : x[t];
        const double mean = sum / w;
        const Pair centre = simd::splat(mean);
        for (t = 0; t + 2 <= count; t += 2) simd::store(x + t, weighed(simd::load(x + t) - centre, roots + t));
        if (t < count) x[t] = weighted ? (x[t] - mean) * roots[t] : x[t] - mean;
        block.mean[a] = mean;
    }
    const double one = 1;
    Dense<double>::syrk("u", "t", &q, &count, &one, block.packed + first, &block.stride, &one, sums.cross_of(k, by),
                        &q);
    join(by, sums, k, w, w2, block.mean, block.spare);
}

// Takes up observations [first, last). T is the type of the data.
template <class T>
void add_observations(const Grouping& by, const Block& block, const GroupSums& sums, int32_t first, int32_t last) {
    const bool weighted = by.data.task->w != nullptr;
    for (int32_t from = first; from < last; from += block.length) {
        const int32_t count = last - from < block.length ? last - from : block.length;
        sort_by_group(by, block, from, count);
        pack<T>(by, block, count);
        for (int32_t k = 0; k < by.groups; ++k) {
            const int32_t start = block.starts[k], end = block.starts[k + 1];
            if (start == end) continue;
            if (weighted)
                add_segment<true>(by, block, sums, k, start, end);
            else
                add_segment<false>(by, block, sums, k, start, end);
        }
    }
}

// Adds all of `part` to `into`.
inline void join(const Grouping& by, const GroupSums& into, const GroupSums& part, double* spare) {
    for (int32_t k = 0; k < by.groups; ++k) {
        const double* weights = part.weights + 2 * ptrdiff_t{k};
        if (weights[0] != 0) join(by, into, k, weights[0], weights[1], part.means + k * by.row(), spare);
    }
    const ptrdiff_t all = (by.each_matrix ? by.groups : 1) * by.matrix();
    for (ptrdiff_t i = 0; i < all; ++i) into.cross[i] += part.cross[i];
}

}  // namespace orv::stats
