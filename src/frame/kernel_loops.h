// The loops of all kernels: frame/kernel.h says what a kernel is and how one of each shape is written.
#pragma once

#include "frame/arrays.h"
#include "frame/error_report.h"
#include "frame/kernel.h"

#include <utility>

namespace orv::frame {

// The one output or the two of a kernel. They travel by value: what a call in the loop can see the address of, the loop
// would load again after every store.
template <class Array, int Count>
struct Outputs {
    Array at[Count];
};
template <class Array, class... More>
Outputs<Array, 1 + sizeof...(More)> to(Array y, More... z) {
    return {{y, z...}};
}

template <class Kernel>
using ResultLanes = typename simd::Lanes<typename Kernel::Result>::V;

// ---- One register of each input to one of each output ----------------------------------------------------------------

template <class Kernel, int Count, class... X>
inline void sure_lanes(ResultLanes<Kernel> (&r)[Count], [[maybe_unused]] typename Kernel::Frame& frame, X... x) {
    if constexpr (Count == 2)
        Kernel::lanes(x..., r[0], r[1]);
    else if constexpr (requires { Kernel::lanes(x..., frame); })
        r[0] = Kernel::lanes(x..., frame);
    else
        r[0] = Kernel::lanes(x...);
}

// The same with the mask gathered on the way.
template <class Kernel, int Count, class... X>
inline void gather_lanes(ResultLanes<Kernel> (&r)[Count], typename Kernel::V& doubt, X... x) {
    if constexpr (Count == 2)
        Kernel::lanes(x..., r[0], r[1], doubt);
    else
        r[0] = Kernel::lanes(x..., doubt);
}

// ---- Blocks with lanes in doubt --------------------------------------------------------------------------------------

// The lanes in doubt filled, so that the vector path raises nothing for them.
template <class Kernel>
inline auto without_doubted(typename Kernel::V x, typename Kernel::V doubt) {
    return simd::select_by_sign(doubt, simd::splat(Kernel::fill), x);
}
template <class Kernel>
inline auto without_doubted(simd::Complex<typename Kernel::Scalar> x, typename Kernel::V doubt) {
    return simd::Complex<typename Kernel::Scalar>{without_doubted<Kernel>(x.re, doubt),
                                                  without_doubted<Kernel>(x.im, doubt)};
}

// What the vector path gives for a register of which lanes may be in doubt, and which are.
template <class Kernel, int Count, class... X>
inline void doubtful_lanes(ResultLanes<Kernel> (&r)[Count], typename Kernel::V& doubt,
                           [[maybe_unused]] typename Kernel::Frame& frame, X... x) {
    if constexpr (Tested<Kernel>) {
        constexpr unsigned every_lane = (1u << simd::Lanes<typename Kernel::Element>::width) - 1;
        doubt = Kernel::doubt(x...);
        for (auto& result : r) result = ResultLanes<Kernel>{};
        if (simd::lane_bits(doubt) != every_lane) sure_lanes<Kernel>(r, frame, without_doubted<Kernel>(x, doubt)...);
    } else {
        gather_lanes<Kernel>(r, doubt, x...);
    }
}

// What a kernel can do about lanes in doubt by a vector path of their own.
template <class Kernel, int Count, class... X>
inline void settle([[maybe_unused]] const typename Kernel::Frame& frame, ResultLanes<Kernel> (&r)[Count],
                   typename Kernel::V& doubt, X... x) {
    if constexpr (Kernel::rejected == Rejected::settled) {
        if (simd::lane_bits(doubt) == 0) return;
        if constexpr (Count == 2)
            Kernel::settle(x..., r[0], r[1], doubt);
        else
            r[0] = Kernel::settle(x..., r[0], doubt);
    } else if constexpr (Kernel::rejected == Rejected::settled_where_silent) {
        static_assert(Count == 1, "two outputs are settled in every mode");
        if (frame.silent()) r[0] = Kernel::settle_silent(x..., r[0], doubt);
    }
}

// What absent lanes hold, as an element.
template <class Kernel>
constexpr typename Kernel::Element filled() {
    if constexpr (is_complex<typename Kernel::Element>)
        return {Kernel::fill, Kernel::fill};
    else
        return Kernel::fill;
}

// The first `count` elements of a block and harmless ones behind them, to and from a buffer. Whole blocks go register by
// register: a register is slow to load where single elements were stored just before.
template <class Kernel, class In>
inline void load_block(int32_t i, int32_t count, In a, typename Kernel::Element* x) {
    using Element = typename Kernel::Element;
    if (count == Kernel::block) {
        for (int32_t k = 0; k < count; k += simd::Lanes<Element>::width) simd::store(x + k, a.load(i + k));
        return;
    }
    for (int32_t lane = 0; lane < Kernel::block; ++lane) x[lane] = lane < count ? *a.at(i + lane) : filled<Kernel>();
}
template <class Kernel, class Out>
inline void store_block(int32_t i, int32_t count, Out y, const typename Kernel::Result* r) {
    if (count == Kernel::block) {
        for (int32_t k = 0; k < count; k += simd::Lanes<typename Kernel::Result>::width)
            y.store(i + k, simd::load(r + k));
        return;
    }
    for (int32_t lane = 0; lane < count; ++lane) *y.at(i + lane) = r[lane];
}

// A block with lanes that the vector path does not serve goes through buffers, as does a part of a block. The doubted lanes
// are settled from lane 0 up. A reported element is in its place in the outputs before the reporter runs, which may change
// it there; its arguments are reported from the buffers, since the outputs may be the inputs. The block is stored at the
// end. Nothing outside the arrays is touched.
template <class Kernel, class Out, int Count, size_t... Input, class... In>
[[gnu::noinline, gnu::cold]] void map_buffered(const char* name, typename Kernel::Frame& frame, int32_t i,
                                               int32_t count, Outputs<Out, Count> out, std::index_sequence<Input...>,
                                               In... in) {
    using Element = typename Kernel::Element;
    using Result = typename Kernel::Result;
    constexpr int width = simd::Lanes<Element>::width;
    alignas(16) Element x[sizeof...(In)][Kernel::block];
    alignas(16) Result r[Count][Kernel::block];
    (load_block<Kernel>(i, count, in, x[Input]), ...);
    const Element* const starts[] = {in.at(0)...};
    constexpr size_t second = sizeof...(In) > 1 ? 1 : 0;

    for (int32_t k = 0; k < count; k += width) {
        unsigned bits = ~0u;
        if constexpr (Kernel::rejected != Rejected::whole_block) {
            typename Kernel::V doubt;
            ResultLanes<Kernel> registers[Count];
            doubtful_lanes<Kernel>(registers, doubt, frame, simd::load(x[Input] + k)...);
            settle<Kernel>(frame, registers, doubt, simd::load(x[Input] + k)...);
            for (int output = 0; output < Count; ++output) simd::store(r[output] + k, registers[output]);
            bits = simd::lane_bits(doubt);
        }
        for (int32_t lane = k; lane < k + width && lane < count; ++lane) {
            if (!(bits >> (lane - k) & 1)) continue;
            int32_t status;
            if constexpr (Count == 2)
                status = Kernel::scalar(&x[Input][lane]..., &r[0][lane], &r[1][lane]);
            else
                status = Kernel::scalar(&x[Input][lane]..., &r[0][lane]);
            if (status == status_ok) continue;
            for (int output = 0; output < Count; ++output) *out.at[output].at(i + lane) = r[output][lane];
            // One place each: an increment of 0 leads every index to it.
            report_error(status, i + lane, starts[0], Operand<const Element>{&x[0][lane], 0},
                         Operand<const Element>{&x[second][lane], 0},
                         Operand<Result>{out.at[0].start, out.at[0].increment},
                         Operand<Result>{out.at[Count - 1].start, out.at[Count - 1].increment}, name);
            for (int output = 0; output < Count; ++output) r[output][lane] = *out.at[output].at(i + lane);
        }
    }
    for (int output = 0; output < Count; ++output) store_block<Kernel>(i, count, out.at[output], r[output]);
}

template <class Kernel, class Out, int Count, class... In>
inline void map_doubted(const char* name, typename Kernel::Frame& frame, int32_t i, int32_t count,
                        Outputs<Out, Count> out, In... in) {
    if constexpr (Doubtful<Kernel>)
        map_buffered<Kernel>(name, frame, i, count, out, std::index_sequence_for<In...>{}, in...);
}

// ---- Whole registers, parts of one, single elements ------------------------------------------------------------------

// `Registers` whole registers from element i on.
template <class Kernel, int Registers, class Out, int Count, class... In>
inline void map_registers(const char* name, typename Kernel::Frame& frame, int32_t i, Outputs<Out, Count> out,
                          In... in) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    using V = typename Kernel::V;
    ResultLanes<Kernel> r[Registers][Count];
    if constexpr (Tested<Kernel>) {
        V any = Kernel::doubt(in.load(i)...);
#pragma GCC unroll 16
        for (int k = 1; k < Registers; ++k) any = simd::bit_or(any, Kernel::doubt(in.load(i + k * width)...));
        if (simd::lane_bits(any) != 0) [[unlikely]]
            return map_doubted<Kernel>(name, frame, i, Registers * width, out, in...);
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) {
            sure_lanes<Kernel>(r[k], frame, in.load(i + k * width)...);
#pragma GCC unroll 2
            for (int output = 0; output < Count; ++output) out.at[output].store(i + k * width, r[k][output]);
        }
        return;
    } else if constexpr (Doubtful<Kernel>) {
        V any;
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) {
            V doubt;
            gather_lanes<Kernel>(r[k], doubt, in.load(i + k * width)...);
            any = k == 0 ? doubt : simd::bit_or(any, doubt);
        }
        if (simd::lane_bits(any) != 0) [[unlikely]]
            return map_doubted<Kernel>(name, frame, i, Registers * width, out, in...);
    } else {
#pragma GCC unroll 16
        for (int k = 0; k < Registers; ++k) sure_lanes<Kernel>(r[k], frame, in.load(i + k * width)...);
    }
