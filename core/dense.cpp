// Dense products, factorisations and eigenvalues over the system's BLAS and LAPACK, on the thread that calls.
#include "one_thread.h"
#include "services/export.h"

#include <orv/blas.h>
#include <orv/lapack.h>

extern "C" {
void dgemm_(const char*, const char*, const int32_t*, const int32_t*, const int32_t*, const double*, const double*,
            const int32_t*, const double*, const int32_t*, const double*, double*, const int32_t*);
void dsymm_(const char*, const char*, const int32_t*, const int32_t*, const double*, const double*, const int32_t*,
            const double*, const int32_t*, const double*, double*, const int32_t*);
void dtrmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*, const double*,
            const double*, const int32_t*, double*, const int32_t*);
void dgemv_(const char*, const int32_t*, const int32_t*, const double*, const double*, const int32_t*, const double*,
            const int32_t*, const double*, double*, const int32_t*);
void sgemm_(const char*, const char*, const int32_t*, const int32_t*, const int32_t*, const float*, const float*,
            const int32_t*, const float*, const int32_t*, const float*, float*, const int32_t*);
void ssymm_(const char*, const char*, const int32_t*, const int32_t*, const float*, const float*, const int32_t*,
            const float*, const int32_t*, const float*, float*, const int32_t*);
void strmm_(const char*, const char*, const char*, const char*, const int32_t*, const int32_t*, const float*,
            const float*, const int32_t*, float*, const int32_t*);
void sgemv_(const char*, const int32_t*, const int32_t*, const float*, const float*, const int32_t*, const float*,
            const int32_t*, const float*, float*, const int32_t*);
void dpotrf_(const char*, const int32_t*, double*, const int32_t*, int32_t*);
void spotrf_(const char*, const int32_t*, float*, const int32_t*, int32_t*);
void dpotri_(const char*, const int32_t*, double*, const int32_t*, int32_t*);
void spotri_(const char*, const int32_t*, float*, const int32_t*, int32_t*);
void dtrtri_(const char*, const char*, const int32_t*, double*, const int32_t*, int32_t*);
void strtri_(const char*, const char*, const int32_t*, float*, const int32_t*, int32_t*);
void dsyev_(const char*, const char*, const int32_t*, double*, const int32_t*, double*, double*, const int32_t*,
            int32_t*);
void ssyev_(const char*, const char*, const int32_t*, float*, const int32_t*, float*, float*, const int32_t*, int32_t*);
void dspevd_(const char*, const char*, const int32_t*, double*, double*, double*, const int32_t*, double*,
             const int32_t*, int32_t*, const int32_t*, int32_t*);
void sspevd_(const char*, const char*, const int32_t*, float*, float*, float*, const int32_t*, float*, const int32_t*,
             int32_t*, const int32_t*, int32_t*);
}

using orv::core::keep_to_one_thread;

