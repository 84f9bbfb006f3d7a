// The entries that impute missing values: the arguments, the start, and the sets, over threads.
#include "stats/entry.h"
#include "stats/missing/normal_model.h"

#include <limits.h>
#include <string.h>

namespace orv::stats {
namespace {

struct MissingParams {
    int32_t em_iterations, da_iterations, sets;
    double tolerance;
    uint32_t seed;
};

bool read_whole(double value, double least, double most, double& to) {
    if (!(value >= least && value <= most) || value != static_cast<double>(static_cast<int64_t>(value))) return false;
    to = value;
    return true;
}

template <class T>
int32_t read_params(const SSTask* task, int32_t missing, MissingParams& params) {
    const T* given = static_cast<const T*>(task->missMatrix);
    double em, da, sets, count, seed;
    const bool fit = read_integer(task->missMethod, task->wideInts) == 6 && read_whole(given[0], 0, INT_MAX, em) &&
                     read_whole(given[1], 1, INT_MAX, da) && given[2] >= 0 && read_whole(given[3], 1, INT_MAX, sets) &&
                     read_whole(given[4], 0, INT_MAX, count) && read_whole(given[5], 0, UINT32_MAX, seed) &&
                     count == missing;
    if (!fit) return SSStatusMissMatrix;
    params = {static_cast<int32_t>(em), static_cast<int32_t>(da), static_cast<int32_t>(sets), double{given[2]},
              static_cast<uint32_t>(seed)};
    return SSStatusOk;
}

// How many numbers stand for a mean and a packed covariance.
int64_t estimate_size(int32_t q) { return int64_t{q} + int64_t{q} * (q + 1) / 2; }

// A symmetric matrix, the lower triangle by rows, and the sample's units.
template <class T>
void read_packed(const Sample& sample, const T* packed, double* full) {
    for (int32_t i = 0; i < sample.q; ++i)
        for (int32_t j = 0; j <= i; ++j) {
            const double value = *packed++ / sample.unit[i] / sample.unit[j];
            full[ptrdiff_t{j} * sample.q + i] = full[ptrdiff_t{i} * sample.q + j] = value;
        }
}

template <class T>
void read_mean(const Sample& sample, const T* given, double* mean) {
    for (int32_t j = 0; j < sample.q; ++j) mean[j] = (given[j] - sample.origin[j]) / sample.unit[j];
}

template <class T>
void write_estimate(const Sample& sample, const Fit& fit, T* to) {
    for (int32_t j = 0; j < sample.q; ++j) *to++ = static_cast<T>(sample.origin[j] + sample.unit[j] * fit.centre[j]);
    for (int32_t i = 0; i < sample.q; ++i)
        for (int32_t j = 0; j <= i; ++j)
            *to++ = static_cast<T>(sample.unit[i] * fit.cov[ptrdiff_t{i} * sample.q + j] * sample.unit[j]);
}

template <class T>
int32_t read_prior(const SSTask* task, const Sample& sample, Prior& prior) {
    const int32_t q = sample.q;
    const int64_t count = task->missCountB && task->missCov ? read_integer(task->missCountB, task->wideInts) : 0;
    prior.given = count != 0;
    prior.tau = 0;
    prior.freedom = -1;
    memset(prior.mean, 0, sizeof(double) * q);
    memset(prior.scale, 0, sizeof(double) * q * q);
    if (prior.given) {
        if (count != 2 + estimate_size(q)) return SSStatusMissCountB;
        const T* given = static_cast<const T*>(task->missCov);
        prior.tau = given[0];
        prior.freedom = given[1];
        bool finite = true;
        for (int64_t k = 0; k < count; ++k) finite &= given[k] - given[k] == 0;
        if (!(finite && prior.tau >= 0)) return SSStatusMissCov;
        read_mean(sample, given + 2, prior.mean);
        read_packed(sample, given + 2 + q, prior.scale);
    }
    // A drawn covariance has the dimension's degrees of freedom at least.
    return prior.freedom + sample.n > q - 1 ? int32_t{SSStatusOk} : int32_t{SSStatusNotPositiveDefinite};
}

// The caller's estimates; else those of the complete observations, if they have a covariance; else no correlations.
template <class T>
int32_t start(const SSTask* task, const Incomplete& incomplete, const Sums& sums, Fit& fit) {
    const Sample& sample = incomplete.sample;
    const int32_t q = sample.q;
    if (task->missMean && task->missCountA) {
        if (read_integer(task->missCountA, task->wideInts) != estimate_size(q)) return SSStatusMissCountA;
        const T* given = static_cast<const T*>(task->missMean);
        read_mean(sample, given, fit.centre);
        read_packed(sample, given + q, fit.cov);
        return factor(sample, fit);
    }
    memset(fit.centre, 0, sizeof(double) * q);
    // Without a gap, a group is the first.
    const uint8_t* gaps = incomplete.gaps + ptrdiff_t{sample.observation[0]} * q;
    bool complete = true;
    for (int32_t j = 0; j < q; ++j) complete &= gaps[j] == 0;
    Sample first = sample;
    first.n = incomplete.groups[0].last;
    if (complete && first.n > q) {
        weigh(first, sums, nullptr, fit);
        if (factor(sample, fit) == SSStatusOk) return SSStatusOk;
    }
    memset(fit.centre, 0, sizeof(double) * q);
    memset(fit.cov, 0, sizeof(double) * q * q);
    for (int32_t j = 0; j < q; ++j) fit.cov[ptrdiff_t{j} * (q + 1)] = 1;
    return SSStatusOk;
}

struct DeleteStream {
    Stream* stream = nullptr;
    ~DeleteStream() {
        if (stream) __kuzDeleteStream(&stream);
    }
};

// A set's chain, with a stream of its own: the generator's key is the seed and the set's number.
template <class T>
int32_t draw_set(const Incomplete& incomplete, const MissingParams& params, const Prior& prior, const Sums& sums,
                 const Fit& from, int32_t set, double* z, Fit& fit, T* imputed, T* estimates) {
    const Sample& sample = incomplete.sample;
    DeleteStream owner;
    const uint32_t key[2] = {params.seed, static_cast<uint32_t>(set)};
    if (const int32_t status = __kuzNewStreamEx(&owner.stream, BrngPHILOX4X32X10, 2, key)) return status;
    memcpy(z, sample.z, sizeof(double) * sample.q * sample.n);
    copy_fit(sample, from, fit);
    for (int32_t iteration = 0; iteration < params.da_iterations; ++iteration) {
        if (const int32_t status = augment(incomplete, sums, prior, owner.stream, z, fit)) return status;
        if (estimates) write_estimate(sample, fit, estimates + estimate_size(sample.q) * iteration);
    }
    for (int32_t i = 0; i < sample.n; ++i) {
        const uint8_t* gaps = incomplete.gaps + ptrdiff_t{sample.observation[i]} * sample.q;
        T* to = imputed + incomplete.first_gap[i];
        for (int32_t j = 0; j < sample.q; ++j)
            if (gaps[j]) *to++ = static_cast<T>(sample.origin[j] + sample.unit[j] * z[ptrdiff_t{i} * sample.q + j]);
    }
    return SSStatusOk;
}

template <class T>
int32_t draw_sets(const Data& data, const Incomplete& incomplete, const MissingParams& params, const Prior& prior,
                  const Fit& from, T* imputed, T* estimates) {
    const Sample& sample = incomplete.sample;
    const uint64_t values = static_cast<uint64_t>(sample.q) * static_cast<uint64_t>(sample.n);
    const uint64_t bytes = room_for(values) + fit_bytes(data) + sums_bytes(data);
    int32_t threads = thread_count(sample.services, int64_t{sample.n} * sample.q * params.sets * 16, INT_MAX);
    if (threads > params.sets) threads = params.sets;
    Scratch room(bytes * threads);
    if (!room.block) return SSStatusAllocation;
    auto part = [&](int32_t index) {
        Scratch mine(room.block + bytes * index);
        double* z = mine.take(values);
        Fit fit = take_fit(sample, mine);
        const Sums sums = take_sums(sample, mine);
        const Share share = share_of(params.sets, threads, index);
        for (int32_t set = share.first; set < share.last; ++set) {
            T* set_estimates = estimates ? estimates + estimate_size(sample.q) * params.da_iterations * set : nullptr;
            const int32_t status = draw_set(incomplete, params, prior, sums, from, set, z, fit,
                                            imputed + ptrdiff_t{incomplete.missing} * set, set_estimates);
            if (status != SSStatusOk) return status;
        }
        return int32_t{SSStatusOk};
    };
    return fan_out(sample.services, threads, part);
}

template <class T>
int32_t missing_values(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_MISSING_VALUES)) return SSStatusOk;
    const Needed needed[] = {{task->missMethod, SSStatusStorage},
                             {task->missMatrix, SSStatusMissMatrix},
                             {task->missCountC, SSStatusMissCountC},
                             {task->missCor, SSStatusMissCor}};
    if (const int32_t status = first_missing(needed)) return status;
    if (task->missStorage && !task->missCountD) return SSStatusMissCountD;

