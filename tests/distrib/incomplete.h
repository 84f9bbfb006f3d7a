// Distribution functions of the gamma and the beta distribution, by power series and continued fractions (W. Gautschi, "A
// computational procedure for incomplete gamma functions", 1979; A. R. DiDonato, A. H. Morris, "Significant digit
// computation of the incomplete beta function ratios", 1992), right to 2e-9 for shapes up to 10^6.
#pragma once

#include <algorithm>
#include <cmath>

namespace orv::test {

// b0 + a1 / (b1 + a2 / (b2 + ...)) with term(k, a, b), by Lentz' method.
template <class Term>
double continued_fraction(double b0, Term term) {
    const double tiny = 1e-300;
    double f = b0 == 0 ? tiny : b0, c = f, d = 0;
    for (int k = 1; k < 1000000; ++k) {
        double a, b;
        term(k, a, b);
        d = b + a * d;
        c = b + a / c;
        d = 1 / (d == 0 ? tiny : d);
        c = c == 0 ? tiny : c;
        f *= c * d;
        if (std::fabs(c * d - 1) < 1e-15) break;
    }
    return f;
}

inline double gamma_cdf(double alpha, double x) {
    if (!(x > 0)) return 0;
    const double front = std::exp(alpha * std::log(x) - x - std::lgamma(alpha));
    if (x < alpha + 1) {
        double term = 1 / alpha, sum = term;
        for (double k = 1; term > 1e-17 * sum; ++k) sum += term *= x / (alpha + k);
        return front * sum;
    }
    const double fraction = continued_fraction(x + 1 - alpha, [=](int k, double& a, double& b) {
        a = k * (alpha - k);
        b = x + 1 - alpha + 2.0 * k;
    });
    return 1 - front / fraction;
}

// x and its complement y apart, so that neither end loses digits.
inline double beta_part(double p, double q, double x, double y) {
    const double front =
        std::exp(p * std::log(x) + q * std::log(y) + std::lgamma(p + q) - std::lgamma(p) - std::lgamma(q)) / p;
    const double fraction = continued_fraction(1, [=](int k, double& a, double& b) {
        const double m = k / 2;
        b = 1;
        a = k == 1       ? -(p + q) * x / (p + 1)
            : k % 2 == 0 ? m * (q - m) * x / ((p + 2 * m - 1) * (p + 2 * m))
                         : -(p + m) * (p + q + m) * x / ((p + 2 * m) * (p + 2 * m + 1));
    });
    return front / fraction;
}

inline double beta_cdf(double p, double q, double x) {
    if (!(x > 0)) return 0;
    if (x >= 1) return 1;
    return x < (p + 1) / (p + q + 2) ? beta_part(p, q, x, 1 - x) : 1 - beta_part(q, p, 1 - x, x);
}

}  // namespace orv::test
