// Joining partial results.
#pragma once

#include "stats/basic/accumulation.h"

namespace orv::stats {

// Adds a part to what came before it. A part without weight contributes nothing but its W2, whatever it has accumulated. part.cross may be
// into.cross itself while into.weights.w is 0. `distances` is room for p doubles.
void merge(const Request& request, Accumulation& into, const Accumulation& part, double* distances);

}  // namespace orv::stats
