// Each component's observations in ascending order, -0 before +0 and NaNs last.
#include "stats/order/column_sort.h"

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
    const auto one = [&](int32_t j, char* memory, const orv_services* helpers, int32_t threads) {
        Key* keys = reinterpret_cast<Key*>(memory);
        sort_column_with(data.component<T>(j), data.n, helpers, threads, keys, keys + data.n,
                         [&](int32_t first, int32_t last, const Key* in_order) {
                             put_sorted(data, j, in_order, first, last, sorted, by_rows);
                         });
        return int32_t{SSStatusOk};
    };
    return for_components_and_within(data, services, threads_within(data, services), uint64_t{2} * sizeof(Key) * data.n,
                                     one);
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Sort, sort)
