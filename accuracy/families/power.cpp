// Powers.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

// The runtime's own on Windows is not good to a small part of an ulp of a double.
#ifdef _WIN32
constexpr Fast fast_pow = nullptr, fast_powr = nullptr;
#else
// An infinite exponent is no integer, and an infinite base is as negative as another.
long double power(long double a, long double b) {
    const bool real = !(a < 0) || a == -1 || std::isnan(b) || (std::isfinite(b) && nearbyintl(b) == b);
    return real ? powl(a, b) : NAN;
}
// exp(b ln a).
long double powr(long double a, long double b) {
    if (std::isnan(a) || std::isnan(b) || a < 0 || (b == 0 && (a == 0 || std::isinf(a))) || (a == 1 && std::isinf(b))) return NAN;
    return powl(fabsl(a), b);
}
constexpr Fast fast_pow = FAST(power), fast_powr = FAST(powr);
#endif

long double pow2o3(long double x) {
    const long double root = cbrtl(x);
    return root * root;
}
long double pow3o2(long double x) { return x * sqrtl(x); }

// Powers that are, or are next to, the middle between two doubles.
void hard_powers(std::vector<double>& list) {
    for (const double x : {0x1.0000002p+0, 0x1.fffffeap+26, 0x1.5555556p+3, 0x1.921fb5p+13, 0x1.6a09e6p-9})
        list.insert(list.end(), {x, 2.0});
    for (const double x : {0x1.00002p+0, 0x1.2345p+0, 0x1.ffffep+5, 0x1.aaaa8p-3}) list.insert(list.end(), {x, 3.0});
    // (1 + h)^b with b h tiny: next to 1 and to its neighbours' middles.
    for (const double b : {0.5, 1.5, -0.5, -1.0, 2.5, 1 / 3.0})
        for (const double x : {0x1.0000000000001p+0, 0x1.0000000000003p+0, 0x1.fffffffffffffp-1, 0x1.ffffffffffffdp-1})
            list.insert(list.end(), {x, b});
    // The ends of the first row of the logarithm, to the largest powers: the worst that a logarithm of less than two parts makes.
    list.insert(list.end(),
                {0x1.005f2ff95016ep+0, 0x1.d1d52fa57a34fp+18, 0x1.005e8dac26de6p+0, 0x1.b4a3108e73abap+18,
                 0x1.005ffffe18d09p+0, -0x1.a97f76a0376c4p+18, 0x1.00025ef20d044p+0, -0x1.15debe5e39b6cp+24});
}

}  // namespace

std::vector<Function> power_functions() {
    const std::vector<Range> bases = {{0, 100}, {0.98, 1.02}, {0.9985, 1.0015}, {0.5, 2}};
    const std::vector<double> base_points = {1.49951171875, 0.749755859375, 1.0014648, 0.99975586, 2, 10, 0x1p-1022};
    const std::vector<Range> exponents = {{-10, 10}, {-1000, 1000}, {-50000, 50000}, {-500000, 500000}};
    return {
        {"Pow", "sd", EXACT(mpfr_pow), fast_pow, bases, base_points, exponents, hard_powers},
        {"Powr", "sd", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_pow(y[0], x[0], x[1], MPFR_RNDN);
             if (mpfr_sgn(x[0]) < 0 || (mpfr_zero_p(x[0]) && mpfr_zero_p(x[1]))) mpfr_set_nan(y[0]);
         }),
         fast_powr, bases, base_points, exponents, hard_powers},
        {"Powx", "sd", EXACT(mpfr_pow), fast_pow, bases, base_points, exponents, hard_powers},
        {"Pow2o3",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_t square;
             mpfr_init2(square, 2 * mpfr_get_prec(x[0]));
             mpfr_sqr(square, x[0], MPFR_RNDN);
             mpfr_cbrt(y[0], square, MPFR_RNDN);
             mpfr_clear(square);
         }),
         FAST(pow2o3),
         {{0, 100}, {1, 8}}},
        {"Pow3o2",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_t cube;
             mpfr_init2(cube, 3 * mpfr_get_prec(x[0]));
             mpfr_pow_ui(cube, x[0], 3, MPFR_RNDN);
             mpfr_sqrt(y[0], cube, MPFR_RNDN);
             mpfr_clear(cube);
         }),
         FAST(pow3o2),
         {{0, 100}, {1, 4}},
         {0x1p-600, 0x1p+682, 0x1.965fea53d6e3dp+682, 0x1.428a2f98d728bp-682, 0x1p-716, 0x1p-83, 0x1p+85,
          0x1.965feap+84, 0x1p-84, 0x1p-100}},
    };
}

}  // namespace orv::accuracy
