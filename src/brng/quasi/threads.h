// Long runs of whole points over threads, by groups of coordinates: the values of a coordinate depend on its direction
// numbers and the index alone, so the result is that of one thread.
#pragma once

#include "brng/quasi/points.h"
#include "services/services.h"

namespace orv::brng::quasi {

// From which dimension on a kernel's runs may be divided, and by how many coordinates.
struct Division {
    int32_t group;
    int32_t least;         // at or below this dimension never
    int32_t whole_groups;  // below this dimension only whole groups, in runs of the longest kind
};
inline constexpr Division double_division = {8, 8, 64};
inline constexpr Division word_division = {32, 32, 64};
inline constexpr Division float_division = {64, 64, 64};

// Whether the run is long enough for its dimension.
bool worth_threads(const Division& division, int32_t dimension, int32_t points);

// Runs worker(index, 0, count, args) for the groups by the core library's threads. False, and nothing is done, where there
// is no such service or its limit is one thread.
bool fan_out(int32_t groups, void* args, orv_serv_worker worker);

template <class Output>
struct Job {
    Tables tables;
    int32_t dimension, group, groups;
    uint32_t index;
    int32_t points;
    typename Output::Element* r;
    Output output;
};

// walk_rows for columns that fill whole cache lines, point by point: the lines stand far apart, so the processor is told
// some points ahead which it will write.
template <class Output>
void walk_lines(Tables t, int32_t count, uint32_t index, int32_t points, typename Output::Element* r, ptrdiff_t length,
                Output output) {
    constexpr ptrdiff_t points_ahead = 24;
    constexpr int32_t line_elements = 64 / sizeof *r;
    for (int32_t i = 0; i < points; ++i, ++index, r += length) {
        for (int32_t j = 0; j < count; j += line_elements) __builtin_prefetch(r + points_ahead * length + j, 1);
        one_point(t, count, index, r, output);
    }
}

// A worker takes the groups index, index + count, and so on. `own_lines`: no two groups share a cache line of the result.
template <class Output, bool own_lines>
void work(int32_t index, int32_t, int32_t count, void* args) {
    const Job<Output> job = *static_cast<const Job<Output>*>(args);
    for (int64_t g = index; g < job.groups; g += count) {
        const int32_t first = static_cast<int32_t>(g) * job.group;
        const int32_t rest = job.dimension - first;
        const Tables part = {job.tables.by_bit + first, job.tables.row, job.tables.point + first};
        const int32_t columns = rest < job.group ? rest : job.group;
        if constexpr (own_lines)
            walk_lines(part, columns, job.index, job.points, job.r + first, job.dimension, job.output);
        else
            walk_rows(part, columns, job.index, job.points, job.r + first, job.dimension, job.output);
    }
}

// False if the run stays on the calling thread; nothing is done then.
template <class Output>
bool walk_by_threads(const Division& division, const Tables& t, int32_t dimension, uint32_t index, int32_t points,
                     typename Output::Element* r, const Output& output) {
    if (!worth_threads(division, dimension, points)) return false;
    const int32_t groups = (dimension + division.group - 1) / division.group;
    Job<Output> job = {t, dimension, division.group, groups, index, points, r, output};
    constexpr uintptr_t line = 64;
    const bool own_lines =
        reinterpret_cast<uintptr_t>(r) % line == 0 && static_cast<size_t>(dimension) * sizeof *r % line == 0;
    return fan_out(groups, &job, own_lines ? work<Output, true> : work<Output, false>);
}

}  // namespace orv::brng::quasi
