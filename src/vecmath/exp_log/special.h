// Results that are no ordinary numbers, made by the operation that raises their exception, and scaling by powers of two:
// the pieces of the scalar paths.
#pragma once

#include <stdint.h>

#include <bit>
#include <limits>

namespace orv::vecmath {

// A value that the compiler does not know, so that what is done with it is done at run time and raises its exceptions.
template <class T>
inline T at_run_time(T x) {
    __asm__ volatile("" : "+x"(x));
    return x;
}

// By comparisons that raise nothing for a quiet NaN; so do == and !=, but no other operator.
template <class T>
inline bool is_nan(T x) {
    return x != x;
}
template <class T>
inline bool is_finite(T x) {
    return __builtin_isfinite(x);
}

// x, quiet where it is a NaN.
template <class T>
inline T quiet(T x) {
    return x * at_run_time(T{1});
}

template <class T>
inline T overflow() {
    const T huge = at_run_time(std::numeric_limits<T>::max());
    return huge * huge;
}
template <class T>
inline T underflow() {
    const T tiny = at_run_time(std::numeric_limits<T>::denorm_min());
    return tiny * tiny;
}
template <class T>
inline T invalid() {
    return T{0} / at_run_time(T{0});
}
template <class T>
inline T minus_infinity_at_pole() {
    return T{-1} / at_run_time(T{0});
}

// As frexp() of a finite x, by its bits: libraries scale subnormal numbers on the x87 unit, with the caller's precision.
inline double fraction_of(double x, int* exponent) {
    constexpr uint64_t sign = uint64_t{1} << 63, implicit = uint64_t{1} << 52;
    const uint64_t bits = std::bit_cast<uint64_t>(x);
    uint64_t size = bits & ~sign;
    *exponent = 0;
    if (size == 0) return x;
    if (size < implicit) {
        const int shift = __builtin_clzll(size) - 11;
        size <<= shift;
        *exponent = 1 - shift;
    } else {
        *exponent = static_cast<int>(size >> 52);
    }
    *exponent -= 1022;
    return std::bit_cast<double>((bits & sign) | (size & (implicit - 1)) | uint64_t{1022} << 52);
}

// 2^n for n within the normal range.
inline double power_of_two_d(int n) { return std::bit_cast<double>(uint64_t(n + 1023) << 52); }
inline float power_of_two_s(int n) { return std::bit_cast<float>(uint32_t(n + 127) << 23); }

// (high + rest) 2^n, where high + rest lies near 1 and high is the larger by far. A normal result is rounded once. So is a
// subnormal one, as far as it matters: with n up to -1033 the last bits of the sum are so far below the result's that the
// sum's own rounding is not seen; above, the leading 21 bits of the sum stay whole when they are scaled, all that is left
// is scaled and so rounded by itself, and their sum is exact. Not for normal results: if subnormals are flushed, what is left
// is lost.
inline double scaled_sum(double high, double rest, int n) {
    const double sum = high + rest;
    if (n > 1023) return sum * power_of_two_d(n - 1) * 2.0;
    if (n > -1022) return sum * power_of_two_d(n);
    const double raised = power_of_two_d(n + 60), scaled = sum * raised;
    if (n + 60 + 1023 <= 0x32 || __builtin_fabs(scaled) >= 0x1p-962) return scaled * 0x1p-60;
    const double top = std::bit_cast<double>(std::bit_cast<uint64_t>(sum) & 0xFFFFFFFF00000000u);
    const double left = (high - top) + rest;
    return top * raised * 0x1p-60 + left * raised * 0x1p-60;
}

inline uint32_t high_word(double x) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(x) >> 32); }

}  // namespace orv::vecmath