#pragma GCC unroll 16
    for (int k = 0; k < Registers; ++k)
#pragma GCC unroll 2
        for (int output = 0; output < Count; ++output) out.at[output].store(i + k * width, r[k][output]);
}

// The results of one register; false where a lane is in doubt, and then they do not count.
template <class Kernel, int Count, class... X>
inline bool free_of_doubts(ResultLanes<Kernel> (&r)[Count], typename Kernel::Frame& frame, X... x) {
    if constexpr (Tested<Kernel>) {
        if (simd::lane_bits(Kernel::doubt(x...)) != 0) [[unlikely]]
            return false;
        sure_lanes<Kernel>(r, frame, x...);
    } else if constexpr (Doubtful<Kernel>) {
        typename Kernel::V doubt;
        gather_lanes<Kernel>(r, doubt, x...);
        return simd::lane_bits(doubt) == 0;
    } else {
        sure_lanes<Kernel>(r, frame, x...);
    }
    return true;
}

// Fewer elements than a register holds, the absent lanes filled.
template <class Kernel, class Out, int Count, class... In>
inline void map_group(const char* name, typename Kernel::Frame& frame, int32_t i, int32_t count,
                      Outputs<Out, Count> out, In... in) {
    ResultLanes<Kernel> r[Count];
    if (!free_of_doubts<Kernel>(r, frame, simd::load_part(in.at(i), in.increment, count, Kernel::fill)...)) [[unlikely]]
        return map_doubted<Kernel>(name, frame, i, count, out, in...);
    for (int output = 0; output < Count; ++output)
        simd::store_part(out.at[output].at(i), out.at[output].increment, count, r[output]);
}

