// Laplace: a - beta ln u or a + beta ln u, by a second uniform.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

// Each result takes two uniforms, which stand side by side in the stream.
template <class T>
int32_t laplace_block(Stream* stream, int32_t n, T* r, T a, T beta) {
    T pairs[2 * block];
    const int32_t status = draw_uniforms(stream, 2 * n, pairs, T(0), T(1));
    if (status < 0) return status;
    take_apart(n, pairs, r, pairs);
    run(logarithm<T>(), n, r, r);
    const auto shift = simd::splat(a), scale = simd::splat(beta), half = simd::splat(T(0.5));
    const auto formula = [=](auto x, auto v) {
        return shift + simd::select(simd::less_equal(v, half), -scale, scale) * x;
    };
    map(n, r, formula, r, pairs);
    return status;
}

template <class T>
int32_t laplace(Stream* stream, int32_t n, T* r, T a, T beta) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm<T>);
    int32_t done = 0;
    for (; n - done >= block; done += block) {
        const int32_t status = laplace_block(stream, block, r + done, a, beta);
        if (status < 0) return status;
    }
    // Also when nothing is left: the status of the generator's last call is the result.
    return laplace_block(stream, n - done, r + done, a, beta);
}

}  // namespace

ORV_API int32_t _kuzsRngLaplace(int32_t, Stream* stream, int32_t n, float* r, float a, float beta) {
    return laplace(stream, n, r, a, beta);
}

ORV_API int32_t _kuzdRngLaplace(int32_t, Stream* stream, int32_t n, double* r, double a, double beta) {
    return laplace(stream, n, r, a, beta);
}
