// Tables of the inverse trigonometric functions, of the hyperbolic functions and of the inverse hyperbolic tangent.
#include "tablegen.h"

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

}  // namespace

void inverse_tables(const Output& output) {
    atan_rows(output, "atan_rows", Real(1));
    atan_rows(output, "atanpi_rows", pi());
    tanh_rows(output);
    sinh_cosh_quarters(output);
    atanh_rows(output);
}

}  // namespace tablegen
