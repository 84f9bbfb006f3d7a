// Tables of the error functions, the normal distribution, the gamma functions and the exponential integral: expansions of
// smooth functions about the middles of short intervals.
#include "tablegen.h"

#include <functional>
#include <vector>

namespace tablegen {

namespace {

using F = std::function<Real(const Real&)>;

// The coefficients of the polynomial of degree n in d that is f(c + d) at the n + 1 Chebyshev points of [-h, h].
std::vector<Real> fit(const F& f, const Real& c, const Real& h, int n) {
    std::vector<Real> at, difference;
    for (int k = 0; k <= n; ++k) {
        at.push_back(cos(pi() * Real(2 * k + 1) / Real(2 * n + 2)));
        difference.push_back(f(c + h * at[k]));
    }
    for (int order = 1; order <= n; ++order)
        for (int k = n; k >= order; --k) difference[k] = (difference[k] - difference[k - 1]) / (at[k] - at[k - order]);
    std::vector<Real> sum(n + 1);
    for (int k = n; k >= 0; --k) {
        for (int power = n; power > 0; --power) sum[power] = sum[power - 1] - at[k] * sum[power];
        sum[0] = difference[k] - at[k] * sum[0];
    }
    Real scale = 1;
    for (int power = 0; power <= n; ++power, scale = scale * h) sum[power] = sum[power] / scale;
    return sum;
}

// The constant term to 26 bits and what that leaves, then the others up to the eighth power.
void expansion_row(Table& table, const std::vector<Real>& c) {
    const Real high = to_bits(c[0], 26);
    table.row({to_double(high), to_double(c[0] - high), to_double(c[1]), to_double(c[2]), to_double(c[3]),
               to_double(c[4]), to_double(c[5]), to_double(c[6]), to_double(c[7]), to_double(c[8])});
}

// 32 rows for each power of two from 2^first to below 2^(last + 1).
void expansions(Table& table, int first, int last, const F& f) {
    for (int exponent = first; exponent <= last; ++exponent)
        for (int j = 0; j < 32; ++j) {
            const Real unit = exp2(Real(exponent));
            expansion_row(table, fit(f, unit * (Real(1) + Real(j + 0.5) / Real(32)), unit / Real(64), 8));
        }
}

// ---- Inverse error functions -----------------------------------------------------------------------------------------

// A zero of f by Newton's method, `step` being f / f'.
Real zero_from(Real x, const F& step) {
    for (int k = 0; k < 100; ++k) {
        const Real by = step(x);
        x = x - by;
        if (mpfr_zero_p(by.value) || mpfr_get_exp(by.value) < mpfr_get_exp(x.value) - 130) break;
    }
    return x;
}
Real two_over_root_pi() { return Real(2) / sqrt(pi()); }
Real erf_inverse(const Real& v) {
    return zero_from(v, [&](const Real& y) { return (erf(y) - v) / (two_over_root_pi() * exp(-(y * y))); });
}
// The y with erfc(y) = e^-l.
Real erfc_inverse_of_log(const Real& l) {
    return zero_from(sqrt(l), [&](const Real& y) {
        const Real value = erfc(y);
        return -((log(value) + l) * value / (two_over_root_pi() * exp(-(y * y))));
    });
}

// In t: for t below 1/2 erfc's inverse of t, from 1/2 on erf's inverse of v = t - 1/2, divided by v. All times `factor`.
void inverse(const Output& output, const std::string& name, const Real& factor) {
    Table table(output, name, "the expansion's constant term high and low, then its coefficients");
    const auto central = [&](const Real& t) { return factor * erf_inverse(t - Real(0.5)) / (t - Real(0.5)); };
    expansions(table, -10, -2, [&](const Real& t) { return factor * erfc_inverse_of_log(-log(t)); });
    expansions(table, -1, -1, central);
    expansion_row(table, fit(central, Real(1) + Real(1) / Real(64), Real(1) / Real(64), 8));
}
// In s, for 2 to 32: erfc's inverse of e^(-s^2).
void inverse_tail(const Output& output) {
    Table table(output, "erfc_inv_tail", "the expansion's constant term high and low, then its coefficients");
    expansions(table, 1, 4, [](const Real& s) { return erfc_inverse_of_log(s * s); });
}

}  // namespace

void special_tables(const Output& output) {
    inverse(output, "erf_inv", Real(1));
    inverse(output, "cdf_norm_inv", sqrt(Real(2)));
    inverse_tail(output);
}

}  // namespace tablegen
