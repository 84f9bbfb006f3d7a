// How far a result is from the exact value, in ulp.
//
// An ulp is the distance of neighbouring numbers of the result's type at the exact value; below the normal range it is the
// smallest subnormal. A result of infinity counts as the first power of two past the range, and an exact value that rounds
// to infinity is served by infinity alone.
//
// Of complex results the error of each part counts, in ulp of the part; or, where part of the result is lost to
// cancellation by design, in ulp of the modulus.
#pragma once

#include "accuracy/kernels.h"

namespace orv::accuracy {

struct Error {
    double ulp = 0, relative = 0;
    bool subnormal = false;  // the result is, or the modulus where that counts
};

template <class T>
Error error_of(long double exact, T y);

enum class Measure { by_part, by_modulus };

// The errors of the results of one kernel, one for each component.
struct Judge {
    Judge(const Kernel& kernel, Measure measure);
    ~Judge();
    Judge(const Judge&) = delete;
    Judge& operator=(const Judge&) = delete;

    // Whether there is anything to measure against at x.
    template <class T>
    bool can(const T* x) const;
    // In 80-bit arithmetic, off by at most `fast_slack` ulp for doubles and nothing that matters for floats; or as `exact`
    // where there is nothing else.
    template <class T>
    void fast(const T* x, const T* y, Error* errors) const;
    // By MPFR where it is.
    template <class T>
    void exact(const T* x, const T* y, Error* errors) const;

    static constexpr double fast_slack = 0.004;

private:
    const Kernel& kernel;
    const Measure measure;
    const ExtendedPrecision precision;
    template <class T>
    void compare(const long double* values, const T* y, Error* errors) const;
#ifndef _WIN32
    static constexpr mpfr_prec_t bits = 160;
    mutable mpfr_t arguments[most_inputs], values[most_outputs], difference;
#endif
};

}  // namespace orv::accuracy
