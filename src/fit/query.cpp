// Queries: what was edited, read back.
#include "fit/task.h"

namespace orv::fit {
namespace {

// The task holds the caller's arrays as read-only; the caller who gave them gets them back as they were.
template <class T>
T* given(const void* array) {
    return static_cast<T*>(const_cast<void*>(array));
}

template <class T>
orv_df_status query_pointer(const DFTask* task, int64_t id, T** result) {
    if (!task) return ORV_DF_NULL_TASK;
    if (!result) return ORV_DF_NULL_RESULT;
    if (task->editable != 1) return ORV_DF_OK;
    switch (id) {
        case ORV_DF_BREAKS:
            *result = given<T>(task->breaks);
            return ORV_DF_OK;
        case ORV_DF_FUNCTIONS:
            *result = given<T>(function_of(*task, 0));
            return ORV_DF_OK;
        case ORV_DF_INTERNAL_DATA:
            *result = given<T>(task->icData);
            return ORV_DF_OK;
        case ORV_DF_BOUNDARY_DATA:
            *result = given<T>(task->bcData);
            return ORV_DF_OK;
        case ORV_DF_COEFFICIENTS:
            *result = given<T>(coefficients_of(*task, 0));
            return ORV_DF_OK;
        default:
            return ORV_DF_BAD_PARAMETER;
    }
}

// The fields of iQueryVal from ORV_DF_BREAK_COUNT on; the check flag, a shorter one, follows them.
constexpr int64_t DFTask::*value_fields[] = {
    &DFTask::breakCount, &DFTask::breakHint, &DFTask::funcCount, &DFTask::funcHint,  &DFTask::splineOrder,
    &DFTask::splineType, &DFTask::icType,    &DFTask::bcType,    &DFTask::coeffHint,
};

orv_df_status query_value(const DFTask* task, int64_t id, void* result) {
    if (!task) return ORV_DF_NULL_TASK;
    if (!result) return ORV_DF_NULL_RESULT;
    if (task->editable != 1) return ORV_DF_OK;
    if (id < ORV_DF_BREAK_COUNT || id > ORV_DF_CHECK_FLAG) return ORV_DF_BAD_PARAMETER;
    const int64_t value =
        id == ORV_DF_CHECK_FLAG ? int64_t{task->checkFlag} : task->*value_fields[id - ORV_DF_BREAK_COUNT];
    // Bytes, since a narrow or packed caller's integer need not be aligned. The low half comes first on this processor.
    __builtin_memcpy(result, &value, task->wideInts ? sizeof(int64_t) : sizeof(int32_t));
    return ORV_DF_OK;
}

// The index is tested before everything else and may equal the count, as callers that ask for one past the end rely on.
template <class T>
orv_df_status query_indexed_pointer(const DFTask* task, int64_t id, int64_t index, T** result) {
    if (!task) return ORV_DF_NULL_TASK;
    if (!result) return ORV_DF_NULL_RESULT;
    if (index < 0 || index > task->funcCount) return ORV_DF_BAD_INDEX;
    if (task->editable != 1) return ORV_DF_OK;
    switch (id) {
        case ORV_DF_FUNCTIONS:
            if (task->funcHint == ORV_DF_COLUMNS) return ORV_DF_BAD_FUNCTION_HINT;
            *result = given<T>(function_of(*task, index));
            return ORV_DF_OK;
        case ORV_DF_COEFFICIENTS:
            *result = given<T>(coefficients_of(*task, index));
            return ORV_DF_OK;
        default:
            return ORV_DF_BAD_PARAMETER;
    }
}

}  // namespace
}  // namespace orv::fit

using namespace orv::fit;

#define ORV_QUERY_ENTRIES(letter, T)                                                                                 \
    ORV_API int32_t orv_df_kernel_##letter##QueryPtr(const DFTask* task, int64_t id, T** result) {                   \
        return query_pointer(task, id, result);                                                                      \
    }                                                                                                                \
    ORV_API int32_t orv_df_kernel_##letter##QueryIdxPtr(const DFTask* task, int64_t id, int64_t index, T** result) { \
        return query_indexed_pointer(task, id, index, result);                                                       \
    }

ORV_QUERY_ENTRIES(d, double)
ORV_QUERY_ENTRIES(s, float)

ORV_API int32_t orv_df_kernel_iQueryVal(const DFTask* task, int64_t id, void* result) {
    return query_value(task, id, result);
}
