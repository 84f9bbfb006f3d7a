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

// The polynomial of degree 3 in d next to f(c + d), f > 0, over [-h, h] by the greatest relative difference (Remez's exchange on
// an interpolation of f that is far closer than the result can be).
std::vector<Real> closest_cubic(const F& f, const Real& c, const Real& h) {
    const auto value = [](const std::vector<Real>& p, const Real& x) {
        Real sum = 0.0;
        for (size_t k = p.size(); k-- > 0;) sum = sum * x + p[k];
        return sum;
    };
    const auto derivative = [](const std::vector<Real>& p) {
        std::vector<Real> result;
        for (size_t k = 1; k < p.size(); ++k) result.push_back(Real(static_cast<double>(k)) * p[k]);
        return result;
    };
    const auto product = [](const std::vector<Real>& a, const std::vector<Real>& b) {
        std::vector<Real> result(a.size() + b.size() - 1);
        for (size_t i = 0; i < a.size(); ++i)
            for (size_t j = 0; j < b.size(); ++j) result[i + j] = result[i + j] + a[i] * b[j];
        return result;
    };
    const std::vector<Real> model = fit(f, c, h, 12);
    std::vector<Real> at, cubic;
    for (int k = 0; k <= 4; ++k) at.push_back(-h * cos(pi() * Real(k) / Real(4)));
    for (int round = 0; round < 6; ++round) {
        // cubic(x_k) = (1 + (-1)^k E) model(x_k), k = 0 to 4: four of the fifth divided differences give E, the rest the cubic.
        std::vector<Real> plain, signed_values;
        for (int k = 0; k <= 4; ++k) {
            plain.push_back(value(model, at[k]));
            signed_values.push_back(k % 2 ? -plain[k] : plain[k]);
        }
        const auto differences = [&](std::vector<Real> v) {
            for (int order = 1; order <= 4; ++order)
                for (int k = 4; k >= order; --k) v[k] = (v[k] - v[k - 1]) / (at[k] - at[k - order]);
            return v;
        };
        const std::vector<Real> of_plain = differences(plain), of_signed = differences(signed_values);
        const Real error = -(of_plain[4] / of_signed[4]);
        cubic.assign(4, Real(0.0));
        for (int k = 3; k >= 0; --k) {
            for (int power = 3; power > 0; --power) cubic[power] = cubic[power - 1] - at[k] * cubic[power];
            cubic[0] = of_plain[k] + error * of_signed[k] - at[k] * cubic[0];
        }
        // The extremes within, where (cubic / model)' = 0.
        std::vector<Real> slope = product(derivative(cubic), model);
        const std::vector<Real> other = product(cubic, derivative(model));
        for (size_t k = 0; k < slope.size(); ++k) slope[k] = slope[k] - other[k];
        const std::vector<Real> bend = derivative(slope);
        for (int k = 1; k <= 3; ++k)
            for (int step = 0; step < 8; ++step) at[k] = at[k] - value(slope, at[k]) / value(bend, at[k]);
    }
    return cubic;
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

// A quadratic in floats; a fourth number fills the row.
void float_row(Table& table, const std::vector<Real>& c) {
    table.row_of_floats({to_float(c[0]) + 0.0f, to_float(c[1]), to_float(c[2]) + 0.0f, 0.0f});
}

// The inverse of the normal distribution at q / 2, its sign turned, by 1 - q.
Real normal_inverse_by_v(const Real& q) {
    const Real root = to_double(q) < 0.25 ? erfc_inverse_of_log(-log(q)) : erf_inverse(Real(1) - q);
    return sqrt(Real(2)) * root / (Real(1) - q);
}
// For few digits: that in q. 16 rows a power of two, by the top 16
// bits of q, from those of 1 less a little down to 17/16 of 2^-53. (The kernel's record has that least q behind the rows.)
void short_inverse(const Output& output) {
    Table table(output, "cdf_norm_inv_cubic", "cubics for q from 1 downward, 16 a power of two");
    for (int row = 0; row < 847; ++row) {
        const int top = 0x3FEF - row;
        const Real unit = exp2(Real((top >> 4) - 1023));
        const F f = [&](const Real& m) { return normal_inverse_by_v(unit * m); };
        const std::vector<Real> c = closest_cubic(f, Real(1) + Real((top & 15) + 0.5) / Real(16), Real(1) / Real(32));
        table.row({to_double(c[0]), to_double(c[1]), to_double(c[2]), to_double(c[3])});
    }
    Table floats(output, "cdf_norm_inv_float", "quadratics for q from 1 downward, 4 a power of two");
    for (int row = 0; row < 4 * 126; ++row) {
        const Real unit = exp2(Real(-1 - row / 4));
        const F f = [&](const Real& m) { return normal_inverse_by_v(unit * m); };
        float_row(floats, fit(f, Real(1) + Real(3 - row % 4 + 0.5) / Real(4), Real(1) / Real(8), 2));
    }
}

// ---- Error functions and the normal distribution ---------------------------------------------------------------------

// Row i: erf(i/128) and its derivative there; `wide`: to two parts, the derivative's first of 26 bits.
// In floats: erf about i/32.
void erf_rows(const Output& output) {
    Table floats(output, "erf_float", "quadratics about i/32");
    for (int i = 0; i <= 128; ++i)
        float_row(floats, fit([](const Real& x) { return erf(x); }, Real(i) / Real(32), Real(1) / Real(64), 2));
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
// In t = x + 1: e^(x^2) erfc x, and e^(x^2/2) of the lower tail of the normal distribution at -x. About 64 points a power of two,
// both ends included; c0 and c1 with leading parts of 20 bits, cut, and the rests before them.
void tail_rows(const Output& output, const std::string& name, int powers, const F& f) {
    Table table(output, name, "the rests and leading parts of two coefficients, six more");
    for (int i = 0; i <= 64 * powers; ++i) {
        const Real unit = exp2(Real(i / 64));
        const std::vector<Real> c = fit(f, unit * (Real(1) + Real(i % 64) / Real(64)), unit / Real(128), 7);
        const Real high0 = to_bits(c[0], 20, MPFR_RNDZ), high1 = to_bits(c[1], 20, MPFR_RNDZ);
        table.row({to_double(c[0] - high0), to_double(high0), to_double(c[1] - high1), to_double(high1),
                   to_double(c[2]), to_double(c[3]), to_double(c[4]), to_double(c[5]), to_double(c[6]),
                   to_double(c[7])});
    }
    Table short_table(output, name + "_short", "the coefficients of a short expansion");
    short_expansions(short_table, 0, powers - 1, f);
}
void scaled_tails(const Output& output) {
    tail_rows(output, "erfcx", 5, [](const Real& t) { return scaled_erfc(t - Real(1)); });
    Table floats(output, "erfcx_float", "quadratics in t, 8 a power of two");
    for (int i = 0; i < 32; ++i) {
        const Real unit = exp2(Real(i / 8));
        const F f = [](const Real& t) { return scaled_erfc(t - Real(1)); };
        float_row(floats, fit(f, unit * (Real(1) + Real(i % 8 + 0.5) / Real(8)), unit / Real(16), 2));
    }
    Table exp2_cubic(output, "exp2_cubic_float", "a cubic for 2^f, f from -1/2 to 1/2");
    const std::vector<Real> c = closest_cubic([](const Real& f) { return exp2(f); }, Real(0.0), Real(0.5));
    exp2_cubic.row_of_floats({to_float(c[0]), to_float(c[1]), to_float(c[2]), to_float(c[3])});
    tail_rows(output, "cdf_norm_scaled", 6,
              [](const Real& t) { return scaled_erfc((t - Real(1)) / sqrt(Real(2))) / Real(2); });
}
// Row i: the normal distribution at -i/64 and its density there, times 2^128. 38.5 takes 2465 rows; three more fill the last of the
// cache lines of 64 bytes.
void cdf_norm_rows(const Output& output) {
    Table table(output, "cdf_norm_2468", "the distribution at -i/64 and its density, times 2^128");
    for (int i = 0; i < 2468; ++i) {
        const Real c = Real(i) / Real(64), unit = exp2(Real(128)), half_square = c * c / Real(2);
        table.row({to_double(unit * exp(-half_square) * scaled_erfc(c / sqrt(Real(2))) / Real(2)),
                   to_double(unit * exp(-half_square) / sqrt(Real(2) * pi()))});
    }
}
// 2^(j/128), the first part of 26 bits.
void split_powers(const Output& output) {
    Table table(output, "exp2_128_split", "2^(j/128) to 26 bits and the rest");
    for (int j = 0; j < 128; ++j) {
        const Real power = exp2(Real(j) / Real(128)), high = to_bits(power, 26);
        table.row({to_double(high), to_double(power - high) + 0.0});
    }
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
    short_inverse(output);
    scaled_tails(output);
    cdf_norm_rows(output);
    split_powers(output);
    exp_int(output);
    gamma_rows(output);
    ln_gamma_rows(output);
    ln_gamma_zeros(output);
}

}  // namespace tablegen
