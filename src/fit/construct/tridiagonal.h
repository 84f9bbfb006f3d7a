// The core library's tridiagonal solvers, over the element type: sub-diagonal, diagonal, super-diagonal, right sides. All
// are overwritten; `info` is not 0 where a pivot is zero or unordered.
#pragma once

#include "services/tridiagonal.h"

#include <stdint.h>

namespace orv::fit::tridiagonal {

#define ORV_TRIDIAGONAL(letter, T)                                                                      \
    inline void factor_and_solve(int32_t n, T* lower, T* diagonal, T* upper, T* side, int32_t& info) {  \
        const int32_t one = 1;                                                                          \
        letter##dtsvb_4dfl(&n, &one, lower, diagonal, upper, side, &n, &info);                          \
    }                                                                                                   \
    inline void factor(int32_t n, T* lower, T* diagonal, T* upper, int32_t& info) {                     \
        letter##dttrfb_4dfl(&n, lower, diagonal, upper, &info);                                         \
    }                                                                                                   \
    inline void solve(int32_t n, int32_t sides, T* lower, T* diagonal, T* upper, T* side, int32_t lead, \
                      int32_t& info) {                                                                  \
        letter##dttrsb_4dfl("N", &n, &sides, lower, diagonal, upper, side, &lead, &info);               \
    }
ORV_TRIDIAGONAL(d, double)
ORV_TRIDIAGONAL(s, float)
#undef ORV_TRIDIAGONAL

}  // namespace orv::fit::tridiagonal
