// Complex functions but the inverse ones and powers: each part from real functions, with digits to spare for what cancels.
#include "accuracy/families/number.h"
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

#ifndef _WIN32
// y = a b + sign c d.
void sum_of_products(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, int sign, mpfr_srcptr c, mpfr_srcptr d) {
    Number ab, cd;
    mpfr_mul(ab, a, b, MPFR_RNDN);
    mpfr_mul(cd, c, d, MPFR_RNDN);
    (sign > 0 ? mpfr_add : mpfr_sub)(y, ab, cd, MPFR_RNDN);
}

template <int sign>
void product(mpfr_t* y, mpfr_t* x) {
    sum_of_products(y[0], x[0], x[2], -sign, x[1], x[3]);
    sum_of_products(y[1], x[1], x[2], sign, x[0], x[3]);
}

void quotient(mpfr_t* y, mpfr_t* x) {
    Number re, im, divisor;
    sum_of_products(re, x[0], x[2], 1, x[1], x[3]);
    sum_of_products(im, x[1], x[2], -1, x[0], x[3]);
    sum_of_products(divisor, x[2], x[2], 1, x[3], x[3]);
    mpfr_div(y[0], re, divisor, MPFR_RNDN);
    mpfr_div(y[1], im, divisor, MPFR_RNDN);
}

// The logarithm of the modulus, divided by that of the base.
void ln_modulus(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b) {
    Number modulus, over_1;
    mpfr_hypot(modulus, a, b, MPFR_RNDN);
    if (mpfr_cmp_d(modulus, 0.5) < 0 || mpfr_cmp_d(modulus, 2) > 0) {
        mpfr_log(y, modulus, MPFR_RNDN);
        return;
    }
    const bool first = mpfr_cmpabs(a, b) > 0;
    mpfr_sqr(over_1, first ? a : b, MPFR_RNDN);
    mpfr_sub_ui(over_1, over_1, 1, MPFR_RNDN);
    mpfr_sqr(modulus, first ? b : a, MPFR_RNDN);
    mpfr_add(over_1, over_1, modulus, MPFR_RNDN);
    mpfr_log1p(over_1, over_1, MPFR_RNDN);
    mpfr_div_2ui(y, over_1, 1, MPFR_RNDN);
}
template <unsigned base>
void logarithm(mpfr_t* y, mpfr_t* x) {
    ln_modulus(y[0], x[0], x[1]);
    mpfr_atan2(y[1], x[1], x[0], MPFR_RNDN);
    if (base == 0) return;
    Number divisor;
    mpfr_log_ui(divisor, base, MPFR_RNDN);
    for (const int part : {0, 1}) mpfr_div(y[part], y[part], divisor, MPFR_RNDN);
}

void root(mpfr_t* y, mpfr_t* x) {
    Number larger, smaller;
    mpfr_hypot(larger, x[0], x[1], MPFR_RNDN);
    (mpfr_signbit(x[0]) ? mpfr_sub : mpfr_add)(larger, larger, x[0], MPFR_RNDN);
    mpfr_div_2ui(larger, larger, 1, MPFR_RNDN);
    mpfr_sqrt(larger, larger, MPFR_RNDN);
    mpfr_div(smaller, x[1], larger, MPFR_RNDN);
    mpfr_div_2ui(smaller, smaller, 1, MPFR_RNDN);
    if (mpfr_zero_p(larger.v)) mpfr_set(smaller, x[1], MPFR_RNDN);
    const bool left = mpfr_signbit(x[0]);
    if (left) mpfr_swap(larger, smaller);
    left ? mpfr_abs(y[0], larger, MPFR_RNDN) : mpfr_set(y[0], larger, MPFR_RNDN);
    left ? mpfr_copysign(y[1], smaller, x[1], MPFR_RNDN) : mpfr_set(y[1], smaller, MPFR_RNDN);
}

