// What a kernel is: a record of static members, from which frame/kernel_loops.h makes the dense and the strided form.
//
// It inherits from Elementwise, which says
//
//   Element, Result   the types of the elements of its inputs and of its outputs
//   Frame             its floating-point frame (frame/fp_frame.h)
//   block             elements computed together; their results are stored together
//   tail              what happens to the elements after the last whole block
//   rejected          what becomes of lanes that the vector path does not serve
//   fill              the harmless value that absent lanes hold, in every input; in the function's domain, nowhere special
//
// each of which it may say anew, and adds, with x... for one register of each input and y (or y, z) for those of its
// results; a register of complex elements is a simd::Complex:
//
//   lanes(x...)         the results, where the vector path serves every value; or
//   lanes(x..., frame)  the same where the frame gathers something on the way; or
//   lanes(x..., doubt)  with a mask of the lanes that the vector path does not serve; or
//   lanes(x...) and doubt(x...)
//                       with that mask from a test of the arguments alone. The test comes first, for the whole block, so
//                       nothing of a block is kept in registers, and lanes() sees `fill` where a lane is in doubt: it need
//                       not mind what raises exceptions there
//   scalar(&x..., &y)   with either mask: one element's result, returning its status
//   settle(x..., y, doubt)
//                       with Rejected::settled: where the lanes in doubt have a vector path of their own. Returns the
//                       results with the lanes put in that it serves, and leaves the others in doubt
//   settle_silent(x..., y, doubt)
//                       with Rejected::settled_where_silent and doubt(x...): the same, used where the thread's mode
//                       allows no report
//
// One result is returned; two are references behind the inputs: lanes(x..., y, z), settle(x..., y, z, doubt),
// scalar(&x..., &y, &z). A mask counts by its lanes' sign bits. A scalar argument is one more input, the same in every
// lane. What breaks this does not compile. By shape:
//
//   ONE_INPUT(row, accuracy, Kernel)    ONE, TO_REAL and TO_COMPLEX: x is a; the last two differ in Element and Result
//   TWO_INPUTS(row, accuracy, Kernel)   TWO: x... is a, b
//   SCALAR_INPUT(row, accuracy, Kernel) SCALAR: x... is a, b
//   TWO_OUTPUTS(row, accuracy, Kernel)  TWO_OUT: x is a
//   LINEAR(row, accuracy, Kernel, function)
//                                       LINEAR: x... is a, b, scalea, shifta, scaleb, shiftb; `function` makes the call
//
// each with ORV_ before it. `row` is the name in the row list, from which reports take the function's; `accuracy` the first
// that the kernel serves.
#pragma once

#include "frame/complex_lanes.h"
#include "frame/fp_frame.h"
#include "frame/kernel_tables.h"

#include <type_traits>

