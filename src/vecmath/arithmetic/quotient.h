// Quotients: what is reported of them.
#pragma once

#include "vecmath/exp_log/special.h"

namespace orv::vecmath {

// In doubt: a divisor of zero, or a result that is no number.
template <class V>
inline V doubtful_quotient(V divisor, V quotient) {
    return simd::bit_or(simd::equal(divisor, V{}), simd::unordered(quotient, quotient));
}

// A finite number other than zero over zero is a pole; a NaN of other arguments than NaNs is outside the domain.
template <class T>
inline int32_t status_of_quotient(T dividend, T divisor, T quotient, bool any_nan) {
    if (quotient != quotient) return any_nan ? frame::status_ok : frame::status_domain;
    return divisor == 0 && is_finite(dividend) ? frame::status_singularity : frame::status_ok;
}

}  // namespace orv::vecmath
