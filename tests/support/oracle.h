// The accuracy oracle: how far a result is from the exact value, in ulp.
//
// An ulp is the distance of neighbouring numbers of the result's type at the exact value; below the normal range it is the
// smallest subnormal. A result of infinity counts as the first power of two past the range, and an exact value that rounds
// to infinity is served by infinity alone.
//
// A function is known here by three things: its name in the row list, its MPFR routine, and an 80-bit routine that is
// right to a small part of an ulp of a double. The latter is fast, and where there is no MPFR it is all there is; the
// command measures against it too.
//
// To add a function, add a line to the list in oracle.cpp and one to that of the command's references, its limits and
// boundaries to tests/accuracy/samples.cpp, and its bounds to tests/accuracy/bounds.inc.
#pragma once

#ifndef _WIN32
#include <mpfr.h>
#endif

#include "apps/orv/reference.h"

#include <string_view>

namespace orv::oracle {

#ifdef _WIN32
using Exact = void*;
#else
using Exact = int (*)(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding);
#endif

struct Function {
    std::string_view name;
    Exact exact;
    long double (*fast)(long double x);
};

// The functions of one input that the oracle knows; null for others.
const Function* find(std::string_view name);

struct Error {
    double ulp;
    double relative;
};

// Against the exact value.
Error exact_error(const Function& f, double x, double y);
Error exact_error(const Function& f, float x, float y);

// Against the 80-bit value: off by at most `fast_slack` ulp for doubles, and nothing that matters for floats.
inline constexpr double fast_slack = 0.004;
Error fast_error(const Function& f, double x, double y);
Error fast_error(const Function& f, float x, float y);
// Against a value that is given, for sweeps over all floats.
Error quick_error(double exact, float y);

using command::ExtendedPrecision;

}  // namespace orv::oracle
