#include "support/oracle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orv::oracle {

namespace {

#ifdef _WIN32
#define EXACT(routine) nullptr
#else
int exact_logb(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) {
    return mpfr_set_si(y, mpfr_zero_p(x) ? 0 : mpfr_get_exp(x) - 1, rounding);
}
#define EXACT(routine) routine
#endif

#ifdef _WIN32
// The runtime's own are not good to a small part of an ulp of a double.
long double fast_expm1(long double x) {
    if (fabsl(x) >= 0.5L) return expl(x) - 1;
    long double sum = 0;
    for (int k = 22; k > 0; --k) sum = x / k * (1 + sum);
    return sum;
}
long double fast_exp10(long double x) {
    const long double whole = rintl(x), part = expl((x - whole) * 2.302585092994045684018L);
    if (!(fabsl(whole) < 400)) return expl(x * 2.302585092994045684018L);
    long double power = 1, square = 10;
    for (int i = static_cast<int>(fabsl(whole)); i != 0; i >>= 1, square *= square)
        if (i & 1) power *= square;
    return whole < 0 ? part / power : part * power;
}
#else
long double fast_expm1(long double x) { return expm1l(x); }
long double fast_exp10(long double x) { return exp10l(x); }
#endif

#ifndef _WIN32
int exact_sind(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_sinu(y, x, 360, rounding); }
int exact_cosd(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_cosu(y, x, 360, rounding); }
int exact_tand(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_tanu(y, x, 360, rounding); }
#endif

// sin and cos of x in units of a quarter turn, the multiples of which are taken away exactly.
struct Quarter {
    long double sine, cosine;
    explicit Quarter(long double x, long double quarter) {
        int k;
        const long double r = remquol(x, quarter, &k) / quarter * 1.57079632679489661923132169163975144L;
        const long double s = sinl(r), c = cosl(r);
        sine = k & 1 ? c : s;
        cosine = k & 1 ? -s : c;
        if (k & 2) sine = -sine, cosine = -cosine;
        cosine += 0.0L;  // no zero is negative: the tangent's poles have the sign of the sine
    }
};
long double fast_sinpi(long double x) { return Quarter(x, 0.5L).sine; }
long double fast_cospi(long double x) { return Quarter(x, 0.5L).cosine; }
long double fast_tanpi(long double x) { return fast_sinpi(x) / fast_cospi(x); }
long double fast_sind(long double x) { return Quarter(x, 90.0L).sine; }
long double fast_cosd(long double x) { return Quarter(x, 90.0L).cosine; }
long double fast_tand(long double x) { return fast_sind(x) / fast_cosd(x); }

constexpr Function functions[] = {
#ifndef _WIN32
    // Elsewhere the C library's 80-bit routines reduce by a pi of 66 bits.
    {"Sin", EXACT(mpfr_sin), sinl},
    {"Cos", EXACT(mpfr_cos), cosl},
    {"Tan", EXACT(mpfr_tan), tanl},
#endif
    {"Sinpi", EXACT(mpfr_sinpi), fast_sinpi},
    {"Cospi", EXACT(mpfr_cospi), fast_cospi},
    {"Tanpi", EXACT(mpfr_tanpi), fast_tanpi},
    {"Sind", EXACT(exact_sind), fast_sind},
    {"Cosd", EXACT(exact_cosd), fast_cosd},
    {"Tand", EXACT(exact_tand), fast_tand},
    {"Exp", EXACT(mpfr_exp), expl},
    {"Expm1", EXACT(mpfr_expm1), fast_expm1},
    {"Exp2", EXACT(mpfr_exp2), exp2l},
    {"Exp10", EXACT(mpfr_exp10), fast_exp10},
    {"Ln", EXACT(mpfr_log), logl},
    {"Log10", EXACT(mpfr_log10), log10l},
    {"Log2", EXACT(mpfr_log2), log2l},
    {"Log1p", EXACT(mpfr_log1p), log1pl},
    {"Logb", EXACT(exact_logb), logbl},
};

template <class T>
int ulp_exponent(int exponent) {
    return std::max(exponent, std::numeric_limits<T>::min_exponent) - std::numeric_limits<T>::digits;
}

// `exact` lies in [2^(exponent-1), 2^exponent) in magnitude, or is zero.
template <class T>
Error error_of(long double exact, int exponent, T y) {
    const int top = std::numeric_limits<T>::max_exponent;
    if (std::isnan(y) || std::isnan(exact)) {
        const double both = std::isnan(y) && std::isnan(exact) ? 0.0 : std::numeric_limits<double>::infinity();
        return {both, both};
    }
    const long double limit = ldexpl(1.0L, top) - ldexpl(0.5L, top - std::numeric_limits<T>::digits);
    long double result = y;
    if (std::isinf(y)) result = copysignl(ldexpl(1.0L, top), result);
    if (fabsl(exact) >= limit) exact = copysignl(ldexpl(1.0L, top), exact);
    const long double difference = fabsl(result - exact);
    const long double ulp = ldexpl(1.0L, ulp_exponent<T>(exponent));
    return {static_cast<double>(difference / ulp), exact == 0 ? 0.0 : static_cast<double>(difference / fabsl(exact))};
}

template <class T>
Error exact_error_of(const Function& f, T x, T y) {
#ifdef _WIN32
    return fast_error(f, x, y);
#else
    if (!std::isfinite(x) || !std::isfinite(y)) return fast_error(f, x, y);
    mpfr_t exact, result;
    mpfr_init2(exact, 140);
    mpfr_init2(result, 140);
    mpfr_set_d(result, x, MPFR_RNDN);
    f.exact(exact, result, MPFR_RNDN);
    if (mpfr_regular_p(exact) == 0) {
        mpfr_clears(exact, result, nullptr);
        return fast_error(f, x, y);
    }
    const int exponent = static_cast<int>(mpfr_get_exp(exact));
    mpfr_set_d(result, y, MPFR_RNDN);
    mpfr_sub(result, result, exact, MPFR_RNDN);
    mpfr_div(exact, result, exact, MPFR_RNDN);
    mpfr_mul_2si(result, result, -ulp_exponent<T>(exponent), MPFR_RNDN);
    const Error error{std::fabs(mpfr_get_d(result, MPFR_RNDN)), std::fabs(mpfr_get_d(exact, MPFR_RNDN))};
    mpfr_clears(exact, result, nullptr);
    return error;
#endif
}

template <class T>
Error fast_error_of(long double exact, T y) {
    int exponent = 0;
    if (std::isfinite(exact)) frexpl(exact, &exponent);
    return error_of(exact, exponent, y);
}

}  // namespace

