#include "vecmath/lines.h"

#ifdef ORV_BENCH_SLEEF
#include <sleef.h>
#endif
#ifdef ORV_BENCH_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_complex_math.h>
#include <gsl/gsl_math.h>
#include <gsl/gsl_sf.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace orv::bench {

namespace {

using ComplexS = std::complex<float>;
using ComplexD = std::complex<double>;

// The class that a loose peer stands in: its makers promise nothing, and measure some ulp.
constexpr double loose = 3.5;

#ifdef ORV_BENCH_GSL
ComplexD through(gsl_complex (*function)(gsl_complex), ComplexD x) {
    const gsl_complex y = function({{x.real(), x.imag()}});
    return {y.dat[0], y.dat[1]};
}
#endif
template <class X>
X mul_of(X x, X y) {
    return x * y;
}
template <class X>
X div_of(X x, X y) {
    return x / y;
}
template <class X>
X pow_of(X x, X y) {
    return std::pow(x, y);
}

// The words of the table.
Range OVER2(double low, double high, double low_b, double high_b) {
    return {Spread::EVEN, low, high, low_b, high_b, 0};
}
Range OVER(double low, double high) { return OVER2(low, high, low, high); }
Range POWERS(double low, double high) { return {Spread::POWERS, low, high, low, high, 0}; }
Range SPOILT(double low, double high, double x) { return {Spread::SPOILT, low, high, low, high, x}; }

#define LOOP(library, name, ulp, body) {library, name, ulp, [](int32_t n, const Arrays& v) { body; }},
#define LANES(name, ulp, inputs, T, function) LOOP("SLEEF", name, ulp, (lanes<T, inputs>(n, v, function)))
#define TWO_RESULTS(name, X, ...) LOOP("C library", name, 1, (scalars_out2<X>(n, v, __VA_ARGS__)))
#define SCALARS(library, name, ulp, inputs, X, ...) LOOP(library, name, ulp, (scalars<X, inputs>(n, v, __VA_ARGS__)))

#ifdef ORV_BENCH_SLEEF
#define IF_SLEEF(...) __VA_ARGS__
#else
#define IF_SLEEF(...)
#endif
#ifdef ORV_BENCH_GSL
#define IF_GSL(...) __VA_ARGS__
#else
#define IF_GSL(...)
#endif

#define FAMILY(title) family = title;
#define LINE(function, label, range, ...) lines.push_back({family, #function, label, range, {__VA_ARGS__}});

#define SLEEF(fn, u) ON_LANES("u" #u, u / 10.0, 1, fn, u)
#define SLEEF2(fn, u) ON_LANES("u" #u, u / 10.0, 2, fn, u)
#define SLEEF_OUT2(fn, u) SLEEF(fn, u)
#define SLEEF_EXACT(fn) ON_LANES_EXACT(1, fn)
#define SLEEF2_EXACT(fn) ON_LANES_EXACT(2, fn)
#define SLEEF_OUT2_EXACT(fn) ON_LANES_EXACT(1, fn)

std::vector<Line> float_lines() {
    std::vector<Line> lines;
    const char* family = "";
#define REAL(function, range, peers) LINE(function, nullptr, range, peers)
#define BESIDE(function, label, range) LINE(function, label, range, )
#define COMPLEX(...)
#define ON_LANES(name, ulp, inputs, fn, u) IF_SLEEF(LANES(name, ulp, inputs, float, Sleef_##fn##f4_u##u##sse4))
#define ON_LANES_EXACT(inputs, fn) IF_SLEEF(LANES("exact", 0, inputs, float, Sleef_##fn##f4_sse4))
#define C(fn) SCALARS("C library", #fn, 1, 1, float, [](float x) { return __builtin_##fn##f(x); })
#define C_LOOSE(fn) SCALARS("C library", #fn, loose, 1, float, [](float x) { return __builtin_##fn##f(x); })
#define C2(fn) SCALARS("C library", #fn, 1, 2, float, [](float x, float y) { return __builtin_##fn##f(x, y); })
#define C_OUT2(fn) TWO_RESULTS(#fn, float, [](float x, float* y, float* z) { __builtin_##fn##f(x, y, z); })
#define C_MODF(fn) TWO_RESULTS(#fn, float, [](float x, float* y, float* z) { *z = __builtin_##fn##f(x, y); })
#define GSL(fn)
#include "vecmath/functions.inc"
#undef ON_LANES
#undef ON_LANES_EXACT
#undef C
#undef C_LOOSE
#undef C2
#undef C_OUT2
#undef C_MODF
#undef GSL
    return lines;
}

std::vector<Line> double_lines() {
    std::vector<Line> lines;
    const char* family = "";
#define ON_LANES(name, ulp, inputs, fn, u) IF_SLEEF(LANES(name, ulp, inputs, double, Sleef_##fn##d2_u##u##sse4))
#define ON_LANES_EXACT(inputs, fn) IF_SLEEF(LANES("exact", 0, inputs, double, Sleef_##fn##d2_sse4))
#define C(fn) SCALARS("C library", #fn, 1, 1, double, [](double x) { return __builtin_##fn(x); })
#define C_LOOSE(fn) SCALARS("C library", #fn, loose, 1, double, [](double x) { return __builtin_##fn(x); })
#define C2(fn) SCALARS("C library", #fn, 1, 2, double, [](double x, double y) { return __builtin_##fn(x, y); })
#define C_OUT2(fn) TWO_RESULTS(#fn, double, [](double x, double* y, double* z) { __builtin_##fn(x, y, z); })
#define C_MODF(fn) TWO_RESULTS(#fn, double, [](double x, double* y, double* z) { *z = __builtin_##fn(x, y); })
#define GSL(fn) IF_GSL(SCALARS("GSL", #fn, loose, 1, double, [](double x) { return fn(x); }))
#include "vecmath/functions.inc"
#undef C
#undef C2
#undef GSL
#undef REAL
#undef BESIDE
#undef COMPLEX
    return lines;
}

#define REAL(...)
#define BESIDE(...)
#define COMPLEX(function, range, peers) LINE(function, nullptr, range, peers)

std::vector<Line> complex_float_lines() {
    std::vector<Line> lines;
    const char* family = "";
#define C(fn) SCALARS("C library", "c" #fn "f", loose, 1, ComplexS, [](ComplexS x) { return std::fn(x); })
#define C_REAL(fn) SCALARS("C library", "c" #fn "f", 1, 1, ComplexS, [](ComplexS x) { return std::fn(x); })
#define C2(fn) \
    SCALARS("C library", "c" #fn "f", loose, 2, ComplexS, [](ComplexS x, ComplexS y) { return fn##_of(x, y); })
#define GSL(fn)
#include "vecmath/functions.inc"
#undef C
#undef C_REAL
#undef C2
#undef GSL
    return lines;
}

std::vector<Line> complex_double_lines() {
    std::vector<Line> lines;
    const char* family = "";
#define C(fn) SCALARS("C library", "c" #fn, loose, 1, ComplexD, [](ComplexD x) { return std::fn(x); })
#define C_REAL(fn) SCALARS("C library", "c" #fn, 1, 1, ComplexD, [](ComplexD x) { return std::fn(x); })
#define C2(fn) SCALARS("C library", "c" #fn, loose, 2, ComplexD, [](ComplexD x, ComplexD y) { return fn##_of(x, y); })
#define GSL(fn) IF_GSL(SCALARS("GSL", #fn, loose, 1, ComplexD, [](ComplexD x) { return through(fn, x); }))
#include "vecmath/functions.inc"
    return lines;
}

template <class T>
std::vector<T> arguments(const Range& range, int32_t n, bool b) {
    // Pairs with increments of 2 at most.
    std::vector<T> x(4 * static_cast<size_t>(n) + 64);
    std::mt19937 random(b ? 2 : 1);
    constexpr double least = std::numeric_limits<T>::min_exponent - std::numeric_limits<T>::digits;
    constexpr double most = std::numeric_limits<T>::max_exponent;
    double low = b ? range.low_b : range.low, high = b ? range.high_b : range.high;
    if (range.spread == Spread::POWERS) {
        // Subnormals are named by double's exponents.
        if (high == std::numeric_limits<double>::min_exponent - 1) high = std::numeric_limits<T>::min_exponent - 1;
        low = std::max(low, least);
        high = std::min(high, most - 1);
    }
    std::uniform_real_distribution<double> even(low, high);
    for (T& v : x)
        v = static_cast<T>(range.spread == Spread::POWERS ? std::exp2(even(random)) : low < high ? even(random) : low);
    if (range.spread == Spread::SPOILT)
        for (size_t i = 500; i < x.size(); i += 1000) x[i] = static_cast<T>(range.spoiler);
    return x;
}

}  // namespace

std::span<const Line> lines_of(char type) {
    static const std::vector<Line> s = float_lines(), d = double_lines(), c = complex_float_lines(),
                                   z = complex_double_lines();
    return type == 's' ? s : type == 'd' ? d : type == 'c' ? c : z;
}

const Line* find_line(char type, std::string_view function) {
    for (const Line& line : lines_of(type))
        if (line.function == function && !line.label) return &line;
    return nullptr;
}

std::vector<double> arguments_d(const Range& range, int32_t n, bool b) { return arguments<double>(range, n, b); }
std::vector<float> arguments_s(const Range& range, int32_t n, bool b) { return arguments<float>(range, n, b); }

}  // namespace orv::bench
