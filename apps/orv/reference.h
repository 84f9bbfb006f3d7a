// What vector functions are measured against: routines of 80-bit arithmetic, right to a small part of an ulp of a double.
#pragma once

#include <string_view>

namespace orv::command {

struct Reference {
    std::string_view function;
    long double (*value)(long double);
    double low, high;  // a range that shows the function
    // The routine is right where |x| is below this.
    double limit = __builtin_huge_val();
};

// Null for a function that there is no routine for.
const Reference* find_reference(std::string_view function);

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

}  // namespace orv::command
