#pragma once

#include "stats/basic/finish.h"

namespace orv::stats {

// The methods without data: results from the sums and the cross-product in the task's arrays.
template <class T>
int32_t finish_from_sums(const Request& request);

}  // namespace orv::stats