// One element. Every lane holds it, so that the others add nothing to its exceptions.
template <class Kernel, class Out, int Count, class... In>
inline void map_element(const char* name, typename Kernel::Frame& frame, int32_t i, Outputs<Out, Count> out, In... in) {
    ResultLanes<Kernel> r[Count];
    if (!free_of_doubts<Kernel>(r, frame, simd::load_splat(in.at(i))...)) [[unlikely]]
        return map_doubted<Kernel>(name, frame, i, 1, out, in...);
    for (int output = 0; output < Count; ++output) simd::store_one(out.at[output].at(i), r[output]);
}

// Fewer elements than a block holds, in a block filled up with the first of them: what it raises has been raised.
template <class Kernel, class Out, int Count, size_t... Input, class... In>
inline void map_padded(typename Kernel::Frame& frame, int32_t i, int32_t count, Outputs<Out, Count> out,
                       std::index_sequence<Input...>, In... in) {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    alignas(16) typename Kernel::Element x[sizeof...(In)][Kernel::block];
    alignas(16) typename Kernel::Result r[Count][Kernel::block];
    for (int32_t lane = 0; lane < Kernel::block; ++lane)
        ((x[Input][lane] = *in.at(i + (lane < count ? lane : 0))), ...);
    for (int k = 0; k < Kernel::block; k += width) {
        ResultLanes<Kernel> registers[Count];
        sure_lanes<Kernel>(registers, frame, simd::load(x[Input] + k)...);
        for (int output = 0; output < Count; ++output) simd::store(r[output] + k, registers[output]);
    }
    for (int output = 0; output < Count; ++output)
        for (int32_t lane = 0; lane < count; ++lane) *out.at[output].at(i + lane) = r[output][lane];
}

