// Exponentials and logarithms.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

#ifdef _WIN32
// The runtime's own are not good to a small part of an ulp of a double.
long double expm1_of(long double x) {
    if (fabsl(x) >= 0.5L) return expl(x) - 1;
    long double sum = 0;
    for (int k = 22; k > 0; --k) sum = x / k * (1 + sum);
    return sum;
}
long double ten_to_the(long double x) {
    constexpr long double ln_10 = 2.302585092994045684018L;
    const long double whole = rintl(x), part = expl((x - whole) * ln_10);
    if (!(fabsl(whole) < 400)) return expl(x * ln_10);
    long double power = 1, square = 10;
    for (int i = static_cast<int>(fabsl(whole)); i != 0; i >>= 1, square *= square)
        if (i & 1) power *= square;
    return whole < 0 ? part / power : part * power;
}
#else
long double expm1_of(long double x) { return expm1l(x); }
long double ten_to_the(long double x) { return exp10l(x); }
#endif

}  // namespace

std::vector<Function> exp_log_functions() {
    constexpr double ln_2 = 0.6931471805599453;
    const std::vector<Range> exponents = {{-80, 80}, {-1, 1}, {-746, 710}, {-745.5, -707}, {707, 710}, {-104.5, -87}};
    // The folds of m onto 2/3 to 4/3 and of the tables, and one row of these beside 1.
    const std::vector<double> folds = {1.4990234375,  0.74951171875, 0.6666666667,  1.3333333333, 1.00048828125,
                                       0.99951171875, 1.001953125,   1.41421356237, 0.7071067811, 10,
                                       100,           1000};
    const std::vector<Range> logarithms = {{0.25, 4}, {0, 1000}, {0.5, 2}, {0.98, 1.02}};
    return {
        {"Exp",
         "sd",
         EXACT(mpfr_exp),
         FAST(expl),
         exponents,
         {708.39599609375, 709.78000528721, 709.7827128933841, 708.3964185322641, 745.1332191019412, ln_2, ln_2 / 2,
          ln_2 / 256, 87.33655, 88.7228317, 87.3365402, 103.972076}},
        {"Expm1",
         "sd",
         EXACT(mpfr_expm1),
         FAST(expm1_of),
         {{-2, 2}, {-0.02, 0.02}, {-50, 50}, {-20, 710}},
         {707.70327135170407, 709.7827128933841, 36.7368005696771, 37.42994775023705, 40, ln_2, ln_2 / 2, ln_2 / 256,
          3 * ln_2 / 256, 87.33655, 88.7228317, 17.32868}},
        {"Exp2",
         "sd",
         EXACT(mpfr_exp2),
         FAST(exp2l),
         {{-100, 100}, {-1, 1}, {-1075.5, 1024}, {-1075, -1020}, {-150, -125}},
         {1021.875, 1022, 1023, 1024, 1074, 1075, 126, 127, 128, 149, 150}},
        {"Exp10",
         "sd",
         EXACT(mpfr_exp10),
         FAST(ten_to_the),
         {{-30, 30}, {-1, 1}, {-324, 308.3}, {-324, -307}, {-45.5, -37}},
         {307.65234375, 308.25471555991674, 307.6526555685888, 323.6060814, 22, 37.92978, 38.53184, 44.85347, 10}},
        {"Ln", "sd", EXACT(mpfr_log), FAST(logl), logarithms, folds},
        {"Log10", "sd", EXACT(mpfr_log10), FAST(log10l), logarithms, folds},
        {"Log2", "sd", EXACT(mpfr_log2), FAST(log2l), logarithms, folds},
        {"Log1p",
         "sd",
         EXACT(mpfr_log1p),
         FAST(log1pl),
         {{-0.75, 3}, {-0.01, 0.01}, {-1, 1}, {0, 1000}},
         {-0.5, 0.4990234375, 0.333333343, 0x1p-9, 0x1p-10, 0x1p-11, 0x1p-24, 0x1p-53, 0x1p24, 0x1p25, 0x1p52, 0x1p53,
          0x1p54}},
        {"Logb",
         "sd",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_set_si(y[0], mpfr_zero_p(x[0]) ? 0 : mpfr_get_exp(x[0]) - 1, MPFR_RNDN);
             if (mpfr_zero_p(x[0])) mpfr_set_inf(y[0], -1);
             if (!mpfr_number_p(x[0])) mpfr_abs(y[0], x[0], MPFR_RNDN);
         }),
         FAST(logbl),
         {{0.25, 100}}},
    };
}

}  // namespace orv::accuracy
