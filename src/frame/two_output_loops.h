// The loops of all kernels of one input and two outputs.
//
// A kernel is a record of static members as in frame/kernel_loops.h, its outputs by reference:
//
//   Element, Frame, block, name  as there; the rest is done in groups of one register
//   doubt(x)                     the lanes of a register that the vector path does not serve, for a whole block first
//   lanes(x, y, z)               both results of a register
//   settle(x, y, z, doubt)       where the doubted lanes have a vector path of their own: puts in what it serves, leaves the
//                                others in doubt
//   scalar(x, y, z)              both results of one element, returning its status
//
// and ORV_TWO_OUTPUTS makes the dense and the strided kernel from it.
#pragma once

#include "frame/kernel_loops.h"

namespace orv::frame {

// A block with doubted lanes, or a part of a block that has some: as in map_buffered.
template <class Kernel, class In, class Out>
[[gnu::noinline, gnu::cold]] void map_two_buffered(int32_t i, int32_t count, In a, Out y, Out z) {
    using Element = typename Kernel::Element;
    using V = typename simd::Lanes<Element>::V;
    constexpr int width = simd::Lanes<Element>::width;
    alignas(16) Element x[Kernel::block], r1[Kernel::block], r2[Kernel::block];
    load_block<Kernel>(i, count, a, x);
    for (int32_t k = 0; k < count; k += width) {
        V v1, v2;
        V doubt = Kernel::doubt(simd::load(x + k));
        Kernel::lanes(without_doubted(simd::load(x + k), doubt), v1, v2);
        if constexpr (requires { Kernel::settle(v1, v1, v2, doubt); })
            if (simd::lane_bits(doubt) != 0) Kernel::settle(simd::load(x + k), v1, v2, doubt);
        simd::store(r1 + k, v1);
        simd::store(r2 + k, v2);
        const unsigned bits = simd::lane_bits(doubt);
        for (int32_t lane = k; lane < k + width && lane < count; ++lane) {
            if (!(bits >> (lane - k) & 1)) continue;
            const int32_t status = Kernel::scalar(&x[lane], &r1[lane], &r2[lane]);
            if (status == status_ok) continue;
            *y.at(i + lane) = r1[lane];
            *z.at(i + lane) = r2[lane];
            report_error(status, i + lane, a.start, a.increment, a.start, a.increment, y.start, y.increment, z.start,
                         z.increment, Kernel::name);
            r1[lane] = *y.at(i + lane);
            r2[lane] = *z.at(i + lane);
        }
    }
    store_block<Kernel>(i, count, y, r1);
    store_block<Kernel>(i, count, z, r2);
}

template <class Kernel, int Registers, class In, class Out>
inline void map_two_registers(int32_t i, In a, Out y, Out z) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = typename simd::Lanes<typename Kernel::Element>::V;
    V any = Kernel::doubt(a.load(i));
#pragma GCC unroll 16
    for (int k = 1; k < Registers; ++k) any = simd::bit_or(any, Kernel::doubt(a.load(i + k * width)));
    if (simd::lane_bits(any) != 0) [[unlikely]]
        return map_two_buffered<Kernel>(i, Registers * width, a, y, z);
#pragma GCC unroll 16
    for (int k = 0; k < Registers; ++k) {
        V r1, r2;
        Kernel::lanes(a.load(i + k * width), r1, r2);
        y.store(i + k * width, r1);
        z.store(i + k * width, r2);
    }
}

// Fewer elements than a register holds, the absent lanes filled.
template <class Kernel, class In, class Out>
inline void map_two_group(int32_t i, int32_t count, In a, Out y, Out z) {
    using Element = typename Kernel::Element;
    using V = typename simd::Lanes<Element>::V;
    const V x = simd::load_part(a.at(i), a.increment, count, Element{harmless});
    if (simd::lane_bits(Kernel::doubt(x)) != 0) [[unlikely]]
        return map_two_buffered<Kernel>(i, count, a, y, z);
    V r1, r2;
    Kernel::lanes(x, r1, r2);
    simd::store_part(y.at(i), y.increment, count, r1);
    simd::store_part(z.at(i), z.increment, count, r2);
}

template <class Kernel, class In, class Out>
inline void map_two(int32_t n, In a, Out y, Out z) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    const typename Kernel::Frame frame;
    int32_t i = 0;
    for (; i <= n - Kernel::block; i += Kernel::block) map_two_registers<Kernel, Kernel::block / width>(i, a, y, z);
    for (; i <= n - width; i += width) map_two_registers<Kernel, 1>(i, a, y, z);
    if (i < n) map_two_group<Kernel>(i, n - i, a, y, z);
}

}  // namespace orv::frame

// Defines orv_kernel_<row>_<accuracy> and orv_kernel_<row>I_<accuracy>. `accuracy` is the first that the kernel serves.
// Flattened, as kernels of one output are.
#define ORV_TWO_OUTPUTS(row, accuracy, Kernel)                                                                         \
    extern "C" [[gnu::flatten]] void orv_kernel_##row##_##accuracy(int32_t n, const Kernel::Element* a,                \
                                                                   Kernel::Element* y, Kernel::Element* z) {           \
        using namespace orv::frame;                                                                                    \
        map_two<Kernel>(n, Dense<const Kernel::Element>{a}, Dense<Kernel::Element>{y}, Dense<Kernel::Element>{z});     \
    }                                                                                                                  \
    extern "C" [[gnu::flatten]] void orv_kernel_##row##I_##accuracy(int32_t n, const Kernel::Element* a, int32_t inca, \
                                                                    Kernel::Element* y, int32_t incy,                  \
                                                                    Kernel::Element* z, int32_t incz) {                \
        using namespace orv::frame;                                                                                    \
        map_two<Kernel>(n, Strided<const Kernel::Element>{a, inca}, Strided<Kernel::Element>{y, incy},                 \
                        Strided<Kernel::Element>{z, incz});                                                            \
    }
