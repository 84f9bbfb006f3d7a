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

// The middle and the half width of the 32 intervals of each power of two from 2^first to below 2^(last + 1).
void for_intervals(int first, int last, const std::function<void(const Real& c, const Real& h)>& row) {
    for (int exponent = first; exponent <= last; ++exponent)
        for (int j = 0; j < 32; ++j) {
            const Real unit = exp2(Real(exponent));
            row(unit * (Real(1) + Real(j + 0.5) / Real(32)), unit / Real(64));
        }
}
void expansions(Table& table, int first, int last, const F& f) {
    for_intervals(first, last, [&](const Real& c, const Real& h) { expansion_row(table, fit(f, c, h, 8)); });
}
// And for results of fewer digits: coefficients up to the fifth power, none of them in parts.
void short_expansions(Table& table, int first, int last, const F& f) {
    for_intervals(first, last, [&](const Real& at, const Real& h) {
        const std::vector<Real> c = fit(f, at, h, 5);
        table.row(
            {to_double(c[0]), to_double(c[1]), to_double(c[2]), to_double(c[3]), to_double(c[4]), to_double(c[5])});
    });
}
// Both of a function.
void both_expansions(const Output& output, const std::string& name, int first, int last, const F& f) {
    Table table(output, name, "the expansion's constant term high and low, then its coefficients");
    expansions(table, first, last, f);
    Table short_table(output, name + "_short", "the coefficients of a short expansion");
    short_expansions(short_table, first, last, f);
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
// e^(x^2) erfc(x); from 8 on by Laplace's continued fraction, 1 / (x + (1/2) / (x + (2/2) / (x + ...))) / sqrt pi, whose n
// terms leave e^(-2 x sqrt(2 n)) or so.
Real scaled_erfc(const Real& x) {
    const double size = to_double(x);
    if (size < 8) return exp(x * x) * erfc(x);
    Real tail = x;
    for (int n = 30 + static_cast<int>(6000 / (size * size)); n > 0; --n) tail = x + Real(n) / Real(2) / tail;
    return Real(1) / (tail * sqrt(pi()));
}
// The y with erfc(y) = e^-l.
Real erfc_inverse_of_log(const Real& l) {
    return zero_from(sqrt(l), [&](const Real& y) {
        const Real value = scaled_erfc(y);
        return -((log(value) - y * y + l) * value / two_over_root_pi());
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

// ---- Error functions and the normal distribution ---------------------------------------------------------------------

// Row i: erf(i/128) and its derivative there; `wide`: to two parts, the derivative's first of 26 bits.
void erf_rows(const Output& output) {
    Table table(output, "erf_768", "erf(i/128) and its derivative");
    Table wide(output, "erf_768_wide", "erf(i/128), its derivative's leading part; the rests");
    for (int i = 0; i < 768; ++i) {
        const Real c = Real(i) / Real(128);
        const Real e = erf(c), g = two_over_root_pi() * exp(-(c * c));
        table.row({to_double(e), to_double(g)});
        const Real g_high = to_bits(g, 26);
        wide.row({to_double(e), to_double(g_high), to_double(e - Real(to_double(e))) + 0.0, to_double(g - g_high)});
    }
}
// In t = x + 1: e^(x^2) erfc x, and e^(x^2/2) of the lower tail of the normal distribution at -x.
void scaled_tails(const Output& output) {
    both_expansions(output, "erfcx", 0, 4, [](const Real& t) { return scaled_erfc(t - Real(1)); });
    both_expansions(output, "cdf_norm_scaled", 0, 5,
                    [](const Real& t) { return scaled_erfc((t - Real(1)) / sqrt(Real(2))) / Real(2); });
}

// In x: e^x E1(x).
void exp_int(const Output& output) {
    both_expansions(output, "exp_int", -4, 9, [](const Real& x) {
        Real value = -x;
        mpfr_eint(value.value, value.value, MPFR_RNDN);
        return -(value * exp(x));
    });
}

// ---- Gamma functions -------------------------------------------------------------------------------------------------

// Gamma from 4j + 1 to 4j + 2 for j from 0 to 46, in eighths, that is, with h = 1/16, and from 121 on times 2^-1000. A row
// has the leading parts of c0 to c2, c3 to c12, and what the leading parts leave.
void gamma_rows(const Output& output) {
    Table table(output, "gamma", "the leading parts of three coefficients, ten more, the rests of the three");
    for (int j = 0; j < 47; ++j)
        for (int eighth = 0; eighth < 8; ++eighth) {
            const Real scale = exp2(Real(4 * j + 1 < 121 ? 0 : -1000));
            const auto f = [&](const Real& t) { return gamma(t) * scale; };
            const std::vector<Real> c = fit(f, Real(4 * j + 1 + (eighth + 0.5) / 8), Real(1) / Real(16), 12);
            const auto [c0, rest0] = Table::split(c[0]);
            const auto [c1, rest1] = Table::split(c[1]);
            const auto [c2, rest2] = Table::split(c[2]);
            table.row({c0, c1, c2, to_double(c[3]), to_double(c[4]), to_double(c[5]), to_double(c[6]), to_double(c[7]),
                       to_double(c[8]), to_double(c[9]), to_double(c[10]), to_double(c[11]), to_double(c[12]), rest0,
                       rest1, rest2});
        }
}

// In t: ln Gamma(t) / ((t - 1) (t - 2)), as the other expansions, with a ninth power and the rest of c1 at the end.
void ln_gamma_rows(const Output& output) {
    Table table(output, "ln_gamma",
                "the expansion's constant term high and low, nine coefficients, the rest of the first");
    const auto f = [](const Real& t) { return lngamma(t) / ((t - Real(1)) * (t - Real(2))); };
    for (int exponent = -5; exponent <= 6; ++exponent)
        for (int j = 0; j < 32; ++j) {
            const Real unit = exp2(Real(exponent));
            const std::vector<Real> c = fit(f, unit * (Real(1) + Real(j + 0.5) / Real(32)), unit / Real(64), 9);
            const Real high = to_bits(c[0], 26);
            const auto [c1, rest1] = Table::split(c[1]);
            table.row({to_double(high), to_double(c[0] - high), c1, to_double(c[2]), to_double(c[3]), to_double(c[4]),
                       to_double(c[5]), to_double(c[6]), to_double(c[7]), to_double(c[8]), to_double(c[9]), rest1});
        }
}

// About each zero z of ln|Gamma| between -17 and -2, two from one whole number to the next: z in three parts; and
// ln|Gamma(z + d)| / d, its constant term c0 in two, for d with |c0 d| up to 0.03.
void ln_gamma_zeros(const Output& output) {
    Table table(output, "ln_gamma_zeros", "a zero in three parts, twelve coefficients with the first in two");
    const auto ln_gamma = [](const Real& x) {
        const Real g = gamma(x);
        return log(g * g) / Real(2);
    };
    Real factorial = 2;
    for (int n = 2; n <= 16; ++n) {
        const Real next = factorial * Real(n + 1);
        // Gamma(-n - e) is near 1 / (n! e): a point between the pole and the zero, from which Newton's method cannot stray.
        for (const Real& start : {-Real(n) - Real(0.5) / factorial, -Real(n + 1) + Real(0.5) / next}) {
            const Real zero = zero_from(start, [&](const Real& x) { return ln_gamma(x) / digamma(x); });
            const Real slope = digamma(zero), reach = Real(0.03) / sqrt(slope * slope);
            const auto f = [&](const Real& d) { return ln_gamma(zero + d) / d; };
            const std::vector<Real> c = fit(f, Real(0), reach, 11);
            const auto [zero_high, zero_low] = Table::split(zero);
            const auto [c0, rest0] = Table::split(c[0]);
            table.row({zero_high, zero_low, to_double(zero - Real(zero_high) - Real(zero_low)), c0, rest0,
                       to_double(c[1]), to_double(c[2]), to_double(c[3]), to_double(c[4]), to_double(c[5]),
                       to_double(c[6]), to_double(c[7]), to_double(c[8]), to_double(c[9]), to_double(c[10]),
                       to_double(c[11])});
        }
        factorial = next;
    }
}

}  // namespace

void special_tables(const Output& output) {
    inverse(output, "erf_inv", Real(1));
    inverse(output, "cdf_norm_inv", sqrt(Real(2)));
    inverse_tail(output);
    erf_rows(output);
    scaled_tails(output);
    exp_int(output);
    gamma_rows(output);
    ln_gamma_rows(output);
    ln_gamma_zeros(output);
}

}  // namespace tablegen
