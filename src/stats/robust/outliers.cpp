// The entries of outlier detection: which observations are outside the last subset that grew from a clean one.
#include "stats/entry.h"
#include "stats/robust/starts.h"

namespace orv::stats {
namespace {

template <class T>
int32_t read_rule(const SSTask* task, BaconRule& rule) {
    if (read_integer(task->outlierParamCount, task->wideInts) != 3) return SSStatusOutlierParamCount;
    const T* given = static_cast<const T*>(task->outlierParams);
    const bool from_medians = given[0] == T{SubsetMedian}, from_mean = given[0] == T{SubsetMahalanobis};
    const double alpha = given[1], stop = given[2];
    if (!((from_medians || from_mean) && alpha > 0 && alpha < 1 && stop >= 0 && stop < 1)) return SSStatusOutlierParams;
    rule = {from_medians, alpha, stop};
    return SSStatusOk;
}

template <class T>
int32_t outliers(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_OUTLIERS)) return SSStatusOk;
    const Needed needed[] = {{task->outlierParamCount, SSStatusOutlierParamCount},
                             {task->outlierParams, SSStatusOutlierParams},
                             {task->outlierWeights, SSStatusOutlierWeights}};
    if (const int32_t status = first_missing(needed)) return status;
    BaconRule rule;
    if (const int32_t status = read_rule<T>(task, rule)) return status;

    Scratch room(sample_bytes(data) + sums_bytes(data) + fit_bytes(data) + 2 * room_for(data.n));
    if (!room.block) return SSStatusAllocation;
    Sample sample;
    if (const int32_t status = take_sample<T>(data, services, room, sample)) return status;
    if (sample.q == 0) return SSStatusOk;
    const Sums sums = take_sums(sample, room);
    Fit fit = take_fit(sample, room);
    double* w = room.take(sample.n);
    double* d = room.take(sample.n);
    if (const int32_t status = bacon(sample, sums, rule, w, d, fit)) return status;
    T* kept = static_cast<T*>(task->outlierWeights);
    for (int32_t i = 0; i < data.n; ++i) kept[i] = 0;
    for (int32_t i = 0; i < sample.n; ++i) kept[sample.observation[i]] = static_cast<T>(w[i]);
    return SSStatusOk;
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(OutliersDetection, outliers)
