// What a family of tables is written with: reals of 256 bits, exact roundings of them, and a table that becomes one file
// of initialiser rows.
//
// A family is one source file with one function `void <family>_tables(const Output&)`, called from tablegen.cpp. Each of
// its tables becomes <name>.inc, which a kernel includes between the braces of its constant block:
//
//   alignas(16) double rows[64][2] = {
//   #include "vecmath/tables/exp2_64.inc"
//   };
//
// and stands in the list of tools/tablegen/CMakeLists.txt. The rule of a table is written beside the code that follows it.
#pragma once

#include <mpfr.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace tablegen {

inline constexpr mpfr_prec_t working_bits = 256;

struct Real {
    mpfr_t value;

    Real(double x = 0) {
        mpfr_init2(value, working_bits);
        mpfr_set_d(value, x, MPFR_RNDN);
    }
    Real(const Real& other) : Real() { mpfr_set(value, other.value, MPFR_RNDN); }
    Real& operator=(const Real& other) {
        mpfr_set(value, other.value, MPFR_RNDN);
        return *this;
    }
    ~Real() { mpfr_clear(value); }
};

#define TABLEGEN_OPERATOR(symbol, function)                     \
    inline Real operator symbol(const Real& a, const Real& b) { \
        Real result;                                            \
        function(result.value, a.value, b.value, MPFR_RNDN);    \
        return result;                                          \
    }
TABLEGEN_OPERATOR(+, mpfr_add)
TABLEGEN_OPERATOR(-, mpfr_sub)
TABLEGEN_OPERATOR(*, mpfr_mul)
TABLEGEN_OPERATOR(/, mpfr_div)
#undef TABLEGEN_OPERATOR
inline Real operator-(const Real& a) { return Real(0.0) - a; }

#define TABLEGEN_FUNCTION(name)                        \
    inline Real name(const Real& x) {                  \
        Real result;                                   \
        mpfr_##name(result.value, x.value, MPFR_RNDN); \
        return result;                                 \
    }
TABLEGEN_FUNCTION(exp)
TABLEGEN_FUNCTION(exp2)
TABLEGEN_FUNCTION(exp10)
TABLEGEN_FUNCTION(log)
TABLEGEN_FUNCTION(log2)
TABLEGEN_FUNCTION(log10)
TABLEGEN_FUNCTION(sqrt)
TABLEGEN_FUNCTION(sin)
TABLEGEN_FUNCTION(cos)
TABLEGEN_FUNCTION(tan)
TABLEGEN_FUNCTION(asin)
TABLEGEN_FUNCTION(acos)
TABLEGEN_FUNCTION(atan)
TABLEGEN_FUNCTION(erf)
TABLEGEN_FUNCTION(erfc)
TABLEGEN_FUNCTION(gamma)
TABLEGEN_FUNCTION(lngamma)
TABLEGEN_FUNCTION(digamma)
#undef TABLEGEN_FUNCTION
inline Real pi() {
    Real result;
    mpfr_const_pi(result.value, MPFR_RNDN);
    return result;
}

inline double to_double(const Real& x) { return mpfr_get_d(x.value, MPFR_RNDN); }
inline float to_float(const Real& x) { return mpfr_get_flt(x.value, MPFR_RNDN); }

// x to `bits` significant bits; by default to nearest, MPFR_RNDZ cuts.
inline Real to_bits(const Real& x, int bits, mpfr_rnd_t rounding = MPFR_RNDN) {
    Real result(x);
    mpfr_prec_round(result.value, bits, rounding);
    mpfr_prec_round(result.value, working_bits, MPFR_RNDN);
    return result;
}

// x to the nearest multiple of 2^exponent.
inline Real to_multiple(const Real& x, int exponent) {
    Real result;
    mpfr_mul_2si(result.value, x.value, -exponent, MPFR_RNDN);
    mpfr_rint(result.value, result.value, MPFR_RNDN);
    mpfr_mul_2si(result.value, result.value, exponent, MPFR_RNDN);
    return result;
}

// Where tables go.
struct Output {
    std::string directory;
};

// A table in the making; written when it goes out of scope. `rule` becomes the comment at its head.
struct Table {
    Table(const Output& output, const std::string& name, const std::string& rule);
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    void row(const std::vector<double>& values);                // hex floats
    void row_of_floats(std::initializer_list<float> values);    // hex floats with f
    void row_of_words(std::initializer_list<uint64_t> values);  // hex integers
    // The value to nearest double, and what it leaves, to nearest double.
    static std::pair<double, double> split(const Real& x);

    std::string path, text;
};

void exp_log_tables(const Output& output);
void roots_tables(const Output& output);
void inverse_tables(const Output& output);
void power_tables(const Output& output);
void special_tables(const Output& output);
void trig_tables(const Output& output);

}  // namespace tablegen
