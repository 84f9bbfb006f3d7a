// The loops of all kernels of one input and one output.
//
// A kernel is a record of static members:
//
//   Element, Result    types of an element and of its result
//   Frame              its floating-point frame (frame/fp_frame.h)
//   block              elements computed together; their results are stored together
//   tail               what happens to the elements after the last whole block
//   lanes(x)           from lanes to lanes, where the vector path serves every value; or
//   lanes(x, doubt)    the same with a mask of the lanes that it does not serve; or
//   lanes(x), doubt(x) the same with that mask from a test of the arguments alone. The test comes first and for the whole
//                      block, so that nothing of a block needs to be kept; results of lanes in doubt are thrown away
//   name, scalar(x, y) with either mask: the name that reports carry, and one element's result, returning its status
//   rejected           optional: what becomes of a block with a lane in doubt (Rejected, below)
//   settle_silent(x, y, doubt)
//                      optional: settles in vector form what it can of the lanes in doubt and takes them out of the mask;
//                      used where the thread's mode allows no report (a frame with silent())
//
// and ORV_ONE_INPUT makes the dense and the strided kernel from it. A mask counts by its lanes' sign bits.
#pragma once

#include "frame/error_report.h"
#include "frame/fp_frame.h"
#include "simd/lanes.h"

namespace orv::frame {

enum class Tail {
    by_element,  // one after another, every lane holding that element
    padded,      // one whole block, filled up with the first remaining element
    masked,      // groups of one register, filled up with a harmless value
};

enum class Rejected {
    by_lane,      // the lanes in doubt go through scalar(), the others keep the vector result
    whole_block,  // all lanes go through scalar(), in order
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

template <class Kernel>
using LanesOf = typename simd::Lanes<typename Kernel::Element>::V;

// The mask of lanes in doubt comes from a test of its own.
template <class Kernel>
concept Tested = requires(LanesOf<Kernel> x) { Kernel::doubt(x); };

template <class Kernel>
constexpr bool rejects_whole_blocks() {
    if constexpr (requires { Kernel::rejected; })
        return Kernel::rejected == Rejected::whole_block;
    else
        return false;
}

// One register's results and mask, by whichever form the kernel has.
template <class Kernel>
inline auto lanes_and_doubt(const typename Kernel::Frame& frame, LanesOf<Kernel> x, LanesOf<Kernel>& doubt) {
    if constexpr (Tested<Kernel>) {
        doubt = Kernel::doubt(x);
        auto y = Kernel::lanes(x);
        if constexpr (requires { Kernel::settle_silent(x, y, doubt); })
            if (frame.silent()) y = Kernel::settle_silent(x, y, doubt);
        return y;
    } else {
        return Kernel::lanes(x, doubt);
    }
}

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

// A block that its test rejected, from the arguments on.
template <class Kernel, int Registers, class In, class Out>
[[gnu::noinline]] void map_rejected(const typename Kernel::Frame& frame, int32_t i, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    DoubtfulBlock<Kernel> block;
    unsigned bits = 0;
    for (int k = 0; k < Registers; ++k) {
        const auto x = a.load(i + k * width);
        simd::store(&block.x[k * width], x);
        if constexpr (!rejects_whole_blocks<Kernel>()) {
            LanesOf<Kernel> doubt;
            simd::store(&block.y[k * width], lanes_and_doubt<Kernel>(frame, x, doubt));
            bits |= simd::lane_bits(doubt) << (k * width);
        }
    }
    settle(block, rejects_whole_blocks<Kernel>() ? ~0u : bits, i, Registers * width, a, y);
}

template <class Kernel, int Registers, class In, class Out>
inline void map_block([[maybe_unused]] const typename Kernel::Frame& frame, int32_t i, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = LanesOf<Kernel>;
    if constexpr (Tested<Kernel>) {
        V any = Kernel::doubt(a.load(i));
        for (int k = 1; k < Registers; ++k) any = simd::bit_or(any, Kernel::doubt(a.load(i + k * width)));
        if (simd::lane_bits(any) != 0) [[unlikely]] {
            map_rejected<Kernel, Registers>(frame, i, a, y);
            return;
        }
        for (int k = 0; k < Registers; ++k) y.store(i + k * width, Kernel::lanes(a.load(i + k * width)));
        return;
    } else {
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
}

// At most one register's worth, or one block's: through buffers, so that nothing outside the arrays is touched.
template <class Kernel, int Registers, class In, class Out>
inline void map_part([[maybe_unused]] const typename Kernel::Frame& frame, int32_t i, int32_t count,
                     typename Kernel::Element fill, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = LanesOf<Kernel>;
    DoubtfulBlock<Kernel> block;
    for (int32_t lane = 0; lane < Registers * width; ++lane) block.x[lane] = lane < count ? *a.at(i + lane) : fill;
    unsigned bits = 0;
    for (int k = 0; k < Registers; ++k) {
        const V x = simd::load(&block.x[k * width]);
        if constexpr (Doubtful<Kernel>) {
            V doubt;
            simd::store(&block.y[k * width], lanes_and_doubt<Kernel>(frame, x, doubt));
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

// One element; the other lanes hold it too, and so add nothing to its exceptions.
template <class Kernel, class In, class Out>
inline void map_element(const typename Kernel::Frame& frame, int32_t i, In a, Out y) {
    LanesOf<Kernel> doubt;
    const auto x = simd::load_splat(a.at(i));
    const auto r = lanes_and_doubt<Kernel>(frame, x, doubt);
    if (simd::lane_bits(doubt) == 0) [[likely]] {
        simd::store_one(y.at(i), r);
        return;
    }
    DoubtfulBlock<Kernel> block;
    block.x[0] = *a.at(i);
    settle(block, 1, i, 1, a, y);
}

template <class Kernel, class In, class Out>
inline void map(int32_t n, In a, Out y) {
    using Element = typename Kernel::Element;
    constexpr int width = simd::Lanes<Element>::width;
    constexpr int registers = Kernel::block / width;
    const typename Kernel::Frame frame;

    int32_t i = 0;
    for (; i <= n - Kernel::block; i += Kernel::block) map_block<Kernel, registers>(frame, i, a, y);

    if constexpr (Kernel::tail == Tail::by_element) {
        if constexpr (Doubtful<Kernel>)
            for (; i < n; ++i) map_element<Kernel>(frame, i, a, y);
        else
            for (; i < n; ++i) simd::store_one(y.at(i), Kernel::lanes(simd::load_one(a.at(i))));
    } else if constexpr (Kernel::tail == Tail::padded) {
        if (i < n) map_part<Kernel, registers>(frame, i, n - i, *a.at(i), a, y);
    } else {
        for (; i <= n - width; i += width) map_block<Kernel, 1>(frame, i, a, y);
        if (i < n) map_part<Kernel, 1>(frame, i, n - i, static_cast<Element>(harmless), a, y);
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
