// Each component's observations in ascending order, -0 before +0 and NaNs last.
#include "stats/order/entry.h"
#include "stats/order/keys.h"

namespace orv::stats {
namespace {

template <class T>
int32_t sort(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_SORT)) return SSStatusOk;
    const Needed needed[] = {{task->extraData, SSStatusExtraData}};
    if (const int32_t status = first_missing(needed)) return status;
    bool by_rows;
    if (const int32_t status = read_form(task, task->extraInt, by_rows)) return status;

    using Key = KeyOf<T>;
    T* sorted = static_cast<T*>(task->extraData);
    return for_components(data, services, uint64_t{2} * sizeof(Key) * data.n, [&](int32_t j, char* memory) {
        Key* keys = reinterpret_cast<Key*>(memory);
        const Strided<T> x = data.component<T>(j);
        for (int32_t i = 0; i < data.n; ++i) keys[i] = key_of(x[i]);
        keys = sort_keys(keys, keys + data.n, data.n);
        for (int32_t i = 0; i < data.n; ++i) element(sorted, data, by_rows, j, i) = number_of<T>(keys[i]);
    });
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Sort, sort)
