// The loops of all kernels of one input and one output.
//
// A kernel is a record of static members:
//
//   Element, Result    types of an element and of its result
//   Frame              its floating-point frame (frame/fp_frame.h)
//   block              elements computed together; their results are stored together
//   tail               what happens to the elements after the last whole block
//   lanes(x)           from lanes to lanes, where the vector path serves every value; or
//   lanes(x, doubt)    the same with a mask of the lanes that it does not serve
//   name, scalar(x, y) with such a mask: the name that reports carry, and one element's result, returning its status
//
// and ORV_ONE_INPUT makes the dense and the strided kernel from it.
#pragma once

#include "frame/error_report.h"
#include "frame/fp_frame.h"
#include "simd/lanes.h"

namespace orv::frame {

enum class Tail {
    by_element,  // one after another
    padded,      // one whole block, filled up with the first remaining element
    masked,      // groups of one register, filled up with a harmless value
};

// An array as a kernel sees it. The two forms of a kernel differ in nothing else.
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

// The fill of absent lanes: in every function's domain, nowhere special.
inline constexpr double harmless = 0.75;

template <class Kernel>
concept Doubtful = requires { Kernel::name; };

// Lanes of a block that the vector path did not serve: their inputs and results, in buffers.
template <class Kernel>
struct DoubtfulBlock {
    static constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    alignas(16) typename Kernel::Element x[Kernel::block];
    alignas(16) typename Kernel::Result y[Kernel::block];
};

// Settles the lanes of `bits` from lane 0 up, then stores the first `count` results. A reported element is in its place
// in `y` before the reporter runs, which may change it there.
template <class Kernel, class In, class Out>
[[gnu::noinline]] void settle(DoubtfulBlock<Kernel>& block, unsigned bits, int32_t i, int32_t count, In a, Out y) {
    for (int32_t lane = 0; lane < count; ++lane) {
        if (!(bits >> lane & 1)) continue;
        const int32_t status = Kernel::scalar(&block.x[lane], &block.y[lane]);
        if (status == status_ok) continue;
        *y.at(i + lane) = block.y[lane];
        report_error(status, i + lane, a.start, a.increment, a.start, a.increment, y.start, y.increment, y.start,
                     y.increment, Kernel::name);
        block.y[lane] = *y.at(i + lane);
    }
    for (int32_t lane = 0; lane < count; ++lane) *y.at(i + lane) = block.y[lane];
}

template <class Kernel, int Registers, class In, class Out>
inline void map_block(int32_t i, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = typename simd::Lanes<typename Kernel::Element>::V;
    V x[Registers], r[Registers];
    if constexpr (Doubtful<Kernel>) {
        V doubt[Registers];
        for (int k = 0; k < Registers; ++k) r[k] = Kernel::lanes(x[k] = a.load(i + k * width), doubt[k]);
        V any = doubt[0];
        for (int k = 1; k < Registers; ++k) any = simd::bit_or(any, doubt[k]);
        if (simd::lane_bits(any) != 0) [[unlikely]] {
            DoubtfulBlock<Kernel> block;
            unsigned bits = 0;
            for (int k = 0; k < Registers; ++k) {
                simd::store(&block.x[k * width], x[k]);
                simd::store(&block.y[k * width], r[k]);
                bits |= simd::lane_bits(doubt[k]) << (k * width);
            }
            settle(block, bits, i, Registers * width, a, y);
            return;
        }
    } else {
        for (int k = 0; k < Registers; ++k) r[k] = Kernel::lanes(x[k] = a.load(i + k * width));
    }
    for (int k = 0; k < Registers; ++k) y.store(i + k * width, r[k]);
}

// At most one register's worth, or one block's: through buffers, so that nothing outside the arrays is touched.
template <class Kernel, int Registers, class In, class Out>
inline void map_part(int32_t i, int32_t count, typename Kernel::Element fill, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = typename simd::Lanes<typename Kernel::Element>::V;
    DoubtfulBlock<Kernel> block;
    for (int32_t lane = 0; lane < Registers * width; ++lane) block.x[lane] = lane < count ? *a.at(i + lane) : fill;
    unsigned bits = 0;
    for (int k = 0; k < Registers; ++k) {
        const V x = simd::load(&block.x[k * width]);
        if constexpr (Doubtful<Kernel>) {
            V doubt;
            simd::store(&block.y[k * width], Kernel::lanes(x, doubt));
            bits |= simd::lane_bits(doubt) << (k * width);
        } else {
            simd::store(&block.y[k * width], Kernel::lanes(x));
        }
    }
    if constexpr (Doubtful<Kernel>) {
        if (bits != 0) [[unlikely]] {
            settle(block, bits, i, count, a, y);
            return;
        }
    }
    for (int32_t lane = 0; lane < count; ++lane) *y.at(i + lane) = block.y[lane];
}

template <class Kernel, class In, class Out>
inline void map(int32_t n, In a, Out y) {
    using Element = typename Kernel::Element;
    constexpr int width = simd::Lanes<Element>::width;
    constexpr int registers = Kernel::block / width;
    const typename Kernel::Frame frame;

    int32_t i = 0;
    for (; i <= n - Kernel::block; i += Kernel::block) map_block<Kernel, registers>(i, a, y);

    if constexpr (Kernel::tail == Tail::by_element) {
        for (; i < n; ++i) simd::store_one(y.at(i), Kernel::lanes(simd::load_one(a.at(i))));
    } else if constexpr (Kernel::tail == Tail::padded) {
        if (i < n) map_part<Kernel, registers>(i, n - i, *a.at(i), a, y);
    } else {
        for (; i <= n - width; i += width) map_block<Kernel, 1>(i, a, y);
        if (i < n) map_part<Kernel, 1>(i, n - i, static_cast<Element>(harmless), a, y);
    }
}

}  // namespace orv::frame

// Defines orv_kernel_<row>_<accuracy> and orv_kernel_<row>I_<accuracy>. `accuracy` is the first that the kernel serves.
#define ORV_ONE_INPUT(row, accuracy, Kernel)                                                                            \
    extern "C" void orv_kernel_##row##_##accuracy(int32_t n, const Kernel::Element* a, Kernel::Result* y) {             \
        orv::frame::map<Kernel>(n, orv::frame::Dense<const Kernel::Element>{a}, orv::frame::Dense<Kernel::Result>{y});   \
    }                                                                                                                   \
    extern "C" void orv_kernel_##row##I_##accuracy(int32_t n, const Kernel::Element* a, int32_t inca, Kernel::Result* y, \
                                                   int32_t incy) {                                                      \
        orv::frame::map<Kernel>(n, orv::frame::Strided<const Kernel::Element>{a, inca},                                  \
                                orv::frame::Strided<Kernel::Result>{y, incy});                                          \
    }
