// Error functions, normal distribution, gamma functions, exponential integral.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

#ifndef _WIN32

struct Scratch {
    mpfr_t value;
    explicit Scratch(mpfr_prec_t bits) { mpfr_init2(value, bits); }
    ~Scratch() { mpfr_clear(value); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
};

// y with erfc(y) = q, for 0 < q < 2, by Newton's method: on erf in the middle, on the logarithm of erfc outside. Beyond 1 by the
// symmetry. q has all digits that 1 - |q - 1| needs.
void erfc_inverse(mpfr_t y, mpfr_t q) {
    const mpfr_prec_t bits = mpfr_get_prec(y) + 40;
    Scratch near(mpfr_get_prec(q)), v(mpfr_get_prec(q)), l(bits), x(bits), f(bits), slope(bits), root_pi(bits);
    const bool negative = mpfr_cmp_ui(q, 1) > 0;
    if (negative)
        mpfr_ui_sub(near.value, 2, q, MPFR_RNDN);
    else
        mpfr_set(near.value, q, MPFR_RNDN);
    mpfr_ui_sub(v.value, 1, near.value, MPFR_RNDN);
    mpfr_log(l.value, near.value, MPFR_RNDN);
    mpfr_const_pi(root_pi.value, MPFR_RNDN);
    mpfr_sqrt(root_pi.value, root_pi.value, MPFR_RNDN);
    const bool middle = mpfr_cmp_d(v.value, 0.5) < 0;
    if (middle) {
        mpfr_set(x.value, v.value, MPFR_RNDN);
    } else {
        mpfr_neg(x.value, l.value, MPFR_RNDN);
        mpfr_sqrt(x.value, x.value, MPFR_RNDN);
    }
    for (int k = 0; k < 100 && !mpfr_zero_p(x.value); ++k) {
        // The step is f e^(x^2) sqrt(pi) / 2, and that times erfc(x) outside.
        if (middle) {
            mpfr_erf(f.value, x.value, MPFR_RNDN);
            mpfr_sub(f.value, f.value, v.value, MPFR_RNDN);
        } else {
            Scratch value(bits);
            mpfr_erfc(value.value, x.value, MPFR_RNDN);
            mpfr_log(f.value, value.value, MPFR_RNDN);
            mpfr_sub(f.value, l.value, f.value, MPFR_RNDN);
            mpfr_mul(f.value, f.value, value.value, MPFR_RNDN);
        }
        mpfr_sqr(slope.value, x.value, MPFR_RNDN);
        mpfr_exp(slope.value, slope.value, MPFR_RNDN);
        mpfr_mul(f.value, f.value, slope.value, MPFR_RNDN);
        mpfr_mul(f.value, f.value, root_pi.value, MPFR_RNDN);
        mpfr_div_2ui(f.value, f.value, 1, MPFR_RNDN);
        mpfr_sub(x.value, x.value, f.value, MPFR_RNDN);
        if (mpfr_zero_p(f.value) || mpfr_get_exp(f.value) < mpfr_get_exp(x.value) - mpfr_get_prec(y) / 2 - 8) break;
    }
    mpfr_set(y, x.value, MPFR_RNDN);
    if (negative) mpfr_neg(y, y, MPFR_RNDN);
}

// Enough for one less the smallest number.
constexpr mpfr_prec_t all_bits = 1200;

// Outside (first, last) the exact value is a NaN or, at the ends, an infinity of the sign given.
bool inside(mpfr_t y, mpfr_t x, int first, int last, int sign_at_first) {
    if (mpfr_nan_p(x) || mpfr_cmp_si(x, first) < 0 || mpfr_cmp_si(x, last) > 0) {
        mpfr_set_nan(y);
        return false;
    }
    if (mpfr_cmp_si(x, first) != 0 && mpfr_cmp_si(x, last) != 0) return true;
    mpfr_set_inf(y, mpfr_cmp_si(x, first) == 0 ? sign_at_first : -sign_at_first);
    return false;
}

void exact_erf_inv(mpfr_t* y, mpfr_t* x) {
    if (!inside(y[0], x[0], -1, 1, -1)) return;
    if (mpfr_zero_p(x[0])) {
        mpfr_set(y[0], x[0], MPFR_RNDN);
        return;
    }
    Scratch q(all_bits);
    mpfr_ui_sub(q.value, 1, x[0], MPFR_RNDN);
    erfc_inverse(y[0], q.value);
}
void exact_erfc_inv(mpfr_t* y, mpfr_t* x) {
    if (!inside(y[0], x[0], 0, 2, 1)) return;
    Scratch q(all_bits);
    mpfr_set(q.value, x[0], MPFR_RNDN);
    erfc_inverse(y[0], q.value);
}
void exact_cdf_norm_inv(mpfr_t* y, mpfr_t* x) {
    if (!inside(y[0], x[0], 0, 1, -1)) return;
    Scratch q(all_bits), root_2(mpfr_get_prec(y[0]) + 10);
    mpfr_mul_2ui(q.value, x[0], 1, MPFR_RNDN);
    erfc_inverse(y[0], q.value);
    mpfr_sqrt_ui(root_2.value, 2, MPFR_RNDN);
    mpfr_mul(y[0], y[0], root_2.value, MPFR_RNDN);
    if (!mpfr_zero_p(y[0])) mpfr_neg(y[0], y[0], MPFR_RNDN);
}

#endif

}  // namespace

std::vector<Function> special_functions() {
    return {
        {"ErfInv", "sd", EXACT_BY(exact_erf_inv), nullptr, {{-1, 1}, {0.4, 0.6}, {0.99, 1}}, {0.5, 0.9990234375, 1}},
        {"ErfcInv", "sd", EXACT_BY(exact_erfc_inv), nullptr, {{0, 2}, {0.4, 0.6}, {0, 0.01}}, {0.5, 1.5, 0x1p-10, 2}},
        {"CdfNormInv", "sd", EXACT_BY(exact_cdf_norm_inv), nullptr, {{0, 1}, {0.2, 0.3}}, {0.25, 0.75, 0.5, 0x1p-11}},
    };
}

}  // namespace orv::accuracy
