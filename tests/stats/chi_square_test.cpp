// The chi-square distribution and its quantile, and the constants of the translated biweight, against MPFR.
#include "stats/chi_square.h"
#include "stats/robust/translated_biweight.h"

#include <gtest/gtest.h>

#include <mpfr.h>

#include <cmath>

namespace {

using namespace orv::stats;

constexpr int precision = 320;

struct Real {
    mpfr_t value;
    Real() { mpfr_init2(value, precision); }
    ~Real() { mpfr_clear(value); }
    Real(const Real&) = delete;
    operator double() const { return mpfr_get_d(value, MPFR_RNDN); }
};

// The upper tail, the lower one and x times the density. With y = x / 2 the upper tail is a finite sum of positive terms:
// e^-y (1 + y + y^2 / 2! + ...) for an even number of degrees of freedom, erfc(sqrt y) and such terms of half orders for an odd one.
struct Exact {
    Real upper, lower, slope;

    Exact(int freedom, double x) {
        Real y, term;
        mpfr_set_d(y.value, 0.5 * x, MPFR_RNDN);
        mpfr_neg(term.value, y.value, MPFR_RNDN);
        mpfr_exp(term.value, term.value, MPFR_RNDN);
        if (freedom % 2 != 0) {
            mpfr_sqrt(slope.value, y.value, MPFR_RNDN);
            mpfr_erfc(upper.value, slope.value, MPFR_RNDN);
            mpfr_mul(term.value, term.value, slope.value, MPFR_RNDN);
            mpfr_set_d(lower.value, 0.5, MPFR_RNDN);
            mpfr_gamma(lower.value, lower.value, MPFR_RNDN);
            mpfr_div(term.value, term.value, lower.value, MPFR_RNDN);
        } else {
            mpfr_set_zero(upper.value, 1);
            mpfr_mul(term.value, term.value, y.value, MPFR_RNDN);
        }
        // term: y^a e^-y / Gamma(a), which is the slope of twice a degrees of freedom.
        for (int twice = freedom % 2 != 0 ? 1 : 2;; twice += 2) {
            mpfr_set(slope.value, term.value, MPFR_RNDN);
            if (twice == freedom) break;
            mpfr_mul_ui(term.value, term.value, 2, MPFR_RNDN);
            mpfr_div_ui(term.value, term.value, twice, MPFR_RNDN);
            mpfr_add(upper.value, upper.value, term.value, MPFR_RNDN);
            mpfr_mul(term.value, term.value, y.value, MPFR_RNDN);
        }
        if (freedom % 2 == 0) {
            mpfr_neg(term.value, y.value, MPFR_RNDN);
            mpfr_exp(term.value, term.value, MPFR_RNDN);
            mpfr_add(upper.value, upper.value, term.value, MPFR_RNDN);
        }
        mpfr_ui_sub(lower.value, 1, upper.value, MPFR_RNDN);
    }
};

double error(double got, double exact) { return std::fabs(got - exact) / exact; }

constexpr int freedoms[] = {1, 2, 3, 4, 7, 10, 31, 32, 33, 75, 200, 501};

// From far below the mean to far above it, on both sides of where the series gives way to the fraction.
TEST(ChiSquare, Tails) {
    for (const int freedom : freedoms) {
        EXPECT_EQ(chi_square(freedom, 0).upper, 1);
        EXPECT_EQ(chi_square(freedom, INFINITY).lower, 1);
        double worst = 0;
        for (double x = freedom * 1e-2; x < 20 * freedom + 1400; x *= 1.15) {
            const Exact exact(freedom, x);
            const Tails tails = chi_square(freedom, x);
            // What the precision leaves of a difference.
            if (exact.lower > 1e-80) worst = std::fmax(worst, error(tails.lower, exact.lower));
            if (exact.upper > 1e-300) worst = std::fmax(worst, error(tails.upper, exact.upper));
        }
        EXPECT_LT(worst, 3e-13) << freedom;
    }
}

TEST(ChiSquare, Quantiles) {
    for (const int freedom : freedoms)
        for (const double upper : {1e-300, 1e-40, 1e-9, 0.001, 0.05, 0.3, 0.5, 0.5000001, 0.9, 0.999, 1 - 1e-9}) {
            const double x = chi_square_quantile(freedom, upper);
            const Exact exact(freedom, x);
            Real off;
            mpfr_sub_d(off.value, exact.upper.value, upper, MPFR_RNDN);
            // By how much of itself x is off.
            EXPECT_LT(std::fabs(off / exact.slope), 3e-13) << freedom << " " << upper << " " << x;
        }
}

// The mean of rho as a sum over thin shells, rho being the integral of psi by Simpson's rule.
double mean_rho(const TranslatedBiweight& biweight, int q) {
    const int steps = 500;
    const double h = biweight.reach() / steps;
    long double rho = 0, mean = 0;
    double upper = 1;
    const auto psi = [&](double d) { return d * biweight.weight(d); };
    for (int k = 0; k < steps; ++k) {
        const double next = Exact(q, (k + 1) * h * (k + 1) * h).upper;
        const long double grown = rho + h / 6 * (psi(k * h) + 4 * psi((k + 0.5) * h) + psi((k + 1) * h));
        mean += 0.5 * (rho + grown) * (upper - next);
        rho = grown, upper = next;
    }
    EXPECT_NEAR(static_cast<double>(rho) / biweight.most, 1, 1e-9);
    return static_cast<double>(mean + rho * upper);
}

TEST(TranslatedBiweight, Constants) {
    const struct {
        int q;
        double breakdown, rejection;
        char kept;  // 'b': both, 'f': weight falls from the centre, 'h': over the last fifth
    } cases[] = {{10, 0.5, 1e-3, 'b'}, {5, 0.4, 1e-3, 'b'}, {1, 0.5, 1e-3, 'f'},
                 {2, 0.5, 0.01, 'f'},  {5, 0.2, 1e-3, 'h'}, {100, 0.5, 1e-3, 'h'}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.q);
        const TranslatedBiweight biweight = translated_biweight(row.q, row.breakdown, row.rejection);
        EXPECT_NEAR(biweight.expected / biweight.most, row.breakdown, 1e-12);
        EXPECT_NEAR(mean_rho(biweight, row.q) / biweight.expected, 1, 3e-5);
        const double rejected = chi_square(row.q, biweight.reach() * biweight.reach()).upper;
        const double ratio = rejected / row.rejection, share = biweight.m / biweight.reach();
        EXPECT_TRUE(row.kept == 'b'   ? std::fabs(ratio - 1) < 1e-11
                    : row.kept == 'f' ? share == 0 && ratio > 1
                                      : std::fabs(share - 0.8) < 1e-12 && ratio < 1)
            << ratio << " " << share;
        // rho is continuous, and psi its derivative.
        for (double d = 0.01; d < biweight.reach() + 1; d += 0.037) {
            const double h = 1e-5, slope = (biweight.rho(d + h) - biweight.rho(d - h)) / (2 * h);
            EXPECT_NEAR(slope, d * biweight.weight(d), 1e-6) << d;
        }
    }
}

}  // namespace
