// Standard normal numbers from points of the plane, by the radius sqrt(-2 ln u1) and the angle 2 pi u2 of each. Both
// coordinates are given out, and the uniforms of a point of which just the first has been are kept with the stream.
#pragma once

#include "distrib/transforms.h"
#include "services/services.h"
#include "streams/record.h"

namespace orv::distrib {

// The chunks of points half given out, one of each type under an id.
inline constexpr int32_t gaussian_pending = 2, gamma_pending = 7;

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

// The uniforms of the point whose second coordinate has not been given out; `none` in both where all have.
template <class T>
struct Pending {
    static constexpr T none = -1;
    T u1, u2;
};

// The pending point of a stream, found by the size of its type.
template <class T>
int32_t pending_of(Stream* stream, int32_t id, Pending<T>** pending) {
    constexpr int32_t size = sizeof(Pending<T>);
    for (Chunk* chunk = streams::first_chunk(stream); chunk; chunk = chunk->next)
        if (chunk->chunkId == id && chunk->dataBytes == size) {
            *pending = static_cast<Pending<T>*>(chunk->data);
            return StatusOk;
        }
    *pending = static_cast<Pending<T>*>(orv_serv_allocate(size, streams::block_alignment));
    if (!*pending) return StatusNoMemory;
    **pending = {Pending<T>::none, Pending<T>::none};
    const int32_t status = __kuzAddChunk(stream, id, nullptr, *pending, size);
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

// n numbers, the same whether they are asked for in one call or in many. To be run where the logarithm of 0 is mended.
template <class T>
int32_t draw_paired_normals(Stream* stream, int32_t id, int32_t n, T* r) {
    if (n <= 0) return StatusOk;
    constexpr Pending<T> nothing = {Pending<T>::none, Pending<T>::none};
    Pending<T>* pending;
    int32_t status = pending_of(stream, id, &pending), done = 0;
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
    return status;
}

}  // namespace orv::distrib
