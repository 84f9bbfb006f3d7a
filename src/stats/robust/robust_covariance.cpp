// The entries of the robust estimators: Maronna's alone, or the S-estimator of the least determinant from several starts.
#include "stats/entry.h"
#include "stats/robust/s_estimator.h"
#include "stats/robust/starts.h"

#include <limits.h>

namespace orv::stats {
namespace {

struct RobustParams {
    double breakdown, rejection, tolerance;
    int32_t iterations;
};

template <class T>
int32_t read_params(const SSTask* task, RobustParams& params) {
    if (read_integer(task->robustParamCount, task->wideInts) != 4) return SSStatusRobustParamCount;
    const T* given = static_cast<const T*>(task->robustParams);
    const double breakdown = given[0], rejection = given[1], tolerance = given[2], iterations = given[3];
    if (!(breakdown >= double{1e-9f} && breakdown <= 0.5 && rejection > 0 && rejection < 1 && tolerance >= 0 &&
          iterations >= 1))
        return SSStatusRobustParams;
    params = {breakdown, rejection, tolerance, iterations < INT_MAX ? static_cast<int32_t>(iterations) : INT_MAX};
    return SSStatusOk;
}

// Monotone estimators break down at 1 / (q + 1), medians of single components do not see what is odd in no single one, and
// each pairwise estimate may miss what the others find: of where they lead to, the least determinant is kept.
int32_t best_s_estimate(const Sample& sample, const Sums& sums, const RobustParams& params, double* w, double* d,
                        Fit& best) {
    const int32_t q = sample.q;
    const double all = double(sample.n) + sample.others;
    // With more, a subset in a subspace would have the least determinant.
    const double most = (all - q) / (2 * all);
    const TranslatedBiweight biweight =
        translated_biweight(q, params.breakdown < most ? params.breakdown : most, params.rejection);
    Scratch room(room_for(q) + 2 * room_for(uint64_t(q) * q));
    if (!room.block) return SSStatusAllocation;
    Fit fit = take_fit(sample, room);
    bool found = false;
    for (int32_t start = 0; start < 3; ++start) {
        int32_t status = start == 0   ? bacon(sample, sums, {true, 0.05, 0}, w, d, fit)
                         : start == 1 ? pairwise(sample, sums, w, d, fit)
                                      : maronna(sample, sums, 1e-3, 100, w, d, fit);
        if (status == SSStatusOk)
            status = s_estimate(sample, sums, biweight, params.tolerance, params.iterations, w, d, fit);
        if (status == SSStatusAllocation) return status;
        if (status != SSStatusOk || (found && fit.log_det >= best.log_det)) continue;
        copy_fit(sample, fit, best);
        found = true;
    }
    return found ? SSStatusOk : SSStatusNotPositiveDefinite;
}

template <class T>
int32_t robust_covariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, RobustMaronna | RobustTBS, data)) return status;
    if (method != RobustMaronna && method != RobustTBS) return SSStatusMethod;
    if (!(estimates & ORV_SS_ROBUST_COVARIANCE)) return SSStatusOk;
    const Needed needed[] = {{task->robustMethod, SSStatusStorage},
                             {task->robustParamCount, SSStatusRobustParamCount},
                             {task->robustParams, SSStatusRobustParams},
                             {task->robustMean, SSStatusRobustMean},
                             {task->robustCov, SSStatusRobustCov}};
    if (const int32_t status = first_missing(needed)) return status;
    RobustParams params;
    if (const int32_t status = read_params<T>(task, params)) return status;

    Scratch room(sample_bytes(data) + sums_bytes(data) + fit_bytes(data) + 2 * room_for(data.n));
    if (!room.block) return SSStatusAllocation;
    Sample sample;
    if (const int32_t status = take_sample<T>(data, services, room, sample)) return status;
    if (sample.q == 0) return SSStatusOk;
    if (sample.n <= sample.q) return SSStatusNotPositiveDefinite;
    const Sums sums = take_sums(sample, room);
    Fit fit = take_fit(sample, room);
    double* w = room.take(sample.n);
    double* d = room.take(sample.n);
    const int32_t status = method == RobustMaronna
                               ? maronna(sample, sums, params.tolerance, params.iterations, w, d, fit)
                               : best_s_estimate(sample, sums, params, w, d, fit);
    if (status != SSStatusOk) return status;
    write_fit<T>(data, sample, fit, static_cast<T*>(task->robustMean),
                 {static_cast<T*>(task->robustCov), read_form(task, task->robustMethod)});
    return SSStatusOk;
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(RobustCovariance, robust_covariance)
