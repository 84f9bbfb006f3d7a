// What the order statistics begin and end with: checks, and the fan-out over components.
#pragma once

#include "services/export.h"
#include "stats/data.h"
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

// A block from the core services for the length of a call.
struct Scratch {
    void* block;

    explicit Scratch(uint64_t bytes)
        : block(bytes >> 31 ? nullptr : orv_serv_allocate(static_cast<size_t>(bytes), 128)) {}
    ~Scratch() { orv_serv_deallocate(block); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
};

// work(j, memory) for each component that takes part, over threads by components; `bytes` of memory a thread.
template <class Work>
int32_t for_components(const Data& data, const orv_services* services, uint64_t bytes, Work work) {
    int32_t threads = thread_count(services, int64_t{data.p} * data.n * 16, data.n);
    if (threads > data.p) threads = data.p;
    bytes = (bytes + 127) & ~uint64_t{127};
    const Scratch scratch(bytes * threads + 1);
    if (!scratch.block) return SSStatusAllocation;
    auto part = [&](int32_t index) {
        char* memory = static_cast<char*>(scratch.block) + static_cast<size_t>(bytes) * index;
        const Share share = share_of(data.p, threads, index);
        for (int32_t j = share.first; j < share.last; ++j)
            if (data.takes_part(j)) work(j, memory);
        return int32_t{SSStatusOk};
    };
    return fan_out(services, threads, part);
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
