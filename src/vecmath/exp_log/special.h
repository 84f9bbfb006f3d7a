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
    const T zero = at_run_time(T{0});
    return zero / zero;
}
template <class T>
inline T minus_infinity_at_pole() {
    return T{-1} / at_run_time(T{0});
}

// 2^n for n within the normal range.
inline double power_of_two_d(int n) { return std::bit_cast<double>(uint64_t(n + 1023) << 52); }
inline float power_of_two_s(int n) { return std::bit_cast<float>(uint32_t(n + 127) << 23); }

inline uint32_t high_word(double x) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(x) >> 32); }

}  // namespace orv::vecmath
