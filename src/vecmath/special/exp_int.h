// The exponential integral E1(x): e^(-x) F(x) with F expanded in x from 2^-4 on; below by its series,
//
//   E1(x) = -gamma - ln x + x - x^2 / (2 2!) + x^3 / (3 3!) - ...
#pragma once

#include "vecmath/exp_log/log_special.h"
#include "vecmath/special/decay.h"

namespace orv::vecmath {

struct ExpIntBlock {
    alignas(16) ExpansionRow rows[448] = {
#include "vecmath/tables/exp_int.inc"
    };
    alignas(16) ShortRow short_rows[448] = {
#include "vecmath/tables/exp_int_short.inc"
    };
};
inline constexpr ExpIntBlock exp_int_block;

inline Decayed exp_int(__m128d x) {
    const Expanded f = expand<-4, 4>(exp_int_block.rows, x, x - expansion_centre(x));
    return decay(x, _mm_setzero_pd(), f);
}
// For doubles of the highest accuracy with no `Pairs`, otherwise in one part.
template <int Pairs = 0>
inline __m128d exp_int_lanes(__m128d x) {
    if constexpr (Pairs > 0) {
        return short_decay(x, expand_short<-4, Pairs>(exp_int_block.short_rows, x, x - expansion_centre(x)));
    } else {
        const Decayed y = exp_int(x);
        return (y.high + y.low) * decay_scale(y.shifted);
    }
}

inline long double exp_int_series(long double x) {
    long double sum = 0;
    // x^(n+1) / ((n+1) (n+1)!) is x^n / (n n!) times n x / (n + 1)^2.
    for (int n = 12; n > 0; --n) sum = 1 - sum * (n * x) / ((n + 1) * (n + 1));
    return (x * sum - 0.577215664901532860606512090082402431L) - x87_ln(x);
}

// Underflow is said where `Underflow`.
template <bool Underflow, class T>
inline int32_t exp_int_scalar(T x, T* y) {
    int32_t status;
    if (settled_log(x, T{0}, y, status)) {
        if (status == frame::status_singularity) *y = -*y;
        if (*y == std::numeric_limits<T>::infinity() && status == frame::status_ok) *y = T{0};
        return status;
    }
    if (x < T(0.0625)) {
        const ExtendedPrecision extended;
        *y = static_cast<T>(exp_int_series(x));
        return frame::status_ok;
    }
    const double d = x;
    *y = rounded_once<T>(exp_int(simd::splat(d < 800 ? d : 800.0)));
    return Underflow && *y < std::numeric_limits<T>::min() ? frame::status_underflow : frame::status_ok;
}

}  // namespace orv::vecmath
