// What Sin and Cos of doubles have in common outside their main paths: the cosine is the sine a quarter turn on.
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/half_turns_d.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"
#include "vecmath/trig/scalar_reduction_d.h"

namespace orv::trig {

// Large arguments in vector form.
template <unsigned Quarters, int Block>
struct SineKernel : frame::OneInput<double, Block, frame::Tail::masked, frame::Rejected::settled> {
    static D settle(D x, D y, D& doubt) {
        const D result = simd::select(doubt, Step512<>(reduce_large(x)).sin(Quarters), y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

// Large arguments one at a time.
template <int32_t Quarters>
struct SineKernelEP : frame::OneInput<double, 8, frame::Tail::masked> {
    static int32_t scalar(const double* x, double* y) {
        if (!(*x - *x == 0)) return not_finite(x, y);
        *y = sine_of_one(*x, Quarters);
        return frame::status_ok;
    }
};

}  // namespace orv::trig
