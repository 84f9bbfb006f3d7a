// The observations as the robust estimators see them: those that are numbers, of the components that take part, each
// component less its median and in units of its spread, in double. What is computed from them is the same to rounding
// whatever the data's origin and units are, and nothing overflows.
#pragma once

#include "stats/matrices.h"
#include "stats/scratch.h"
#include "stats/threads.h"

namespace orv::stats {

struct Sample {
    int32_t q = 0, n = 0;       // components, observations
    int32_t others = 0;         // observations with a NaN, an infinity or a value further out than numbers are good for
    const double* z = nullptr;  // component j of observation i is z[i * q + j]
    const double* origin = nullptr;  // of each component
    const double* unit = nullptr;
    const int32_t* component = nullptr;    // of the task
    const int32_t* observation = nullptr;  // of the task
    const orv_services* services = nullptr;
};

// The room that a sample takes.
uint64_t sample_bytes(const Data& data);

// Fills in `sample`. A component without spread is SSStatusNotPositiveDefinite.
template <class T>
int32_t take_sample(const Data& data, const orv_services* services, Scratch& room, Sample& sample);

// Sums over the observations are formed part by part, each part by one thread, and joined in the order of the parts: the parts
// depend on n and q alone, so results do not depend on the number of threads. The matrices of all parts stay within 32 MB, if
// they are more than one.
inline constexpr int32_t most_parts = 64, least_part = 256;

inline int32_t part_count(int32_t n, int32_t q) {
    const int64_t room = (int64_t{1} << 22) / ((int64_t{q} + 1) * (int64_t{q} + 1));
    int64_t parts = n / least_part;
    if (parts > most_parts) parts = most_parts;
    if (parts > room) parts = room;
    return parts < 1 ? 1 : static_cast<int32_t>(parts);
}
inline int32_t part_count(const Sample& sample) { return part_count(sample.n, sample.q); }

// work(part, first, last) for every part. `weight` is the multiplications per observation.
template <class Work>
void each_part(const Sample& sample, int64_t weight, Work work) {
    const int32_t parts = part_count(sample);
    int32_t threads = thread_count(sample.services, weight * sample.n, sample.n);
    if (threads > parts) threads = parts;
    auto run = [&](int32_t index) {
        const Share mine = share_of(parts, threads, index);
        for (int32_t part = mine.first; part < mine.last; ++part) {
            const Share items = share_of(sample.n, parts, part);
            work(part, items.first, items.last);
        }
        return int32_t{SSStatusOk};
    };
    fan_out(sample.services, threads, run);
}

// sum of term(i) over the observations.
template <class Term>
double sum_over(const Sample& sample, int64_t weight, Term term) {
    double sums[most_parts];
    each_part(sample, weight, [&](int32_t part, int32_t first, int32_t last) {
        double sum = 0;
        for (int32_t i = first; i < last; ++i) sum += term(i);
        sums[part] = sum;
    });
    double sum = 0;
    for (int32_t part = 0; part < part_count(sample); ++part) sum += sums[part];
    return sum;
}

}  // namespace orv::stats
