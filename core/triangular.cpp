// Products with a triangular matrix over the system's BLAS. Large ones are cut into panels of vectors, which do not meet:
// the columns of b for a product from the left, its rows for one from the right.
#include "services/export.h"

#include <orv/blas.h>
#include <orv/services.h>

#include <algorithm>
#include <cstddef>

namespace {

template <class T>
constexpr auto one_thread = orv_blas_xdtrmm;
template <>
constexpr auto one_thread<float> = orv_blas_xstrmm;

// op(a) b or b op(a), the options as flags.
template <class T>
struct Product {
    char side, uplo, trans, diag;
    int32_t m, n;
    T alpha;
    const T* a;
    int32_t lda;
    T* b;
    int32_t ldb;

    bool right() const { return side == 'r' || side == 'R'; }
    bool upper() const { return uplo == 'u' || uplo == 'U'; }
    bool transposed() const { return trans != 'n' && trans != 'N'; }
    bool unit() const { return diag == 'u' || diag == 'U'; }
    int32_t order() const { return right() ? n : m; }
    int32_t vectors() const { return right() ? m : n; }
};

template <class T>
void panel(int32_t index, int32_t, int32_t count, void* args) {
    const Product<T>& p = *static_cast<const Product<T>*>(args);
    const int32_t first = static_cast<int32_t>(int64_t{p.vectors()} * index / count);
    const int32_t width = static_cast<int32_t>(int64_t{p.vectors()} * (index + 1) / count) - first;
    T* start = p.b + (p.right() ? first : ptrdiff_t{first} * p.ldb);
    one_thread<T>(&p.side, &p.uplo, &p.trans, &p.diag, p.right() ? &width : &p.m, p.right() ? &p.n : &width, &p.alpha,
                  p.a, &p.lda, start, &p.ldb);
}

template <class T>
void multiply(Product<T> p) {
    constexpr double worth_threads = 4e6;  // multiplications, a few milliseconds
    constexpr int32_t panels_per_thread = 4;
    const int32_t threads = orv_kuz_serv_threader_get_num_threads_limit();
    const double work = 0.5 * p.order() * p.order() * p.vectors();
    const bool shared = threads > 1 && work > worth_threads;
    const int32_t panels = shared ? std::clamp(p.vectors() / 16, 1, threads * panels_per_thread) : 1;
    orv_kuz_serv_threader_for(panels, threads, &p, panel<T>);
}

// Where the element in row i and column j of a triangle of order n, packed by columns, stands.
template <class T>
T packed(const T* a, bool upper, int32_t n, ptrdiff_t i, ptrdiff_t j) {
    return upper ? a[i + j * (j + 1) / 2] : a[i + j * (2 * ptrdiff_t{n} - j - 1) / 2];
}

// Vector by vector with the triangle as it is: the elements that a result depends on are overwritten after it.
template <class T>
void multiply_packed(const Product<T>& p) {
    const bool flipped = p.transposed() != p.right();
    const bool above = p.upper() != flipped;  // a result depends on elements from its own on
    const int32_t order = p.order();
    const ptrdiff_t step = p.right() ? p.ldb : 1, spacing = p.right() ? 1 : p.ldb;
    for (int32_t v = 0; v < p.vectors(); ++v) {
        T* x = p.b + v * spacing;
        for (int32_t k = 0; k < order; ++k) {
            const ptrdiff_t i = above ? k : order - 1 - k;
            T sum = p.unit() ? x[i * step] : packed(p.a, p.upper(), order, i, i) * x[i * step];
            for (ptrdiff_t j = above ? i + 1 : 0; j < (above ? order : i); ++j)
                sum += packed(p.a, p.upper(), order, flipped ? j : i, flipped ? i : j) * x[j * step];
            x[i * step] = p.alpha * sum;
        }
    }
}

template <class T>
void unpack_and_multiply(Product<T> p) {
    constexpr size_t alignment = 128;
    constexpr int32_t kept_on_stack = 16;
    alignas(16) T small[kept_on_stack * kept_on_stack];
    const int32_t order = p.order();
    const size_t bytes = sizeof(T) * static_cast<size_t>(order) * static_cast<size_t>(order);
    const bool fits = order <= kept_on_stack;
    T* full = fits ? small : static_cast<T*>(orv_serv_allocate(bytes, alignment));
    if (!full) return multiply_packed(p);
    for (int32_t j = 0; j < order; ++j) {
        const int32_t from = p.upper() ? 0 : j, to = p.upper() ? j + 1 : order;
        for (int32_t i = from; i < to; ++i) full[i + ptrdiff_t{j} * order] = packed(p.a, p.upper(), order, i, j);
    }
    p.a = full;
    p.lda = order;
    multiply(p);
    if (!fits) orv_serv_deallocate(full);
}

}  // namespace

ORV_API void orv_blas4arq_dtrmm(const char* side, const char* uplo, const char* trans, const char* diag,
                                const int32_t* m, const int32_t* n, const double* alpha, const double* a,
                                const int32_t* lda, double* b, const int32_t* ldb) {
    multiply<double>({*side, *uplo, *trans, *diag, *m, *n, *alpha, a, *lda, b, *ldb});
}

ORV_API void orv_blas4arq_strmm(const char* side, const char* uplo, const char* trans, const char* diag,
                                const int32_t* m, const int32_t* n, const float* alpha, const float* a,
                                const int32_t* lda, float* b, const int32_t* ldb) {
    multiply<float>({*side, *uplo, *trans, *diag, *m, *n, *alpha, a, *lda, b, *ldb});
}

ORV_API void orv_blas_xdtrmm_4arq(const char* side, const char* uplo, const char* trans, const char* diag,
                                  const int32_t* m, const int32_t* n, const double* alpha, const double* a,
                                  const int32_t* lda, double* b, const int32_t* ldb) {
    orv_blas_xdtrmm(side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb);
}

ORV_API void orv_blas_xstrmm_4arq(const char* side, const char* uplo, const char* trans, const char* diag,
                                  const int32_t* m, const int32_t* n, const float* alpha, const float* a,
                                  const int32_t* lda, float* b, const int32_t* ldb) {
    orv_blas_xstrmm(side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb);
}

ORV_API void orv_blas4arq_dptrmm(const char* side, const char* uplo, const char* trans, const char* diag,
                                 const int32_t* m, const int32_t* n, const double* alpha, const double* a, double* b,
                                 const int32_t* ldb) {
    unpack_and_multiply<double>({*side, *uplo, *trans, *diag, *m, *n, *alpha, a, 0, b, *ldb});
}

ORV_API void orv_blas4arq_sptrmm(const char* side, const char* uplo, const char* trans, const char* diag,
                                 const int32_t* m, const int32_t* n, const float* alpha, const float* a, float* b,
                                 const int32_t* ldb) {
    unpack_and_multiply<float>({*side, *uplo, *trans, *diag, *m, *n, *alpha, a, 0, b, *ldb});
}
