// What the trigonometric functions give for arguments that are not finite.
#pragma once

#include "frame/error_report.h"

namespace orv::vecmath {

// NaN for an infinity, which is outside the domain; a quiet NaN for a NaN.
template <class T>
inline int32_t not_finite(const T* x, T* y) {
    const bool infinite = *x - *x != *x - *x && *x == *x;
    *y = *x - *x;
    return infinite ? frame::status_domain : frame::status_ok;
}

}  // namespace orv::vecmath
