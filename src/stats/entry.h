// What compute entries begin and end with: checks, and the fan-out over components.
#pragma once

#include "services/export.h"
#include "stats/data.h"
#include "stats/scratch.h"
#include "stats/threads.h"

namespace orv::stats {

// The plain method and the fast one, here the same.
inline int32_t check_method(uint64_t method, uint64_t known = ORV_SS_METHOD_FAST) {
    return method & ~known ? int32_t{SSStatusMethod} : int32_t{SSStatusOk};
}

// Estimates, method, p, n, x and its form, in this order.
inline int32_t check_entry(SSTask* task, uint64_t estimates, uint64_t method, uint64_t known, Data& data) {
    if (const int32_t status = check_estimates(estimates)) return status;
    if (const int32_t status = check_method(method, known)) return status;
    if (const int32_t status = read_components(task, data)) return status;
    return read_observations(task, data);
}

// The form of a matrix of n observations of p components behind `at`: by_rows where each component is contiguous.
inline int32_t read_form(const SSTask* task, const void* at, bool& by_rows) {
    if (!at) return SSStatusStorage;
    const int64_t form = read_integer(at, task->wideInts);
    if (form != StorageRows && form != StorageColumns) return SSStatusStorageValue;
    by_rows = form == StorageRows;
    return SSStatusOk;
}

// One result of component j and observation i in a matrix of either form.
template <class T>
T& element(T* matrix, const Data& data, bool by_rows, int32_t j, int32_t i) {
    return by_rows ? matrix[ptrdiff_t{j} * data.n + i] : matrix[ptrdiff_t{i} * data.p + j];
}

// What a component's numbers weigh in multiplications.
inline int64_t component_work(const Data& data) { return int64_t{data.p} * data.n * 16; }

// work(j, memory) for each component that takes part, over threads by components; `bytes` of memory a thread. It returns a status.
template <class Work>
int32_t for_components(const Data& data, const orv_services* services, uint64_t bytes, Work work) {
    int32_t threads = thread_count(services, component_work(data), data.n);
    if (threads > data.p) threads = data.p;
    bytes = room_for(bytes, 1);
    const Scratch scratch(bytes * threads);
    if (!scratch.block) return SSStatusAllocation;
    auto part = [&](int32_t index) {
        char* memory = scratch.block + static_cast<size_t>(bytes) * index;
        const Share share = share_of(data.p, threads, index);
        for (int32_t j = share.first; j < share.last; ++j)
            if (data.takes_part(j))
                if (const int32_t status = work(j, memory)) return status;
        return int32_t{SSStatusOk};
    };
    return fan_out(services, threads, part);
}

// The threads for one component after another, where there are more threads than components and those are long; else 1.
inline constexpr int32_t shortest_within = 1 << 13, most_within = 16;

inline int32_t threads_within(const Data& data, const orv_services* services) {
    const int32_t threads = thread_count(services, component_work(data), data.n);
    const int32_t parts = data.n / shortest_within < most_within ? data.n / shortest_within : most_within;
    int32_t components = 0;
    for (int32_t j = 0; j < data.p; ++j) components += data.takes_part(j);
    return threads <= components || parts < 2 ? 1 : threads < parts ? threads : parts;
}

// work(j, memory, services, threads) for each component that takes part: over threads by components, or with the given number of
// threads, that of threads_within, within each.
template <class Work>
int32_t for_components_and_within(const Data& data, const orv_services* services, int32_t threads, uint64_t bytes,
                                  Work work) {
    if (threads == 1)
        return for_components(data, services, bytes,
                              [&](int32_t j, char* memory) { return work(j, memory, nullptr, 1); });
    const Scratch scratch(bytes);
    if (!scratch.block) return SSStatusAllocation;
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j))
            if (const int32_t status = work(j, scratch.block, services, threads)) return status;
    return SSStatusOk;
}

}  // namespace orv::stats

// The two entries of a family member from its template.
#define ORV_SS_ENTRY(Name, function)                                                                                 \
    ORV_API int32_t _kuzdSS##Name(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) { \
        return orv::stats::function<double>(task, estimates, method, services);                                      \
    }                                                                                                                \
    ORV_API int32_t _kuzsSS##Name(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) { \
        return orv::stats::function<float>(task, estimates, method, services);                                       \
    }
