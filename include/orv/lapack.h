/* Dense linear algebra, continued: factorisations and eigenvalues that the kernel library asks of its host.
 *
 * Arguments are those of LAPACK's routines of the same names, by address, as its Fortran interface has them: matrices by
 * columns, one triangle of a symmetric or triangular one read, *info 0 on success. The x says that an entry stays on the
 * thread that calls it and may be called from several threads at once. liborv_core implements them on the LAPACK of the
 * system.
 *
 * Source: E. Anderson et al., LAPACK Users' Guide, 3rd edition, SIAM (1999). */
#ifndef ORV_LAPACK_H
#define ORV_LAPACK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Cholesky factor of the symmetric matrix a in place: a = u'u for uplo 'u', l l' for 'l'. *info k > 0: the leading minor of
 * order k is not positive definite. */
void orv_lapack_xdpotrf(const char* uplo, const int32_t* n, double* a, const int32_t* lda, int32_t* info);
void orv_lapack_xspotrf(const char* uplo, const int32_t* n, float* a, const int32_t* lda, int32_t* info);

/* Inverse of a symmetric matrix in place, from its Cholesky factor. *info k > 0: element k of its diagonal is zero. */
void orv_lapack_xdpotri(const char* uplo, const int32_t* n, double* a, const int32_t* lda, int32_t* info);
void orv_lapack_xspotri(const char* uplo, const int32_t* n, float* a, const int32_t* lda, int32_t* info);

/* Inverse of a triangular matrix in place; diag 'u': its diagonal is 1 and not read, else 'n'. */
void orv_lapack_xdtrtri(const char* uplo, const char* diag, const int32_t* n, double* a, const int32_t* lda,
                        int32_t* info);
void orv_lapack_xstrtri(const char* uplo, const char* diag, const int32_t* n, float* a, const int32_t* lda,
                        int32_t* info);

/* Eigenvalues of the symmetric matrix a, ascending, to w, and for jobz 'v' the eigenvectors, as columns, in place of a. `work`
 * has *lwork >= 3 n - 1 elements; with *lwork -1 the best size goes to work[0] and nothing else is done. *info k > 0: k
 * off-diagonal elements did not converge. */
void orv_lapack_xdsyev(const char* jobz, const char* uplo, const int32_t* n, double* a, const int32_t* lda, double* w,
                       double* work, const int32_t* lwork, int32_t* info);
void orv_lapack_xssyev(const char* jobz, const char* uplo, const int32_t* n, float* a, const int32_t* lda, float* w,
                       float* work, const int32_t* lwork, int32_t* info);

/* The same of a packed symmetric matrix, by divide and conquer: ap holds the triangle by columns and is destroyed, the
 * eigenvectors go to z. For jobz 'v' and n > 1, *lwork >= 1 + 6 n + n^2 and *liwork >= 3 + 5 n; -1 in either asks for the sizes. */
void orv_lapack_xdspevd(const char* jobz, const char* uplo, const int32_t* n, double* ap, double* w, double* z,
                        const int32_t* ldz, double* work, const int32_t* lwork, int32_t* iwork, const int32_t* liwork,
                        int32_t* info);
void orv_lapack_xsspevd(const char* jobz, const char* uplo, const int32_t* n, float* ap, float* w, float* z,
                        const int32_t* ldz, float* work, const int32_t* lwork, int32_t* iwork, const int32_t* liwork,
                        int32_t* info);

#ifdef __cplusplus
}
#endif

#endif
