// Error functions, normal distribution, gamma functions, exponential integral.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

#ifdef _WIN32
#define FAST_C(...) nullptr  // the C library's long forms are not good enough to judge by
#else
#define FAST_C(...) FAST(__VA_ARGS__)

constexpr long double root_2 = 1.41421356237309504880168872420969808L;
constexpr long double two_over_root_pi = 1.12837916709551257389615890312154517L;
constexpr long double euler = 0.577215664901532860606512090082402431L;

struct Scratch {
    mpfr_t value;
    explicit Scratch(mpfr_prec_t bits) { mpfr_init2(value, bits); }
    ~Scratch() { mpfr_clear(value); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
};

// ---- Inverses: a root found in 80-bit arithmetic, exact by one step more -------------------------------------------------

// The value of erf whose inverse is asked for, as what is exact: v itself below 1/2 in magnitude, q = 1 - |v| above.
struct ErfValue {
    bool middle, negative;
    long double v, q;  // magnitudes
};
ErfValue of_erf(long double v) { return {fabsl(v) < 0.5L, std::signbit(v), fabsl(v), 1 - fabsl(v)}; }
ErfValue of_erfc(long double q) {
    const long double near = q < 1 ? q : 2 - q;
    return {near > 0.5L, q > 1, 1 - near, near};
}

// By Halley's method on erf, or on the logarithm of erfc.
long double root_of(const ErfValue& at) {
    if (at.middle) {
        long double x = at.v / two_over_root_pi, step = x;
        for (int k = 0; k < 40 && fabsl(step) > 1e-8L * x; ++k) {
            step = (erfl(x) - at.v) / (two_over_root_pi * expl(-x * x));
            x -= step / (1 + x * step);
        }
        return x;
    }
    long double x = sqrtl(-logl(at.q)), step = x;
    for (int k = 0; k < 40 && fabsl(step) > 1e-11L * x; ++k) {
        const long double value = erfcl(x);
        step = logl(value / at.q) * value / (two_over_root_pi * expl(-x * x));
        x += step;
    }
    return x;
}
long double signed_root(const ErfValue& at) { return at.negative ? -root_of(at) : root_of(at); }

long double erf_inv(long double v) {
    if (!(fabsl(v) <= 1)) return NAN;
    if (fabsl(v) == 1) return v * INFINITY;
    return v == 0 ? v : signed_root(of_erf(v));
}
long double erfc_inv(long double q) {
    if (!(q >= 0 && q <= 2)) return NAN;
    if (q == 0 || q == 2) return q == 0 ? INFINITY : -INFINITY;
    return q == 1 ? 0 : signed_root(of_erfc(q));
}
long double cdf_norm_inv(long double p) { return -erfc_inv(2 * p) * root_2; }

// y with 64 good bits or so, made good to all its bits: a step of Halley's method triples them.
void settle_root(mpfr_t y, const ErfValue& at) {
    const mpfr_prec_t bits = mpfr_get_prec(y) + 20;
    Scratch x(bits), step(bits), slope(bits), factor(bits);
    mpfr_set_ld(x.value, root_of(at), MPFR_RNDN);
    // f / f', of either sign.
    if (at.middle) {
        mpfr_erf(step.value, x.value, MPFR_RNDN);
        mpfr_set_ld(factor.value, at.v, MPFR_RNDN);
        mpfr_sub(step.value, step.value, factor.value, MPFR_RNDN);
    } else {
        mpfr_erfc(step.value, x.value, MPFR_RNDN);
        mpfr_set_ld(factor.value, at.q, MPFR_RNDN);
        mpfr_sub(step.value, factor.value, step.value, MPFR_RNDN);
    }
    mpfr_sqr(slope.value, x.value, MPFR_RNDN);
    mpfr_exp(slope.value, slope.value, MPFR_RNDN);
    mpfr_mul(step.value, step.value, slope.value, MPFR_RNDN);
    mpfr_const_pi(factor.value, MPFR_RNDN);
    mpfr_sqrt(factor.value, factor.value, MPFR_RNDN);
    mpfr_mul(step.value, step.value, factor.value, MPFR_RNDN);
    mpfr_div_2ui(step.value, step.value, 1, MPFR_RNDN);
    mpfr_mul(factor.value, x.value, step.value, MPFR_RNDN);
    mpfr_add_ui(factor.value, factor.value, 1, MPFR_RNDN);
    mpfr_div(step.value, step.value, factor.value, MPFR_RNDN);
    mpfr_sub(y, x.value, step.value, MPFR_RNDN);
    if (at.negative) mpfr_neg(y, y, MPFR_RNDN);
}

// `fast` where that is 0 or no finite number.
bool has_root(mpfr_t y, long double fast) {
    if (std::isfinite(fast) && fast != 0) return true;
    mpfr_set_ld(y, fast, MPFR_RNDN);
    return false;
}
void exact_erf_inv(mpfr_t* y, mpfr_t* x) {
    const long double v = mpfr_get_ld(x[0], MPFR_RNDN);
    if (has_root(y[0], erf_inv(v))) settle_root(y[0], of_erf(v));
}
void exact_erfc_inv(mpfr_t* y, mpfr_t* x) {
    const long double q = mpfr_get_ld(x[0], MPFR_RNDN);
    if (has_root(y[0], erfc_inv(q))) settle_root(y[0], of_erfc(q));
}
void exact_cdf_norm_inv(mpfr_t* y, mpfr_t* x) {
    const long double p = mpfr_get_ld(x[0], MPFR_RNDN);
    if (!has_root(y[0], cdf_norm_inv(p))) return;
    Scratch factor(mpfr_get_prec(y[0]) + 10);
    settle_root(y[0], of_erfc(2 * p));
    mpfr_sqrt_ui(factor.value, 2, MPFR_RNDN);
    mpfr_mul(y[0], y[0], factor.value, MPFR_RNDN);
    mpfr_neg(y[0], y[0], MPFR_RNDN);
}

// ---- Normal distribution, exponential integral --------------------------------------------------------------------------

// By erfc at h, -x / sqrt 2 rounded, and its slope there times what the rounding left.
long double cdf_norm(long double x) {
    if (!(fabsl(x) < 1000)) return x < 0 ? 0 : x > 0 ? 1 : x;
    const long double root_high = 0x1.6a09e667p+0L, root_low = 0xf3bcc908b2fb1366p-96L;
    const long double h = -x / root_2, upper = static_cast<float>(h);
    const long double left = ((-x - upper * root_high) - (h - upper) * root_high) - h * root_low;
    return 0.5L * (erfcl(h) - two_over_root_pi * expl(-h * h) * (left / root_2));
}
// By its series up to 1, then by Legendre's continued fraction from its far end.
long double exp_int(long double x) {
    if (!(x > 0)) return x == 0 ? INFINITY : NAN;
    if (x > 12000) return 0;
    if (x < 1) {
        long double sum = 0, term = 1;
        for (int n = 1; n < 30; ++n) {
            term *= -x / n;
            sum -= term / n;
        }
        return sum - euler - logl(x);
    }
    const int terms = 20 + static_cast<int>(500 / x);
    long double tail = 0;
    for (int n = terms; n > 0; --n) tail = n * n / (x + 2 * n + 1 - tail);
    return expl(-x) / (x + 1 - tail);
}

void exact_cdf_norm(mpfr_t* y, mpfr_t* x) {
    Scratch divisor(mpfr_get_prec(y[0]) + 20), at(mpfr_get_prec(y[0]) + 20);
    mpfr_sqrt_ui(divisor.value, 2, MPFR_RNDN);
    mpfr_div(at.value, x[0], divisor.value, MPFR_RNDN);
    mpfr_neg(at.value, at.value, MPFR_RNDN);
    mpfr_erfc(y[0], at.value, MPFR_RNDN);
    mpfr_div_2ui(y[0], y[0], 1, MPFR_RNDN);
}
void exact_ln_gamma(mpfr_t* y, mpfr_t* x) {
    int sign;
    if (mpfr_inf_p(x[0]))
        mpfr_set_inf(y[0], 1);
    else
        mpfr_lgamma(y[0], &sign, x[0], MPFR_RNDN);
}
void exact_exp_int(mpfr_t* y, mpfr_t* x) {
    if (mpfr_zero_p(x[0])) {
        mpfr_set_inf(y[0], 1);
        return;
    }
    mpfr_t negative;
    mpfr_init2(negative, mpfr_get_prec(x[0]));
    mpfr_neg(negative, x[0], MPFR_RNDN);
    // Of a negative argument E1 is a NaN.
    if (mpfr_sgn(x[0]) < 0)
        mpfr_set_nan(y[0]);
    else
        mpfr_eint(y[0], negative, MPFR_RNDN);
    mpfr_neg(y[0], y[0], MPFR_RNDN);
    mpfr_clear(negative);
}

#endif

// The zeros of ln|Gamma| below -2, one on either side of each half, and what is near them.
void zeros_of_ln_gamma(std::vector<double>& list) {
    for (int n = 2; n < 20; ++n)
        for (const int pole : {-n, -n - 1}) {
            double below = -n - 0.5, above = pole;  // where ln|Gamma| is negative and positive
            for (int k = 0; k < 60; ++k) {
                const double middle = 0.5 * (below + above);
                (std::lgamma(middle) > 0 ? above : below) = middle;
            }
            list.push_back(below);
            for (const double far : {1e-14, 1e-12, 1e-9, 1e-6, 1e-4, 1e-3, 0.01, 0.03, 0.1})
                for (const double side : {-far, far}) list.push_back(below + side * (below - pole));
        }
}

}  // namespace