namespace orv::frame {

enum class Tail {
    by_element,  // one after another
    padded,      // one whole block, filled up with the first remaining element
    masked,      // groups of one register, filled up with `fill`
};

// With a doubt(x...), a whole block or its rest is doubted first and computed only where it is free of doubts.
enum class Rejected {
    by_lane,               // the lanes in doubt go through scalar(), the others keep the vector result
    whole_block,           // all lanes go through scalar(), in order
    settled,               // settle() takes what it serves of the lanes in doubt, scalar() the others
    settled_where_silent,  // settle_silent() does where no report can be made; by_lane otherwise
};

// What kernels say of themselves before their mathematics.
template <class T, int Block, Tail TheTail, Rejected WhatOfRejected = Rejected::by_lane, class R = T>
struct Elementwise {
    using Element = T;
    using Result = R;
    using Frame = GeneralFrame;
    using Scalar = typename simd::Lanes<T>::Scalar;
    using V = typename simd::Lanes<Scalar>::V;  // a register of numbers, and a mask
    static constexpr int block = Block;
    static constexpr Tail tail = TheTail;
    static constexpr Rejected rejected = WhatOfRejected;
    static constexpr Scalar fill = Scalar(0.75);
};
template <class T, int Block, Tail TheTail, Rejected WhatOfRejected = Rejected::by_lane>
using OneInput = Elementwise<T, Block, TheTail, WhatOfRejected>;

// ---- The rows, as kernels name them ----------------------------------------------------------------------------------

enum class Shape { ONE, TO_REAL, TO_COMPLEX, TWO, SCALAR, TWO_OUT, LINEAR };

struct Row {
    const char* name;  // as reports carry it
    char type;
    Shape shape;
};
namespace rows {
#define ORV_ROW(type, function, shape, sharing, cost) \
    inline constexpr Row type##function{"v" #type #function, #type[0], Shape::shape};
ORV_MATH_ROWS(ORV_ROW)
#undef ORV_ROW
}  // namespace rows

template <class T>
inline constexpr bool is_complex = !std::is_same_v<T, typename simd::Lanes<T>::Scalar>;

// True if the row's arguments are `shape` with the types of the kernel.
template <class Kernel>
constexpr bool takes(Row row, Shape shape) {
    using Element = typename Kernel::Element;
    using Result = typename Kernel::Result;
    constexpr bool single = sizeof(typename simd::Lanes<Element>::Scalar) == 4;
    constexpr bool same = is_complex<Element> == is_complex<Result>;
    constexpr char letter = is_complex<Element> || is_complex<Result> ? (single ? 'c' : 'z') : (single ? 's' : 'd');
    if (shape == Shape::ONE && !same) shape = is_complex<Result> ? Shape::TO_COMPLEX : Shape::TO_REAL;
    return row.shape == shape && row.type == letter && (same || shape != Shape::TWO);
}

// ---- The contract ----------------------------------------------------------------------------------------------------

// has_<member><Kernel>: whether the kernel has a member of that name, whatever its arguments: taking its address together
// with that of another of the name is ambiguous.
#define ORV_HAS_MEMBER(member)                        \
    struct Other_##member {                           \
        int member;                                   \
    };                                                \
    template <class Kernel>                           \
    struct Both_##member : Kernel, Other_##member {}; \
    template <class Kernel>                           \
    concept has_##member = !requires {                \
        &Both_##member<Kernel>::member;               \
    };
ORV_HAS_MEMBER(lanes)
ORV_HAS_MEMBER(doubt)
ORV_HAS_MEMBER(scalar)
ORV_HAS_MEMBER(settle)
ORV_HAS_MEMBER(settle_silent)
ORV_HAS_MEMBER(name)
#undef ORV_HAS_MEMBER

// The vector path does not serve every value.
template <class Kernel>
concept Doubtful = has_scalar<Kernel>;
// The mask of lanes in doubt comes from a test of its own.
template <class Kernel>
concept Tested = has_doubt<Kernel>;

template <class Kernel>
consteval bool keeps_contract() {
    constexpr int width = simd::Lanes<typename Kernel::Element>::width;
    static_assert(width == simd::Lanes<typename Kernel::Result>::width, "inputs and outputs are of one precision");
    static_assert(Kernel::block % width == 0, "a block is made of whole registers");
    static_assert(has_lanes<Kernel>, "a kernel has lanes(x...)");
    static_assert(!has_name<Kernel>, "the name in reports comes from the row; a kernel has none of its own");
    static_assert(has_scalar<Kernel> || !has_doubt<Kernel>, "doubt(x...) wants a scalar(&x..., &y) for the doubted");
    static_assert(has_scalar<Kernel> || Kernel::rejected == Rejected::by_lane,
                  "only a kernel with scalar(&x..., &y) says what becomes of rejected lanes");
    static_assert(!has_scalar<Kernel> || Kernel::tail != Tail::padded, "a padded tail asks for no doubts");
    static_assert(has_settle<Kernel> == (Kernel::rejected == Rejected::settled),
                  "settle(x..., y, doubt) and Rejected::settled go together");
    static_assert(has_settle_silent<Kernel> == (Kernel::rejected == Rejected::settled_where_silent),
                  "settle_silent(x..., y, doubt) and Rejected::settled_where_silent go together");
    static_assert(has_doubt<Kernel> || (Kernel::rejected != Rejected::whole_block && !has_settle_silent<Kernel>),
                  "whole blocks and silent settling want a doubt(x...) of their own");
    return true;
}

}  // namespace orv::frame
