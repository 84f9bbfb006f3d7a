// Lognormal: b + beta e^g with g Gaussian.
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;

namespace {

int32_t gaussian(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma) {
    return _kuzsRngGaussian(method, stream, n, r, a, sigma);
}
int32_t gaussian(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma) {
    return _kuzdRngGaussian(method, stream, n, r, a, sigma);
}

template <class T>
int32_t lognormal(int32_t method, Stream* stream, int32_t n, T* r, T a, T sigma, T b, T beta) {
    const int32_t normal = method == LognormalBoxMullerPaired ? GaussianBoxMullerPaired : GaussianInverseCdf;
    const int32_t status = gaussian(normal, stream, n, r, a, sigma);
    if (status < 0 || n <= 0) return status;
    run(exponential_function<T>(), n, r, r);
    shift_and_scale_from(n, r, b, beta);
    return status;
}

}  // namespace

ORV_API int32_t _kuzsRngLognormal(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma, float b,
                                  float beta) {
    return lognormal(method, stream, n, r, a, sigma, b, beta);
}

ORV_API int32_t _kuzdRngLognormal(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma,
                                  double b, double beta) {
    return lognormal(method, stream, n, r, a, sigma, b, beta);
}
