// asin and acos where |x| is 1 or more, or x no number, and whatever else a vector path leaves.
#pragma once

#include "frame/error_report.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace orv::vecmath {

// `at(x)` for |x| up to 1.
template <class T, class At>
int32_t sine_at_ends(T x, T* y, At at) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    if (std::fabs(x) > 1) {
        *y = invalid<T>();
        return frame::status_domain;
    }
    *y = static_cast<T>(at_run_time(at(x)));
    return frame::status_ok;
}

}  // namespace orv::vecmath
