// Quantiles by selection.
//
// The quantile of order q of n observations stands at position f = q (n - 1): with i its whole part and d the rest it is
// a (1 - d) + b d, a and b being the observations of order i and i + 1. A component's orders are taken from the smallest up, each
// in what the one before left behind it.
#include "stats/order/entry.h"
#include "stats/order/keys.h"
#include "stats/order/parted.h"

namespace orv::stats {
namespace {

template <class T>
int32_t quantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_QUANTILES)) return SSStatusOk;
    const Needed needed[] = {{task->quantOrderCount, SSStatusQuantOrderCount},
                             {task->quantOrders, SSStatusQuantOrders},
                             {task->quantiles, SSStatusQuantiles}};
    if (const int32_t status = first_missing(needed)) return status;
    int32_t count;
    if (const int32_t status = read_count(task, task->quantOrderCount, SSStatusQuantOrderCount, count)) return status;
    const T* orders = static_cast<const T*>(task->quantOrders);
    for (int32_t k = 0; k < count; ++k)
        if (!(orders[k] >= 0 && orders[k] <= 1)) return SSStatusQuantOrders;
    T* results = static_cast<T*>(task->quantiles);
    T* sorted = static_cast<T*>(task->orderStats);
    bool sorted_by_rows = data.by_rows;
    if (sorted && task->orderStatsStorage)
        if (const int32_t status = read_form(task, task->orderStatsStorage, sorted_by_rows)) return status;

    // The orders' places from the smallest up.
    const Scratch places(sizeof(int32_t) * uint64_t(count));
    if (!places.block) return SSStatusAllocation;
    int32_t* place = static_cast<int32_t*>(places.block);
    for (int32_t k = 0; k < count; ++k) {
        int32_t to = k;
        for (; to > 0 && orders[place[to - 1]] > orders[k]; --to) place[to] = place[to - 1];
        place[to] = k;
    }

    using Key = KeyOf<T>;
    const uint64_t bytes = uint64_t{sorted ? 2u : 1u} * sizeof(Key) * data.n;
    return for_components(data, services, bytes, [&](int32_t j, char* memory) {
        const Strided<T> x = data.component<T>(j);
        if (!sorted) {
            Parted<T> parted{reinterpret_cast<T*>(memory), 0, data.n, 0};
            copy_numbers(x, parted);
            for (int32_t k = 0; k < count; ++k)
                results[ptrdiff_t{j} * count + place[k]] = quantile(parted, static_cast<double>(orders[place[k]]));
            return;
        }
        Key* keys = reinterpret_cast<Key*>(memory);
        for (int32_t i = 0; i < data.n; ++i) keys[i] = key_of(x[i]);
        keys = sort_keys(keys, keys + data.n, data.n);
        for (int32_t i = 0; i < data.n; ++i) element(sorted, data, sorted_by_rows, j, i) = number_of<T>(keys[i]);
        for (int32_t k = 0; k < count; ++k) {
            const double position = static_cast<double>(orders[k]) * (data.n - 1);
            const int32_t i = static_cast<int32_t>(position);
            const double share = position - i;
            const double a = number_of<T>(keys[i]), b = number_of<T>(keys[i + 1 < data.n ? i + 1 : i]);
            results[ptrdiff_t{j} * count + k] = static_cast<T>(a * (1 - share) + b * share);
        }
    });
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Quantiles, quantiles)
