// The loops of the plain arithmetic kernels, which run at the speed of loads and stores: a scalar prologue up to a 16-byte
// boundary of one array, a blocked loop in two versions by the alignment of the others, a scalar rest.
//
// A kernel is a record of static members: Element, block, and op(...) on registers.
#pragma once

#include "frame/kernel_loops.h"

#include <type_traits>

namespace orv::frame {

template <bool Aligned, class T>
inline auto load_as(const T* p) {
    if constexpr (Aligned)
        return simd::load_aligned(p);
    else
        return simd::load(p);
}

template <bool Aligned, class T, class V>
inline void store_as(T* p, V v) {
    if constexpr (Aligned)
        simd::store_aligned(p, v);
    else
        simd::store(p, v);
}

inline bool is_aligned(const void* p) { return reinterpret_cast<uintptr_t>(p) % 16 == 0; }

// The number of elements before the next 16-byte boundary, or -1 where a block loop does not pay or cannot be aligned.
template <class Kernel, class T>
inline int32_t elements_to_boundary(int32_t n, const T* p) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(p);
    if (n < Kernel::block || address % sizeof(T) != 0) return -1;
    return static_cast<int32_t>((16 - address % 16) % 16 / sizeof(T));
}

// ---- One input -------------------------------------------------------------------------------------------------------

template <class Kernel, class T>
inline void scalar_run(int32_t first, int32_t end, const T* a, T* y) {
    for (int32_t i = first; i < end; ++i) simd::store_one(y + i, Kernel::op(simd::load_one(a + i)));
}

template <class Kernel, bool AlignedY, class T>
inline int32_t block_run(int32_t i, int32_t n, const T* a, T* y) {
    constexpr int width = simd::Lanes<T>::width;
    for (; i <= n - Kernel::block; i += Kernel::block) {
#pragma GCC unroll 16
        for (int k = 0; k < Kernel::block; k += width)
            store_as<AlignedY>(y + i + k, Kernel::op(simd::load_aligned(a + i + k)));
    }
    return i;
}

template <class Kernel, class T>
inline void map_aligned(int32_t n, const T* a, T* y) {
    const GeneralFrame frame;
    const int32_t prologue = elements_to_boundary<Kernel>(n, a);
    if (prologue < 0) return scalar_run<Kernel>(0, n, a, y);
    scalar_run<Kernel>(0, prologue, a, y);
    // In place the two arrays share their alignment, and the loop with aligned stores is the one of its own.
    const int32_t rest = is_aligned(y + prologue) ? block_run<Kernel, true>(prologue, n, a, y)
                                                  : block_run<Kernel, false>(prologue, n, a, y);
    scalar_run<Kernel>(rest, n, a, y);
}

// ---- Two inputs ------------------------------------------------------------------------------------------------------

template <class Kernel, class T>
inline void scalar_run(int32_t first, int32_t end, const T* a, const T* b, T* y) {
    for (int32_t i = first; i < end; ++i)
        simd::store_one(y + i, Kernel::op(simd::load_one(a + i), simd::load_one(b + i)));
}

template <class Kernel, bool AlignedA, bool AlignedB, class T>
inline int32_t block_run(int32_t i, int32_t n, const T* a, const T* b, T* y) {
    constexpr int width = simd::Lanes<T>::width;
    for (; i <= n - Kernel::block; i += Kernel::block) {
#pragma GCC unroll 16
        for (int k = 0; k < Kernel::block; k += width)
            simd::store_aligned(y + i + k, Kernel::op(load_as<AlignedA>(a + i + k), load_as<AlignedB>(b + i + k)));
    }
    return i;
}

template <class Kernel, class T>
inline void map_aligned(int32_t n, const T* a, const T* b, T* y) {
    const GeneralFrame frame;
    const int32_t prologue = elements_to_boundary<Kernel>(n, y);
    if (prologue < 0) return scalar_run<Kernel>(0, n, a, b, y);
    scalar_run<Kernel>(0, prologue, a, b, y);
    int32_t rest;
    if (a == y)
        rest = is_aligned(b + prologue) ? block_run<Kernel, true, true>(prologue, n, y, b, y)
                                        : block_run<Kernel, true, false>(prologue, n, y, b, y);
    else if (b == y)
        rest = is_aligned(a + prologue) ? block_run<Kernel, true, true>(prologue, n, a, y, y)
                                        : block_run<Kernel, false, true>(prologue, n, a, y, y);
    else
        rest = is_aligned(a + prologue) && is_aligned(b + prologue)
                   ? block_run<Kernel, true, true>(prologue, n, a, b, y)
                   : block_run<Kernel, false, false>(prologue, n, a, b, y);
    scalar_run<Kernel>(rest, n, a, b, y);
}

// ---- Strides ---------------------------------------------------------------------------------------------------------

template <class Kernel, class T>
inline void map_strided(int32_t n, Strided<const T> a, Strided<T> y) {
    constexpr int width = simd::Lanes<T>::width;
    const GeneralFrame frame;
    if (n < 1) return;
    int32_t i = 0;
    for (; i <= n - width; i += width) y.store(i, Kernel::op(a.load(i)));
    for (; i < n; ++i) simd::store_one(y.at(i), Kernel::op(simd::load_one(a.at(i))));
}

template <class Kernel, class T>
inline void map_strided(int32_t n, Strided<const T> a, Strided<const T> b, Strided<T> y) {
    constexpr int width = simd::Lanes<T>::width;
    const GeneralFrame frame;
    if (n < 1) return;
    int32_t i = 0;
    for (; i <= n - width; i += width) y.store(i, Kernel::op(a.load(i), b.load(i)));
    for (; i < n; ++i) simd::store_one(y.at(i), Kernel::op(simd::load_one(a.at(i)), simd::load_one(b.at(i))));
}

}  // namespace orv::frame

#define ORV_ALIGNED_ONE_INPUT(row, accuracy, Kernel)                                                         \
    extern "C" void orv_kernel_##row##_##accuracy(int32_t n, const Kernel::Element* a, Kernel::Element* y) { \
        orv::frame::map_aligned<Kernel>(n, a, y);                                                            \
    }                                                                                                        \
    extern "C" void orv_kernel_##row##I_##accuracy(int32_t n, const Kernel::Element* a, int32_t inca,        \
                                                   Kernel::Element* y, int32_t incy) {                       \
        orv::frame::map_strided<Kernel, Kernel::Element>(n, {a, inca}, {y, incy});                           \
    }

#define ORV_ALIGNED_TWO_INPUTS(row, accuracy, Kernel)                                                            \
    extern "C" void orv_kernel_##row##_##accuracy(int32_t n, const Kernel::Element* a, const Kernel::Element* b, \
                                                  Kernel::Element* y) {                                          \
        orv::frame::map_aligned<Kernel>(n, a, b, y);                                                             \
    }                                                                                                            \
    extern "C" void orv_kernel_##row##I_##accuracy(int32_t n, const Kernel::Element* a, int32_t inca,            \
                                                   const Kernel::Element* b, int32_t incb, Kernel::Element* y,   \
                                                   int32_t incy) {                                               \
        orv::frame::map_strided<Kernel, Kernel::Element>(n, {a, inca}, {b, incb}, {y, incy});                    \
    }
