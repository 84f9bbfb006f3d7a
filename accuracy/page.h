// The page of measured errors.
#pragma once

#include "accuracy/hunt.h"

namespace orv::accuracy {

struct Line {
    const Kernel* kernel;
    Worst worst;
    bool swept = false;  // over all floats
};

// To the standard output: a summary, and a table a family.
void write_page(const std::vector<Line>& lines);

}  // namespace orv::accuracy
