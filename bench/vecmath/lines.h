// The table of functions.inc, as data.
#pragma once

#include "vecmath/peers.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orv::bench {

enum class Spread { EVEN, POWERS, SPOILT };

struct Range {
    Spread spread;
    double low, high, low_b, high_b, spoiler;
};

// A function with elements of one type.
struct Line {
    const char* family;
    const char* function;
    const char* label;  // of arguments beside the usual ones, else null
    Range range;
    std::vector<Peer> peers;
};

std::span<const Line> lines_of(char type);

// The line of a function's usual arguments, or null.
const Line* find_line(char type, std::string_view function);

// Arguments for n elements of the type, complex ones being pairs; `b` for the second input. Room for increments of 2.
std::vector<double> arguments_d(const Range& range, int32_t n, bool b);
std::vector<float> arguments_s(const Range& range, int32_t n, bool b);

}  // namespace orv::bench
