// Add and Sub of complex numbers: part by part, each rounded once, as the pairs lie in memory. Nothing is cheaper than that, so
// the kernels of least accuracy do the same.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class Part>
struct Add : frame::Elementwise<simd::Pair<Part>, 4 * 8 / sizeof(Part), frame::Tail::by_element> {
    using V = typename simd::Lanes<Part>::V;
    static V lanes(V a, V b) { return a + b; }
};
template <class Part>
struct Sub : frame::Elementwise<simd::Pair<Part>, 4 * 8 / sizeof(Part), frame::Tail::by_element> {
    using V = typename simd::Lanes<Part>::V;
    static V lanes(V a, V b) { return a - b; }
};

}  // namespace

ORV_TWO_INPUTS(cAdd, la, Add<float>)
ORV_TWO_INPUTS(cAdd, ep, Add<float>)
ORV_TWO_INPUTS(zAdd, la, Add<double>)
ORV_TWO_INPUTS(zAdd, ep, Add<double>)
ORV_TWO_INPUTS(cSub, la, Sub<float>)
ORV_TWO_INPUTS(cSub, ep, Sub<float>)
ORV_TWO_INPUTS(zSub, la, Sub<double>)
ORV_TWO_INPUTS(zSub, ep, Sub<double>)
