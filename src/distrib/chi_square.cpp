// ChiSquare of v degrees of freedom: the sum of v squared normal numbers. For few and even v it is -2 ln of a product of
// v / 2 uniforms, for others Gamma of shape v / 2 and scale 2.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

int32_t draw_normals(Stream* stream, int32_t n, float* r) {
    return _kuzsRngGaussian(GaussianInverseCdf, stream, n, r, 0.0f, 1.0f);
}
int32_t draw_normals(Stream* stream, int32_t n, double* r) {
    return _kuzdRngGaussian(GaussianInverseCdf, stream, n, r, 0.0, 1.0);
}
int32_t draw_gamma(Stream* stream, int32_t n, float* r, float alpha) {
    return _kuzsRngGamma(0, stream, n, r, alpha, 0.0f, 2.0f);
}
int32_t draw_gamma(Stream* stream, int32_t n, double* r, double alpha) {
    return _kuzdRngGamma(0, stream, n, r, alpha, 0.0, 2.0);
}

// r[i] = fold of the `size` numbers from raw[i * size] on, in their order.
template <class T, class First, class Fold>
void fold_groups(int32_t n, T* r, const T* raw, int32_t size, First first, Fold fold) {
    constexpr int width = simd::Lanes<T>::width;
    int32_t i = 0;
    for (; i + width <= n; i += width, raw += width * size) {
        auto value = first(simd::load_strided(raw, size));
        for (int32_t k = 1; k < size; ++k) value = fold(value, simd::load_strided(raw + k, size));
        simd::store(r + i, value);
    }
    for (; i < n; ++i, raw += size) {
        auto value = first(simd::load_one(raw));
        for (int32_t k = 1; k < size; ++k) value = fold(value, simd::load_one(raw + k));
        simd::store_one(r + i, value);
    }
}

// n numbers, each of `size` uniforms or normals of the stream: draw(count, raw), then fold.
template <class T, class Draw, class First, class Fold>
int32_t draw_groups(int32_t n, T* r, int32_t size, Draw draw, First first, Fold fold) {
    T raw[block];
    const int32_t most = block / size;
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < most ? n - done : most;
        status = draw(count * size, raw);
        if (status < 0) return status;
        fold_groups(count, r + done, raw, size, first, fold);
        done += count;
    }
    return status;
}

template <class T>
int32_t squared_normals(Stream* stream, int32_t n, T* r, int32_t v) {
    const ErrorFrame frame(take_least_logarithm_at_pole<T>);
    return draw_groups(
        n, r, v, [=](int32_t count, T* raw) { return draw_normals(stream, count, raw); }, [](auto x) { return x * x; },
        [](auto sum, auto x) { return sum + x * x; });
}

template <class T>
int32_t products_of_uniforms(Stream* stream, int32_t n, T* r, int32_t size) {
    const ErrorFrame frame(take_least_logarithm_at_pole<T>);
    const int32_t status = draw_groups(
        n, r, size, [=](int32_t count, T* raw) { return draw_uniforms(stream, count, raw, T(0), T(1)); },
        [](auto x) { return x; }, [](auto product, auto x) { return product * x; });
    if (status < 0) return status;
    run(logarithm<T>(), n, r, r);
    const auto factor = simd::splat(T(-2));
    map(
        n, r, [=](auto x) { return x * factor; }, r);
    return status;
}

template <class T>
int32_t chi_square(Stream* stream, int32_t n, T* r, int32_t v) {
    if (n <= 0) return StatusOk;
    if ((v & ~2) == 1) return squared_normals(stream, n, r, v);
    if (v % 2 == 0 && v >= 2 && v <= 16) return products_of_uniforms(stream, n, r, v / 2);
    return draw_gamma(stream, n, r, T(v) * T(0.5));
}

}  // namespace

ORV_API int32_t _kuzsRngChiSquare(int32_t, Stream* stream, int32_t n, float* r, int32_t v) {
    return chi_square(stream, n, r, v);
}

ORV_API int32_t _kuzdRngChiSquare(int32_t, Stream* stream, int32_t n, double* r, int32_t v) {
    return chi_square(stream, n, r, v);
}
