// CopySign: the magnitude of a with the sign of b, as bits: nothing is raised, and NaNs come through as they are.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T>
struct CopySign : frame::Elementwise<T, 64 / sizeof(T), frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    using Frame = frame::DenormalsFrame;
    static V lanes(V a, V b) { return simd::bit_or(simd::magnitude(a), simd::sign_of(b)); }
};

}  // namespace

ORV_TWO_INPUTS(sCopySign, la, CopySign<float>)
ORV_TWO_INPUTS(dCopySign, la, CopySign<double>)
