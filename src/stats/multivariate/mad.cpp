// The median and the mean of the absolute deviations from the median, of each component.
#include "stats/entry.h"
#include "stats/order/parted.h"

namespace orv::stats {
namespace {

// Deviations take the place of the observations, in double for floats too.
template <class T>
int32_t mad(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_MAD)) return SSStatusOk;
    const Needed needed[] = {{task->robustEstimates2, SSStatusRobustEstimates2}};
    if (const int32_t status = first_missing(needed)) return status;
    T* medians = static_cast<T*>(task->robustEstimates2);
    T* means = static_cast<T*>(task->robustEstimates1);

    return for_components(data, services, sizeof(double) * uint64_t(data.n), [&](int32_t j, char* memory) {
        Parted<double> parted{reinterpret_cast<double*>(memory), 0, data.n, 0};
        copy_numbers(data.component<T>(j), parted);
        const double median = quantile(parted, 0.5);
        // An infinite median is no distance from itself: what was a number may be one no more.
        double sum = 0;
        parted.numbers = parted.from = 0;
        for (int32_t i = 0; i < data.n; ++i) {
            const double deviation = std::fabs(parted.x[i] - median);
            sum += deviation;
            parted.x[i] = parted.x[parted.numbers];
            parted.x[parted.numbers] = deviation;
            if (deviation == deviation) ++parted.numbers;
        }
        medians[j] = static_cast<T>(quantile(parted, 0.5));
        if (means) means[j] = static_cast<T>(sum / data.n);
        return int32_t{SSStatusOk};
    });
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(MAD, mad)