const Function* find(std::string_view name) {
    for (const Function& f : functions)
        if (f.name == name) return &f;
    return nullptr;
}

Error exact_error(const Function& f, double x, double y) { return exact_error_of(f, x, y); }
Error exact_error(const Function& f, float x, float y) { return exact_error_of(f, x, y); }
Error fast_error(const Function& f, double x, double y) { return fast_error_of(f.fast(x), y); }
Error fast_error(const Function& f, float x, float y) { return fast_error_of(f.fast(x), y); }

// In doubles throughout, for normal `exact`: its exponent field gives the ulp.
Error quick_error(double exact, float y) {
    if (y == exact) return {0, 0};
    const double limit = 0x1p+128 - 0x1p+103;
    if (std::isnan(y) || !(std::fabs(exact) < limit)) return fast_error_of<float>(exact, y);
    const double result = std::isinf(y) ? std::copysign(0x1p+128, y) : y;
    const uint64_t exponent = std::bit_cast<uint64_t>(exact) & uint64_t{0x7FF} << 52;
    const double ulp = std::max(std::bit_cast<double>(exponent) * 0x1p-23, 0x1p-149);
    const double difference = std::fabs(result - exact);
    return {difference / ulp, exact == 0 ? 0.0 : difference / std::fabs(exact)};
}

ExtendedPrecision::ExtendedPrecision() {
    __asm__ volatile("fnstcw %0" : "=m"(saved));
    const unsigned short extended = saved | 0x0300;
    __asm__ volatile("fldcw %0" : : "m"(extended));
}
ExtendedPrecision::~ExtendedPrecision() { __asm__ volatile("fldcw %0" : : "m"(saved)); }

}  // namespace orv::oracle
