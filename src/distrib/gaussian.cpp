// Gaussian: by the radius and the angle of a point in the plane, one coordinate or both, and by the inverse error function.
#include "distrib/normals.h"
#include "distrib/paired_normals.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

// What a uniform at the end of (-1, 1) gives: the inverse error function of the number next to 1, and somewhat more.
template <class T>
constexpr double last_quantile = 5.8635847487551676;
template <>
constexpr double last_quantile<float> = 3.832507f;

// The logarithm has its pole at 0, the inverse error function at -1 and 1, the ends of its domain.
template <class T>
int32_t stay_finite(ArqErrorContext* error) {
    const double x = error->arg1;
    if (error->code == ORV_STATUS_SINGULARITY && x == 0)
        set_results(error, least_logarithm<T>);
    else if (error->code == ORV_STATUS_SINGULARITY || error->code == ORV_STATUS_DOMAIN)
        set_results(error, x < 0 ? -last_quantile<T> : last_quantile<T>);
    return 0;
}

template <class T>
int32_t box_muller(Stream* stream, int32_t n, T* r, T a, T sigma) {
    T pairs[2 * block], radius[block];
    const auto shift = simd::splat(a), scale = simd::splat(sigma);
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < block ? n - done : block;
        status = draw_uniforms(stream, 2 * count, pairs, T(0), T(1));
        if (status < 0) return status;
        take_apart(count, pairs, radius, pairs);
        to_angle(count, pairs);
        run(sine<T>(), count, pairs, pairs);
        to_radius(count, radius);
        map(
            count, r + done, [=](auto x, auto height) { return x * scale * height + shift; }, radius, pairs);
        done += count;
    }
    return status;
}

template <class T>
int32_t box_muller_paired(Stream* stream, int32_t n, T* r, T a, T sigma) {
    const int32_t status = draw_paired_normals(stream, gaussian_pending, n, r);
    if (status >= 0 && n > 0) shift_and_scale(n, r, a, sigma);
    return status;
}

template <class T>
int32_t invert(Stream* stream, int32_t n, T* r, T a, T sigma) {
    if (n <= 0) return StatusOk;
    const int32_t status = draw_uniforms(stream, n, r, T(-1), T(1));
    if (status < 0) return status;
    run(inverse_error_function<T>(), n, r, r);
    shift_and_scale(n, r, a, T(1.4142135623730951) * sigma);
    return status;
}

template <class T>
int32_t gaussian(int32_t method, Stream* stream, int32_t n, T* r, T a, T sigma) {
    using Method = int32_t (*)(Stream * stream, int32_t n, T * r, T a, T sigma);
    static constexpr Method methods[] = {box_muller<T>, box_muller_paired<T>, invert<T>};
    const ErrorFrame frame(stay_finite<T>);
    return methods[method](stream, n, r, a, sigma);
}

}  // namespace

int32_t orv::distrib::draw_normals(Stream* stream, int32_t n, float* r, float mean, float deviation) {
    const ThreadState thread;
    thread.set_callback(stay_finite<float>);
    const int32_t status = invert(stream, n, r, mean, deviation);
    thread.restore();
    return status;
}

ORV_API int32_t _kuzsRngGaussian(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma) {
    return gaussian(method, stream, n, r, a, sigma);
}

ORV_API int32_t _kuzdRngGaussian(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma) {
    return gaussian(method, stream, n, r, a, sigma);
}
