// Pooled covariance: the cross-products of each group's deviations from its own mean, over all groups, by their degrees of
// freedom; and each group's own mean and covariance.
#include "stats/basic/accumulation.h"
#include "stats/entry.h"
#include "stats/multivariate/group_sums.h"

namespace orv::stats {
namespace {

// Spans of observations are what threads share out. Their number depends on the data alone, and so do the results. Each has sums of
// its own of every group, which must be few beside the observations.
int32_t span_count(int32_t n, int32_t groups) {
    constexpr int32_t shortest = 8192, most = 16;
    const int64_t share = groups > shortest / 8 ? int64_t{8} * groups : shortest;
    const int64_t spans = n / share;
    return spans < 1 ? 1 : spans > most ? most : static_cast<int32_t>(spans);
}

// Long enough for the groups' segments to be worth a rank update, and no longer than a span.
int32_t block_length(int32_t n, int32_t groups) {
    constexpr int32_t usual = 2048;
    const int64_t wished = groups > usual / 64 ? int64_t{64} * groups : usual;
    const int64_t longest = (int64_t{n} + 1) & ~int64_t{1};
    return static_cast<int32_t>(wished < longest ? wished : longest);
}

// The first observation of each group that has weight, where it is finite, is what its others are taken relative to.
template <class T>
void first_of_groups(const Grouping& by, double* shifts, double* met) {
    const T* w = static_cast<const T*>(by.data.task->w);
    for (int32_t i = 0; i < by.data.n; ++i) {
        const int32_t k = by.group(i);
        if (met[k] != 0 || (w && w[i] == 0)) continue;
        met[k] = 1;
        const Strided<T> x = by.data.observation<T>(i);
        for (int32_t a = 0; a < by.chosen.count; ++a) {
            const double value = static_cast<double>(x[by.chosen[a]]);
            shifts[k * by.row() + a] = is_finite(value) ? value : 0;
        }
    }
}

// ---- Results -------------------------------------------------------------------------------------------------------

Weights weights_of(const GroupSums& sums, int32_t k) {
    return {sums.weights[2 * ptrdiff_t{k}], sums.weights[2 * ptrdiff_t{k} + 1], false};
}

// A group without weight has a mean and a matrix of zeros.
template <class T>
void write_groups(const Grouping& by, const GroupSums& sums) {
    const SSTask* task = by.data.task;
    const int32_t p = by.data.p;
    if (T* means = static_cast<T*>(task->pooledMean))
        for (int32_t k = 0; k < by.groups; ++k)
            for (int32_t a = 0; a < by.chosen.count; ++a) {
                const ptrdiff_t at = k * by.row() + a;
                const double mean = weights_of(sums, k).w == 0 ? 0 : by.shifts[at] + sums.means[at];
                means[ptrdiff_t{k} * p + by.chosen[a]] = static_cast<T>(mean);
            }
    if (!by.each_matrix) return;
    const Form form = read_form(task, task->pooledExtra34);
    const ptrdiff_t size = form == Form::full ? ptrdiff_t{p} * p : ptrdiff_t{p} * (p + 1) / 2;
    for (int32_t k = 0; k < by.groups; ++k) {
        const Weights weights = weights_of(sums, k);
        const double factor = weights.w == 0 ? 1 : weights.variance_factor();
        const double* cross = sums.cross_of(k, by);
        scatter(by.chosen, p, Matrix<T>{static_cast<T*>(task->pooledCov) + k * size, form},
                [&](int32_t a, int32_t b) { return factor * cross[b * by.row() + a]; });
    }
}

// The mean relative to that of the first group with weight, so that a common offset costs no digits.
template <class T>
void write_pooled(const Grouping& by, const GroupSums& sums) {
    const SSTask* task = by.data.task;
    double whole = 0, freedom = 0;
    int32_t first = -1;
    for (int32_t k = 0; k < by.groups; ++k) {
        const Weights weights = weights_of(sums, k);
        if (weights.w == 0) continue;
        if (first < 0) first = k;
        whole += weights.w;
        freedom += weights.excess();
    }
    T* results = static_cast<T*>(task->pooledResultMean);
    for (int32_t a = 0; a < by.chosen.count; ++a) {
        double mean = 0;
        if (first >= 0) {
            const double base = by.shifts[first * by.row() + a];
            for (int32_t k = 0; k < by.groups; ++k) {
                const ptrdiff_t at = k * by.row() + a;
                const double w = weights_of(sums, k).w;
                if (w != 0) mean += w * ((by.shifts[at] - base) + sums.means[at]);
            }
            mean = base + mean / whole;
        }
        results[by.chosen[a]] = static_cast<T>(mean);
    }
    double factor = freedom == 0 ? __builtin_nan("") : 1 / freedom;
    if (first < 0) factor = 1;
    const ptrdiff_t matrices = by.each_matrix ? by.groups : 1;
    const Matrix<T> to{static_cast<T*>(task->pooledResultCov), read_form(task, task->pooledExtra29)};
    scatter(by.chosen, by.data.p, to, [&](int32_t a, int32_t b) {
        double sum = 0;
        for (ptrdiff_t k = 0; k < matrices; ++k) sum += sums.cross[k * by.matrix() + b * by.row() + a];
        return factor * sum;
    });
}

// ---- The entry -----------------------------------------------------------------------------------------------------

template <class T>
int32_t run(const Grouping& by, double* memory, const orv_services* services) {
    const int32_t n = by.data.n, spans = span_count(n, by.groups), length = block_length(n, by.groups);
    int32_t threads = thread_count(services, int64_t{by.matrix()} * n, n);
    if (threads > spans) threads = spans;
    const uint64_t bytes = (Block::bytes(by, length) + 7) & ~uint64_t{7};
    const Scratch room(bytes * threads);
    if (!room.block) return SSStatusAllocation;
    const ptrdiff_t size = static_cast<ptrdiff_t>(GroupSums::doubles(by));
    auto part = [&](int32_t index) {
        const Block block = Block::at(room.block + bytes * index, by, length);
        const Share share = share_of(spans, threads, index);
        for (int32_t s = share.first; s < share.last; ++s) {
            const Share observations = share_of(n, spans, s);
            add_observations<T>(by, block, GroupSums::at(memory + s * size, by), observations.first, observations.last);
        }
        return int32_t{SSStatusOk};
    };
    if (const int32_t status = fan_out(services, threads, part)) return status;
    const GroupSums sums = GroupSums::at(memory, by);
    double* spare = reinterpret_cast<double*>(room.block);
    for (int32_t s = 1; s < spans; ++s) join(by, sums, GroupSums::at(memory + s * size, by), spare);
    write_groups<T>(by, sums);
    write_pooled<T>(by, sums);
    return SSStatusOk;
}

template <class T>
int32_t pooled(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_POOLED_COVARIANCE)) return SSStatusOk;
    const Needed needed[] = {{task->pooledGroupCount, SSStatusPooledGroup},
                             {task->pooledGroupIndices, SSStatusPooledGroup},
                             {task->pooledResultMean, SSStatusPooledResultMean},
                             {task->pooledResultCov, SSStatusPooledResultCov},
                             {task->pooledExtra29, SSStatusStorage},
                             {task->pooledCov ? task->pooledExtra34 : task, SSStatusStorage}};
    if (const int32_t status = first_missing(needed)) return status;
    int32_t groups;
    if (const int32_t status = read_count(task, task->pooledGroupCount, SSStatusPooledGroup, groups)) return status;
    for (int32_t i = 0; i < data.n; ++i) {
        const int64_t k = read_integer(task->pooledGroupIndices, task->wideInts, i);
        if (k < 0 || k >= groups) return SSStatusPooledGroup;
    }

    const Scratch numbers(sizeof(int32_t) * uint64_t(data.p));
    if (!numbers.block) return SSStatusAllocation;
    Grouping by{
        data, taking_part(data, reinterpret_cast<int32_t*>(numbers.block)), groups, task->pooledCov != nullptr, {}};
    if (by.chosen.count >> 14) return SSStatusAllocation;  // a matrix of theirs is beyond this address space
    const uint64_t shifts = uint64_t(groups) * by.row();
    const uint64_t sums = GroupSums::doubles(by) * span_count(data.n, groups);
    if (by.chosen.count == 0) return SSStatusOk;
    const uint64_t doubles = shifts + sums;
    if (doubles >> 28) return SSStatusAllocation;
    const Scratch scratch(sizeof(double) * doubles);
    if (!scratch.block) return SSStatusAllocation;
    double* memory = reinterpret_cast<double*>(scratch.block);
    memset(memory, 0, sizeof(double) * static_cast<size_t>(doubles));
    // The groups' weights say meanwhile which of them have been met.
    double* met = memory + shifts;
    first_of_groups<T>(by, memory, met);
    memset(met, 0, sizeof(double) * groups);
    by.shifts = memory;
    return run<T>(by, met, services);
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(PooledCovariance, pooled)
