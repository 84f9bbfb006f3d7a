// Reporting of elements that have no ordinary result.
//
// A kernel stores the element's result first and calls the reporter of its element type with the array starts and the
// element's index; on return the element of `r1` (and `r2`) holds the final result. One-argument functions pass `a` for
// both arguments, one-result functions `y` for both results. Increments count elements.
#pragma once

#include <orv/vecmath.h>

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

// ReportErrorS, D, C and Z for dense calls, ReportErrorSI, DI, CI and ZI for strided ones; and report_error, which is the
// strided reporter of its arguments' element type.
#define ORV_DECLARE_REPORTERS(letter, Element)                                                                      \
    void ReportError##letter(int32_t status, int32_t index, const Element* a1, const Element* a2, Element* r1,      \
                             Element* r2, const char* name);                                                        \
    void ReportError##letter##I(int32_t status, int32_t index, const Element* a1, int32_t inca1, const Element* a2, \
                                int32_t inca2, Element* r1, int32_t incr1, Element* r2, int32_t incr2,              \
                                const char* name);                                                                  \
    inline void report_error(int32_t status, int32_t index, const Element* a1, int32_t inca1, const Element* a2,    \
                             int32_t inca2, Element* r1, int32_t incr1, Element* r2, int32_t incr2,                 \
                             const char* name) {                                                                    \
        ReportError##letter##I(status, index, a1, inca1, a2, inca2, r1, incr1, r2, incr2, name);                    \
    }

ORV_DECLARE_REPORTERS(S, float)
ORV_DECLARE_REPORTERS(D, double)
ORV_DECLARE_REPORTERS(C, orv_complex_s)
ORV_DECLARE_REPORTERS(Z, orv_complex_d)
#undef ORV_DECLARE_REPORTERS

// errno, messages and the x87 exception, as the thread's mode asks.
void ReportDefaultActions(const ArqErrorContext* context);

}  // namespace orv::frame
