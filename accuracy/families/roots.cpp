// Roots, quotients, remainders, and the functions that choose or move between numbers.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

long double inverse(long double x) { return 1 / x; }
long double root(long double x) { return sqrtl(x); }
long double inverse_root(long double x) { return 1 / sqrtl(x); }
long double cube_root(long double x) { return cbrtl(x); }
long double inverse_cube_root(long double x) { return 1 / cbrtl(x); }
long double quotient(long double a, long double b) { return a / b; }
long double hypotenuse(long double a, long double b) { return hypotl(a, b); }
long double positive_difference(long double a, long double b) { return fdiml(a, b); }
// -0 counts below +0.
long double larger(long double a, long double b) { return a == b ? std::signbit(a) ? b : a : fmaxl(a, b); }
long double smaller(long double a, long double b) { return a == b ? std::signbit(a) ? a : b : fminl(a, b); }
long double larger_magnitude(long double a, long double b) {
    return fabsl(a) > fabsl(b) ? a : fabsl(b) > fabsl(a) ? b : larger(a, b);
}
long double smaller_magnitude(long double a, long double b) {
    return fabsl(a) < fabsl(b) ? a : fabsl(b) < fabsl(a) ? b : smaller(a, b);
}
long double with_sign(long double a, long double b) { return copysignl(a, b); }
long double fraction_of_division(long double a, long double b) { return fmodl(a, b); }
long double nearest_remainder(long double a, long double b) { return remainderl(a, b); }
void parts(long double* y, const long double* x) {
    long double whole;
    y[1] = modfl(x[0], &whole);
    y[0] = whole;
}

// What depends on the type: the neighbour of a number, and operations that are rounded one by one.
template <class T>
void neighbour(long double* y, const long double* x) {
    y[0] = std::nextafter(static_cast<T>(x[0]), static_cast<T>(x[1]));
}
template <class T>
void linear_fraction(long double* y, const long double* x) {
    volatile T v[6];
    for (int i = 0; i < 6; ++i) v[i] = static_cast<T>(x[i]);
    const volatile T a = v[2] * v[0], b = v[4] * v[1];
    const volatile T numerator = a + v[3], denominator = b + v[5];
    const volatile T result = numerator / denominator;
    y[0] = result;
}

#ifndef _WIN32
// From a routine of long doubles that makes no error: what MPFR has no routine for.
template <Fast routine, int inputs>
void exact_by(mpfr_t* y, mpfr_t* x) {
    long double arguments[most_inputs], results[most_outputs];
    for (int i = 0; i < inputs; ++i) arguments[i] = mpfr_get_ld(x[i], MPFR_RNDN);
    routine(results, arguments);
    mpfr_set_ld(y[0], results[0], MPFR_RNDN);
}
#define EXACT_AS(routine, inputs) exact_by<routine, inputs>
#else
#define EXACT_AS(routine, inputs) nullptr
#endif

}  // namespace

std::vector<Function> roots_functions() {
    const std::vector<double> powers = {0.125, 0.25, 0.5, 2, 4, 8, 0x1p-126, 0x1p+125, 0x1p+126, 0x1p-1022, 0x1p+1022};
    const std::vector<double> limits = {0x1p-500, 0x1p+500, 0x1p-50, 0x1p+60};
    return {
        {"Inv",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_ui_div(y[0], 1, x[0], MPFR_RNDN); }),
         FAST(inverse),
         {{0.5, 4}},
         powers},
        {"Sqrt", "sd", EXACT(mpfr_sqrt), FAST(root), {{0.5, 8}}, powers},
        {"InvSqrt", "sd", EXACT(mpfr_rec_sqrt), FAST(inverse_root), {{0.5, 8}}, powers},
        {"Cbrt", "sd", EXACT(mpfr_cbrt), FAST(cube_root), {{0.5, 16}}, powers},
        {"InvCbrt",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_cbrt(y[0], x[0], MPFR_RNDN);
             mpfr_ui_div(y[0], 1, y[0], MPFR_RNDN);
         }),
         FAST(inverse_cube_root),
         {{0.5, 16}},
         powers},
        {"Div", "sd", EXACT(mpfr_div), FAST(quotient)},
        {"Hypot", "sd", EXACT(mpfr_hypot), FAST(hypotenuse), {{-10, 10}}, limits},
        {"Fdim", "sd", EXACT(mpfr_dim), FAST(positive_difference)},
        {"Fmax", "sd", EXACT(mpfr_max), FAST(larger)},
        {"Fmin", "sd", EXACT(mpfr_min), FAST(smaller)},
        {"MaxMag", "sd", EXACT_AS(fast_of<larger_magnitude>, 2), FAST(larger_magnitude)},
        {"MinMag", "sd", EXACT_AS(fast_of<smaller_magnitude>, 2), FAST(smaller_magnitude)},
        {"CopySign", "sd", EXACT_AS(fast_of<with_sign>, 2), FAST(with_sign)},
        {"NextAfter", "s", EXACT_AS(neighbour<float>, 2), neighbour<float>},
        {"NextAfter", "d", EXACT_AS(neighbour<double>, 2), neighbour<double>},
        {"Fmod", "sd", EXACT(mpfr_fmod), FAST(fraction_of_division)},
        {"Remainder", "sd", EXACT(mpfr_remainder), FAST(nearest_remainder)},
        {"Modf",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_modf(y[0], y[1], x[0], MPFR_RNDN); }),
         parts,
         {{-20, 20}},
         {0.5, 1.5, 0x1p+23, 0x1p+52}},
        {"LinearFrac", "s", EXACT_AS(linear_fraction<float>, 6), linear_fraction<float>},
        {"LinearFrac", "d", EXACT_AS(linear_fraction<double>, 6), linear_fraction<double>},
    };
}

}  // namespace orv::accuracy