ORV_API void orv_blas_xdgemm(const char* transa, const char* transb, const int32_t* m, const int32_t* n,
                             const int32_t* k, const double* alpha, const double* a, const int32_t* lda,
                             const double* b, const int32_t* ldb, const double* beta, double* c, const int32_t* ldc) {
    keep_to_one_thread();
    dgemm_(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

ORV_API void orv_blas_xdsymm(const char* side, const char* uplo, const int32_t* m, const int32_t* n,
                             const double* alpha, const double* a, const int32_t* lda, const double* b,
                             const int32_t* ldb, const double* beta, double* c, const int32_t* ldc) {
    keep_to_one_thread();
    dsymm_(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

ORV_API void orv_blas_xdtrmm(const char* side, const char* uplo, const char* transa, const char* diag, const int32_t* m,
                             const int32_t* n, const double* alpha, const double* a, const int32_t* lda, double* b,
                             const int32_t* ldb) {
    keep_to_one_thread();
    dtrmm_(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

ORV_API void orv_blas_xdgemv(const char* trans, const int32_t* m, const int32_t* n, const double* alpha,
                             const double* a, const int32_t* lda, const double* x, const int32_t* incx,
                             const double* beta, double* y, const int32_t* incy) {
    keep_to_one_thread();
    dgemv_(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}

ORV_API void orv_blas_xsgemm(const char* transa, const char* transb, const int32_t* m, const int32_t* n,
                             const int32_t* k, const float* alpha, const float* a, const int32_t* lda, const float* b,
                             const int32_t* ldb, const float* beta, float* c, const int32_t* ldc) {
    keep_to_one_thread();
    sgemm_(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

ORV_API void orv_blas_xssymm(const char* side, const char* uplo, const int32_t* m, const int32_t* n, const float* alpha,
                             const float* a, const int32_t* lda, const float* b, const int32_t* ldb, const float* beta,
                             float* c, const int32_t* ldc) {
    keep_to_one_thread();
    ssymm_(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

ORV_API void orv_blas_xstrmm(const char* side, const char* uplo, const char* transa, const char* diag, const int32_t* m,
                             const int32_t* n, const float* alpha, const float* a, const int32_t* lda, float* b,
                             const int32_t* ldb) {
    keep_to_one_thread();
    strmm_(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

ORV_API void orv_blas_xsgemv(const char* trans, const int32_t* m, const int32_t* n, const float* alpha, const float* a,
                             const int32_t* lda, const float* x, const int32_t* incx, const float* beta, float* y,
                             const int32_t* incy) {
    keep_to_one_thread();
    sgemv_(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}

ORV_API void orv_lapack_xdpotrf(const char* uplo, const int32_t* n, double* a, const int32_t* lda, int32_t* info) {
    keep_to_one_thread();
    dpotrf_(uplo, n, a, lda, info);
}

ORV_API void orv_lapack_xspotrf(const char* uplo, const int32_t* n, float* a, const int32_t* lda, int32_t* info) {
    keep_to_one_thread();
    spotrf_(uplo, n, a, lda, info);
}

ORV_API void orv_lapack_xdpotri(const char* uplo, const int32_t* n, double* a, const int32_t* lda, int32_t* info) {
    keep_to_one_thread();
    dpotri_(uplo, n, a, lda, info);
}

ORV_API void orv_lapack_xspotri(const char* uplo, const int32_t* n, float* a, const int32_t* lda, int32_t* info) {
    keep_to_one_thread();
    spotri_(uplo, n, a, lda, info);
}

ORV_API void orv_lapack_xdtrtri(const char* uplo, const char* diag, const int32_t* n, double* a, const int32_t* lda,
                                int32_t* info) {
    keep_to_one_thread();
    dtrtri_(uplo, diag, n, a, lda, info);
}

ORV_API void orv_lapack_xstrtri(const char* uplo, const char* diag, const int32_t* n, float* a, const int32_t* lda,
                                int32_t* info) {
    keep_to_one_thread();
    strtri_(uplo, diag, n, a, lda, info);
}

ORV_API void orv_lapack_xdsyev(const char* jobz, const char* uplo, const int32_t* n, double* a, const int32_t* lda,
                               double* w, double* work, const int32_t* lwork, int32_t* info) {
    keep_to_one_thread();
    dsyev_(jobz, uplo, n, a, lda, w, work, lwork, info);
}

ORV_API void orv_lapack_xssyev(const char* jobz, const char* uplo, const int32_t* n, float* a, const int32_t* lda,
                               float* w, float* work, const int32_t* lwork, int32_t* info) {
    keep_to_one_thread();
    ssyev_(jobz, uplo, n, a, lda, w, work, lwork, info);
}

ORV_API void orv_lapack_xdspevd(const char* jobz, const char* uplo, const int32_t* n, double* ap, double* w, double* z,
                                const int32_t* ldz, double* work, const int32_t* lwork, int32_t* iwork,
                                const int32_t* liwork, int32_t* info) {
    keep_to_one_thread();
    dspevd_(jobz, uplo, n, ap, w, z, ldz, work, lwork, iwork, liwork, info);
}

ORV_API void orv_lapack_xsspevd(const char* jobz, const char* uplo, const int32_t* n, float* ap, float* w, float* z,
                                const int32_t* ldz, float* work, const int32_t* lwork, int32_t* iwork,
                                const int32_t* liwork, int32_t* info) {
    keep_to_one_thread();
    sspevd_(jobz, uplo, n, ap, w, z, ldz, work, lwork, iwork, liwork, info);
}
