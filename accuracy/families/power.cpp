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
    if (std::isnan(a) || std::isnan(b) || a < 0 || (b == 0 && (a == 0 || std::isinf(a))) || (a == 1 && std::isinf(b)))
        return NAN;
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
    // Within 2^-33 ulp of a middle, and squares within 2^-49 (tools/searches/power_midpoints 200000).
    list.insert(list.end(), {0x1.8000000000001p+0,  0x1p+1,
                             0x1.7ffffffffffffp+0,  0x1p+1,
                             0x1.cbb639c98c0b5p+0,  0x1p+1,
                             0x1.7fffffffffffdp+0,  0x1p+1,
                             0x1.42a8a78a7a41ep-1,  0x1.8p+1,
                             0x1.c1f7f70aeffb9p-2,  0x1.8p+1,
                             0x1.ff5d99d24059ep+1,  0x1.8p+0,
                             0x1.af4ed9c9f83a2p-3,  0x1.8p+0,
                             0x1.979984c2af34cp+2,  0x1p-1,
                             0x1.385834640cf81p+1,  0x1p-1,
                             0x1.e43b793774709p+2,  -0x1p+0,
                             0x1.1dcebadfaa61ep-1,  -0x1p+0,
                             0x1.889ab8a362d85p-2,  -0x1p-1,
                             0x1.0438db7730bdp+1,   -0x1p-1,
                             0x1.f6698c589b004p+0,  0x1.4p+1,
                             0x1.2e92e059b55f6p+2,  0x1.4p+1,
                             0x1.f5d03448774e4p-1,  0x1.5555555555555p-2,
                             0x1.0cd48925a5e07p+0,  0x1.5555555555555p-2,
                             0x1.4c527b5a47f43p-2,  0x1.5555555555555p-1,
                             0x1.d6dae0d57a37ep-2,  0x1.5555555555555p-1,
                             0x1.d5234618946f6p-3,  0x1.999999999999ap-4,
                             0x1.03a97c00cd523p+0,  0x1.999999999999ap-4,
                             0x1.c35140739b42ap+2,  0x1.4p+3,
                             0x1.a891595fd25bp-2,   0x1.4p+3,
                             0x1.ae8fd17b1220ap-2,  -0x1.dp+2,
                             0x1.f3e09dc26d37p+2,   -0x1.dp+2,
                             0x1.241fa05464bd3p-29, -0x1.b453710ae959ep-33,
                             0x1.b801005f04e0ap-30, -0x1.89c8a043a5708p-34,
                             0x1.099351adde1p+1,    0x1.398bde68b5db6p-23,
                             0x1.774866a48dee5p-6,  -0x1.4fa7fa5edcfedp-35,
                             0x1.968057e1875cp-9,   -0x1.ce29a877de432p-28,
                             0x1.398a102e3b171p+8,  0x1.1abd6375115cfp-26,
                             0x1.6d2832dead455p-15, -0x1.29f70481bf185p-31,
                             0x1.794f93059f96cp-14, -0x1.3b7745d9e2e9p-30,
                             0x1.8abfa78e2ce64p+9,  0x1.f75147ae388e2p-34,
                             0x1.31a88a4df29b1p+29, 0x1.def3bda477ccdp-32,
                             0x1.18030284cab8fp-9,  -0x1.b5d8a8a21f0ep-28,
                             0x1.85944a19b568fp-10, -0x1.ef580b4692ebcp-32});
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
