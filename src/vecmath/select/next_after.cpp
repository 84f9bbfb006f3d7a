// NextAfter: the number next to a in the direction of b; b where the two compare equal. (C99 7.12.11.3.)
//
// The neighbours of a number differ from it by one in its bits, taken as an integer: one more is larger in magnitude. The
// vector path compares with the sign of a taken from both, and serves normal numbers that have normal neighbours; the
// others go one at a time. Denormals are numbers in every mode.
#include "frame/kernel_loops.h"
#include "simd/integers.h"
#include "vecmath/exp_log/special.h"

#include <cmath>

namespace {

using namespace orv;

template <class T>
struct NextAfter : frame::Elementwise<T, 32 / sizeof(T), frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    using Frame = frame::DenormalsFrame;
    using Bits = std::conditional_t<sizeof(T) == 4, int32_t, int64_t>;
    using Limits = std::numeric_limits<T>;

    // The test of a is by its upper word: the least and the largest of each.
    static V doubt(V a, V b) {
        constexpr uint32_t first = sizeof(T) == 4 ? 0x00800001 : 0x00100001;
        constexpr uint32_t end = sizeof(T) == 4 ? 0x7F7FFFFF : 0x7FEFFFFF;
        const __m128i size = simd::bit_and(simd::bits_of(a), simd::splat_32(0x7FFFFFFF));
        constexpr uint32_t bottom = first + 0x80000000u;
        const __m128i outside =
            simd::greater_32(simd::subtract_32(size, simd::splat_32(bottom)), simd::splat_32(end - bottom - 1));
        if constexpr (sizeof(T) == 4)
            return simd::bit_or(simd::unordered(b, b), simd::floats(outside));
        else
            return simd::bit_or(simd::unordered(b, b), simd::doubles(outside));
    }
    static V lanes(V a, V b) {
        const V sign = simd::sign_of(a);
        const V size = simd::bit_xor(a, sign), other = simd::bit_xor(b, sign);
        const __m128i larger = simd::bits_of(simd::less(size, other)), smaller = simd::bits_of(simd::less(other, size));
        if constexpr (sizeof(T) == 4)
            return simd::floats(simd::add_32(simd::bits_of(a), simd::subtract_32(smaller, larger)));
        else
            return simd::doubles(simd::add(simd::bits_of(a), simd::subtract(smaller, larger)));
    }
    static int32_t scalar(const T* at, const T* towards, T* y) {
        const T a = *at, b = *towards;
        if (vecmath::is_nan(a) || vecmath::is_nan(b)) {
            *y = a * vecmath::at_run_time(b);
            return frame::status_ok;
        }
        if (a == b) {
            *y = b;
            return frame::status_ok;
        }
        if (a == 0) {
            *y = b < 0 ? -Limits::denorm_min() : Limits::denorm_min();
            return frame::status_underflow;
        }
        const Bits bits = std::bit_cast<Bits>(a);
        *y = std::bit_cast<T>((a < b) == (a > 0) ? bits + 1 : bits - 1);
        if (!vecmath::is_finite(*y)) {
            *y = std::copysign(vecmath::overflow<T>(), a);
            return frame::status_overflow;
        }
        return std::abs(*y) < Limits::min() ? frame::status_underflow : frame::status_ok;
    }
};

}  // namespace

ORV_TWO_INPUTS(sNextAfter, la, NextAfter<float>)
ORV_TWO_INPUTS(dNextAfter, la, NextAfter<double>)
