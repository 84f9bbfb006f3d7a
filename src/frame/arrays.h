// Arrays as a kernel's loop sees them. The two forms of a kernel differ in nothing else.
#pragma once

#include "frame/complex_lanes.h"

namespace orv::frame {

template <class T>
struct Dense {
    T* start;
    static constexpr int32_t increment = 1;

    T* at(int32_t i) const { return start + i; }
    auto load(int32_t i) const { return simd::load(at(i)); }
    template <class V>
    void store(int32_t i, V v) const {
        simd::store(at(i), v);
    }
};

template <class T>
struct Strided {
    T* start;
    int32_t increment;

    T* at(int32_t i) const { return start + static_cast<ptrdiff_t>(i) * increment; }
    auto load(int32_t i) const { return simd::load_strided(at(i), increment); }
    template <class V>
    void store(int32_t i, V v) const {
        simd::store_strided(at(i), increment, v);
    }
};

// A scalar argument: an array whose elements are all the same one.
template <class T>
struct Scalar {
    T value;
    static constexpr int32_t increment = 0;

    const T* at(int32_t) const { return &value; }
    auto load(int32_t) const { return simd::load_splat(&value); }
};

// Not every compiler deduces these of an aggregate by itself.
template <class T>
Dense(T*) -> Dense<T>;
template <class T>
Strided(T*, int32_t) -> Strided<T>;
template <class T>
Scalar(T) -> Scalar<T>;

}  // namespace orv::frame
