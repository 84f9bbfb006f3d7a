// Fdim: a - b where a is larger, +0 elsewhere. (C99 7.12.12.1.)
//
// The larger of a - b and +0. Where a magnitude reaches half the range the difference may overflow, also downwards, where the
// function does not; there, and for infinities and NaNs, one element at a time compares first.
#include "frame/kernel_loops.h"
#include "simd/integers.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;

template <class T>
struct Fdim : frame::Elementwise<T, 32 / sizeof(T), frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    // By the upper words.
    static V doubt(V a, V b) {
        const __m128i magnitude = simd::splat_32(0x7FFFFFFF);
        const __m128i larger =
            simd::greatest_32(simd::bit_and(simd::bits_of(a), magnitude), simd::bit_and(simd::bits_of(b), magnitude));
        if constexpr (sizeof(T) == 4)
            return simd::floats(simd::greater_32(larger, simd::splat_32(0x7EFFFFFF)));
        else
            return simd::doubles(simd::greater_32(larger, simd::splat_32(0x7FDFFFFF)));
    }
    static V lanes(V a, V b) { return simd::greatest(a - b, V{}); }
    static int32_t scalar(const T* a, const T* b, T* y) {
        if (vecmath::is_nan(*a) || vecmath::is_nan(*b)) {
            *y = *a * vecmath::at_run_time(*b);
            return frame::status_ok;
        }
        *y = *a > *b ? *a - *b : T{0};
        return vecmath::is_finite(*y) || !vecmath::is_finite(*a) || !vecmath::is_finite(*b) ? frame::status_ok
                                                                                            : frame::status_overflow;
    }
};

}  // namespace

ORV_TWO_INPUTS(sFdim, la, Fdim<float>)
ORV_TWO_INPUTS(dFdim, la, Fdim<double>)
