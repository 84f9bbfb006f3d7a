// What a power is where it is not |a|^b of ordinary numbers: zero, infinite, negative and NaN arguments.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace orv::vecmath {

// Which integer an exponent is. Zero and all from 2^53 up are even; infinities and NaNs are none.
enum class Parity { none, odd, even };

inline Parity parity_of(double b) {
    const double magnitude = std::bit_cast<double>(std::bit_cast<uint64_t>(b) & ~(uint64_t{1} << 63));
    if (!(magnitude < std::numeric_limits<double>::infinity())) return Parity::none;
    if (magnitude >= 0x1p+53) return Parity::even;
    const int64_t whole = static_cast<int64_t>(magnitude);
    if (static_cast<double>(whole) != magnitude) return Parity::none;
    return whole & 1 ? Parity::odd : Parity::even;
}

template <class T>
inline bool is_infinite(T x) {
    return std::fabs(x) == std::numeric_limits<T>::infinity();
}

// Infinity of a zero to the negative power b, a pole but where b is infinite.
template <class T>
inline T zero_to_negative(T b) {
    return is_infinite(b) ? std::numeric_limits<T>::infinity() : -minus_infinity_at_pole<T>();
}

// |a|^b where one of them is infinite and |a| is not 1.
template <class T>
inline T infinite_power(T magnitude, T b) {
    return (magnitude > 1) == (b > 0) ? std::numeric_limits<T>::infinity() : T{0};
}

// magnitude(a, b, y): a^b for positive finite a and finite non-zero b, returning the status.

// The order of the tests matters: a zero exponent and a base of 1 give 1 whatever the other is, and a negative base to an
// exponent that is no integer is invalid where it is finite, silently NaN where it is infinite.
template <class T, class Magnitude>
int32_t pow_cases(T a, T b, T* y, Magnitude magnitude) {
    if (b == 0 || a == 1 || (a == -1 && is_infinite(b))) {
        *y = 1;
        return frame::status_ok;
    }
    if (is_nan(a) || is_nan(b)) {
        *y = a + b;
        return frame::status_ok;
    }
    const Parity parity = parity_of(b);
    const bool minus = std::signbit(a) && parity == Parity::odd;
    if (a == 0) {
        if (b > 0) {
            *y = minus ? -T{0} : T{0};
            return frame::status_ok;
        }
        *y = minus ? -zero_to_negative(b) : zero_to_negative(b);
        return frame::status_domain;
    }
    if (a < 0 && parity == Parity::none) {
        if (is_infinite(a)) {
            *y = -std::numeric_limits<T>::quiet_NaN();
            return frame::status_ok;
        }
        *y = invalid<T>();
        return frame::status_domain;
    }
    int32_t status = frame::status_ok;
    if (is_infinite(a) || is_infinite(b))
        *y = infinite_power(std::fabs(a), b);
    else
        status = magnitude(std::fabs(a), b, y);
    if (minus) *y = -*y;
    return status;
}

// The power as exp(b ln a): no negative base, and no value where b ln a has none.
template <class T, class Magnitude>
int32_t powr_cases(T a, T b, T* y, Magnitude magnitude) {
    if (is_nan(a) || is_nan(b)) {
        *y = a + b;
        return frame::status_ok;
    }
    if (a < 0 || (a == 0 && b == 0) || (is_infinite(a) && b == 0) || (a == 1 && is_infinite(b))) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    if (a == 0) {
        *y = b > 0 ? T{0} : zero_to_negative(b);
        return b > 0 ? frame::status_ok : frame::status_domain;
    }
    if (is_infinite(a) || is_infinite(b)) {
        *y = infinite_power(a, b);
        return frame::status_ok;
    }
    if (a == 1 || b == 0) {
        *y = 1;
        return frame::status_ok;
    }
    return magnitude(a, b, y);
}

// The two functions, as kernels take them.
struct Pow {
    template <class T, class Magnitude>
    static int32_t cases(T a, T b, T* y, Magnitude magnitude) {
        return pow_cases(a, b, y, magnitude);
    }
};
struct Powr {
    template <class T, class Magnitude>
    static int32_t cases(T a, T b, T* y, Magnitude magnitude) {
        return powr_cases(a, b, y, magnitude);
    }
};

}  // namespace orv::vecmath