// ---- A call ----------------------------------------------------------------------------------------------------------

template <class Kernel, class Out, int Count, class... In>
inline void map(const char* name, int32_t n, Outputs<Out, Count> out, In... in) {
    static_assert(keeps_contract<Kernel>());
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    constexpr int registers = Kernel::block / width;
    typename Kernel::Frame frame;
    if (n < 1) return;

    int32_t i = 0;
    for (; i <= n - Kernel::block; i += Kernel::block) map_registers<Kernel, registers>(name, frame, i, out, in...);

    if constexpr (Kernel::tail == Tail::by_element) {
        for (; i < n; ++i) map_element<Kernel>(name, frame, i, out, in...);
    } else if constexpr (Kernel::tail == Tail::padded) {
        if (i < n) map_padded<Kernel>(frame, i, n - i, out, std::index_sequence_for<In...>{}, in...);
    } else {
        for (; i <= n - width; i += width) map_registers<Kernel, 1>(name, frame, i, out, in...);
        if (i < n) map_group<Kernel>(name, frame, i, n - i, out, in...);
    }
}

}  // namespace orv::frame

// ---- Kernels ---------------------------------------------------------------------------------------------------------

// Each defines orv_kernel_<row>_<accuracy> and orv_kernel_<row>I_<accuracy>. They are flattened: a call to lanes() in the
// loop would send every constant to and fro.

