// Modf: y is the integral part of x and z the fraction, both exact and with the sign of x. (C99 7.12.6.12.)
//
// Of an infinity y is the infinity and z a zero of its sign.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"

#include <cmath>

namespace {

using namespace orv;

template <class T>
struct Modf : frame::Elementwise<T, 32 / sizeof(T), frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    static V doubt(V x) { return simd::not_finite(x); }
    static void lanes(V x, V& y, V& z) {
        const V whole = simd::round<_MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC>(x);
        y = whole;
        z = simd::bit_or(x - whole, simd::sign_of(x));
    }
    static int32_t scalar(const T* x, T* y, T* z) {
        *y = vecmath::quiet(*x);
        *z = vecmath::is_nan(*x) ? *y : std::copysign(T{0}, *x);
        return frame::status_ok;
    }
};

}  // namespace

ORV_TWO_OUTPUTS(sModf, la, Modf<float>)
ORV_TWO_OUTPUTS(dModf, la, Modf<double>)
