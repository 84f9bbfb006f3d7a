// The workers of the basic pass: one function for each combination of method, order, weights, matrix and storage, so that no
// inner loop asks about any of them.
#pragma once

#include "services/blas.h"

#include <stddef.h>
#include <stdint.h>

namespace orv::stats {

template <class T>
struct BlasNames;

template <>
struct BlasNames<double> {
    using Syr = decltype(&orv_blas_dsyr);
    using Syrk = decltype(&orv_blas_dsyrk);
};

template <>
struct BlasNames<float> {
    using Syr = decltype(&orv_blas_ssyr);
    using Syrk = decltype(&orv_blas_ssyrk);
};

// One part of the data and its accumulators. The sums are taken about `shift`, one value a component, which stays as given
// with BasicFast (null: 0) and BasicUserMean and follows the running mean with BasicOnePass.
template <class T>
struct Part {
    int32_t first, last, n;                      // observations [first, last) of n
    int32_t component_first, component_last, p;  // components [first, last) of p
    const T* x;
    const T* w;
    uint32_t reserved;
    double* weights;  // W and W2
    double* sums[4];  // sums of powers 1 to 4, p each
    double* cross;    // p by p, upper triangle by columns; null: not wanted
    double* shift;
    void* scratch;  // cross_scratch_bytes
    typename BlasNames<T>::Syr rank_1;
    typename BlasNames<T>::Syrk rank_k;
};

template <class T>
using Worker = int32_t (*)(const Part<T>&);

// [0, 32) BasicOnePass: 2 (order - 1) + 1 with a matrix + 8 with weights + 16 without StorageRows.
// [32, 48) BasicFast and [48, 64) BasicUserMean: order - 1 + 4 with weights + 8 without StorageRows.
inline constexpr int32_t worker_count = 64;
extern const Worker<double> workers_d[worker_count];
extern const Worker<float> workers_s[worker_count];

inline constexpr int32_t one_pass_workers = 0, fast_workers = 32, user_mean_workers = 48;

// What a worker needs besides for a matrix of p components over `count` observations.
template <class T>
uint64_t cross_scratch_bytes(uint64_t method, int32_t p, int32_t count, bool weighted);
extern template uint64_t cross_scratch_bytes<double>(uint64_t, int32_t, int32_t, bool);
extern template uint64_t cross_scratch_bytes<float>(uint64_t, int32_t, int32_t, bool);

}  // namespace orv::stats
