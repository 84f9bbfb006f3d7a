// The weighted median of each component: the least observation whose cumulated weight passes half the whole; where it equals
// the half, the mean of that one and the next of positive weight.
#include "stats/entry.h"
#include "stats/order/keys.h"

#include <algorithm>

namespace orv::stats {
namespace {

template <class T>
struct Weighed {
    KeyOf<T> key;
    T weight;
};

template <class T>
T weighted_median(const Weighed<T>* sorted, int32_t n, double whole) {
    const double half = whole / 2;
    double cumulated = 0;
    for (int32_t i = 0; i < n; ++i) {
        cumulated += sorted[i].weight;
        if (cumulated < half || !(sorted[i].weight > 0)) continue;
        const T x = number_of<T>(sorted[i].key);
        if (cumulated > half) return x;
        int32_t next = i + 1;
        while (next < n && !(sorted[next].weight > 0)) ++next;
        return next < n ? static_cast<T>((double{x} + double{number_of<T>(sorted[next].key)}) / 2) : x;
    }
    return std::numeric_limits<T>::quiet_NaN();
}

template <class T>
int32_t wmedian(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_WEIGHTED_MEDIAN)) return SSStatusOk;
    const Needed needed[] = {{task->quantiles, SSStatusQuantiles}};
    if (const int32_t status = first_missing(needed)) return status;
    const T* w = static_cast<const T*>(task->w);
    double whole = w ? 0 : data.n;
    for (int32_t i = 0; w && i < data.n; ++i) whole += w[i];
    if (!(whole > 0)) return SSStatusW;

    T* results = static_cast<T*>(task->quantiles);
    return for_components(data, services, sizeof(Weighed<T>) * uint64_t(data.n), [&](int32_t j, char* memory) {
        Weighed<T>* all = reinterpret_cast<Weighed<T>*>(memory);
        const Strided<T> x = data.component<T>(j);
        for (int32_t i = 0; i < data.n; ++i) all[i] = {key_of(x[i]), w ? w[i] : T{1}};
        std::sort(all, all + data.n, [](const Weighed<T>& a, const Weighed<T>& b) { return a.key < b.key; });
        results[j] = weighted_median(all, data.n, whole);
        return int32_t{SSStatusOk};
    });
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(WMedian, wmedian)
