// Tables of the cube roots.
#include "tablegen.h"

#include <string>

namespace tablegen {

namespace {

Real cube_root(const Real& x) {
    Real result;
    mpfr_cbrt(result.value, x.value, MPFR_RNDN);
    return result;
}

// Row 64 j + i serves 2^(j + first) m with m in the i-th 64th of [1, 2): c, the reciprocal of its middle to 11 bits after the
// point, and the root of 2^(j + first) / c in two parts.
template <class Write>
void write_rows(int first, bool inverse, Write write) {
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 64; ++i) {
            const Real c = to_multiple(Real(1.0) / Real(1 + (i + 0.5) / 64), -11);
            const Real root = cube_root(exp2(Real(j + first)) / c);
            write(c, inverse ? Real(1.0) / root : root);
        }
}

void doubles(const Output& output, const std::string& name, bool inverse) {
    Table table(output, name, "c = 1/m, the cube root of 2^j/c or its reciprocal in two parts, nothing");
    write_rows(0, inverse, [&](const Real& c, const Real& root) {
        const auto [high, low] = Table::split(root);
        table.row({to_double(c), high, low, 0.0});
    });
}

void floats(const Output& output, const std::string& name, bool inverse) {
    Table table(output, name, "c = 1/m, the cube root of 2^(j - 1)/c or its reciprocal in two parts, nothing");
    write_rows(-1, inverse, [&](const Real& c, const Real& root) {
        const float high = to_float(root);
        table.row_of_floats({to_float(c), high, to_float(root - Real(high)), 0.0f});
    });
}

}  // namespace

void roots_tables(const Output& output) {
    doubles(output, "cbrt_64", false);
    doubles(output, "inv_cbrt_64", true);
    floats(output, "cbrt_float_64", false);
    floats(output, "inv_cbrt_float_64", true);
}

}  // namespace tablegen
