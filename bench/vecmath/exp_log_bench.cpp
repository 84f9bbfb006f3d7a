// Cycles per element of the exponentials and logarithms at n of 1000, beside the same functions of SLEEF, called in the
// same kind of loop, and of the C library.
#include "support/entries.h"

#include <orv/vecmath_entries.h>

#ifdef ORV_BENCH_SLEEF
#include <sleef.h>
#endif

#include <cmath>

namespace {

using namespace orv::bench;

const bool registered = [] {
#define FUNCTION(type, T, Name, libm, low, high, special)                                                 \
    add_entries<T>(#type #Name, orv_arq_kernel_##type##Name##_ttab, low, high, static_cast<T>(special)); \
    add_scalar<T, libm>(#type #Name "/libm", low, high);

    FUNCTION(d, double, Exp, exp, -100, 100, 1000)
    SLEEF("dExp", Sleef_expd2_u10sse4, -100, 100)
    FUNCTION(d, double, Ln, log, 0.001, 1000, 0)
    SLEEF("dLn", Sleef_logd2_u10sse4, 0.001, 1000)
    SLEEF("dLn", Sleef_logd2_u35sse4, 0.001, 1000)
    FUNCTION(s, float, Exp, expf, -80, 80, 1000)
    SLEEF("sExp", Sleef_expf4_u10sse4, -80, 80)
    FUNCTION(s, float, Ln, logf, 0.001, 1000, 0)
    SLEEF("sLn", Sleef_logf4_u10sse4, 0.001, 1000)
    SLEEF("sLn", Sleef_logf4_u35sse4, 0.001, 1000)
    FUNCTION(d, double, Exp2, exp2, -100, 100, 5000)
    SLEEF("dExp2", Sleef_exp2d2_u10sse4, -100, 100)
    FUNCTION(d, double, Exp10, exp10, -30, 30, 5000)
    SLEEF("dExp10", Sleef_exp10d2_u10sse4, -30, 30)
    return true;
}();

}  // namespace
