// Rounding to integers and arithmetic: the results are exact or correctly rounded.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

long double frac(long double x) { return std::isinf(x) ? copysignl(0, x) : x - truncl(x); }
long double square(long double x) { return x * x; }
// Sums and products of floats are exact here; those of doubles are rounded a second time, which the exact value settles.
long double sum(long double a, long double b) { return a + b; }
long double difference(long double a, long double b) { return a - b; }
long double product(long double a, long double b) { return a * b; }

}  // namespace

std::vector<Function> basic_functions() {
    const std::vector<double> halves = {0.5, 1.5, 2.5, 0x1p+22, 0x1p+23, 0x1p+51, 0x1p+52, 0x1p+53};
    return {
        {"Ceil", "sd", EXACT(mpfr_ceil), FAST(ceill), {{-20, 20}}, halves},
        {"Floor", "sd", EXACT(mpfr_floor), FAST(floorl), {{-20, 20}}, halves},
        {"Trunc", "sd", EXACT(mpfr_trunc), FAST(truncl), {{-20, 20}}, halves},
        {"Rint", "sd", EXACT(mpfr_roundeven), FAST(rintl), {{-20, 20}}, halves},
        {"NearbyInt", "sd", EXACT(mpfr_roundeven), FAST(rintl), {{-20, 20}}, halves},
        {"Round", "sd", EXACT(mpfr_round), FAST(roundl), {{-20, 20}}, halves},
        {"Frac", "sd", EXACT(mpfr_frac), FAST(frac), {{-20, 20}}, halves},
        {"Abs", "sd", EXACT(mpfr_abs), FAST(fabsl)},
        {"Sqr", "sd", EXACT(mpfr_sqr), FAST(square), {{-20, 20}}, {0x1p-511, 0x1p-538, 0x1p+512}},
        {"Add", "sd", EXACT(mpfr_add), FAST(sum)},
        {"Sub", "sd", EXACT(mpfr_sub), FAST(difference)},
        {"Mul", "sd", EXACT(mpfr_mul), FAST(product)},
        {"Conj", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_set(y[0], x[0], MPFR_RNDN);
             mpfr_neg(y[1], x[1], MPFR_RNDN);
         }),
         [](long double* y, const long double* x) { y[0] = x[0], y[1] = -x[1]; }},
    };
}

}  // namespace orv::accuracy
