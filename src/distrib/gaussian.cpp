// Gaussian: by the radius and the angle of a point in the plane, one coordinate or both, and by the inverse error function.
#include "distrib/transforms.h"
#include "services/export.h"
#include "services/services.h"
#include "streams/chunks.h"
#include "streams/record.h"

using namespace orv::distrib;
namespace simd = orv::simd;
namespace streams = orv::streams;

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
void to_radius(int32_t n, T* u) {
    const auto two = simd::splat(T(2));
    run(logarithm<T>(), n, u, u);
    map(
        n, u, [=](auto x) { return -(x * two); }, u);
    run(square_root<T>(), n, u, u);
}

template <class T>
void to_angle(int32_t n, T* u) {
    const auto turn = simd::splat(T(6.283185307179586));
    map(
        n, u, [=](auto x) { return x * turn; }, u);
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

// ---- Both coordinates ----------------------------------------------------------------------------------------------

constexpr int32_t pending_id = 2;

// The uniforms of the point whose second coordinate has not been given out; `none` in both where all have.
template <class T>
struct Pending {
    static constexpr T none = -1;
    T u1, u2;
};

// The pending point of a stream, one for each type.
template <class T>
int32_t pending_of(Stream* stream, Pending<T>** pending) {
    constexpr int32_t size = sizeof(Pending<T>);
    for (Chunk* chunk = streams::first_chunk(stream); chunk; chunk = chunk->next)
        if (chunk->chunkId == pending_id && chunk->dataBytes == size) {
            *pending = static_cast<Pending<T>*>(chunk->data);
            return StatusOk;
        }
    *pending = static_cast<Pending<T>*>(orv_serv_allocate(size, streams::block_alignment));
    if (!*pending) return StatusNoMemory;
    **pending = {Pending<T>::none, Pending<T>::none};
    const int32_t status = __kuzAddChunk(stream, pending_id, nullptr, *pending, size);
    if (status < 0) orv_serv_deallocate(*pending);
    return status;
}

// r[2i] and r[2i + 1] are the coordinates of point i.
template <class T>
int32_t draw_points(Stream* stream, int32_t n, T* r) {
    constexpr int width = simd::Lanes<T>::width;
    T raw[block], radius[block / 2], angle[block / 2], sines[block / 2];
    const int32_t status = draw_uniforms(stream, 2 * n, raw, T(0), T(1));
    if (status < 0) return status;
    take_apart(n, raw, radius, angle);
    to_angle(n, angle);
    run(sine_and_cosine<T>(), n, angle, sines, angle);
    to_radius(n, radius);
    int32_t i = 0;
    for (; i + width <= n; i += width) {
        const auto length = simd::load(radius + i);
        const auto y = length * simd::load(sines + i), x = length * simd::load(angle + i);
        simd::store(r + 2 * i, simd::interleave_low(y, x));
        simd::store(r + 2 * i + width, simd::interleave_high(y, x));
    }
    for (; i < n; ++i) {
        r[2 * i] = radius[i] * sines[i];
        r[2 * i + 1] = radius[i] * angle[i];
    }
    return status;
}

// Both coordinates come from the kernel that serves whole blocks, so that a cut between them changes no bit.
template <class T>
void coordinates(Pending<T> point, T* y, T* x) {
    to_angle(1, &point.u2);
    run(sine_and_cosine<T>(), 1, &point.u2, y, x);
    to_radius(1, &point.u1);
    *y *= point.u1;
    *x *= point.u1;
}

template <class T>
int32_t box_muller_paired(Stream* stream, int32_t n, T* r, T a, T sigma) {
    if (n <= 0) return StatusOk;
    constexpr Pending<T> nothing = {Pending<T>::none, Pending<T>::none};
    Pending<T>* pending;
    int32_t status = pending_of(stream, &pending), done = 0;
    if (status < 0) return status;
    if (pending->u1 != Pending<T>::none) {
        T given;
        coordinates(*pending, &given, &r[done++]);
        *pending = nothing;
    }
    while (n - done >= 2) {
        const int32_t points = (n - done < block ? n - done : block) / 2;
        status = draw_points(stream, points, r + done);
        if (status < 0) return status;
        done += 2 * points;
    }
    if (done < n) {
        Pending<T> point;
        status = draw_uniforms(stream, 2, &point.u1, T(0), T(1));
        if (status < 0) return status;
        *pending = point;
        T kept;
        coordinates(point, &r[done], &kept);
    }
    shift_and_scale(n, r, a, sigma);
    return status;
}

// ---- Inversion -----------------------------------------------------------------------------------------------------

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

ORV_API int32_t _kuzsRngGaussian(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma) {
    return gaussian(method, stream, n, r, a, sigma);
}

ORV_API int32_t _kuzdRngGaussian(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma) {
    return gaussian(method, stream, n, r, a, sigma);
}
