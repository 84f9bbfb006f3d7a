// Rank updates over the system's BLAS, which is kept to one thread. Large rank-k updates are cut into panels here.
#include "one_thread.h"
#include "services/export.h"

#include <orv/blas.h>
#include <orv/services.h>

#include <algorithm>
#include <cstddef>

extern "C" {
void dsyr_(const char*, const int32_t*, const double*, const double*, const int32_t*, double*, const int32_t*);
void ssyr_(const char*, const int32_t*, const float*, const float*, const int32_t*, float*, const int32_t*);
void dsyrk_(const char*, const char*, const int32_t*, const int32_t*, const double*, const double*, const int32_t*,
            const double*, double*, const int32_t*);
void ssyrk_(const char*, const char*, const int32_t*, const int32_t*, const float*, const float*, const int32_t*,
            const float*, float*, const int32_t*);
void dgemm_(const char*, const char*, const int32_t*, const int32_t*, const int32_t*, const double*, const double*,
            const int32_t*, const double*, const int32_t*, const double*, double*, const int32_t*);
void sgemm_(const char*, const char*, const int32_t*, const int32_t*, const int32_t*, const float*, const float*,
            const int32_t*, const float*, const int32_t*, const float*, float*, const int32_t*);
#ifndef ORV_OPENBLAS
// The reference routines report an argument that is out of range by this name. The kernels pass none.
void xerbla_(const char*, const int32_t*) {}

// Two option letters joined: all that LAPACK asks of the Fortran runtime.
void _gfortran_concat_string(size_t length, char* to, size_t first_length, const char* first, size_t,
                             const char* second) {
    for (size_t i = 0; i < length; ++i) to[i] = i < first_length ? first[i] : second[i - first_length];
}
#endif
}

namespace {

using orv::core::keep_to_one_thread;

template <class T>
struct Blas;

template <>
struct Blas<double> {
    static constexpr auto syrk = dsyrk_;
    static constexpr auto gemm = dgemm_;
};

template <>
struct Blas<float> {
    static constexpr auto syrk = ssyrk_;
    static constexpr auto gemm = sgemm_;
};

template <class T>
struct RankUpdate {
    char uplo, trans;
    int32_t n, k;
    T alpha;
    const T* a;
    int32_t lda;
    T beta;
    T* c;
    int32_t ldc;
};

// One panel of columns of c: the triangle on the diagonal, and the rectangle above or below it.
template <class T>
void panel(int32_t index, int32_t, int32_t count, void* args) {
    const RankUpdate<T>& u = *static_cast<const RankUpdate<T>*>(args);
    const int32_t first = static_cast<int32_t>(int64_t{u.n} * index / count);
    const int32_t last = static_cast<int32_t>(int64_t{u.n} * (index + 1) / count);
    const int32_t width = last - first;
    const bool transposed = u.trans == 't' || u.trans == 'T';
    const bool upper = u.uplo == 'u' || u.uplo == 'U';
    const auto row_of_op = [&](int32_t row) { return transposed ? u.a + ptrdiff_t{row} * u.lda : u.a + row; };
    T* columns = u.c + ptrdiff_t{first} * u.ldc;
    Blas<T>::syrk(&u.uplo, &u.trans, &width, &u.k, &u.alpha, row_of_op(first), &u.lda, &u.beta, columns + first,
                  &u.ldc);
    const int32_t from = upper ? 0 : last;
    const int32_t rows = upper ? first : u.n - last;
    if (rows == 0) return;
    Blas<T>::gemm(transposed ? "t" : "n", transposed ? "n" : "t", &rows, &width, &u.k, &u.alpha, row_of_op(from),
                  &u.lda, row_of_op(first), &u.lda, &u.beta, columns + from, &u.ldc);
}

template <class T>
void rank_k(RankUpdate<T> u) {
    constexpr double worth_threads = 4e6;  // multiplications, a few milliseconds
    constexpr int32_t panels_per_thread = 4;
    keep_to_one_thread();
    const int32_t threads = orv_kuz_serv_threader_get_num_threads_limit();
    const double work = 0.5 * u.n * u.n * u.k;
    int32_t panels = threads > 1 && work > worth_threads ? std::min(threads * panels_per_thread, u.n / 16) : 1;
    if (panels < 1) panels = 1;
    orv_kuz_serv_threader_for(panels, threads, &u, panel<T>);
}

}  // namespace

ORV_API void orv_blas_dsyr(const char* uplo, const int32_t* n, const double* alpha, const double* x,
                           const int32_t* incx, double* a, const int32_t* lda) {
    keep_to_one_thread();
    dsyr_(uplo, n, alpha, x, incx, a, lda);
}

ORV_API void orv_blas_ssyr(const char* uplo, const int32_t* n, const float* alpha, const float* x, const int32_t* incx,
                           float* a, const int32_t* lda) {
    keep_to_one_thread();
    ssyr_(uplo, n, alpha, x, incx, a, lda);
}

ORV_API void orv_blas_xdsyr(const char* uplo, const int32_t* n, const double* alpha, const double* x,
                            const int32_t* incx, double* a, const int32_t* lda) {
    orv_blas_dsyr(uplo, n, alpha, x, incx, a, lda);
}

ORV_API void orv_blas_xssyr(const char* uplo, const int32_t* n, const float* alpha, const float* x, const int32_t* incx,
                            float* a, const int32_t* lda) {
    orv_blas_ssyr(uplo, n, alpha, x, incx, a, lda);
}

ORV_API void orv_blas_dsyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k,
                            const double* alpha, const double* a, const int32_t* lda, const double* beta, double* c,
                            const int32_t* ldc) {
    rank_k<double>({*uplo, *trans, *n, *k, *alpha, a, *lda, *beta, c, *ldc});
}

ORV_API void orv_blas_ssyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k, const float* alpha,
                            const float* a, const int32_t* lda, const float* beta, float* c, const int32_t* ldc) {
    rank_k<float>({*uplo, *trans, *n, *k, *alpha, a, *lda, *beta, c, *ldc});
}

ORV_API void orv_blas_xdsyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k,
                             const double* alpha, const double* a, const int32_t* lda, const double* beta, double* c,
                             const int32_t* ldc) {
    keep_to_one_thread();
    dsyrk_(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

ORV_API void orv_blas_xssyrk(const char* uplo, const char* trans, const int32_t* n, const int32_t* k,
                             const float* alpha, const float* a, const int32_t* lda, const float* beta, float* c,
                             const int32_t* ldc) {
    keep_to_one_thread();
    ssyrk_(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}
