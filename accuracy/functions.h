// The functions that can be measured: what each is exactly, and where it is worth looking for large errors.
//
// To add a function, add a row to the table of its family under families/, and the bounds of its kernels to bounds.inc.
#pragma once

#ifndef _WIN32
#include <mpfr.h>
#endif

#include <limits>
#include <string_view>
#include <vector>

namespace orv::accuracy {

// The components of an argument in order: the real and the imaginary part of a, then of b, then the constants of
// LinearFrac; or just a and b. The components of a result likewise: both parts, or both outputs.
inline constexpr int most_inputs = 6, most_outputs = 2;

// The exact value, to the precision that the outputs have. There is no MPFR for Windows.
#ifdef _WIN32
using Exact = void (*)();
#define EXACT(routine) nullptr
#define EXACT_BY(...) nullptr
#else
using Exact = void (*)(mpfr_t* y, mpfr_t* x);

template <auto routine>
void exact_of(mpfr_t* y, mpfr_t* x) {
    if constexpr (requires { routine(y[0], x[0], MPFR_RNDN); })
        routine(y[0], x[0], MPFR_RNDN);
    else if constexpr (requires { routine(y[0], x[0]); })
        routine(y[0], x[0]);
    else
        routine(y[0], x[0], x[1], MPFR_RNDN);
}
#define EXACT(routine) ::orv::accuracy::exact_of<routine>  // a routine of MPFR, of one or two arguments
#define EXACT_BY(...) __VA_ARGS__                          // a lambda of the type of Exact
#endif

// The value in 80-bit arithmetic, right to 0.004 ulp of a double. It is many times as fast, and all there is on Windows: a
// row without it is measured by fewer points on Linux and not at all on Windows.
using Fast = void (*)(long double* y, const long double* x);

template <auto routine>
void fast_of(long double* y, const long double* x) {
    if constexpr (requires { routine(x[0]); })
        y[0] = routine(x[0]);
    else
        y[0] = routine(x[0], x[1]);
}
#define FAST(routine) ::orv::accuracy::fast_of<routine>  // a routine of one or two arguments; or a lambda by itself

struct Range {
    double low, high;
};

struct Function {
    std::string_view name;
    std::string_view types;  // "sd" or "cz"
    Exact exact;
    Fast fast = nullptr;
    // Ordinary arguments, searched evenly; the first range is the one that a picture shows. Every exponent of either sign
    // is searched besides.
    std::vector<Range> ranges = {{-10, 10}};
    // Where something begins or ends: limits, zeros, poles, boundaries of tables. Their negatives count too, and so do
    // 0 and 1 in every row.
    std::vector<double> points = {};
    // Ranges of the second input (b, or the imaginary part), where they are others.
    std::vector<Range> second = {};
    // Puts arguments that are known as hard behind the list, all components of one after the other.
    void (*hard)(std::vector<double>& list) = nullptr;
    // Where there is nothing but `fast`, arguments from here on in magnitude are left out.
    double fast_limit = std::numeric_limits<double>::infinity();
    // Whether the bounds hold for the arguments x, where that is not all of them.
    bool (*measured)(const double* x) = nullptr;
};

struct Family {
    std::string_view title;
    std::vector<Function> functions;
};
const std::vector<Family>& families();

// The functions of all families; null if there is none such.
const Function* find_function(std::string_view name, char type);

// One table a family.
std::vector<Function> basic_functions();
std::vector<Function> roots_functions();
std::vector<Function> exp_log_functions();
std::vector<Function> inverse_functions();
std::vector<Function> hyperbolic_functions();
std::vector<Function> power_functions();
std::vector<Function> special_functions();
std::vector<Function> trig_functions();
std::vector<Function> complex_functions();
std::vector<Function> complex_inverse_functions();

// Holds the x87 unit at 64 significant bits, which a Windows process does not start with.
struct ExtendedPrecision {
    unsigned short saved;
    ExtendedPrecision() {
        __asm__ volatile("fnstcw %0" : "=m"(saved));
        const unsigned short extended = saved | 0x0300;
        __asm__ volatile("fldcw %0" : : "m"(extended));
    }
    ~ExtendedPrecision() { __asm__ volatile("fldcw %0" : : "m"(saved)); }
    ExtendedPrecision(const ExtendedPrecision&) = delete;
    ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;
};

}  // namespace orv::accuracy
