// What logarithms give where they are no ordinary numbers.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

// A NaN stays one; below the pole there is none, at it minus infinity; infinity stays. False for all other x, which have to be
// computed.
template <class T>
inline bool settled_log(T x, T pole, T* y, int32_t& status) {
    status = frame::status_ok;
    if (is_nan(x)) {
        *y = quiet(x);
    } else if (x < pole) {
        *y = invalid<T>();
        status = frame::status_domain;
    } else if (x == pole) {
        *y = minus_infinity_at_pole<T>();
        status = frame::status_singularity;
    } else if (!is_finite(x)) {
        *y = x;
    } else {
        return false;
    }
    return true;
}

}  // namespace orv::vecmath
