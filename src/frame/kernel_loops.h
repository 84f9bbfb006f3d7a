// The loops of all kernels of one input and one output.
//
// A kernel is a record of static members:
//
//   Element, Result    types of an element and of its result
//   Frame              its floating-point frame (frame/fp_frame.h)
//   block              elements computed together; their results are stored together
//   tail               what happens to the elements after the last whole block
//   lanes(x)           from lanes to lanes, where the vector path serves every value; or
//   lanes(x, frame)    the same where the frame gathers something on the way; or
//   lanes(x, doubt)    with a mask of the lanes that the vector path does not serve; or
//   lanes(x), doubt(x) with that mask from a test of the arguments alone. The test comes first, for the whole block, so
//                      nothing of a block is kept in registers; results of lanes in doubt are thrown away
//   name, scalar(x, y) with either mask: the name that reports carry, and one element's result, returning its status
//   rejected           with doubt(x), optional: what becomes of a block with a lane in doubt
//   settle_silent(x, y, doubt)
//                      with doubt(x), optional: settles in vector form what it can of the lanes in doubt and takes them
//                      out of the mask; used where the thread's mode allows no report
//   settle(x, y, doubt) optional: where the lanes in doubt have a vector path of their own. Takes the results y, returns
//                      them with the lanes put in that it serves, and leaves the others in doubt
//
// and ORV_ONE_INPUT makes the dense and the strided kernel from it. A mask counts by its lanes' sign bits.
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

enum class Rejected {
    by_lane,      // the lanes in doubt go through scalar(), the others keep the vector result
    whole_block,  // all lanes go through scalar(), in order
};

