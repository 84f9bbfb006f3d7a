// Tables of the trigonometric functions.
#include "tablegen.h"

#include <string>
#include <vector>

namespace tablegen {

namespace {

// The largest window ends at fraction bit 2046 - 1075 + 192 of 1/(2 pi); 4/pi is needed to bit 1200.
constexpr mpfr_prec_t expansion_bits = 1400;

// Bits first .. first + count - 1 of the binary expansion of `number`; bit 0 is the first after the point. Bits with
// negative numbers are zero: the number lies below 1.
std::vector<bool> expansion(mpfr_srcptr number, int first, int count) {
    mpz_t digits;
    mpz_init(digits);
    mpfr_t scaled;
    mpfr_init2(scaled, expansion_bits);
    mpfr_mul_2si(scaled, number, first + count, MPFR_RNDN);
    mpfr_get_z(digits, scaled, MPFR_RNDZ);
    std::vector<bool> bits;
    for (int k = 0; k < count; ++k) bits.push_back(mpz_tstbit(digits, static_cast<mp_bitcnt_t>(count - 1 - k)) != 0);
    mpfr_clear(scaled);
    mpz_clear(digits);
    return bits;
}

uint64_t word(const std::vector<bool>& bits, int first, int count) {
    uint64_t value = 0;
    for (int k = 0; k < count; ++k) value = value << 1 | (bits[static_cast<size_t>(first + k)] ? 1 : 0);
    return value;
}

// factor / pi at the precision of the expansions.
struct OverPi {
    mpfr_t value;
    explicit OverPi(double factor) {
        mpfr_init2(value, expansion_bits);
        mpfr_const_pi(value, MPFR_RNDN);
        mpfr_d_div(value, factor, value, MPFR_RNDN);
    }
    ~OverPi() { mpfr_clear(value); }
    OverPi(const OverPi&) = delete;
    OverPi& operator=(const OverPi&) = delete;
};

// Row e serves numbers M * 2^(e - bias) with an integer M. The bits of 1/(2 pi) before fraction bit e - bias give whole
// turns, so the row is the window that starts there.
void inv_two_pi_windows(const Output& output, const std::string& name, int bias, int rows, int bits) {
    const OverPi inverse(0.5);
    Table table(output, name, "the bits of 1/(2 pi) from fraction bit e - " + std::to_string(bias) + " on");
    for (int e = 0; e < rows; ++e) {
        const std::vector<bool> window = expansion(inverse.value, e - bias, 3 * bits);
        table.row_of_words({word(window, 0, bits), word(window, bits, bits), word(window, 2 * bits, bits)});
    }
}

// The sine and cosine of turn/rows, exact where they are 0, 1 or -1.
Real sine_of_turn(int j, int rows) {
    Real result;
    Real angle(static_cast<double>(j));
    mpfr_sinu(result.value, angle.value, static_cast<unsigned long>(rows), MPFR_RNDN);
    return result + Real(0.0);
}

// The power of two next to x in magnitude, with its sign: its product with any reduced argument is exact.
double leading_power(const Real& x) {
    if (mpfr_zero_p(x.value)) return 0.0;
    int exponent = static_cast<int>(mpfr_get_exp(x.value)) - 1;
    Real magnitude(x);
    mpfr_abs(magnitude.value, x.value, MPFR_RNDN);
    mpfr_mul_2si(magnitude.value, magnitude.value, -exponent, MPFR_RNDN);
    if (to_double(magnitude) > 1.5) ++exponent;
    Real power(mpfr_sgn(x.value) < 0 ? -1.0 : 1.0);
    mpfr_mul_2si(power.value, power.value, exponent, MPFR_RNDN);
    return to_double(power);
}

struct Step {
    double sine, sine_rest, cosine_lead, cosine_rest;
};

Step step(int j, int rows) {
    const Real sine = sine_of_turn(j, rows), cosine = sine_of_turn(j + rows / 4, rows);
    const auto [high, low] = Table::split(sine);
    const double lead = leading_power(cosine);
    // The + 0.0 turns -0 into +0.
    return {high + 0.0, low + 0.0, lead, to_double(cosine - Real(lead)) + 0.0};
}

// Row j serves angles near theta = 2 pi j / 512.
void sin_cos_steps(const Output& output) {
    Table table(output, "sin_cos_512", "rest of cos theta, leading power of two of cos theta, sin theta high and low");
    for (int j = 0; j < 512; ++j) {
        const Step s = step(j, 512);
        table.row({s.cosine_rest, s.cosine_lead, s.sine, s.sine_rest});
    }
}

// Row j serves angles near theta = 2 pi j / 128. Of the rest of the sine 24 bits are kept.
void sin_steps(const Output& output) {
    Table table(output, "sin_128", "rest of cos theta, sin theta high and low, leading power of two of cos theta");
    for (int j = 0; j < 128; ++j) {
        const Step s = step(j, 128);
        table.row({s.cosine_rest, s.sine, static_cast<double>(static_cast<float>(s.sine_rest)), s.cosine_lead});
    }
}

}  // namespace

void trig_tables(const Output& output) {
    inv_two_pi_windows(output, "inv_two_pi_192", 1075, 2047, 64);
    inv_two_pi_windows(output, "inv_two_pi_96", 150, 256, 32);
    sin_cos_steps(output);
    sin_steps(output);
}

}  // namespace tablegen
