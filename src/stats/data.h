// What every compute entry begins with: the fields it needs, the estimates it is asked for, and the data that the task's
// pointers lead to, read once.
#pragma once

#include "stats/task.h"

#include <limits.h>
#include <stddef.h>

namespace orv::stats {

// A field that an entry needs, and the status if it is null.
struct Needed {
    const void* field;
    int32_t missing;
};

// The status of the first of them that is null, or SSStatusOk.
template <size_t count>
int32_t first_missing(const Needed (&fields)[count]) {
    for (const Needed& need : fields)
        if (!need.field) return need.missing;
    return SSStatusOk;
}

// The bits that some entry of the family owns are the lowest ones, without a gap; an entry ignores those of the others.
inline constexpr uint64_t all_estimates = 2 * ORV_SS_PARTIAL_COVARIANCE - 1;

inline int32_t check_estimates(uint64_t estimates) {
    return estimates & ~all_estimates ? SSStatusEstimates : SSStatusOk;
}

// How x is laid out: component j of observation i is x[j * by_component + i * by_observation], and one of the steps is 1.
struct Steps {
    ptrdiff_t by_component, by_observation;
};

// Numbers `step` apart.
template <class T>
struct Strided {
    const T* first;
    ptrdiff_t step;

    T operator[](ptrdiff_t i) const { return first[i * step]; }
};

struct Data {
    SSTask* task;
    int32_t p, n;
    bool by_rows;
    bool has_gaps;  // some component does not take part

    bool takes_part(int32_t component) const {
        return !has_gaps || read_integer(task->indices, task->wideInts, component) != 0;
    }
    Steps steps() const { return by_rows ? Steps{ptrdiff_t{n}, 1} : Steps{1, ptrdiff_t{p}}; }

    // All observations of a component, and all components of an observation. T is the task's type.
    template <class T>
    Strided<T> component(int32_t j) const {
        return {static_cast<const T*>(task->x) + j * steps().by_component, steps().by_observation};
    }
    template <class T>
    Strided<T> observation(int32_t i) const {
        return {static_cast<const T*>(task->x) + i * steps().by_observation, steps().by_component};
    }
};

// A count behind a pointer: above 0 and, since what is counted lies in this process' memory, no more than 32 bits hold.
// `status` is returned for any other.
inline int32_t read_count(const SSTask* task, const void* at, int32_t status, int32_t& count) {
    const int64_t value = at ? read_integer(at, task->wideInts) : 0;
    if (value <= 0 || value > INT_MAX) return status;
    count = static_cast<int32_t>(value);
    return SSStatusOk;
}

// p, and which components take part.
inline int32_t read_components(SSTask* task, Data& data) {
    if (!task) return SSStatusNullTask;
    data.task = task;
    if (const int32_t status = read_count(task, task->p, SSStatusP, data.p)) return status;
    data.has_gaps = false;
    for (int32_t j = 0; task->indices && j < data.p; ++j)
        data.has_gaps |= read_integer(task->indices, task->wideInts, j) == 0;
    return SSStatusOk;
}

// n, x and its storage form.
inline int32_t read_observations(SSTask* task, Data& data) {
    data.task = task;
    if (const int32_t status = read_count(task, task->n, SSStatusN, data.n)) return status;
    const Needed needed[] = {{task->x, SSStatusX}, {task->xStorage, SSStatusStorage}};
    if (const int32_t status = first_missing(needed)) return status;
    const int64_t form = read_integer(task->xStorage, task->wideInts);
    if (!(form & (StorageRows | StorageColumns))) return SSStatusStorageValue;
    data.by_rows = (form & StorageRows) != 0;
    return SSStatusOk;
}

}  // namespace orv::stats
