// Elementary functions of one number, from the kernel tables.
#pragma once

#include <orv/vecmath.h>

#include <stdint.h>

namespace orv::stats {

using ScalarKernel = void (*)(int32_t n, const double* a, double* y);

inline double call(void (*kernel)(void), double a) {
    double y;
    reinterpret_cast<ScalarKernel>(kernel)(1, &a, &y);
    return y;
}

inline double natural_logarithm(double a) { return call(orv_arq_kernel_dLn_ttab[1], a); }

// A result that would not be a normal number is 0: the kernel would report it to the caller's error handling.
inline double exponential(double a) { return a < -708 ? 0 : call(orv_arq_kernel_dExp_ttab[1], a); }

}  // namespace orv::stats
