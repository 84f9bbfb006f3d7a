// The functions of other libraries, each in the plain loop that its user would write.
#pragma once

#include "vecmath/calls.h"

#include <immintrin.h>

#include <complex>
#include <type_traits>

namespace orv::bench {

// One function of another library. `ulp` is the error that its makers hold it to, 0 for exact results.
struct Peer {
    const char* library;
    const char* function;
    double ulp;
    void (*call)(int32_t n, const Arrays& v);
};

inline __m128 load(const float* x) { return _mm_loadu_ps(x); }
inline __m128d load(const double* x) { return _mm_loadu_pd(x); }
inline void store(float* y, __m128 x) { _mm_storeu_ps(y, x); }
inline void store(double* y, __m128d x) { _mm_storeu_pd(y, x); }

// Registers of T: f(a) or f(a, b), with one result or two.
template <class T, int inputs, class F>
void lanes(int32_t n, const Arrays& v, F f) {
    const T *const a = static_cast<const T*>(v.a), *const b = static_cast<const T*>(v.b);
    T *const y = static_cast<T*>(v.y), *const z = static_cast<T*>(v.z);
    for (int32_t i = 0; i < n; i += static_cast<int32_t>(16 / sizeof(T))) {
        if constexpr (inputs == 2) {
            store(y + i, f(load(a + i), load(b + i)));
        } else if constexpr (std::is_class_v<decltype(f(load(a)))>) {
            const auto both = f(load(a + i));
            store(y + i, both.x);
            store(z + i, both.y);
        } else {
            store(y + i, f(load(a + i)));
        }
    }
}

// One after another.
template <class X, int inputs, class F>
void scalars(int32_t n, const Arrays& v, F f) {
    const X *const a = static_cast<const X*>(v.a), *const b = static_cast<const X*>(v.b);
    for (int32_t i = 0; i < n; ++i) {
        if constexpr (inputs == 2)
            static_cast<X*>(v.y)[i] = f(a[i], b[i]);
        else
            static_cast<decltype(f(a[0]))*>(v.y)[i] = f(a[i]);
    }
}
template <class X, class F>
void scalars_out2(int32_t n, const Arrays& v, F f) {
    for (int32_t i = 0; i < n; ++i)
        f(static_cast<const X*>(v.a)[i], static_cast<X*>(v.y) + i, static_cast<X*>(v.z) + i);
}

}  // namespace orv::bench
