// What the formulas of the distributions are made of: uniforms, kernels and arithmetic on whole arrays, in either type.
#pragma once

#include "distrib/error_frame.h"
#include "simd/lanes.h"

#include <orv/random.h>
#include <orv/vecmath.h>

namespace orv::distrib {

// ---- Uniforms ------------------------------------------------------------------------------------------------------

inline int32_t draw_uniforms(Stream* stream, int32_t n, float* r, float a, float b) {
    return _kuzsRngUniform(UniformStandard, stream, n, r, a, b);
}
inline int32_t draw_uniforms(Stream* stream, int32_t n, double* r, double a, double b) {
    return _kuzdRngUniform(UniformStandard, stream, n, r, a, b);
}

// Results made together where a distribution needs more room than the caller's array: they stay in the first-level cache.
inline constexpr int32_t block = 1024;

// ---- Kernels -------------------------------------------------------------------------------------------------------

template <class T>
using OneResult = void (*)(int32_t n, const T* a, T* y);
template <class T>
using WithScalar = void (*)(int32_t n, const T* a, T b, T* y);
template <class T>
using TwoResults = void (*)(int32_t n, const T* a, T* y, T* z);

// The cheapest kernel of a function that gives a deviate enough correct bits: "EP" for doubles, "LA" for floats. Read from
// its slot at each use, since the tables are writable.
#define ORV_DISTRIB_KERNEL(name, function, Shape)                                    \
    template <class T>                                                               \
    Shape<T> name() {                                                                \
        if constexpr (sizeof(T) == sizeof(float))                                    \
            return reinterpret_cast<Shape<T>>(orv_arq_kernel_s##function##_ttab[0]); \
        else                                                                         \
            return reinterpret_cast<Shape<T>>(orv_arq_kernel_d##function##_ttab[2]); \
    }
ORV_DISTRIB_KERNEL(logarithm, Ln, OneResult)
ORV_DISTRIB_KERNEL(exponential_function, Exp, OneResult)
ORV_DISTRIB_KERNEL(square_root, Sqrt, OneResult)
ORV_DISTRIB_KERNEL(tangent, Tan, OneResult)
ORV_DISTRIB_KERNEL(sine, Sin, OneResult)
ORV_DISTRIB_KERNEL(inverse_error_function, ErfInv, OneResult)
ORV_DISTRIB_KERNEL(power, Powx, WithScalar)
ORV_DISTRIB_KERNEL(sine_and_cosine, SinCos, TwoResults)
#undef ORV_DISTRIB_KERNEL

// Calls a kernel with denormal numbers kept, whatever the calling thread's mode says of them.
template <class Kernel, class... Arguments>
void run(Kernel kernel, Arguments... arguments) {
    const ThreadState thread;
    thread.set_mode(frame::mode_denormal, frame::mode_denormal_keep);
    kernel(arguments...);
    thread.set_mode(~0u, thread.mode);
}

// A kernel over one number, of the high accuracy that constants are made with.
template <class T>
T accurate(orv_arq_kernel kernel, T x) {
    T y;
    run(reinterpret_cast<OneResult<T>>(kernel), 1, &x, &y);
    return y;
}
inline double accurate_exponential(double x) { return accurate(orv_arq_kernel_dExp_ttab[1], x); }
inline double accurate_logarithm(double x) { return accurate(orv_arq_kernel_dLn_ttab[1], x); }

// ---- Arithmetic ----------------------------------------------------------------------------------------------------

// r[i] = f(in[i]...); the arrays may be r itself.
template <class T, class Formula, class... In>
void map(int32_t n, T* r, Formula f, const In*... in) {
    constexpr int width = simd::Lanes<T>::width;
    int32_t i = 0;
    for (; i + width <= n; i += width) simd::store(r + i, f(simd::load(in + i)...));
    for (; i < n; ++i) simd::store_one(r + i, f(simd::load_one(in + i)...));
}

// r beta + a, and the larger of that and a.
template <class T>
void shift_and_scale(int32_t n, T* r, T a, T beta) {
    const auto shift = simd::splat(a), scale = simd::splat(beta);
    map(
        n, r, [=](auto x) { return x * scale + shift; }, r);
}
template <class T>
void shift_and_scale_from(int32_t n, T* r, T a, T beta) {
    const auto shift = simd::splat(a), scale = simd::splat(beta);
    map(
        n, r, [=](auto x) { return simd::greatest(shift, x * scale + shift); }, r);
}

inline __m128d even_lanes(__m128d a, __m128d b) { return simd::interleave_low(a, b); }
inline __m128d odd_lanes(__m128d a, __m128d b) { return simd::interleave_high(a, b); }
inline __m128 even_lanes(__m128 a, __m128 b) { return simd::even_lanes(a, b); }
inline __m128 odd_lanes(__m128 a, __m128 b) { return simd::odd_lanes(a, b); }

// Takes n pairs apart. `odd` may be the pairs' own array.
template <class T>
void take_apart(int32_t n, const T* pairs, T* even, T* odd) {
    constexpr int width = simd::Lanes<T>::width;
    int32_t i = 0;
    for (; i + width <= n; i += width) {
        const auto low = simd::load(pairs + 2 * i), high = simd::load(pairs + 2 * i + width);
        simd::store(even + i, even_lanes(low, high));
        simd::store(odd + i, odd_lanes(low, high));
    }
    for (; i < n; ++i) {
        const T first = pairs[2 * i], second = pairs[2 * i + 1];
        even[i] = first;
        odd[i] = second;
    }
}

}  // namespace orv::distrib
