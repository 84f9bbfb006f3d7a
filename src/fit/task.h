// The task record as the kernels read it, and the bucket table on which search in unsorted sites rests.
#pragma once

#include "platform/export.h"

#include <orv/fitting.h>

#include <stddef.h>
#include <stdint.h>

namespace orv::fit {

// The layout that callers see where pointers take 4 bytes.
static_assert(sizeof(void*) != 4 ||
              (offsetof(DFTask, recordTag) == 4 && offsetof(DFTask, isDouble) == 8 &&
               offsetof(DFTask, editable) == 12 && offsetof(DFTask, breakCount) == 16 &&
               offsetof(DFTask, breaks) == 24 && offsetof(DFTask, breakHint) == 32 &&
               offsetof(DFTask, funcCount) == 40 && offsetof(DFTask, funcs) == 48 &&
               offsetof(DFTask, funcCapacity) == 52 && offsetof(DFTask, funcHint) == 56 &&
               offsetof(DFTask, splineOrder) == 64 && offsetof(DFTask, splineType) == 72 &&
               offsetof(DFTask, icType) == 80 && offsetof(DFTask, icData) == 88 && offsetof(DFTask, bcType) == 96 &&
               offsetof(DFTask, bcData) == 104 && offsetof(DFTask, coeffs) == 108 &&
               offsetof(DFTask, coeffHint) == 112 && offsetof(DFTask, checkFlag) == 120 &&
               offsetof(DFTask, coeffCapacity) == 124 && offsetof(DFTask, cellTableSize) == 128 &&
               offsetof(DFTask, cellTable) == 136 && offsetof(DFTask, cellScale) == 144 && sizeof(DFTask) == 152));

constexpr int32_t block_alignment = 128;

inline double& cell_scale(DFTask& task, double) { return task.cellScale.d; }
inline float& cell_scale(DFTask& task, float) { return task.cellScale.s; }
inline double cell_scale(const DFTask& task, double) { return task.cellScale.d; }
inline float cell_scale(const DFTask& task, float) { return task.cellScale.s; }

inline bool is_uniform(const DFTask& task) { return (task.breakHint & ORV_DF_BREAKS_UNIFORM) != 0; }

// A pointer of funcs or coeffs, null where the array does not reach.
template <class P>
P entry_of(P* pointers, int32_t capacity, int64_t index) {
    return index < capacity ? pointers[index] : nullptr;
}
inline const void* function_of(const DFTask& task, int64_t i) { return entry_of(task.funcs, task.funcCapacity, i); }
inline void* coefficients_of(const DFTask& task, int64_t i) { return entry_of(task.coeffs, task.coeffCapacity, i); }

// What a reader of the arrays of all functions finds: ORV_DF_OK, or the status for one that is missing. No function counts
// as one.
orv_df_status functions_present(const DFTask& task);
orv_df_status coefficients_present(const DFTask& task);

// A partition in the element type. On a uniform one break i is first + i * width.
template <class T>
struct Partition {
    const T* breaks;
    int32_t count;
    T first, last;
    T width, inverse_width;
};

template <class T>
Partition<T> partition_of(const T* breaks, int64_t count, bool uniform) {
    Partition<T> partition;
    partition.breaks = breaks;
    partition.count = static_cast<int32_t>(count);
    partition.first = breaks[0];
    partition.last = uniform ? breaks[1] : breaks[count - 1];
    partition.width = (partition.last - partition.first) / static_cast<T>(count - 1);
    partition.inverse_width = static_cast<T>(count - 1) / (partition.last - partition.first);
    return partition;
}

template <class T>
Partition<T> partition_of(const DFTask& task) {
    return partition_of(static_cast<const T*>(task.breaks), task.breakCount, is_uniform(task));
}

// Gives the task a bucket table built from its partition; the pointer to an older one is overwritten.
template <class T>
orv_df_status build_bucket_table(DFTask& task);

}  // namespace orv::fit
