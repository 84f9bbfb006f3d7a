// Tables of the powers.
#include "tablegen.h"

#include <cmath>

namespace tablegen {

namespace {

// Row j serves the m in [1, 2) whose leading fraction bits, rounded to 10, are 2j or 2j + 1, and c is the middle of these;
// the first and the last row serve the neighbourhoods of 1 and 2, with these for c. R = L/c to 23 bits; -log2(R/L) to a
// multiple of 2^-40, so that its sum with k is exact; and the rest. From row 256 on m is taken for twice its half, and the
// logarithms are those of m/2.
void pow_log2(const Output& output) {
    Table table(output, "pow_log2", "-log2(R/L) high and low, R, R");
    const Real leading = 0x1.715474p+0;
    for (int j = 0; j <= 512; ++j) {
        const Real c = j == 0 ? Real(1) : j == 512 ? Real(2) : Real(1) + Real(2 * j + 0.5) / Real(1024);
        const Real reciprocal = to_bits(leading / c, 23);
        const Real value = -log2((j < 256 ? reciprocal : reciprocal * Real(2)) / leading);
        const Real high = to_multiple(value, -40);
        const double rcp = to_double(reciprocal);
        table.row({to_double(high) + 0.0, to_double(value - high) + 0.0, rcp, rcp});
    }
}

// Row j: the logarithm of c = 1 + j/steps, or of c/2 from row `folded` on, and 1/c.
void log_of_centres(const Output& output, const std::string& name, Real (*logarithm)(const Real&), int steps,
                    int folded) {
    Table table(output, name, "log c, 1/c");
    for (int j = 0; j <= steps; ++j) {
        const Real c = Real(steps + j) / Real(steps);
        table.row({to_double(logarithm(j < folded ? c : c / Real(2))) + 0.0, to_double(Real(1) / c)});
    }
}

// Row 128 r + j serves m 2^r with m in 1 + [j, j + 1] / 128, c being in the middle: R of 21 bits next to 1/c among those with a
// T = (2^r / R)^(2/3) within 2^-6 ulp of a double; that T.
void pow2o3(const Output& output) {
    Table table(output, "pow2o3", "R, T");
    for (int row = 0; row < 384; ++row) {
        const Real c = Real(1) + Real(row % 128 + 0.5) / Real(128);
        const Real nearest = to_bits(Real(1) / c, 21);
        for (int step = 0;; ++step) {
            // 0, 1, -1, 2, -2, ...: one unit of 21 bits below 1 is 2^-21.
            const int offset = step % 2 ? (step + 1) / 2 : -step / 2;
            const Real reciprocal = nearest + Real(offset) * Real(0x1p-21);
            const Real ratio = Real(1 << (row / 128)) / reciprocal;
            const Real value = exp2(Real(2) * log2(ratio) / Real(3));
            const double rounded = to_double(value);
            const double ulp = std::nextafter(rounded, 8.0) - rounded;
            if (std::fabs(to_double(value - Real(rounded))) > ulp / 64) continue;
            table.row({to_double(reciprocal), rounded});
            break;
        }
    }
}

}  // namespace

void power_tables(const Output& output) {
    pow_log2(output);
    log_of_centres(output, "pow_ln", log, 512, 725 - 512);
    log_of_centres(output, "pow_log2_257", log2, 256, 363 - 256);
    pow2o3(output);
}

}  // namespace tablegen
