// A kernel of the test's own over the library's loops: y = 1 / x by the vector path, with a scalar path that reports zeros
// (singularity), negatives (domain), large values (overflow: the result is 0) and tiny ones (underflow: the result is inf).
#pragma once

#include "frame/kernel_loops.h"

namespace orv::test {

template <class T>
struct ProbeKernel : frame::OneInput<T, 8, frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;

    static V lanes(V x, V& doubt) {
        doubt = reinterpret_cast<V>((x < simd::splat(T(0.001))) | (x > simd::splat(T(1000))));
        return simd::splat(T{1}) / x;
    }
    static int32_t scalar(const T* x, T* y) {
        if (*x < 0) {
            *y = -7;
            return frame::status_domain;
        }
        if (*x == 0) {
            *y = 99;
            return frame::status_singularity;
        }
        *y = *x > 1000 ? T{0} : T{1000};
        return *x > 1000 ? frame::status_overflow : frame::status_underflow;
    }
};

}  // namespace orv::test