// What most kernels of one element type say of themselves, to be inherited.
template <class T, int Block, Tail TheTail, Rejected WhatOfRejected = Rejected::by_lane>
struct OneInput {
    using Element = T;
    using Result = T;
    using Frame = GeneralFrame;
    using V = typename simd::Lanes<T>::V;
    static constexpr int block = Block;
    static constexpr Tail tail = TheTail;
    static constexpr Rejected rejected = WhatOfRejected;
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
inline constexpr float harmless = 0.75f;

template <class Kernel>
concept Doubtful = requires {
    Kernel::name;
};

template <class Kernel>
using LanesOf = typename simd::Lanes<typename Kernel::Element>::V;

// The mask of lanes in doubt comes from a test of its own.
template <class Kernel>
concept Tested = requires(LanesOf<Kernel> x) {
    Kernel::doubt(x);
};

template <class Kernel>
constexpr bool rejects_whole_blocks() {
    if constexpr (requires { Kernel::rejected; })
        return Kernel::rejected == Rejected::whole_block;
    else
        return false;
}

// The lanes in doubt filled, so that the vector path raises nothing for them.
template <class V>
inline V without_doubted(V x, V doubt) {
    return simd::select_by_sign(doubt, V{} + harmless, x);
}

template <class V>
inline constexpr unsigned every_lane = (1u << sizeof(V) / sizeof(V{}[0])) - 1;

// One register's results with their mask, whichever form the kernel has.
template <class Kernel, class V>
inline auto doubtful_lanes(V x, V& doubt, [[maybe_unused]] const typename Kernel::Frame& frame) {
    if constexpr (Tested<Kernel>) {
        doubt = Kernel::doubt(x);
        V r = x;
        if (simd::lane_bits(doubt) != every_lane<V>) r = Kernel::lanes(without_doubted(x, doubt));
        if constexpr (requires { Kernel::settle_silent(x, r, doubt); })
            if (frame.silent()) r = Kernel::settle_silent(x, r, doubt);
        return r;
    } else {
        return Kernel::lanes(x, doubt);
    }
}

// The lanes of a kernel that serves every value.
template <class Kernel, class V>
inline auto sure_lanes(V x, typename Kernel::Frame& frame) {
    if constexpr (requires { Kernel::lanes(x, frame); })
        return Kernel::lanes(x, frame);
    else
        return Kernel::lanes(x);
}

// The first `count` elements of a block and harmless ones behind them, to and from a buffer. Whole blocks go register by
// register: a register is slow to load where single elements were stored just before.
template <class Kernel, class In, class Element>
inline void load_block(int32_t i, int32_t count, In a, Element* x) {
    if (count == Kernel::block) {
        for (int32_t k = 0; k < count; k += simd::Lanes<Element>::width) simd::store(x + k, a.load(i + k));
        return;
    }
    for (int32_t lane = 0; lane < Kernel::block; ++lane) x[lane] = lane < count ? *a.at(i + lane) : Element{harmless};
}
template <class Kernel, class Out, class Result>
inline void store_block(int32_t i, int32_t count, Out y, const Result* r) {
    if (count == Kernel::block) {
        for (int32_t k = 0; k < count; k += simd::Lanes<Result>::width) y.store(i + k, simd::load(r + k));
        return;
    }
    for (int32_t lane = 0; lane < count; ++lane) *y.at(i + lane) = r[lane];
}

// A block with lanes that the vector path does not serve goes through buffers, as does a part of a block. The doubted lanes
// are settled from lane 0 up. A reported element is in its place in `y` before the reporter runs, which may change it
// there; the block is stored at the end. Nothing outside the arrays is touched.
template <class Kernel, class In, class Out>
[[gnu::noinline, gnu::cold]] void map_buffered(int32_t i, int32_t count, In a, Out y,
                                               const typename Kernel::Frame& frame) {
    using Element = typename Kernel::Element;
    using V = typename simd::Lanes<Element>::V;
    constexpr int width = simd::Lanes<Element>::width;
    alignas(16) Element x[Kernel::block];
    alignas(16) typename Kernel::Result r[Kernel::block];
    load_block<Kernel>(i, count, a, x);
    for (int32_t k = 0; k < count; k += width) {
        unsigned bits = ~0u;
        if constexpr (!rejects_whole_blocks<Kernel>()) {
            V doubt;
            auto result = doubtful_lanes<Kernel>(simd::load(x + k), doubt, frame);
            if constexpr (requires { Kernel::settle(result, result, doubt); })
                if (simd::lane_bits(doubt) != 0) result = Kernel::settle(simd::load(x + k), result, doubt);
            simd::store(r + k, result);
            bits = simd::lane_bits(doubt);
        }
        for (int32_t lane = k; lane < k + width && lane < count; ++lane) {
            if (!(bits >> (lane - k) & 1)) continue;
            const int32_t status = Kernel::scalar(&x[lane], &r[lane]);
            if (status == status_ok) continue;
            *y.at(i + lane) = r[lane];
            report_error(status, i + lane, a.start, a.increment, a.start, a.increment, y.start, y.increment, y.start,
                         y.increment, Kernel::name);
            r[lane] = *y.at(i + lane);
        }
    }
    store_block<Kernel>(i, count, y, r);
}

// `Registers` whole registers from element i on.
template <class Kernel, int Registers, class In, class Out>
inline void map_registers(int32_t i, In a, Out y, [[maybe_unused]] typename Kernel::Frame& frame) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = typename simd::Lanes<typename Kernel::Element>::V;
    [[maybe_unused]] V r[Registers];
    if constexpr (Tested<Kernel>) {
        V any = Kernel::doubt(a.load(i));
#pragma GCC unroll 16
        for (int k = 1; k < Registers; ++k) any = simd::bit_or(any, Kernel::doubt(a.load(i + k * width)));
        if (simd::lane_bits(any) != 0) [[unlikely]]
            return map_buffered<Kernel>(i, Registers * width, a, y, frame);
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) y.store(i + k * width, Kernel::lanes(a.load(i + k * width)));
        return;
    } else if constexpr (Doubtful<Kernel>) {
        V any;
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) {
            V doubt;
            r[k] = Kernel::lanes(a.load(i + k * width), doubt);
            any = k == 0 ? doubt : simd::bit_or(any, doubt);
        }
        if (simd::lane_bits(any) != 0) [[unlikely]]
            return map_buffered<Kernel>(i, Registers * width, a, y, frame);
    } else {
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) r[k] = sure_lanes<Kernel>(a.load(i + k * width), frame);
    }
#pragma GCC unroll 16
    for (int k = 0; k < Registers; ++k) y.store(i + k * width, r[k]);
}

