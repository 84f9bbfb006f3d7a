// atanh x where |x| is 1 or more, or x no number.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace orv::vecmath {

template <class T>
int32_t atanh_at_ends(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    if (std::fabs(x) > 1) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    *y = x / at_run_time(T{0});
    return frame::status_singularity;
}

}  // namespace orv::vecmath
