#pragma once

#include "stats/request.h"

namespace orv::stats {

// Data without weight has no moments: every array of them that the task has becomes 0, but for a mean that the caller gave.
template <class T>
void zero_moments(const Request& request) {
    for (int32_t array = array_mean; array <= array_central4; ++array) {
        T* values = static_cast<T*>(array_of(request.task, array));
        if (!values || (array == array_mean && request.method == BasicUserMean)) continue;
        for (int32_t j = 0; j < request.p; ++j)
            if (request.takes_part(j)) values[j] = 0;
    }
}

}  // namespace orv::stats