// Fewer elements than a register holds, the absent lanes filled.
template <class Kernel, class In, class Out>
inline void map_group(int32_t i, int32_t count, In a, Out y, [[maybe_unused]] typename Kernel::Frame& frame) {
    using Scalar = typename simd::Lanes<typename Kernel::Element>::Scalar;
    using V = typename simd::Lanes<typename Kernel::Element>::V;
    const V x = simd::load_part(a.at(i), a.increment, count, Scalar{harmless});
    if constexpr (Doubtful<Kernel>) {
        V doubt;
        const V r = doubtful_lanes<Kernel>(x, doubt, frame);
        if (simd::lane_bits(doubt) != 0) [[unlikely]]
            return map_buffered<Kernel>(i, count, a, y, frame);
        simd::store_part(y.at(i), y.increment, count, r);
    } else {
        simd::store_part(y.at(i), y.increment, count, sure_lanes<Kernel>(x, frame));
    }
}

// One element. In a kernel with doubts every lane holds it, so that the others add nothing to its exceptions.
template <class Kernel, class In, class Out>
inline void map_element(int32_t i, In a, Out y, typename Kernel::Frame& frame) {
    if constexpr (Doubtful<Kernel>) {
        LanesOf<Kernel> doubt;
        const auto r = doubtful_lanes<Kernel>(simd::load_splat(a.at(i)), doubt, frame);
        if (simd::lane_bits(doubt) != 0) [[unlikely]]
            return map_buffered<Kernel>(i, 1, a, y, frame);
        simd::store_one(y.at(i), r);
    } else {
        simd::store_one(y.at(i), sure_lanes<Kernel>(simd::load_one(a.at(i)), frame));
    }
}

// Fewer elements than a block holds, in a block filled up with the first of them: what it raises has been raised.
template <class Kernel, class In, class Out>
inline void map_padded(int32_t i, int32_t count, In a, Out y) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    alignas(16) typename Kernel::Element x[Kernel::block];
    alignas(16) typename Kernel::Result r[Kernel::block];
    for (int32_t lane = 0; lane < Kernel::block; ++lane) x[lane] = *a.at(i + (lane < count ? lane : 0));
    for (int k = 0; k < Kernel::block; k += width) simd::store(r + k, Kernel::lanes(simd::load(x + k)));
    for (int32_t lane = 0; lane < count; ++lane) *y.at(i + lane) = r[lane];
}

template <class Kernel, class In, class Out>
inline void map(int32_t n, In a, Out y) {
    using Element = typename Kernel::Element;
    constexpr int width = simd::Lanes<Element>::width;
    constexpr int registers = Kernel::block / width;
    typename Kernel::Frame frame;

    int32_t i = 0;
    for (; i <= n - Kernel::block; i += Kernel::block) map_registers<Kernel, registers>(i, a, y, frame);

    if constexpr (Kernel::tail == Tail::by_element) {
        for (; i < n; ++i) map_element<Kernel>(i, a, y, frame);
    } else if constexpr (Kernel::tail == Tail::padded) {
        if (i < n) map_padded<Kernel>(i, n - i, a, y);
    } else {
        for (; i <= n - width; i += width) map_registers<Kernel, 1>(i, a, y, frame);
        if (i < n) map_group<Kernel>(i, n - i, a, y, frame);
    }
}

}  // namespace orv::frame

// Defines orv_kernel_<row>_<accuracy> and orv_kernel_<row>I_<accuracy>. `accuracy` is the first that the kernel serves.
// They are flattened: a call to lanes() in the loop would send every constant to and fro.
#define ORV_ONE_INPUT(row, accuracy, Kernel)                                                                           \
    extern "C"                                                                                                         \
        [[gnu::flatten]] void orv_kernel_##row##_##accuracy(int32_t n, const Kernel::Element* a, Kernel::Result* y) {  \
        orv::frame::map<Kernel>(n, orv::frame::Dense<const Kernel::Element>{a}, orv::frame::Dense<Kernel::Result>{y}); \
    }                                                                                                                  \
    extern "C" [[gnu::flatten]] void orv_kernel_##row##I_##accuracy(int32_t n, const Kernel::Element* a, int32_t inca, \
                                                                    Kernel::Result* y, int32_t incy) {                 \
        orv::frame::map<Kernel>(n, orv::frame::Strided<const Kernel::Element>{a, inca},                                \
                                orv::frame::Strided<Kernel::Result>{y, incy});                                         \
    }
