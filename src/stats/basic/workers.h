// The workers of the basic pass: one function for each combination of method, order, weights, matrix and storage, so that no
// inner loop asks about any of them.
#pragma once

#include "services/blas.h"
#include "stats/basic/accumulation.h"

namespace orv::stats {

// The rank updates of the element type, for use inside a worker and outside.
template <class T>
struct Blas;

template <>
struct Blas<double> {
    using Syr = decltype(&orv_blas_dsyr);
    using Syrk = decltype(&orv_blas_dsyrk);
    static Syr rank_1(bool in_worker) { return in_worker ? orv_blas_xdsyr : orv_blas_dsyr; }
    static Syrk rank_k(bool in_worker) { return in_worker ? orv_blas_xdsyrk : orv_blas_dsyrk; }
};

template <>
struct Blas<float> {
    using Syr = decltype(&orv_blas_ssyr);
    using Syrk = decltype(&orv_blas_ssyrk);
    static Syr rank_1(bool in_worker) { return in_worker ? orv_blas_xssyr : orv_blas_ssyr; }
    static Syrk rank_k(bool in_worker) { return in_worker ? orv_blas_xssyrk : orv_blas_ssyrk; }
};

// One part of the data and its accumulators. The shift stays as given with BasicFast (0) and BasicUserMean and follows the
// running mean with BasicOnePass.
template <class T>
struct Part {
    int32_t first, last, n;                      // observations [first, last) of n
    int32_t component_first, component_last, p;  // components [first, last) of p
    const T* x;
    const T* w;
    uint32_t reserved;
    double* weights;  // W and W2
    PowerRows rows;   // raw rows with BasicUserMean alone; null: not wanted
    double* cross;    // p by p, upper triangle by columns; null: not wanted
    void* scratch;    // cross_scratch_bytes
    typename Blas<T>::Syr rank_1;
    typename Blas<T>::Syrk rank_k;
};

template <class T>
using Worker = int32_t (*)(const Part<T>&);

// [0, 32) BasicOnePass: 2 (order - 1) + 1 with a matrix + 8 with weights + 16 without StorageRows.
// [32, 48) BasicFast and [48, 64) BasicUserMean: order - 1 + 4 with weights + 8 without StorageRows.
inline constexpr int32_t worker_count = 64;
template <class T>
struct Workers {
    static const Worker<T> table[worker_count];
};
template <>
const Worker<double> Workers<double>::table[worker_count];
template <>
const Worker<float> Workers<float>::table[worker_count];

inline constexpr int32_t one_pass_workers = 0, fast_workers = 32, user_mean_workers = 48;

// What a worker needs besides for a matrix of p components over `count` observations.
template <class T>
uint64_t cross_scratch_bytes(uint64_t method, int32_t p, int32_t count, bool weighted);
extern template uint64_t cross_scratch_bytes<double>(uint64_t, int32_t, int32_t, bool);
extern template uint64_t cross_scratch_bytes<float>(uint64_t, int32_t, int32_t, bool);

}  // namespace orv::stats
