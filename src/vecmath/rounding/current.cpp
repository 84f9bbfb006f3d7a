// Rint, NearbyInt: the integer next to x by the caller's rounding mode.
//
// The frame leaves the caller's rounding and denormal settings alone. Rint signals inexact where x is no integer,
// NearbyInt never does. (C99 7.12.9.3 and 7.12.9.4.)
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T, int Control>
struct Current : frame::OneInput<T, 2 * 16 / sizeof(T), frame::Tail::by_element> {
    using Frame = frame::MasksOnlyFrame;
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x) { return simd::round<Control>(x); }
};

template <class T>
using Rint = Current<T, _MM_FROUND_CUR_DIRECTION>;
template <class T>
using NearbyInt = Current<T, _MM_FROUND_CUR_DIRECTION | _MM_FROUND_NO_EXC>;

}  // namespace

ORV_ONE_INPUT(sRint, la, Rint<float>)
ORV_ONE_INPUT(dRint, la, Rint<double>)
ORV_ONE_INPUT(sNearbyInt, la, NearbyInt<float>)
ORV_ONE_INPUT(dNearbyInt, la, NearbyInt<double>)
