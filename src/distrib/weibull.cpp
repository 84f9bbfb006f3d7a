// Weibull: a + beta (-ln u)^(1/alpha). Rayleigh: a + beta sqrt(-ln u), the same with a shape of 2.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;

namespace {

// max(a, a + beta root(-ln u)).
template <class T, class Root>
int32_t root_of_exponential(Stream* stream, int32_t n, T* r, T a, T beta, Root root) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<T>);
    const int32_t status = draw_uniforms(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    run(logarithm<T>(), n, r, r);
    map(
        n, r, [](auto x) { return -x; }, r);
    root();
    shift_and_scale_from(n, r, a, beta);
    return status;
}

template <class T>
int32_t weibull(Stream* stream, int32_t n, T* r, T alpha, T a, T beta) {
    return root_of_exponential(stream, n, r, a, beta, [=] {
        if (alpha != T(1)) run(power<T>(), n, r, T(1) / alpha, r);
    });
}

template <class T>
int32_t rayleigh(Stream* stream, int32_t n, T* r, T a, T beta) {
    return root_of_exponential(stream, n, r, a, beta, [=] { run(square_root<T>(), n, r, r); });
}

}  // namespace

ORV_API int32_t _kuzsRngWeibull(int32_t, Stream* stream, int32_t n, float* r, float alpha, float a, float beta) {
    return weibull(stream, n, r, alpha, a, beta);
}

ORV_API int32_t _kuzdRngWeibull(int32_t, Stream* stream, int32_t n, double* r, double alpha, double a, double beta) {
    return weibull(stream, n, r, alpha, a, beta);
}

ORV_API int32_t _kuzsRngRayleigh(int32_t, Stream* stream, int32_t n, float* r, float a, float beta) {
    return rayleigh(stream, n, r, a, beta);
}

ORV_API int32_t _kuzdRngRayleigh(int32_t, Stream* stream, int32_t n, double* r, double a, double beta) {
    return rayleigh(stream, n, r, a, beta);
}
