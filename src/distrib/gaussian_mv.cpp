// GaussianMV: vectors T z + a of normal numbers z, with the covariance T T'. The array of the results is by columns a matrix
// of dimen rows, whose columns are the vectors; T, by rows, is there an upper triangle, transposed.
#include "distrib/transforms.h"
#include "services/blas.h"
#include "services/export.h"

using namespace orv::distrib;

namespace {

template <class T>
struct Entries;
template <>
struct Entries<double> {
    static constexpr auto gaussian = _kuzdRngGaussian;
    static constexpr auto small_trmm = orv_blas_xdtrmm_4arq, trmm = orv_blas4arq_dtrmm;
    static constexpr auto ptrmm = orv_blas4arq_dptrmm;
};
template <>
struct Entries<float> {
    static constexpr auto gaussian = _kuzsRngGaussian;
    static constexpr auto small_trmm = orv_blas_xstrmm_4arq, trmm = orv_blas4arq_strmm;
    static constexpr auto ptrmm = orv_blas4arq_sptrmm;
};

constexpr int32_t small_dimension = 10;

template <class T>
void add(int32_t n, T* r, const T* a) {
    map(
        n, r, [](auto x, auto shift) { return x + shift; }, r, a);
}

// The means to every vector. Of few, as many copies as fill a buffer are added at once: a vector alone would be a short run.
template <class T>
void add_means(int32_t n, int32_t dimen, T* r, const T* a) {
    constexpr int32_t run_length = 32;
    if (dimen <= small_dimension) {
        T copies[run_length];
        const int32_t together = run_length / dimen;
        for (int32_t i = 0; i < together * dimen; ++i) copies[i] = a[i % dimen];
        for (; n >= together; n -= together, r += together * dimen) add(together * dimen, r, copies);
    }
    for (; n > 0; --n, r += dimen) add(dimen, r, a);
}

template <class T>
int32_t gaussian_mv(int32_t method, Stream* stream, int32_t n, T* r, int32_t dimen, int32_t storage, const T* a,
                    const T* t) {
    using Entry = Entries<T>;
    if (dimen == 1) return Entry::gaussian(method, stream, n, r, a[0], t[0]);
    const int32_t status = Entry::gaussian(method, stream, n * dimen, r, T(0), T(1));
    if (status < 0 || n <= 0 || dimen <= 0) return status;
    const T one = 1;
    switch (storage) {
        case MatrixStorageFull: {
            const auto multiply = dimen <= small_dimension ? Entry::small_trmm : Entry::trmm;
            multiply("L", "U", "T", "N", &dimen, &n, &one, t, &dimen, r, &dimen);
            add_means(n, dimen, r, a);
            break;
        }
        case MatrixStoragePacked:
            Entry::ptrmm("L", "L", "N", "N", &dimen, &n, &one, t, r, &dimen);
            add_means(n, dimen, r, a);
            break;
        case MatrixStorageDiagonal:
            for (; n > 0; --n, r += dimen)
                map(
                    dimen, r, [](auto x, auto scale, auto shift) { return x * scale + shift; }, r, t, a);
            break;
        default:
            break;
    }
    return status;
}

}  // namespace

ORV_API int32_t _kuzsRngGaussianMV(int32_t method, Stream* stream, int32_t n, float* r, int32_t dimen, int32_t mstorage,
                                   const float* a, const float* t) {
    return gaussian_mv(method, stream, n, r, dimen, mstorage, a, t);
}

ORV_API int32_t _kuzdRngGaussianMV(int32_t method, Stream* stream, int32_t n, double* r, int32_t dimen,
                                   int32_t mstorage, const double* a, const double* t) {
    return gaussian_mv(method, stream, n, r, dimen, mstorage, a, t);
}
