// Tables of the exponentials and logarithms.
#include "tablegen.h"

#include <bit>

namespace tablegen {

namespace {

// Row j: 2^(j/rows) to nearest double, and the rest of it to nearest double.
void exp2_pairs(const Output& output, int rows) {
    Table table(output, "exp2_" + std::to_string(rows), "2^(j/" + std::to_string(rows) + "), high and low");
    for (int j = 0; j < rows; ++j) {
        const auto [high, low] = Table::split(exp2(Real(j) / Real(rows)));
        table.row({high, low});
    }
}

// Row j: 2^(j/rows) to nearest float, and what rounding took from it, as a fraction of it.
void exp2_float_pairs(const Output& output, int rows) {
    Table table(output, "exp2_float_" + std::to_string(rows),
                "2^(j/" + std::to_string(rows) + "), and the relative rest of it");
    for (int j = 0; j < rows; ++j) {
        const Real value = exp2(Real(j) / Real(rows));
        const float high = to_float(value);
        table.row_of_floats({high, to_float((value - Real(high)) / Real(high))});
    }
}

// Row j: the significand bits of 2^(j/rows) to nearest double, to be joined with an exponent.
void exp2_significands(const Output& output, int rows) {
    Table table(output, "exp2_bits_" + std::to_string(rows), "the fraction bits of 2^(j/" + std::to_string(rows) + ")");
    for (int j = 0; j < rows; ++j) {
        const uint64_t bits = std::bit_cast<uint64_t>(to_double(exp2(Real(j) / Real(rows))));
        table.row_of_words({bits & 0x000FFFFFFFFFFFFF});
    }
}

// Row j serves m near 1 + j/512: L times the reciprocal, of so few bits that its product with the leading 21 bits of m is
// a multiple of 2^-43; the same again; minus the logarithm of the reciprocal so rounded, cut to 25 significant bits, so
// that its sum with a multiple of the high part of log 2 and with that product is exact; and the rest of that logarithm.
// From the middle on, where m is taken for twice its half, the logarithms are those of m/2.
void log_513(const Output& output, const std::string& name, Real (*logarithm)(const Real&), const Real& factor,
             int bits) {
    Table table(output, name, "L/c, again, -log of it without L: high and low");
    for (int j = 0; j <= 512; ++j) {
        const Real reciprocal = to_bits(factor * Real(512) / Real(512 + j), bits);
        const Real value = -logarithm((j < 256 ? reciprocal : reciprocal * Real(2)) / factor);
        const Real high = to_bits(value, 25, MPFR_RNDZ);
        const double rcp = to_double(reciprocal);
        // The + 0.0 turns the -0 of the rows of 1 into +0.
        table.row({rcp, rcp, to_double(high) + 0.0, to_double(value - high) + 0.0});
    }
}

// In floats. Row j serves m near 1 + j/256: L times the reciprocal, to 8 bits; minus the logarithm of the reciprocal so
// rounded, to a multiple of 2^-17; the rest of it; nothing. From the middle on for m/2.
void log_float_257(const Output& output, const std::string& name, Real (*logarithm)(const Real&), const Real& factor) {
    Table table(output, name, "L/c, -log of it without L: high and low, 0");
    for (int j = 0; j <= 256; ++j) {
        const Real reciprocal = to_bits(factor * Real(256) / Real(256 + j), 8);
        const Real value = -logarithm((j < 128 ? reciprocal : reciprocal * Real(2)) / factor);
        const Real high = to_multiple(value, -17);
        table.row_of_floats({to_float(reciprocal), to_float(high) + 0.0f, to_float(value - high) + 0.0f, 0.0f});
    }
}

// Row j serves m near c = 1 + j/steps: log c to a multiple of 2^-39, as log 2's leading part is, so that the two cancel
// without a rest next to 1; the rest of log c; factor/c to `bits` bits, and the rest of that. From row `folded` on m is
// taken for twice its half, and the logarithms are those of c/2.
void log_centres(const Output& output, const std::string& name, Real (*logarithm)(const Real&), int steps, int folded,
                 const Real& factor = Real(1), int bits = 53) {
    Table table(output, name, "log c high and low, L/c high and low");
    for (int j = 0; j <= steps; ++j) {
        const Real c = Real(steps + j) / Real(steps);
        const Real value = logarithm(j < folded ? c : c / Real(2));
        const Real high = to_multiple(value, -39);
        const Real rcp = to_bits(factor / c, bits);
        const Real rcp_rest = factor / c - rcp;
        table.row({to_double(high) + 0.0, to_double(value - high) + 0.0, to_double(rcp), to_double(rcp_rest) + 0.0});
    }
}

}  // namespace

void exp_log_tables(const Output& output) {
    exp2_pairs(output, 64);
    exp2_pairs(output, 128);
    exp2_significands(output, 128);
    exp2_significands(output, 2048);
    exp2_float_pairs(output, 128);
    log_513(output, "ln_513", log, Real(1), 23);
    log_513(output, "log10_513", log10, Real(0x1.bcp-2), 21);
    log_513(output, "log2_513", log2, Real(0x1.72p+0), 23);
    log_float_257(output, "log10_float_257", log10, Real(0x1.bcp-2));
    const int never = 1 << 30;
    log_centres(output, "ln_257", log, 256, never);
    log_centres(output, "log10_257", log10, 256, never);
    // Folded at the square root of 2.
    log_centres(output, "ln_centres", log, 512, 725 - 512);
    log_centres(output, "log2_centres", log2, 512, 725 - 512);
    // A product of 10 bits and of those that m leaves beyond its centre is exact.
    log_centres(output, "log2_centres_exact", log2, 512, 725 - 512, Real(1.5), 10);
}

}  // namespace tablegen
