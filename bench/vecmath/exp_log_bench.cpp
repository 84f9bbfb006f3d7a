// Cycles per element of the exponentials and logarithms at n of 1000, beside the same functions of SLEEF, called in the
// same kind of loop, and of the C library.
#include "support/cycles.h"

#include <orv/vecmath_entries.h>

#ifdef ORV_BENCH_SLEEF
#include <sleef.h>
#endif

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int32_t n = 1000;

template <class T>
std::vector<T> arguments(double low, double high) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> even(low, high);
    std::vector<T> x(n);
    for (T& v : x) v = static_cast<T>(even(random));
    return x;
}

template <class T, class Call>
void add(const std::string& name, std::vector<T> x, Call call) {
    benchmark::RegisterBenchmark(name.c_str(), [x, call](benchmark::State& state) {
        std::vector<T> y(n);
        orv::bench::measure(state, n, 1, [&] { call(n, x.data(), y.data()); });
    })->MinTime(0.05);
}

template <class T>
using Entry = void (*)(int32_t, const T*, T*);

// The three accuracies, and "LA" with one special element among the thousand.
template <class T>
void add_entries(const std::string& name, const orv_arq_kernel* row, double low, double high, T special) {
    const char* accuracies[] = {"LA", "HA", "EP"};
    for (int i = 0; i < 3; ++i) {
        const auto entry = reinterpret_cast<Entry<T>>(row[i]);
        add(name + "/" + accuracies[i], arguments<T>(low, high), entry);
        std::vector<T> with_special = arguments<T>(low, high);
        with_special[500] = special;
        add(name + "/" + accuracies[i] + "/one_special", with_special, entry);
    }
}

template <class T, T (*F)(T)>
void add_scalar(const std::string& name, double low, double high) {
    add(name, arguments<T>(low, high), [](int32_t count, const T* x, T* y) {
        for (int32_t i = 0; i < count; ++i) y[i] = F(x[i]);
    });
}

#ifdef ORV_BENCH_SLEEF
template <const __m128d (*F)(__m128d)>
void add_lanes(const std::string& name, double low, double high) {
    add(name, arguments<double>(low, high), [](int32_t count, const double* x, double* y) {
        for (int32_t i = 0; i < count; i += 2) _mm_storeu_pd(y + i, F(_mm_loadu_pd(x + i)));
    });
}
template <const __m128 (*F)(__m128)>
void add_lanes(const std::string& name, double low, double high) {
    add(name, arguments<float>(low, high), [](int32_t count, const float* x, float* y) {
        for (int32_t i = 0; i < count; i += 4) _mm_storeu_ps(y + i, F(_mm_loadu_ps(x + i)));
    });
}
#define SLEEF(name, function, low, high) add_lanes<function>(name "/" #function, low, high);
#else
#define SLEEF(name, function, low, high)
#endif

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