// Sine and cosine of u, and the hyperbolic ones of v, beyond which all of them overflow times any number.
struct Functions {
    Number sine, cosine, sinh, cosh;
    Functions(mpfr_srcptr u, mpfr_srcptr v) {
        // Of what is tiny the second terms are below 2^-200, and the library slow.
        const auto is_tiny = [](mpfr_srcptr x) {
            return mpfr_zero_p(x) || (mpfr_number_p(x) && mpfr_get_exp(x) < -100);
        };
        if (is_tiny(u)) {
            mpfr_set(sine, u, MPFR_RNDN);
            mpfr_set_ui(cosine, 1, MPFR_RNDN);
        } else {
            mpfr_sin_cos(sine, cosine, u, MPFR_RNDN);
        }
        Number w(v);
        if (is_tiny(w)) {
            mpfr_set(sinh, w, MPFR_RNDN);
            mpfr_set_ui(cosh, 1, MPFR_RNDN);
            return;
        }
        if (mpfr_cmp_si(w, 100'000) > 0) mpfr_set_si(w, 100'000, MPFR_RNDN);
        if (mpfr_cmp_si(w, -100'000) < 0) mpfr_set_si(w, -100'000, MPFR_RNDN);
        mpfr_sinh_cosh(sinh, cosh, w, MPFR_RNDN);
    }
    // (sinh cosh + i sin cos) / (sinh^2 + cos^2): the hyperbolic tangent of v + i u.
    void tanh(mpfr_ptr re, mpfr_ptr im) {
        Number divisor;
        sum_of_products(divisor, sinh, sinh, 1, cosine, cosine);
        mpfr_mul(sinh, sinh, cosh, MPFR_RNDN);
        mpfr_mul(sine, sine, cosine, MPFR_RNDN);
        mpfr_div(re, sinh, divisor, MPFR_RNDN);
        mpfr_div(im, sine, divisor, MPFR_RNDN);
    }
};
#endif

// Points next to the unit circle: some of them as near as doubles get, some on rays from it; and of floats.
void next_to_unit_circle(std::vector<double>& list) {
    for (int k = 1; k < 64; ++k) {
        const double x = std::ldexp(k + 0.37, -6), y = std::sqrt((1 - x) * (1 + x));
        for (const double out : {0.0, 0x1p-52, 0x1p-40, -0x1p-26, 0x1p-12})
            list.insert(list.end(), {x * (1 + out), (k & 1 ? y : -y) * (1 + out)});
        const double x_s = static_cast<float>(x);
        list.insert(list.end(), {-x_s, static_cast<float>(std::sqrt(1 - x_s * x_s))});
    }
    for (const double b : {0x1p-20, 0x1p-100, 0x1p-300, 0x1p-505, 0x1p-530})
        for (const double a : {1.0, 0x1.fffffffffffffp-1, 0x1.0000000000001p+0}) list.insert(list.end(), {a, b, b, a});
}

// Factors of which the terms of a product's part cancel almost.
void cancelling(std::vector<double>& list) {
    for (const double a : {0x1.23456789abcdfp+0, 0x1.fffffffffffffp+3, 0x1.8p-10, 0x1.6a09e667f3bcdp+0})
        for (const double b : {0x1.0000000000001p+0, 0x1.3333333333333p+2, 0x1.aaaaaaaaaaaabp-5}) {
            const double c = a * b;
            for (const double d : {c, std::nextafter(c, 0), std::nextafter(c, 1e9)}) {
                list.insert(list.end(), {a, d, b, 1});
                list.insert(list.end(), {a, 1, d, b});
                list.insert(list.end(), {static_cast<float>(a), static_cast<float>(c), static_cast<float>(b), 1});
            }
        }
}

}  // namespace

std::vector<Function> complex_functions() {
    const std::vector<double> limits = {0x1p-60, 0x1p+61, 0x1p-200, 0x1p+200, 0x1p-440, 0x1p+480, 0x1p-500, 0x1p+500};
    const std::vector<double> turns = {1.5707963267948966, 3.141592653589793, 6.283185307179586, 22, 90112, 0x1p+30};
    const std::vector<double> powers = {0x1p-900, 0x1p-540, 18.7,    44,       87.3365, 88.7228,
                                        354,      708,      708.396, 709.7827, 745.13,  1418};
    const std::vector<Range> turning = {{-10, 10}, {-1000, 1000}, {-100'000, 100'000}};
    const std::vector<Range> growing = {{-3, 3}, {-88, 88}, {-720, 720}};
    std::vector<double> both = turns;
    both.insert(both.end(), powers.begin(), powers.end());
    return {
        {"Add", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_add(y[0], x[0], x[2], MPFR_RNDN);
             mpfr_add(y[1], x[1], x[3], MPFR_RNDN);
         })},
        {"Sub", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             mpfr_sub(y[0], x[0], x[2], MPFR_RNDN);
             mpfr_sub(y[1], x[1], x[3], MPFR_RNDN);
         })},
        {"Mul", "cz", EXACT_BY(product<1>), nullptr, {{-10, 10}}, limits, {}, cancelling},
        {"MulByConj", "cz", EXACT_BY(product<-1>), nullptr, {{-10, 10}}, limits, {}, cancelling},
        {"Div", "cz", EXACT_BY(quotient), nullptr, {{-10, 10}}, limits, {}, cancelling},
        {"Abs", "cz", EXACT(mpfr_hypot), nullptr, {{-10, 10}}, limits},
        {"Arg", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_atan2(y[0], x[1], x[0], MPFR_RNDN); })},
        {"CIS", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_sin_cos(y[1], y[0], x[0], MPFR_RNDN); }), nullptr,
         turning, turns},
        {"Exp", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             Number power;
             mpfr_exp(power, x[0], MPFR_RNDN);
             mpfr_sin_cos(y[1], y[0], x[1], MPFR_RNDN);
             for (const int part : {0, 1}) mpfr_mul(y[part], y[part], power, MPFR_RNDN);
         }),
         nullptr, growing, both, turning},
        {"Ln", "cz", EXACT_BY(logarithm<0>), nullptr, {{-10, 10}, {-1.5, 1.5}}, limits, {}, next_to_unit_circle},
        {"Log10", "cz", EXACT_BY(logarithm<10>), nullptr, {{-10, 10}, {-1.5, 1.5}}, limits, {}, next_to_unit_circle},
        {"Sqrt", "cz", EXACT_BY(root), nullptr, {{-10, 10}}, limits},
        {"Sin", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             Functions f(x[0], x[1]);
             mpfr_mul(y[0], f.sine, f.cosh, MPFR_RNDN);
             mpfr_mul(y[1], f.cosine, f.sinh, MPFR_RNDN);
         }),
         nullptr, turning, both, growing},
        {"Cos", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             Functions f(x[0], x[1]);
             mpfr_mul(y[0], f.cosine, f.cosh, MPFR_RNDN);
             mpfr_mul(y[1], f.sine, f.sinh, MPFR_RNDN);
             mpfr_neg(y[1], y[1], MPFR_RNDN);
         }),
         nullptr, turning, both, growing},
        {"Sinh", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             Functions f(x[1], x[0]);
             mpfr_mul(y[0], f.cosine, f.sinh, MPFR_RNDN);
             mpfr_mul(y[1], f.sine, f.cosh, MPFR_RNDN);
         }),
         nullptr, growing, both, turning},
        {"Cosh", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             Functions f(x[1], x[0]);
             mpfr_mul(y[0], f.cosine, f.cosh, MPFR_RNDN);
             mpfr_mul(y[1], f.sine, f.sinh, MPFR_RNDN);
         }),
         nullptr, growing, both, turning},
        {"Tan", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) { Functions(x[0], x[1]).tanh(y[1], y[0]); }), nullptr, turning,
         both, growing},
        {"Tanh", "cz", EXACT_BY([](mpfr_t* y, mpfr_t* x) { Functions(x[1], x[0]).tanh(y[0], y[1]); }), nullptr, growing,
         both, turning},
    };
}

}  // namespace orv::accuracy
