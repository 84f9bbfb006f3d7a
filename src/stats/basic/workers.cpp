// The worker family.
#include "stats/basic/workers.h"

#include "stats/basic/estimates.h"
#include "stats/basic/worker_matrices.h"

namespace orv::stats {
namespace {

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
