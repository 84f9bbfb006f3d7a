// The worst error of each kernel, as bounds.inc has it.
#pragma once

#include "accuracy/error.h"

namespace orv::accuracy {

struct Bound {
    char type;
    std::string_view name, accuracy;
    double ulp, subnormal_ulp;
    Measure measure;
};

// Null if there is none.
const Bound* bound_of(const Kernel& kernel);

// By part where there is no bound.
Measure measure_of(const Kernel& kernel);

}  // namespace orv::accuracy
