// The core library's dense matrix entries by element type.
#pragma once

#include "services/blas.h"
#include "services/lapack.h"

#include <stddef.h>

#include <limits>

namespace orv::stats {

template <class T>
struct Dense;

template <>
struct Dense<double> {
    static constexpr auto syrk = orv_blas_xdsyrk;
    static constexpr auto gemm = orv_blas_xdgemm;
    static constexpr auto symm = orv_blas_xdsymm;
    static constexpr auto trmm = orv_blas_xdtrmm;
    static constexpr auto gemv = orv_blas_xdgemv;
    static constexpr auto potrf = orv_lapack_xdpotrf;
    static constexpr auto potri = orv_lapack_xdpotri;
    static constexpr auto trtri = orv_lapack_xdtrtri;
    static constexpr auto syev = orv_lapack_xdsyev;
    static constexpr auto spevd = orv_lapack_xdspevd;
};

template <>
struct Dense<float> {
    static constexpr auto syrk = orv_blas_xssyrk;
    static constexpr auto gemm = orv_blas_xsgemm;
    static constexpr auto symm = orv_blas_xssymm;
    static constexpr auto trmm = orv_blas_xstrmm;
    static constexpr auto gemv = orv_blas_xsgemv;
    static constexpr auto potrf = orv_lapack_xspotrf;
    static constexpr auto potri = orv_lapack_xspotri;
    static constexpr auto trtri = orv_lapack_xstrtri;
    static constexpr auto syev = orv_lapack_xssyev;
    static constexpr auto spevd = orv_lapack_xsspevd;
};

// Cholesky factor in place: a = u'u in the upper triangle, by columns. False where a is not positive definite, which a NaN or an
// infinity is not: the pivots are looked at again, since a NaN passes some LAPACKs' own test.
template <class T>
bool cholesky(int32_t n, T* a) {
    int32_t info = 0;
    Dense<T>::potrf("u", &n, a, &n, &info);
    for (int32_t i = 0; info == 0 && i < n; ++i) {
        const T pivot = a[static_cast<size_t>(i) * n + i];
        if (!(pivot > 0 && pivot <= std::numeric_limits<T>::max())) info = i + 1;
    }
    return info == 0;
}

}  // namespace orv::stats
