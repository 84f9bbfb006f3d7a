/* Dense linear algebra: the matrix entries that the kernel library asks of its host.
 *
 * Arguments are passed by address, as the BLAS' Fortran interface has them, and mean what they mean there: matrices by
 * columns, `uplo` 'u' or 'l', `trans` 'n' or 't' in either case, leading dimensions in elements. Nothing is checked.
 *
 * liborv_core implements them on the BLAS of the system, which it sets to one thread when it first calls it: threads
 * are the caller's business or, where an entry below says so, this library's own.
 *
 * Source: J. J. Dongarra, J. Du Croz, S. Hammarling, I. Duff, A set of level 3 basic linear algebra subprograms, ACM
 * Transactions on Mathematical Software 16 (1990). */
#ifndef ORV_BLAS_H
#define ORV_BLAS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* a = alpha x x' + a on one triangle of the n by n matrix a; x has n elements with stride incx. The x forms may be called
 * from several threads at once and stay on the thread that calls them; these matrices are too small for others to help. */
void orv_blas_dsyr(const char* uplo, const int32_t* n, const double* alpha, const double* x, const int32_t* incx,
                   double* a, const int32_t* lda);
void orv_blas_ssyr(const char* uplo, const int32_t* n, const float* alpha, const float* x, const int32_t* incx,
                   float* a, const int32_t* lda);
void orv_blas_xdsyr(const char* uplo, const int32_t* n, const double* alpha, const double* x, const int32_t* incx,
                    double* a, const int32_t* lda);
void orv_blas_xssyr(const char* uplo, const int32_t* n, const float* alpha, const float* x, const int32_t* incx,
                    float* a, const int32_t* lda);

/* c = alpha op(a) op(a)' + beta c on one triangle of the n by n matrix c, with op(a) = a, n by k, for trans 'n', and a', from
 * a of k by n, for trans 't'. The plain forms use the threads of the thread service for large products; the x forms stay
 * on the thread that calls them and may be called from several threads at once. */
void orv_blas_dsyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k, const double* alpha,
                    const double* a, const int32_t* lda, const double* beta, double* c, const int32_t* ldc);
void orv_blas_ssyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k, const float* alpha,
                    const float* a, const int32_t* lda, const float* beta, float* c, const int32_t* ldc);
void orv_blas_xdsyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k, const double* alpha,
                     const double* a, const int32_t* lda, const double* beta, double* c, const int32_t* ldc);
void orv_blas_xssyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k, const float* alpha,
                     const float* a, const int32_t* lda, const float* beta, float* c, const int32_t* ldc);

/* b = alpha op(a) b for side 'l', with a triangular of order m, or b = alpha b op(a) for side 'r', with a of order n; b is m by
 * n. Of a only the triangle `uplo` is read, and for diag 'u' not its diagonal, which then counts as ones. The plain form
 * uses the threads of the thread service for large products; the x form stays on the thread that calls it and may be called
 * from several threads at once. */
void orv_blas4arq_dtrmm(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                        const int32_t* n, const double* alpha, const double* a, const int32_t* lda, double* b,
                        const int32_t* ldb);
void orv_blas4arq_strmm(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                        const int32_t* n, const float* alpha, const float* a, const int32_t* lda, float* b,
                        const int32_t* ldb);
void orv_blas_xdtrmm_4arq(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                          const int32_t* n, const double* alpha, const double* a, const int32_t* lda, double* b,
                          const int32_t* ldb);
void orv_blas_xstrmm_4arq(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                          const int32_t* n, const float* alpha, const float* a, const int32_t* lda, float* b,
                          const int32_t* ldb);

/* The same for a triangle packed by columns, with the threads of the plain form. Memory for the unpacked triangle is taken
 * if there is any, and nothing but speed depends on it. */
void orv_blas4arq_dptrmm(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                         const int32_t* n, const double* alpha, const double* a, double* b, const int32_t* ldb);
void orv_blas4arq_sptrmm(const char* side, const char* uplo, const char* trans, const char* diag, const int32_t* m,
                         const int32_t* n, const float* alpha, const float* a, float* b, const int32_t* ldb);

/* The x forms of the BLAS' dgemm, dsymm, dtrmm and dgemv, which stay on the thread that calls them and may be called from
 * several threads at once.
 *
 *     gemm   c = alpha op(a) op(b) + beta c, with c m by n and op(a) m by k
 *     symm   c = alpha a b + beta c for side 'l', alpha b a + beta c for 'r', a symmetric, one triangle read
 *     trmm   b = alpha op(a) b for side 'l', alpha b op(a) for 'r', a triangular
 *     gemv   y = alpha op(a) x + beta y, with a m by n */
void orv_blas_xdgemm(const char* transa, const char* transb, const int32_t* m, const int32_t* n, const int32_t* k,
                     const double* alpha, const double* a, const int32_t* lda, const double* b, const int32_t* ldb,
                     const double* beta, double* c, const int32_t* ldc);
void orv_blas_xdsymm(const char* side, const char* uplo, const int32_t* m, const int32_t* n, const double* alpha,
                     const double* a, const int32_t* lda, const double* b, const int32_t* ldb, const double* beta,
                     double* c, const int32_t* ldc);
void orv_blas_xdtrmm(const char* side, const char* uplo, const char* transa, const char* diag, const int32_t* m,
                     const int32_t* n, const double* alpha, const double* a, const int32_t* lda, double* b,
                     const int32_t* ldb);
void orv_blas_xdgemv(const char* trans, const int32_t* m, const int32_t* n, const double* alpha, const double* a,
                     const int32_t* lda, const double* x, const int32_t* incx, const double* beta, double* y,
                     const int32_t* incy);
void orv_blas_xsgemm(const char* transa, const char* transb, const int32_t* m, const int32_t* n, const int32_t* k,
                     const float* alpha, const float* a, const int32_t* lda, const float* b, const int32_t* ldb,
                     const float* beta, float* c, const int32_t* ldc);
void orv_blas_xssymm(const char* side, const char* uplo, const int32_t* m, const int32_t* n, const float* alpha,
                     const float* a, const int32_t* lda, const float* b, const int32_t* ldb, const float* beta,
                     float* c, const int32_t* ldc);
void orv_blas_xstrmm(const char* side, const char* uplo, const char* transa, const char* diag, const int32_t* m,
                     const int32_t* n, const float* alpha, const float* a, const int32_t* lda, float* b,
                     const int32_t* ldb);
void orv_blas_xsgemv(const char* trans, const int32_t* m, const int32_t* n, const float* alpha, const float* a,
                     const int32_t* lda, const float* x, const int32_t* incx, const float* beta, float* y,
                     const int32_t* incy);

#ifdef __cplusplus
}
#endif

#endif