    const uint64_t p = static_cast<uint64_t>(data.p), n = static_cast<uint64_t>(data.n);
    Scratch room(incomplete_bytes(data) + fit_bytes(data) + sums_bytes(data) + room_for(p) + room_for(p * p) +
                 room_for(p * n));
    if (!room.block) return SSStatusAllocation;
    Incomplete incomplete;
    if (const int32_t status = take_incomplete<T>(data, services, room, incomplete)) return status;
    const Sample& sample = incomplete.sample;
    if (sample.q == 0) return SSStatusOk;
    MissingParams params;
    if (const int32_t status = read_params<T>(task, incomplete.missing, params)) return status;
    if (read_integer(task->missCountC, task->wideInts) != int64_t{params.sets} * incomplete.missing)
        return SSStatusMissCountC;
    const double draws = double(params.sets) * params.da_iterations * estimate_size(sample.q);
    if (task->missStorage && static_cast<double>(read_integer(task->missCountD, task->wideInts)) != draws)
        return SSStatusMissCountD;

    Fit fit = take_fit(sample, room);
    const Sums sums = take_sums(sample, room);
    Prior prior;
    prior.mean = room.take(sample.q);
    prior.scale = room.take(p * p);
    if (const int32_t status = read_prior<T>(task, sample, prior)) return status;
    if (const int32_t status = start<T>(task, incomplete, sums, fit)) return status;
    double* z = room.take(p * n);
    memcpy(z, sample.z, sizeof(double) * sample.q * sample.n);
    if (const int32_t status = maximise(incomplete, sums, prior, params.em_iterations, params.tolerance, z, fit))
        return status;
    return draw_sets<T>(data, incomplete, params, prior, fit, static_cast<T*>(task->missCor),
                        static_cast<T*>(task->missStorage));
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(MissingValues, missing_values)
