// Frac: the part of x after the point, with the sign of x.
//
// x - trunc(x) is exact, and takes the sign of x where it is zero. Infinities have no digits after the point and give a
// zero of their sign; a NaN comes back quiet. No element is ever reported.
#include "frame/kernel_loops.h"

#include <bit>

namespace {

using namespace orv;

// Valid for every double: the scalar path of both types works on the bits of the widened value.
double frac_of(double x) {
    constexpr double signed_zero[2] = {0.0, -0.0};
    const uint64_t bits = std::bit_cast<uint64_t>(x);
    const uint32_t high = static_cast<uint32_t>(bits >> 32);
    const uint32_t magnitude = high & 0x7FFFFFFF;
    const double zero = signed_zero[high >> 31];
    constexpr uint32_t high_of_one = 0x3FF00000;
    constexpr uint32_t high_of_2_21 = 0x41400000;  // from here on the fraction bits are all in the low word
    constexpr uint32_t high_of_2_52 = 0x43300000;
    constexpr uint32_t high_of_infinity = 0x7FF00000;

    if (magnitude >= high_of_one && magnitude < high_of_2_52) {
        const uint32_t exponent = (magnitude >> 20) - 1023;
        const uint64_t whole_mask =
            magnitude < high_of_2_21 ? uint64_t{~(0x000FFFFFu >> exponent)} << 32
                                     : 0xFFFFFFFF00000000u | static_cast<uint32_t>(~(0xFFFFFFFFu >> (exponent - 20)));
        if ((bits & ~whole_mask) == 0) return zero;
        return x - std::bit_cast<double>(bits & whole_mask);
    }
    const bool infinite = (bits << 1) == uint64_t{high_of_infinity} << 33;
    if (magnitude >= high_of_infinity && !infinite) return x + x;
    if (magnitude >= high_of_one) return zero;
    return x + zero;
}

template <class T>
struct Frac : frame::OneInput<T, sizeof(T) == 4 ? 16 : 4, frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    static V doubt(V x) { return simd::not_finite(x); }
    static V lanes(V x) { return simd::bit_or(x - simd::round<_MM_FROUND_TO_ZERO>(x), simd::sign_of(x)); }
    static int32_t scalar(const T* x, T* y) {
        *y = static_cast<T>(frac_of(*x));
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(sFrac, la, Frac<float>)
ORV_ONE_INPUT(dFrac, la, Frac<double>)
