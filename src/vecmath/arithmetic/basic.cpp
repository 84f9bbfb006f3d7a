// Sqr, Add, Sub, Mul: the operation itself, correctly rounded, with every special value as IEC 60559 has it.
#include "frame/aligned_loops.h"

namespace {

using namespace orv;

template <class T>
struct Sqr {
    using Element = T;
    using V = typename simd::Lanes<T>::V;
    static constexpr int block = 8;
    static V op(V x) { return x * x; }
};

template <class T>
struct TwoInputs {
    using Element = T;
    using V = typename simd::Lanes<T>::V;
    static constexpr int block = sizeof(T) == 4 ? 32 : 8;
};

template <class T>
struct Add : TwoInputs<T> {
    using V = typename TwoInputs<T>::V;
    static V op(V a, V b) { return a + b; }
};

template <class T>
struct Sub : TwoInputs<T> {
    using V = typename TwoInputs<T>::V;
    static V op(V a, V b) { return a - b; }
};

template <class T>
struct Mul : TwoInputs<T> {
    using V = typename TwoInputs<T>::V;
    static V op(V a, V b) { return a * b; }
};

}  // namespace

ORV_ALIGNED_ONE_INPUT(sSqr, la, Sqr<float>)
ORV_ALIGNED_ONE_INPUT(dSqr, la, Sqr<double>)
ORV_ALIGNED_TWO_INPUTS(sAdd, la, Add<float>)
ORV_ALIGNED_TWO_INPUTS(dAdd, la, Add<double>)
ORV_ALIGNED_TWO_INPUTS(sSub, la, Sub<float>)
ORV_ALIGNED_TWO_INPUTS(dSub, la, Sub<double>)
ORV_ALIGNED_TWO_INPUTS(sMul, la, Mul<float>)
ORV_ALIGNED_TWO_INPUTS(dMul, la, Mul<double>)
