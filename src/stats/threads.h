// How many threads a call is worth, and the fan-out over them.
#pragma once

#include "services/services.h"
#include "stats/task.h"

namespace orv::stats {

// A thread gets at least 8192 multiplications and 16 observations.
inline constexpr int32_t work_shift = 13, observation_shift = 4;

// `work` is the call's multiplications or what weighs as much. A null table of services means one thread.
inline int32_t thread_count(const orv_services* services, int64_t work, int64_t observations) {
    int64_t threads = services ? services->thread_limit() : 1;
    if (work >> work_shift < threads) threads = work >> work_shift;
    if (observations >> observation_shift < threads) threads = observations >> observation_shift;
    return threads < 1 ? 1 : static_cast<int32_t>(threads);
}

// Items [first, last) of part `index`: equal shares, and what is left over goes to the last part.
struct Share {
    int32_t first, last;
};
inline Share share_of(int32_t items, int32_t parts, int32_t index) {
    const int32_t share = items / parts;
    return {index * share, index + 1 == parts ? items : (index + 1) * share};
}

// Runs part(index), which returns a status, for each index below `parts`, and returns SSStatusOk or the failure of one of
// them. Parts write to results of their own alone; joining those in the order of the parts, on the calling thread, makes
// the outcome independent of which thread ran what.
template <class Work>
int32_t fan_out(const orv_services* services, int32_t parts, Work& part) {
    if (parts == 1) return part(0);
    struct Fan {
        Work& part;
        int32_t status;  // written by failures only
    } fan{part, SSStatusOk};
    services->fan_out(parts, &fan, [](int32_t index, int32_t, int32_t, void* args) {
        Fan& all = *static_cast<Fan*>(args);
        const int32_t status = all.part(index);
        if (status < 0) __atomic_store_n(&all.status, status, __ATOMIC_RELAXED);
    });
    return fan.status;
}

}  // namespace orv::stats
