// Ceil, Floor, Trunc: the integer next to x upward, downward, toward zero.
//
// The rounding instruction names its direction, and the frame sets the same one in the control register. Exact for every
// x; inexact is signalled where x is no integer; infinities and zeros come back as they are, -0 for values above -1 that
// round up. (IEC 60559 roundToIntegralTowardPositive, TowardNegative, TowardZero with inexact.)
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T, int Control, class ControlFrame>
struct Directed
    : frame::OneInput<T, 2 * 16 / sizeof(T), sizeof(T) == 4 ? frame::Tail::by_element : frame::Tail::masked> {
    using Frame = ControlFrame;
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x) { return simd::round<Control>(x); }
};

template <class T>
using Ceil = Directed<T, _MM_FROUND_TO_POS_INF, frame::RoundUpFrame>;
template <class T>
using Floor = Directed<T, _MM_FROUND_TO_NEG_INF, frame::RoundDownFrame>;
template <class T>
using Trunc = Directed<T, _MM_FROUND_TO_ZERO, frame::RoundToZeroFrame>;

}  // namespace

ORV_ONE_INPUT(sCeil, la, Ceil<float>)
ORV_ONE_INPUT(dCeil, la, Ceil<double>)
ORV_ONE_INPUT(sFloor, la, Floor<float>)
ORV_ONE_INPUT(dFloor, la, Floor<double>)
ORV_ONE_INPUT(sTrunc, la, Trunc<float>)
ORV_ONE_INPUT(dTrunc, la, Trunc<double>)
