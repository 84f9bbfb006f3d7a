// Exponential: a - beta ln u. Gumbel: a + beta ln e with e exponential.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

// To be run where the logarithm of 0 is mended.
template <class T>
int32_t draw_exponentials(Stream* stream, int32_t n, T* r, T a, T beta) {
    const int32_t status = draw_uniforms(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    run(logarithm<T>(), n, r, r);
    const auto shift = simd::splat(a), scale = simd::splat(beta);
    map(
        n, r, [=](auto x) { return simd::greatest(shift, shift - x * scale); }, r);
    return status;
}

template <class T>
int32_t exponential(Stream* stream, int32_t n, T* r, T a, T beta) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm<T>);
    return draw_exponentials(stream, n, r, a, beta);
}

template <class T>
int32_t gumbel(Stream* stream, int32_t n, T* r, T a, T beta) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm<T>);
    const int32_t status = draw_exponentials(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    run(logarithm<T>(), n, r, r);
    shift_and_scale(n, r, a, beta);
    return status;
}

}  // namespace

ORV_API int32_t _kuzsRngExponential(int32_t, Stream* stream, int32_t n, float* r, float a, float beta) {
    return exponential(stream, n, r, a, beta);
}

ORV_API int32_t _kuzdRngExponential(int32_t, Stream* stream, int32_t n, double* r, double a, double beta) {
    return exponential(stream, n, r, a, beta);
}

ORV_API int32_t _kuzsRngGumbel(int32_t, Stream* stream, int32_t n, float* r, float a, float beta) {
    return gumbel(stream, n, r, a, beta);
}

ORV_API int32_t _kuzdRngGumbel(int32_t, Stream* stream, int32_t n, double* r, double a, double beta) {
    return gumbel(stream, n, r, a, beta);
}
