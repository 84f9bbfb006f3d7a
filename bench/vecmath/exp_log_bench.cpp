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
#define FUNCTION(type, T, Name, libm, low, high, special)                                                \
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
    FUNCTION(d, double, Log10, log10, 0.001, 1000, 0)
    SLEEF("dLog10", Sleef_log10d2_u10sse4, 0.001, 1000)
    FUNCTION(d, double, Log2, log2, 0.001, 1000, 0)
    SLEEF("dLog2", Sleef_log2d2_u10sse4, 0.001, 1000)
    FUNCTION(d, double, Log1p, log1p, -0.9, 10, -1)
    SLEEF("dLog1p", Sleef_log1pd2_u10sse4, -0.9, 10)
    FUNCTION(d, double, Logb, logb, 0.001, 1000, 0)
    FUNCTION(d, double, Expm1, expm1, -10, 10, 1000)
    SLEEF("dExpm1", Sleef_expm1d2_u10sse4, -10, 10)
    FUNCTION(s, float, Exp2, exp2f, -80, 80, 5000)
    SLEEF("sExp2", Sleef_exp2f4_u10sse4, -80, 80)
    FUNCTION(s, float, Exp10, exp10f, -30, 30, 5000)
    SLEEF("sExp10", Sleef_exp10f4_u10sse4, -30, 30)
    FUNCTION(s, float, Log10, log10f, 0.001, 1000, 0)
    SLEEF("sLog10", Sleef_log10f4_u10sse4, 0.001, 1000)
    FUNCTION(s, float, Log2, log2f, 0.001, 1000, 0)
    SLEEF("sLog2", Sleef_log2f4_u10sse4, 0.001, 1000)
    FUNCTION(s, float, Log1p, log1pf, -0.9, 10, -1)
    SLEEF("sLog1p", Sleef_log1pf4_u10sse4, -0.9, 10)
    FUNCTION(s, float, Expm1, expm1f, -10, 10, 1000)
    SLEEF("sExpm1", Sleef_expm1f4_u10sse4, -10, 10)
    FUNCTION(s, float, Logb, logbf, 0.001, 1000, 0)
    add("dLn/LA/subnormals", arguments<double>(0x1p-1070, 0x1p-1023),
        reinterpret_cast<Entry<double>>(orv_arq_kernel_dLn_ttab[0]));
    return true;
}();

}  // namespace
