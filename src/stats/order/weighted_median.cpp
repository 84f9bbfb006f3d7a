// The weighted median of each component: the least observation whose cumulated weight passes half the whole; where it equals
// the half, the mean of that one and the next of positive weight.
#include "stats/entry.h"
#include "stats/order/keys.h"

#include <algorithm>
#include <numeric>

namespace orv::stats {
namespace {

template <class T>
struct Weighed {
    KeyOf<T> key;
    T weight;
};

// A sum with its rounding errors, so that half the whole is met where it is met, in whatever order weights are added.
//
// Source: T. Ogita, S. M. Rump, S. Oishi, Accurate sum and dot product, SIAM Journal on Scientific Computing 26 (2005).
struct WeightSum {
    double sum = 0, errors = 0;

    void add(double weight) {
        const double next = sum + weight, taken = next - sum;
        if (next - next == 0) errors += (sum - (next - taken)) + (weight - taken);
        sum = next;
    }
    // Twice this less the whole; NaN where the whole is infinite and this too.
    double twice_less(const WeightSum& whole) const { return (2 * sum - whole.sum) + (2 * errors - whole.errors); }
};

template <class T>
T weighted_median(const Weighed<T>* sorted, int32_t n, const WeightSum& whole) {
    WeightSum cumulated;
    for (int32_t i = 0; i < n; ++i) {
        cumulated.add(static_cast<double>(sorted[i].weight));
        const double excess = cumulated.twice_less(whole);
        if (excess < 0 || !(sorted[i].weight > 0)) continue;
        const T x = number_of<T>(sorted[i].key);
        if (excess > 0) return x;
        int32_t next = i + 1;
        while (next < n && !(sorted[next].weight > 0)) ++next;
        return next < n ? static_cast<T>(std::midpoint(double{x}, double{number_of<T>(sorted[next].key)})) : x;
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
    WeightSum whole;
    for (int32_t i = 0; i < data.n; ++i) whole.add(w ? static_cast<double>(w[i]) : 1);
    if (!(whole.sum > 0)) return SSStatusW;

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
