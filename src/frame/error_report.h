// Reporting of elements that have no ordinary result.
//
// A kernel stores the element's result first and calls the reporter of its element type with the array starts and the
// element's index; on return the element of `r1` (and `r2`) holds the final result. One-argument functions pass `a` for
// both arguments, one-result functions `y` for both results. Increments count elements.
#pragma once

#include <orv/vecmath.h>

#include <stddef.h>
#include <stdint.h>

namespace orv::frame {

enum Status : int32_t {
    status_ok = 0,
    status_domain = 1,
    status_singularity = 2,
    status_overflow = 3,
    status_underflow = 4,
    status_bad_argument = -1,
    status_bad_pointer = -2,
};

// One array of a report, with the increment that leads from element to element.
template <class Element>
struct Operand {
    Element* start;
    int32_t increment;
    Element& at(int32_t index) const { return start[static_cast<ptrdiff_t>(index) * increment]; }
};

// Arguments and results of one call, each of its own type and increment, of which one side may be real and the other
// complex. `start` is where the first argument's array begins. The arguments may stand elsewhere: in place, the result has
// taken the element's place there.
template <class In, class Out>
void report_error(int32_t status, int32_t index, const In* start, Operand<const In> a1, Operand<const In> a2,
                  Operand<Out> r1, Operand<Out> r2, const char* name);

// ReportErrorS, D, C and Z for dense calls of one element type, ReportErrorSI, DI, CI and ZI for strided ones.
#define ORV_DECLARE_REPORTERS(letter, Element)                                                                      \
    void ReportError##letter(int32_t status, int32_t index, const Element* a1, const Element* a2, Element* r1,      \
                             Element* r2, const char* name);                                                        \
    void ReportError##letter##I(int32_t status, int32_t index, const Element* a1, int32_t inca1, const Element* a2, \
                                int32_t inca2, Element* r1, int32_t incr1, Element* r2, int32_t incr2,              \
                                const char* name);
ORV_DECLARE_REPORTERS(S, float)
ORV_DECLARE_REPORTERS(D, double)
ORV_DECLARE_REPORTERS(C, orv_complex_s)
ORV_DECLARE_REPORTERS(Z, orv_complex_d)
#undef ORV_DECLARE_REPORTERS

// errno, messages and the x87 exception, as the thread's mode asks.
void ReportDefaultActions(const ArqErrorContext* context);

}  // namespace orv::frame
