// Cycles per element of the trigonometric functions at n of 1000, beside the same functions of SLEEF, called in the same kind
// of loop, and of the C library: arguments in -10 to 10, and over all exponents from 2^30 on.
#include "support/entries.h"

#include <orv/vecmath_entries.h>

#ifdef ORV_BENCH_SLEEF
#include <sleef.h>
#endif

#include <cmath>
#include <limits>

namespace {

using namespace orv::bench;

template <class T>
std::vector<T> large_arguments() {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> exponent(30, std::numeric_limits<T>::max_exponent - 1);
    std::vector<T> x(n);
    for (T& v : x) v = static_cast<T>(std::exp2(exponent(random)));
    return x;
}

template <class T>
void add_large(const std::string& name, const orv_arq_kernel* row) {
    const char* accuracies[] = {"LA", "HA", "EP"};
    for (int i = 0; i < 3; ++i)
        add(name + "/" + accuracies[i] + "/large", large_arguments<T>(), reinterpret_cast<Entry<T>>(row[i]));
}

template <class T, T (*F)(T)>
void add_large_scalar(const std::string& name) {
    add(name + "/large", large_arguments<T>(), [](int32_t count, const T* x, T* y) {
        for (int32_t i = 0; i < count; ++i) y[i] = F(x[i]);
    });
}

// Two results into two arrays.
template <class T>
void add_two_results(const std::string& name, const orv_arq_kernel* row) {
    const char* accuracies[] = {"LA", "HA", "EP"};
    for (int i = 0; i < 3; ++i) {
        const auto entry = reinterpret_cast<void (*)(int32_t, const T*, T*, T*)>(row[i]);
        const auto both = [entry, z = std::vector<T>(n)](int32_t count, const T* x, T* y) mutable {
            entry(count, x, y, z.data());
        };
        add(name + "/" + accuracies[i], arguments<T>(-10, 10), both);
        add(name + "/" + accuracies[i] + "/large", large_arguments<T>(), both);
    }
}

const bool registered = [] {
#define FUNCTION(type, T, Name, libm)                                                                             \
    add_entries<T>(#type #Name, orv_arq_kernel_##type##Name##_ttab, -10, 10, std::numeric_limits<T>::infinity()); \
    add_large<T>(#type #Name, orv_arq_kernel_##type##Name##_ttab);                                                \
    add_scalar<T, libm>(#type #Name "/libm", -10, 10);                                                            \
    add_large_scalar<T, libm>(#type #Name "/libm");
#define FUNCTION_ALONE(type, T, Name)                                                                             \
    add_entries<T>(#type #Name, orv_arq_kernel_##type##Name##_ttab, -10, 10, std::numeric_limits<T>::infinity()); \
    add_large<T>(#type #Name, orv_arq_kernel_##type##Name##_ttab);
    FUNCTION(d, double, Sin, sin)
    SLEEF("dSin", Sleef_sind2_u10sse4, -10, 10)
    FUNCTION(d, double, Cos, cos)
    SLEEF("dCos", Sleef_cosd2_u10sse4, -10, 10)
    FUNCTION(d, double, Tan, tan)
    SLEEF("dTan", Sleef_tand2_u10sse4, -10, 10)
    FUNCTION(s, float, Sin, sinf)
    SLEEF("sSin", Sleef_sinf4_u10sse4, -10, 10)
    FUNCTION(s, float, Cos, cosf)
    SLEEF("sCos", Sleef_cosf4_u10sse4, -10, 10)
    FUNCTION(s, float, Tan, tanf)
    SLEEF("sTan", Sleef_tanf4_u10sse4, -10, 10)
    FUNCTION_ALONE(d, double, Sinpi)
    SLEEF("dSinpi", Sleef_sinpid2_u05sse4, -10, 10)
    FUNCTION_ALONE(d, double, Cospi)
    SLEEF("dCospi", Sleef_cospid2_u05sse4, -10, 10)
    FUNCTION_ALONE(d, double, Tanpi)
    FUNCTION_ALONE(s, float, Sinpi)
    SLEEF("sSinpi", Sleef_sinpif4_u05sse4, -10, 10)
    FUNCTION_ALONE(s, float, Cospi)
    SLEEF("sCospi", Sleef_cospif4_u05sse4, -10, 10)
    FUNCTION_ALONE(s, float, Tanpi)
    FUNCTION_ALONE(d, double, Sind)
    FUNCTION_ALONE(d, double, Cosd)
    FUNCTION_ALONE(d, double, Tand)
    FUNCTION_ALONE(s, float, Sind)
    FUNCTION_ALONE(s, float, Cosd)
    FUNCTION_ALONE(s, float, Tand)
    add_two_results<double>("dSinCos", orv_arq_kernel_dSinCos_ttab);
    add_two_results<float>("sSinCos", orv_arq_kernel_sSinCos_ttab);
#ifdef ORV_BENCH_SLEEF
    add("dSinCos/Sleef_sincosd2_u10sse4", arguments<double>(-10, 10),
        [z = std::vector<double>(n)](int32_t count, const double* x, double* y) mutable {
            for (int32_t i = 0; i < count; i += 2) {
                const auto both = Sleef_sincosd2_u10sse4(_mm_loadu_pd(x + i));
                _mm_storeu_pd(y + i, both.x);
                _mm_storeu_pd(z.data() + i, both.y);
            }
        });
    add("sSinCos/Sleef_sincosf4_u10sse4", arguments<float>(-10, 10),
        [z = std::vector<float>(n)](int32_t count, const float* x, float* y) mutable {
            for (int32_t i = 0; i < count; i += 4) {
                const auto both = Sleef_sincosf4_u10sse4(_mm_loadu_ps(x + i));
                _mm_storeu_ps(y + i, both.x);
                _mm_storeu_ps(z.data() + i, both.y);
            }
        });
#endif
    return true;
}();

}  // namespace
