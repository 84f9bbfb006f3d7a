// Abs: |x| as the product of x and copysign(1, x).
//
// The product is exact. Unlike clearing the sign bit it treats its argument as a number: a signalling NaN raises invalid
// and comes out quiet, and a denormal is subject to the caller's denormal settings, which the frame leaves alone.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T>
struct Abs : frame::OneInput<T, 2 * 16 / sizeof(T), frame::Tail::padded> {
    using Frame = frame::MasksOnlyFrame;
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x) { return x * simd::bit_or(simd::sign_of(x), simd::splat(T{1})); }
};

}  // namespace

ORV_ONE_INPUT(sAbs, la, Abs<float>)
ORV_ONE_INPUT(dAbs, la, Abs<double>)
