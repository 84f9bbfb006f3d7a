// Numbers of MPFR for exact values of complex functions.
#pragma once

#ifndef _WIN32
#include <mpfr.h>

namespace orv::accuracy {

// Of as many digits as (a^2 - 1) + b^2 can lose next to the unit circle, and more.
struct Number {
    mpfr_t v;
    Number() { mpfr_init2(v, 480); }
    explicit Number(mpfr_srcptr x) : Number() { mpfr_set(v, x, MPFR_RNDN); }
    ~Number() { mpfr_clear(v); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    operator mpfr_ptr() { return v; }
};

}  // namespace orv::accuracy
#endif
