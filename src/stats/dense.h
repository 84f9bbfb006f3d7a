// The core library's dense matrix entries by element type.
#pragma once

#include "services/blas.h"
#include "services/lapack.h"

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

}  // namespace orv::stats
