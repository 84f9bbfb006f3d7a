// Tables of the inverse trigonometric functions, of the hyperbolic functions and of the inverse hyperbolic tangent.
#include "tablegen.h"

#include <vector>

namespace tablegen {

namespace {

// Row 0 serves what is below 2^-5, and has c = 0. Row 1 + 32 e + j serves 2^(e-5) (1 + [j, j + 1] / 32), and c is its middle. The
// last row serves all from 2^6 on: c = 2^100, by which (x - c) / (1 + x c) is -1/x. Beside c stands atan c in units of `unit`.
void atan_rows(const Output& output, const std::string& name, const Real& unit) {
    Table table(output, name, "c, atan c high and low, 0");
    constexpr int binades = 11;
    for (int row = 0; row <= 32 * binades + 1; ++row) {
        const int place = row - 1;
        Real c(1.0 + (place % 32 + 0.5) / 32);
        for (int e = place / 32 - 5; e < 0; ++e) c = c / Real(2);
        for (int e = place / 32 - 5; e > 0; --e) c = c * Real(2);
        if (row == 0) c = Real(0);
        if (row == 32 * binades + 1) c = Real(0x1p+100);
        const auto [high, low] = Table::split(atan(c) / unit);
        table.row({to_double(c), high, low, 0.0});
    }
}

// Row j: a polynomial next to the arc tangent of c + h for c = j / spaces and |h| up to H = 1 / (2 spaces), from the constant term on,
// less `leading` in the second coefficient, and the rest of the first, if asked for. The Taylor coefficients are
// (-1)^(n-1) sin(n phi) sin^n(phi) / n with phi = pi/2 - atan c; `powers` is what h^n / H^n for the first n that is left out has in place
// of it, by the Chebyshev polynomial of that degree.
void atan_series(const Output& output, const std::string& name, int spaces, const std::vector<double>& powers,
                 bool rest, double leading, const Real& unit) {
    Table table(output, name + "_" + std::to_string(spaces), "the coefficients next to c");
    const int left_out = static_cast<int>(powers.size());
    for (int j = 0; j <= spaces; ++j) {
        const Real arc = atan(Real(j) / Real(spaces)), phi = pi() / Real(2) - arc;
        std::vector<Real> a = {arc / unit};
        Real power = Real(1), reach = Real(1);
        for (int n = 1; n <= left_out; ++n) {
            power = power * sin(phi);
            const Real size = sin(Real(n) * phi) * power / (Real(n) * unit);
            // sin(n pi/2) is 0 for an even n.
            a.push_back(j == 0 && n % 2 == 0 ? Real(0) : n % 2 == 0 ? -size : size);
        }
        for (int n = left_out - 1; n >= 0; --n) {
            reach = reach / Real(2 * spaces);
            a[n] = a[n] + a[left_out] * Real(powers[n]) * reach;
        }
        a[1] = a[1] - Real(leading);
        std::vector<double> row;
        for (int n = 0; n < left_out; ++n) row.push_back(to_double(a[n]));
        if (rest) row.push_back(Table::split(a[0]).second);
        table.row(row);
    }
}

// Row 0 serves what is below 2^-5, and has c = 0. Row 1 + 32 e + j serves 2^(e-5) (1 + [j, j + 1] / 32), and c is its middle. The
// last row serves all from 2^5 on, where the tangent is 1 to all digits.
void tanh_rows(const Output& output) {
    Table table(output, "tanh_rows", "c, tanh c high and low, 1 - tanh^2 c");
    constexpr int binades = 10;
    for (int row = 0; row <= 32 * binades + 1; ++row) {
        const int place = row - 1;
        Real c(1.0 + (place % 32 + 0.5) / 32);
        for (int e = place / 32 - 5; e < 0; ++e) c = c / Real(2);
        for (int e = place / 32 - 5; e > 0; --e) c = c * Real(2);
        if (row == 0) c = Real(0);
        if (row == 32 * binades + 1) {
            table.row({0.0, 1.0, -0x1p-60, 0.0});
            break;
        }
        // 1 - tanh^2 = 4 / (e^c + e^-c)^2.
        const Real power = exp(c), sum = power + Real(1) / power, slope = Real(4) / (sum * sum);
        const auto [high, low] = Table::split((power - Real(1) / power) / sum);
        table.row({to_double(c), high, low, to_double(slope)});
    }
}

// By quarters, up to where floats overflow.
void sinh_cosh_quarters(const Output& output) {
    Table table(output, "sinh_cosh_quarters", "sinh k/4, cosh k/4");
    for (int k = 0; k <= 358; ++k) {
        const Real power = exp(Real(k * 0.25)), inverse = Real(1) / power;
        table.row({to_double((power - inverse) / Real(2)), to_double((power + inverse) / Real(2))});
    }
}

// By eighths, up to where the tangent is 1 to all digits of a float.
void tanh_eighths(const Output& output) {
    Table table(output, "tanh_eighths", "tanh k/8, 1 - tanh^2 k/8");
    for (int k = 0; k <= 73; ++k) {
        const Real power = exp(Real(k * 0.25)), t = (power - Real(1)) / (power + Real(1));
        table.row_of_floats({to_float(t), to_float(Real(1) - t * t)});
    }
}

// Rows by u = 2x / (1 - x). Row 0 serves what is below 2^-4, and has c = 0. Row 1 + 8 e + j serves 2^(e-4) (1 + [j, j + 1] / 8), and
// c is the x in its middle. 1 - 2^-24 has a u next to 2^25.
void atanh_rows(const Output& output) {
    Table table(output, "atanh_rows", "c, artanh c");
    table.row({0.0, 0.0});
    for (int place = 0; place <= 8 * 29; ++place) {
        Real u((1.0 + (place % 8 + 0.5) / 8) / 16);
        for (int e = 0; e < place / 8; ++e) u = u * Real(2);
        const double c = to_double(u / (Real(2) + u));
        table.row({c, to_double(log((Real(1) + Real(c)) / (Real(1) - Real(c))) / Real(2))});
    }
}

// 2^e.
Real power_of_two(int e) { return exp2(Real(e)); }

// A row for each `parts` parts of an octave, each with its middle: `place` 1 + parts e + j serves 2^(e + first) (1 + [j, j + 1] / parts).
Real middle(int place, int parts, int first) {
    const int j = ((place - 1) % parts + parts) % parts, octave = (place - 1 - j) / parts;
    return Real(1.0 + (j + 0.5) / parts) * power_of_two(octave + first);
}

// Row 0 serves x below 2^-5, and has c = 0; rows 1 to 129 the places 1 to 129 of x up to 1/2. Behind them stand the places
// from -1535 to 128 of 1 - x from 2^-53 to 1/2, where c is 1 less the middle.
void atanh_pair_rows(const Output& output) {
    Table table(output, "atanh_pair_rows", "atanh c high and low");
    const auto row = [&](const Real& above, const Real& below) {
        const auto [high, low] = Table::split(log(above / below) / Real(2));
        table.row({high, low});
    };
    row(Real(1), Real(1));
    for (int place = 1; place <= 129; ++place) row(Real(1) + middle(place, 32, -5), Real(1) - middle(place, 32, -5));
    for (int place = -1535; place <= 128; ++place) row(Real(2) - middle(place, 32, -5), middle(place, 32, -5));
}

// Row k: half the difference and half the sum of 2^(j/32) and 2^(-2n - j/32), k being 32 n + j; and what rounding took from them.
void sinh_cosh_rows(const Output& output) {
    Table table(output, "sinh_cosh_rows", "(2^(j/32) -+ 2^(-2n - j/32)) / 2, and the low parts");
    for (int k = 0; k < 32 * 31; ++k) {
        const Real up = exp2(Real(k % 32) / Real(32)) / Real(2);
        const Real down = exp2(Real(-2 * (k / 32)) - Real(k % 32) / Real(32)) / Real(2);
        const auto [sine, sine_low] = Table::split(up - down);
        const auto [cosine, cosine_low] = Table::split(up + down);
        table.row({sine, cosine, sine_low, cosine_low});
    }
}

// By squares of sines, with row 0 for what is below 2^-10, then by squares of cosines from place `first` on or, where that is 0, a
// row 0 for 1: c, the cosine of c's angle, and what `angle` makes of c.
template <class Angle>
void sine_rows(Table& table, int first, Angle angle) {
    constexpr int last = 145;  // for 1/2
    const auto row = [&](const Real& c_square) {
        const Real c(to_double(sqrt(c_square)));
        const auto [high, low] = Table::split(angle(c));
        table.row({to_double(c), to_double(sqrt((Real(1) - c) * (Real(1) + c))), high, low});
    };
    const auto square = [](int place) { return middle(place, 16, -10); };
    for (int place = 0; place <= last; ++place) row(place == 0 ? Real(0) : square(place));
    for (int place = first; place <= last; ++place) row(Real(1) - (place == 0 && first == 0 ? Real(0) : square(place)));
}
void asin_rows(const Output& output, const std::string& name, const Real& unit) {
    Table table(output, name, "c, cosine, asin c high and low");
    sine_rows(table, 0, [&](const Real& c) { return asin(c) / unit; });
}
// Of arguments from 0 on; then of the others, with c for -c.
void acos_rows(const Output& output, const std::string& name, const Real& unit) {
    Table table(output, name, "c, sine, acos of c or -c high and low");
    sine_rows(table, -671, [&](const Real& c) { return acos(c) / unit; });
    sine_rows(table, 0, [&](const Real& c) { return acos(-c) / unit; });
}

}  // namespace

void inverse_tables(const Output& output) {
    atan_rows(output, "atan_rows", Real(1));
    atan_rows(output, "atanpi_rows", pi());
    for (const auto& [name, unit] : {std::pair("atan", Real(1)), std::pair("atanpi", pi())}) {
        // a1 is from 1/2 to 1 over the unit.
        const double leading = to_double(unit) == 1 ? 1 : 0.25;
        atan_series(output, name, 256, {1.0 / 32, 0, -9.0 / 16, 0, 3.0 / 2, 0}, true, leading, unit);
        atan_series(output, name, 64, {-1.0 / 8, 0, 1, 0}, false, 0, unit);
    }
    tanh_rows(output);
    sinh_cosh_quarters(output);
    tanh_eighths(output);
    atanh_rows(output);
    atanh_pair_rows(output);
    sinh_cosh_rows(output);
    asin_rows(output, "asin_rows", Real(1));
    asin_rows(output, "asinpi_rows", pi());
    acos_rows(output, "acos_rows", Real(1));
    acos_rows(output, "acospi_rows", pi());
}

}  // namespace tablegen
