#include "accuracy/bounds.h"

namespace orv::accuracy {

namespace {

#define BOUND(type, function, accuracy, ulp, subnormal_ulp) \
    {#type[0], #function, #accuracy, ulp, subnormal_ulp, Measure::by_part},
#define BOUND_OF_MODULUS(type, function, accuracy, ulp, subnormal_ulp) \
    {#type[0], #function, #accuracy, ulp, subnormal_ulp, Measure::by_modulus},
const Bound bounds[] = {
#include "accuracy/bounds.inc"
};

}  // namespace

const Bound* bound_of(const Kernel& kernel) {
    for (const Bound& bound : bounds)
        if (bound.type == kernel.type && bound.name == kernel.name && bound.accuracy == accuracy_names[kernel.accuracy])
            return &bound;
    return nullptr;
}

Measure measure_of(const Kernel& kernel) {
    const Bound* const bound = bound_of(kernel);
    return bound ? bound->measure : Measure::by_part;
}

}  // namespace orv::accuracy
