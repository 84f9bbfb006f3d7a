// The worker family.
//
// Moments. A block's sums of powers are taken about a shift and added to the part's. BasicFast takes 0, BasicUserMean the
// caller's mean. BasicOnePass takes the mean of all before the block, and moves the sums to the new mean afterwards: that
// is Welford's update with a block in the place of one observation, and costs no division an element. It loses nothing
// to cancellation: with W_a before and W_b in the block, the sums about the old mean exceed the central ones by
// W_b d^2 at most, d being the distance of the two means, and Chan's own term W_a W_b / (W_a + W_b) d^2 is at least half of
// that once W_a >= W_b.
//
// Matrices. BasicOnePass forms products of packed deviations from the running mean in registers and moves them along.
// BasicFast and BasicUserMean take a part's means first (the caller's are at hand) and leave the products to rank updates.
#include "stats/basic/workers.h"

#include "stats/basic/estimates.h"
#include "stats/basic/kernels.h"
#include "stats/basic/power_shift.h"

#include <string.h>

namespace orv::stats {
namespace {

constexpr int32_t moment_block = 1024;      // observations; 8 KB of a column
constexpr int32_t tile_components = 8;      // a cache line of each observation
constexpr int32_t tile_observations = 256;  // 16 KB packed, half of the first-level cache
constexpr int32_t one_pass_bytes = 24 << 10;

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
void first_shift(const Part<T>& part, Steps steps) {
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
void add_weights(const Part<T>& part, int32_t first, int32_t count) {
    const WeightSums sums = weighted ? weight_sums(part.w + first, count)
                                     : WeightSums{static_cast<double>(count), static_cast<double>(count)};
    part.weights[0] += sums.w;
    part.weights[1] += sums.w2;
}

// ---- Moments -------------------------------------------------------------------------------------------------------

// One block of contiguous columns, or, with by_columns, packed tile by tile first.
template <uint64_t method, int order, bool weighted, bool by_columns, class T>
void block_moments(const Part<T>& part, int32_t first, int32_t count) {
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
void moments(const Part<T>& part) {
    constexpr int32_t step = by_columns ? tile_observations : moment_block;
    if constexpr (method == BasicOnePass) first_shift<weighted>(part, steps_of(part, by_columns));
    for (int32_t i = part.first; i < part.last; i += step) {
        const int32_t count = least(step, part.last - i);
        add_weights<weighted>(part, i, count);
        block_moments<method, order, weighted, by_columns>(part, i, count);
    }
}

// ---- Matrices about the running mean -------------------------------------------------------------------------------

int32_t one_pass_block(int32_t p, int32_t count) {
    const int32_t fitting = one_pass_bytes / (8 * p);
    const int32_t block = fitting > 256 ? 256 : fitting < 32 ? 32 : fitting & ~1;
    return least(block, even(count));
}

// sum w (x_i - s_i - e_i)(x_j - s_j - e_j) = C_ij - e_i A_j - e_j A_i + W e_i e_j, with A_j the first sums about s; taken
// together as C_ij - e_i g_j - g_i e_j with g = A - W e / 2.
void move_cross(double* c, ptrdiff_t p, int32_t first, int32_t last, const double* e, const double* g) {
    for (int32_t j = first; j < last; ++j) {
        double* column = c + j * p;
        const __m128d ej = _mm_set1_pd(e[j]), gj = _mm_set1_pd(g[j]);
        int32_t i = first;
        for (; i + 2 <= j + 1; i += 2) {
            const __m128d change = _mm_add_pd(_mm_mul_pd(_mm_loadu_pd(e + i), gj), _mm_mul_pd(_mm_loadu_pd(g + i), ej));
            _mm_storeu_pd(column + i, _mm_sub_pd(_mm_loadu_pd(column + i), change));
        }
        if (i <= j) column[i] -= e[i] * g[j] + g[i] * e[j];
    }
}

template <int order, bool weighted, bool by_columns, class T>
void one_pass_with_cross(const Part<T>& part) {
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
int32_t rank_block(int32_t p, int32_t count, bool weighted) {
    const int32_t fitting = 0x40000 / (8 * p * (weighted ? 2 : 1));
    return least(fitting > 64 ? fitting : 64, count);
}

// Float products gather in a float matrix for one block only and then go to the double one.
void accumulate(double*, double*, int32_t, int32_t, int32_t) {}
void accumulate(double* sums, float* block, int32_t p, int32_t first, int32_t last) {
    for (int32_t j = first; j < last; ++j)
        for (int32_t i = first; i <= j; ++i) {
            const ptrdiff_t at = ptrdiff_t{j} * p + i;
            sums[at] += static_cast<double>(block[at]);
            block[at] = 0;
        }
}

inline double* product_matrix(double* cross, void*, double*) { return cross; }
inline float* product_matrix(double*, void* block, float*) { return static_cast<float*>(block); }

template <bool weighted, bool by_columns, class T>
void cross_by_rank_updates(const Part<T>& part, const double* centre) {
    const Steps steps = steps_of(part, by_columns);
    const int32_t p = part.p, from = part.component_first, width = part.component_last - from;
    const int32_t block = rank_block(p, part.last - part.first, weighted);
    const int32_t stride = even(block);  // room for the zero that pads an odd count
    double* roots = static_cast<double*>(part.scratch);
    double* packed_exactly = roots + stride;
    T* packed = reinterpret_cast<T*>(packed_exactly);
    T* products = product_matrix(part.cross, packed_exactly + ptrdiff_t{stride} * p, packed);
    if constexpr (sizeof(T) < sizeof(double)) memset(products, 0, sizeof(T) * p * p);
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
        accumulate(part.cross, products, p, from, part.component_last);
    }
    accumulate(part.cross, products, p, from, part.component_last);
}

// ---- The family ----------------------------------------------------------------------------------------------------

template <class T, uint64_t method, int order, bool with_cross, bool weighted, bool by_columns>
int32_t worker(const Part<T>& part) {
    if constexpr (method == BasicOnePass) {
        if constexpr (with_cross)
            one_pass_with_cross<order, weighted, by_columns>(part);
        else
            moments<method, order, weighted, by_columns>(part);
    } else {
        moments<method, order, weighted, by_columns>(part);
        if (!part.cross || part.weights[0] == 0) return SSStatusOk;
        const double* centre = part.rows.shift;
        if constexpr (method == BasicFast) {
            // The row of shifts is free: the means of this part go there.
            for (int32_t j = part.component_first; j < part.component_last; ++j)
                part.rows.shift[j] = part.rows.sums[0][j] / part.weights[0];
        }
        cross_by_rank_updates<weighted, by_columns>(part, centre);
    }
    return SSStatusOk;
}

template <class T, int index>
constexpr Worker<T> worker_at() {
    if constexpr (index < fast_workers)
        return worker<T, BasicOnePass, (index >> 1 & 3) + 1, (index & 1) != 0, (index & 8) != 0, (index & 16) != 0>;
    else
        return worker < T, index < user_mean_workers ? BasicFast : BasicUserMean, (index & 3) + 1, true,
               (index & 4) != 0, (index & 8) != 0 > ;
}

}  // namespace

// Four entries a row: the orders or, for BasicOnePass, two orders without and with a matrix.
// clang-format off
#define ROW(T, i) worker_at<T, i>(), worker_at<T, i + 1>(), worker_at<T, i + 2>(), worker_at<T, i + 3>()
#define WORKERS(T)                                                                  \
    {                                                                               \
        ROW(T, 0),  ROW(T, 4),  /* one pass, rows                                */ \
        ROW(T, 8),  ROW(T, 12), /* one pass, rows, weights                       */ \
        ROW(T, 16), ROW(T, 20), /* one pass, columns                             */ \
        ROW(T, 24), ROW(T, 28), /* one pass, columns, weights                    */ \
        ROW(T, 32), ROW(T, 36), /* fast, rows, without and with weights          */ \
        ROW(T, 40), ROW(T, 44), /* fast, columns, without and with weights       */ \
        ROW(T, 48), ROW(T, 52), /* user's mean, rows, without and with weights   */ \
        ROW(T, 56), ROW(T, 60), /* user's mean, columns, without and with weights */ \
    }
template <>
const Worker<double> Workers<double>::table[worker_count] = WORKERS(double);
template <>
const Worker<float> Workers<float>::table[worker_count] = WORKERS(float);
// clang-format on

template <class T>
uint64_t cross_scratch_bytes(uint64_t method, int32_t p, int32_t count, bool weighted) {
    if (method == BasicOnePass) {
        const uint64_t block = static_cast<uint64_t>(one_pass_block(p, count));
        return 8 * (block * p + block + 2 * static_cast<uint64_t>(p));
    }
    const uint64_t block = static_cast<uint64_t>(even(rank_block(p, count, weighted)));
    const uint64_t single_matrix = sizeof(T) == sizeof(float) ? 4 * static_cast<uint64_t>(p) * p + 8 : 0;
    return 8 * (block * p + block) + single_matrix;
}
template uint64_t cross_scratch_bytes<double>(uint64_t, int32_t, int32_t, bool);
template uint64_t cross_scratch_bytes<float>(uint64_t, int32_t, int32_t, bool);

}  // namespace orv::stats
