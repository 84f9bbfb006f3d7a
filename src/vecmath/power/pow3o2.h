// a^(3/2) where it is no ordinary number, in either type.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

// finite(a, y): a^(3/2) of a positive finite a, returning the status.
template <class T, class Finite>
int32_t pow3o2_cases(T a, T* y, Finite finite) {
    if (is_nan(a)) {
        *y = quiet(a);
        return frame::status_ok;
    }
    if (a < 0) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    if (a == 0 || !is_finite(a)) {
        *y = a + T{0};
        return frame::status_ok;
    }
    return finite(a, y);
}

// What a finite argument's result says by its size.
template <class T>
int32_t status_of_size(T y) {
    if (y > std::numeric_limits<T>::max()) return frame::status_overflow;
    return y < std::numeric_limits<T>::min() ? frame::status_underflow : frame::status_ok;
}

}  // namespace orv::vecmath