std::vector<Function> special_functions() {
    return {
        {"Erf", "sd", EXACT(mpfr_erf), FAST_C(erfl), {{-6, 6}, {0, 0.05}}, {5.9921875, 0.00390625, 0.01171875}},
        {"Erfc", "sd", EXACT(mpfr_erfc), FAST_C(erfcl), {{-6, 27}, {9, 10.1}, {-1, 1}}, {9, 9.19, 26, 26.54, 27.2, 6}},
        {"CdfNorm",
         "sd",
         EXACT_BY(exact_cdf_norm),
         FAST_C(cdf_norm),
         {{-38.5, 9}, {-14.2, -12}, {-1, 1}},
         {12, 12.98, 37, 37.52, 38.4}},
        {"ExpInt1",
         "sd",
         EXACT_BY(exact_exp_int),
         FAST_C(exp_int),
         {{0, 50}, {0, 1}, {50, 740}},
         {0.0625, 82, 82.9, 700, 701.8}},
        {"TGamma",
         "sd",
         EXACT(mpfr_gamma),
         FAST_C(tgammal),
         {{0.5, 40}, {-20, 0}, {40, 172}, {-186, -20}},
         {1, 2, 35.04, 171.62, -170.5, -184, -185, -38, -42}},
        {"LGamma",
         "sd",
         EXACT_BY(exact_ln_gamma),
         FAST_C(lgammal),
         {{0.01, 20}, {-6, 0}, {20, 200}, {-200, -6}},
         {1, 2, 128, 0.03125, -170},
         {},
         zeros_of_ln_gamma},
        {"ErfInv",
         "sd",
         EXACT_BY(exact_erf_inv),
         FAST_C(erf_inv),
         {{-1, 1}, {0.4, 0.6}, {0.99, 1}},
         {0.5, 0.9990234375, 1}},
        {"ErfcInv",
         "sd",
         EXACT_BY(exact_erfc_inv),
         FAST_C(erfc_inv),
         {{0, 2}, {0.4, 0.6}, {0, 0.01}},
         {0.5, 1.5, 0x1p-10, 2}},
        {"CdfNormInv",
         "sd",
         EXACT_BY(exact_cdf_norm_inv),
         FAST_C(cdf_norm_inv),
         {{0, 1}, {0.2, 0.3}},
         {0.25, 0.75, 0.5, 0x1p-11}},
    };
}

}  // namespace orv::accuracy
