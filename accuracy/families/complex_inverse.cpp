// Inverse functions and powers of complex numbers. What cancels is worked out with all its digits; the rest are sums of
// positive terms.
#include "accuracy/families/number.h"
#include "accuracy/functions.h"

#include <cmath>
#include <complex>

namespace orv::accuracy {

namespace {

#ifndef _WIN32
// x^2 + y^2 - 1, of squares as long as they can be.
void beyond_unit_circle(mpfr_ptr q, mpfr_srcptr x, mpfr_srcptr y) {
    mpfr_t all;
    mpfr_init2(all, 4400);
    mpfr_sqr(all, x, MPFR_RNDN);
    mpfr_sub_ui(all, all, 1, MPFR_RNDN);
    Number square;
    mpfr_sqr(square, y, MPFR_RNDN);
    mpfr_add(all, all, square, MPFR_RNDN);
    mpfr_set(q, all, MPFR_RNDN);
    mpfr_clear(all);
}

// Of arcsin(x + i y) = u + i v for magnitudes x and y: the root of cos^2 u + y^2, so that tan u is x over it; and v.
void arc_sine(mpfr_ptr across, mpfr_ptr v, mpfr_srcptr x, mpfr_srcptr y) {
    Number q, d, twice_y, sinh_squared, cos_squared, y_squared;
    beyond_unit_circle(q, x, y);
    mpfr_mul_2ui(twice_y, y, 1, MPFR_RNDN);
    mpfr_hypot(d, q, twice_y, MPFR_RNDN);
    mpfr_sqr(y_squared, y, MPFR_RNDN);
    // (D + q) / 2 and (D - q) / 2, of product y^2.
    const bool inside = mpfr_sgn(q.v) < 0;
    mpfr_ptr larger = inside ? cos_squared.v : sinh_squared.v, smaller = inside ? sinh_squared.v : cos_squared.v;
    (inside ? mpfr_sub : mpfr_add)(larger, d, q, MPFR_RNDN);
    mpfr_div_2ui(larger, larger, 1, MPFR_RNDN);
    if (mpfr_zero_p(larger))
        mpfr_set_zero(smaller, 1);
    else
        mpfr_div(smaller, y_squared, larger, MPFR_RNDN);
    mpfr_sqrt(v, sinh_squared, MPFR_RNDN);
    mpfr_asinh(v, v, MPFR_RNDN);
    mpfr_add(across, cos_squared, y_squared, MPFR_RNDN);
    mpfr_sqrt(across, across, MPFR_RNDN);
}

void put_sign(mpfr_ptr y, mpfr_srcptr of) { mpfr_copysign(y, y, of, MPFR_RNDN); }

void asin(mpfr_ptr u, mpfr_ptr v, mpfr_srcptr re, mpfr_srcptr im) {
    Number x, y, across, size;
    mpfr_abs(x, re, MPFR_RNDN);
    mpfr_abs(y, im, MPFR_RNDN);
    arc_sine(across, size, x, y);
    mpfr_atan2(u, x, across, MPFR_RNDN);
    mpfr_set(v, size, MPFR_RNDN);
    put_sign(u, re);
    put_sign(v, im);
}

// The angle, and the size of the imaginary part.
void acos(mpfr_ptr u, mpfr_ptr v, mpfr_srcptr re, mpfr_srcptr im) {
    Number x, y, across, size;
    mpfr_abs(x, re, MPFR_RNDN);
    mpfr_abs(y, im, MPFR_RNDN);
    arc_sine(across, size, x, y);
    mpfr_atan2(u, across, re, MPFR_RNDN);
    mpfr_set(v, size, MPFR_RNDN);
}

void atanh(mpfr_ptr u, mpfr_ptr v, mpfr_srcptr re, mpfr_srcptr im) {
    Number x, y, from_1, ratio, q;
    mpfr_abs(x, re, MPFR_RNDN);
    mpfr_abs(y, im, MPFR_RNDN);
    beyond_unit_circle(q, x, y);
    mpfr_ui_sub(from_1, 1, x, MPFR_RNDN);
    mpfr_sqr(from_1, from_1, MPFR_RNDN);
    mpfr_sqr(ratio, y, MPFR_RNDN);
    mpfr_add(from_1, from_1, ratio, MPFR_RNDN);
    mpfr_mul_2ui(ratio, x, 2, MPFR_RNDN);
    mpfr_div(ratio, ratio, from_1, MPFR_RNDN);
    mpfr_log1p(ratio, ratio, MPFR_RNDN);
    mpfr_div_2ui(u, ratio, 2, MPFR_RNDN);
    mpfr_mul_2ui(y, y, 1, MPFR_RNDN);
    mpfr_neg(q, q, MPFR_RNDN);
    mpfr_atan2(v, y, q, MPFR_RNDN);
    mpfr_div_2ui(v, v, 1, MPFR_RNDN);
    // At the pole the angle of (0, 0) is that of a point to the right.
    if (mpfr_zero_p(from_1.v)) mpfr_set_zero(v, 1);
    put_sign(u, re);
    put_sign(v, im);
}

void power(mpfr_t* y, mpfr_t* x) {
    Number size, angle, re, im, term;
    mpfr_sqr(size, x[0], MPFR_RNDN);
    mpfr_sqr(term, x[1], MPFR_RNDN);
    mpfr_add(size, size, term, MPFR_RNDN);
    mpfr_log(size, size, MPFR_RNDN);
    mpfr_div_2ui(size, size, 1, MPFR_RNDN);
    mpfr_atan2(angle, x[1], x[0], MPFR_RNDN);
    mpfr_mul(re, x[2], size, MPFR_RNDN);
    mpfr_mul(term, x[3], angle, MPFR_RNDN);
    mpfr_sub(re, re, term, MPFR_RNDN);
    mpfr_mul(im, x[2], angle, MPFR_RNDN);
    mpfr_mul(term, x[3], size, MPFR_RNDN);
    mpfr_add(im, im, term, MPFR_RNDN);
    mpfr_exp(re, re, MPFR_RNDN);
    mpfr_sin_cos(y[1], y[0], im, MPFR_RNDN);
    mpfr_mul(y[0], y[0], re, MPFR_RNDN);
    mpfr_mul(y[1], y[1], re, MPFR_RNDN);
}
#endif

// Bases and exponents of which b ln a is moderate.
bool moderate_power(const double* x) {
    if (x[0] == 0 && x[1] == 0) return false;
    const std::complex<double> log{std::log(std::hypot(x[0], x[1])), std::atan2(x[1], x[0])};
    return std::abs(std::complex<double>{x[2], x[3]}) * std::abs(log) < 100;
}

// Next to the branch points 1 and i, as near as doubles and floats get, along the axes and aside of them.
void next_to_branch_points(std::vector<double>& list) {
    for (int n = 1; n <= 60; n += 3)
        for (const double side : {1.0, -1.0})
            for (const double slope : {0.0, 1.0, 0x1p-20, 0x1p-300}) {
                const double x = 1 + side * std::ldexp(1.0, -n), y = std::ldexp(slope, -n), x_s = static_cast<float>(x);
                list.insert(list.end(), {x, y, y, x, x_s, y, y, x_s});
            }
    for (int k = 1; k < 64; ++k) {
        const double x = std::ldexp(k + 0.37, -6), y = std::sqrt((1 - x) * (1 + x));
        list.insert(list.end(), {x, y, -y, x});
    }
    for (const double size :
         {0x1p-1074, 0x1p-1022, 0x1p-600, 0x1p-149, 0x1p-70, 0x1p+100, 0x1p+140, 0x1p+600, 0x1.8p+1023})
        for (const double other : {0x1p-1074, 0x1p-160, 0.3, 1.0, 1.7, 0x1p+700, 0x1.8p+1023})
            list.insert(list.end(), {size, other, other, size});
}

// Bases next to 1 with exponents as large, and whole powers.
void hard_complex_powers(std::vector<double>& list) {
    for (int n = 4; n < 52; n += 4)
        for (const double slope : {0.0, 0.7, 0x1p-30}) {
            const double a = 1 + std::ldexp(1.0, -n), b = std::ldexp(45.0, n);
            list.insert(list.end(), {a, std::ldexp(slope, -n), b, b / 3, 1, std::ldexp(slope, -n), b / 3, b});
        }
    for (int n = -8; n <= 8; ++n) list.insert(list.end(), {-1.25, 0, n + 0.0, 0, 0.75, -2.5, n + 0.0, 0.5});
}

}  // namespace

std::vector<Function> complex_inverse_functions() {
    const std::vector<double> limits = {0x1p-140, 0x1p+140, 0x1p-70};
    const std::vector<Range> plane = {{-4, 4}, {-1.2, 1.2}};
    return {
        {"Asin",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { asin(y[0], y[1], x[0], x[1]); }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Acos",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             acos(y[0], y[1], x[0], x[1]);
             put_sign(y[1], x[1]);
             mpfr_neg(y[1], y[1], MPFR_RNDN);
         }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Atan",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { atanh(y[1], y[0], x[1], x[0]); }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Asinh",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { asin(y[1], y[0], x[1], x[0]); }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Acosh",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) {
             acos(y[1], y[0], x[0], x[1]);
             put_sign(y[1], x[1]);
         }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Atanh",
         "cz",
         EXACT_BY([](mpfr_t* y, mpfr_t* x) { atanh(y[0], y[1], x[0], x[1]); }),
         nullptr,
         plane,
         limits,
         {},
         next_to_branch_points},
        {"Pow",
         "cz",
         EXACT_BY(power),
         nullptr,
         {{-4, 4}},
         limits,
         {},
         hard_complex_powers,
         std::numeric_limits<double>::infinity(),
         moderate_power},
        {"Powx",
         "cz",
         EXACT_BY(power),
         nullptr,
         {{-4, 4}},
         limits,
         {},
         hard_complex_powers,
         std::numeric_limits<double>::infinity(),
         moderate_power},
    };
}

}  // namespace orv::accuracy
