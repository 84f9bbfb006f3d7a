// Inverse trigonometric functions, hyperbolic functions and their inverses.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

// y / pi, of which MPFR has no function of its own before version 4.2.
#ifndef _WIN32
void over_pi(mpfr_t y) {
    mpfr_t pi;
    mpfr_init2(pi, mpfr_get_prec(y) + 10);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_div(y, y, pi, MPFR_RNDN);
    mpfr_clear(pi);
}
#endif

constexpr long double pi = 3.14159265358979323846264338327950288L;
#ifdef _WIN32
// The runtime's own hyperbolic functions are not good to a small part of an ulp of a double.
constexpr bool runtime_is_good = false;
#else
constexpr bool runtime_is_good = true;
#endif
constexpr Fast good(Fast routine) { return runtime_is_good ? routine : nullptr; }

long double acospi(long double x) { return acosl(x) / pi; }
long double asinpi(long double x) { return asinl(x) / pi; }
long double atanpi(long double x) { return atanl(x) / pi; }
long double atan2pi(long double a, long double b) { return atan2l(a, b) / pi; }

}  // namespace

std::vector<Function> inverse_functions() {
    const std::vector<Range> sines = {{-1, 1}, {0.4, 0.6}, {-0.6, -0.4}, {0.99, 1}};
    const std::vector<double> sine_points = {0.5, 0x1p-5, 0x1.6a09e667f3bcdp-1, 0x1p-27, 0x1p-200, 0x1p-900, 0x1p-1022};
    const std::vector<Range> tangents = {{-10, 10}, {-1, 1}, {0.02, 0.08}, {40, 90}};
    const std::vector<double> tangent_points = {0x1p-5, 0x1p+6, 0x1p+100, 0x1p-200, 0x1p-900, 0x1p-1022, 0x1p+60};
    return {
        {"Acos", "sd", EXACT(mpfr_acos), good(FAST(acosl)), sines, sine_points},
        {"Asin", "sd", EXACT(mpfr_asin), good(FAST(asinl)), sines, sine_points},
        {"Atan", "sd", EXACT(mpfr_atan), good(FAST(atanl)), tangents, tangent_points},
        {"Acospi", "sd", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_acos(y[0], x[0], MPFR_RNDN), over_pi(y[0]); }),
         good(FAST(acospi)), sines, sine_points},
        {"Asinpi", "sd", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_asin(y[0], x[0], MPFR_RNDN), over_pi(y[0]); }),
         good(FAST(asinpi)), sines, sine_points},
        {"Atanpi", "sd", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_atan(y[0], x[0], MPFR_RNDN), over_pi(y[0]); }),
         good(FAST(atanpi)), tangents, tangent_points},
        {"Atan2",
         "sd",
         EXACT(mpfr_atan2),
         good(FAST(atan2l)),
         {{-1, 1}, {0, 100}, {0.02, 0.08}},
         tangent_points,
         {{-1, 1}, {0.5, 2}, {-2, -0.5}}},
        {"Atan2pi",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_atan2(y[0], x[0], x[1], MPFR_RNDN), over_pi(y[0]); }),
         good(FAST(atan2pi)),
         {{-1, 1}, {0, 100}, {0.02, 0.08}},
         tangent_points,
         {{-1, 1}, {0.5, 2}, {-2, -0.5}}},
    };
}

std::vector<Function> hyperbolic_functions() {
    constexpr double ln_2 = 0.6931471805599453;
    const std::vector<Range> growing = {{-5, 5}, {-0.05, 0.05}, {-711, 711}, {-90, 90}};
    const std::vector<double> growing_points = {ln_2 / 64, 3 * ln_2 / 64, 63 * ln_2 / 64,    ln_2,
                                                708,       89.4159851,    710.4758600739439, 0x1p-200};
    return {
        {"Cosh", "sd", EXACT(mpfr_cosh), good(FAST(coshl)), growing, growing_points},
        {"Sinh", "sd", EXACT(mpfr_sinh), good(FAST(sinhl)), growing, growing_points},
        {"Tanh",
         "sd",
         EXACT(mpfr_tanh),
         good(FAST(tanhl)),
         {{-3, 3}, {-25, 25}, {-0.1, 0.1}},
         {0x1p-5, 16, 19.06, 32, 0x1p-200}},
        {"Acosh", "sd", EXACT(mpfr_acosh), good(FAST(acoshl)), {{1, 10}, {1, 1.01}, {1, 1000}}, {2, 0x1p+28, 0x1p+500}},
        {"Asinh",
         "sd",
         EXACT(mpfr_asinh),
         good(FAST(asinhl)),
         {{-10, 10}, {-0.3, 0.3}, {-1000, 1000}},
         {0.125, 0x1p+28, 0x1p+500, 0x1p-200}},
        {"Atanh",
         "sd",
         EXACT(mpfr_atanh),
         good(FAST(atanhl)),
         {{-1, 1}, {-0.2, 0.2}, {0.99, 1}},
         {0x1p-5, 0.5, 0x1p-200}},
    };
}

}  // namespace orv::accuracy
