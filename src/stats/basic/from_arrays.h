// Going on from the results in the task's arrays, where nothing better is kept.
#pragma once

#include "stats/basic/accumulation.h"

namespace orv::stats {

// Fills the rows and the matrix of `into`, whose weights are set, from the arrays that the request writes. `spreads` is room for
// p doubles.
template <class T>
void continue_from_arrays(const Request& request, const Accumulation& into, double* spreads);

}  // namespace orv::stats