#define ORV_DEFINE_KERNEL(row, accuracy, Kernel, shape)                                                        \
    static_assert(orv::frame::takes<Kernel>(orv::frame::rows::row, orv::frame::Shape::shape),                  \
                  "the kernel of " #row " takes the arguments that the row list gives it, of the row's type"); \
    extern "C" [[gnu::flatten]] void orv_kernel_##row##_##accuracy
#define ORV_DEFINE_KERNEL_I(row, accuracy) extern "C" [[gnu::flatten]] void orv_kernel_##row##I_##accuracy

#define ORV_ONE_INPUT(row, accuracy, Kernel)                                                                \
    ORV_DEFINE_KERNEL(row, accuracy, Kernel, ONE)(int32_t n, const Kernel::Element* a, Kernel::Result* y) { \
        using namespace orv::frame;                                                                         \
        map<Kernel>(rows::row.name, n, to(Dense{y}), Dense{a});                                             \
    }                                                                                                       \
    ORV_DEFINE_KERNEL_I(row, accuracy)                                                                      \
    (int32_t n, const Kernel::Element* a, int32_t inca, Kernel::Result* y, int32_t incy) {                  \
        using namespace orv::frame;                                                                         \
        map<Kernel>(rows::row.name, n, to(Strided{y, incy}), Strided{a, inca});                             \
    }

#define ORV_TWO_INPUTS(row, accuracy, Kernel)                                                                      \
    ORV_DEFINE_KERNEL(row, accuracy, Kernel, TWO)                                                                  \
    (int32_t n, const Kernel::Element* a, const Kernel::Element* b, Kernel::Result* y) {                           \
        using namespace orv::frame;                                                                                \
        map<Kernel>(rows::row.name, n, to(Dense{y}), Dense{a}, Dense{b});                                          \
    }                                                                                                              \
    ORV_DEFINE_KERNEL_I(row, accuracy)                                                                             \
    (int32_t n, const Kernel::Element* a, int32_t inca, const Kernel::Element* b, int32_t incb, Kernel::Result* y, \
     int32_t incy) {                                                                                               \
        using namespace orv::frame;                                                                                \
        map<Kernel>(rows::row.name, n, to(Strided{y, incy}), Strided{a, inca}, Strided{b, incb});                  \
    }

#define ORV_SCALAR_INPUT(row, accuracy, Kernel)                                                               \
    ORV_DEFINE_KERNEL(row, accuracy, Kernel, SCALAR)                                                          \
    (int32_t n, const Kernel::Element* a, Kernel::Element b, Kernel::Result* y) {                             \
        using namespace orv::frame;                                                                           \
        map<Kernel>(rows::row.name, n, to(Dense{y}), Dense{a}, Scalar{b});                                    \
    }                                                                                                         \
    ORV_DEFINE_KERNEL_I(row, accuracy)                                                                        \
    (int32_t n, const Kernel::Element* a, int32_t inca, Kernel::Element b, Kernel::Result* y, int32_t incy) { \
        using namespace orv::frame;                                                                           \
        map<Kernel>(rows::row.name, n, to(Strided{y, incy}), Strided{a, inca}, Scalar{b});                    \
    }

#define ORV_TWO_OUTPUTS(row, accuracy, Kernel)                                                              \
    ORV_DEFINE_KERNEL(row, accuracy, Kernel, TWO_OUT)                                                       \
    (int32_t n, const Kernel::Element* a, Kernel::Result* y, Kernel::Result* z) {                           \
        using namespace orv::frame;                                                                         \
        map<Kernel>(rows::row.name, n, to(Dense{y}, Dense{z}), Dense{a});                                   \
    }                                                                                                       \
    ORV_DEFINE_KERNEL_I(row, accuracy)                                                                      \
    (int32_t n, const Kernel::Element* a, int32_t inca, Kernel::Result* y, int32_t incy, Kernel::Result* z, \
     int32_t incz) {                                                                                        \
        using namespace orv::frame;                                                                         \
        map<Kernel>(rows::row.name, n, to(Strided{y, incy}, Strided{z, incz}), Strided{a, inca});           \
    }

// Which kernel serves depends on the scalars: `function` chooses, given the name, n, a, b, the scalars and y.
#define ORV_LINEAR(row, accuracy, Kernel, function)                                                                 \
    ORV_DEFINE_KERNEL(row, accuracy, Kernel, LINEAR)                                                                \
    (int32_t n, const Kernel::Element* a, const Kernel::Element* b, Kernel::Element scalea, Kernel::Element shifta, \
     Kernel::Element scaleb, Kernel::Element shiftb, Kernel::Result* y) {                                           \
        using namespace orv::frame;                                                                                 \
        function(rows::row.name, n, Dense{a}, Dense{b}, scalea, shifta, scaleb, shiftb, Dense{y});                  \
    }                                                                                                               \
    ORV_DEFINE_KERNEL_I(row, accuracy)                                                                              \
    (int32_t n, const Kernel::Element* a, int32_t inca, const Kernel::Element* b, int32_t incb,                     \
     Kernel::Element scalea, Kernel::Element shifta, Kernel::Element scaleb, Kernel::Element shiftb,                \
     Kernel::Result* y, int32_t incy) {                                                                             \
        using namespace orv::frame;                                                                                 \
        function(rows::row.name, n, Strided{a, inca}, Strided{b, incb}, scalea, shifta, scaleb, shiftb,             \
                 Strided{y, incy});                                                                                 \
    }
