// The task's life and its editing. Every operation tests, then stores, field by field: what stands before the field that
// is refused stays stored.
#include "fit/pointers.h"

namespace orv::fit {
namespace {

bool known_layout(int64_t hint) {
    return hint == ORV_DF_NO_HINT || hint == ORV_DF_ROWS || hint == ORV_DF_COLUMNS || hint == ORV_DF_ROW_POINTERS;
}

bool known_break_hint(int64_t hint) {
    return hint == ORV_DF_BREAKS_NO_HINT || hint == ORV_DF_BREAKS_NON_UNIFORM || hint == ORV_DF_BREAKS_QUASI_UNIFORM ||
           hint == ORV_DF_BREAKS_UNIFORM;
}

template <class T>
orv_df_status new_task(DFTask** out, int64_t breakCount, const T* breaks, int64_t breakHint, int64_t funcCount,
                       const T* funcs, int64_t funcHint, int32_t wideInts) {
    if (breakCount < 2) return ORV_DF_BAD_BREAK_COUNT;
    if (!breaks) return ORV_DF_NULL_BREAKS;
    if (!known_break_hint(breakHint)) return ORV_DF_BAD_BREAK_HINT;
    if (funcCount == 0 && funcs) return ORV_DF_BAD_FUNCTION_COUNT;
    if (funcCount != 0 && !funcs) return ORV_DF_NULL_FUNCTIONS;
    if (!known_layout(funcHint)) return ORV_DF_BAD_FUNCTION_HINT;
    auto* task = static_cast<DFTask*>(orv_serv_allocate(sizeof(DFTask), block_alignment));
    *out = task;
    if (!task) return ORV_DF_NO_MEMORY;
    __builtin_memset(task, 0, sizeof *task);
    task->breakCount = breakCount;
    task->breaks = breaks;
    task->breakHint = breakHint;
    if (funcs) {
        const orv_df_status status = set_functions(*task, funcs, funcCount, funcHint);
        if (status != ORV_DF_OK) return status;
    }
    task->funcHint = funcHint;
    task->funcCount = funcCount;
    task->wideInts = wideInts;
    task->recordTag = 4;
    task->isDouble = sizeof(T) == sizeof(double);
    task->editable = 1;
    return breakHint == ORV_DF_BREAKS_UNIFORM ? ORV_DF_OK : build_bucket_table<T>(*task);
}

template <class T>
orv_df_status edit_spline(DFTask* task, int64_t splineOrder, int64_t splineType, int64_t bcType, const T* bcData,
                          int64_t icType, const T* icData, T* coeffs, int64_t coeffHint) {
    if (!task) return ORV_DF_NULL_TASK;
    if (task->editable != 1) return ORV_DF_OK;
    if (splineOrder < 0) return ORV_DF_BAD_SPLINE_ORDER;
    if (splineType < 0) return ORV_DF_BAD_SPLINE_TYPE;
    task->splineOrder = splineOrder;
    task->splineType = splineType;
    const bool needs_no_data = bcType == ORV_DF_NO_CONDITION || bcType == ORV_DF_NOT_A_KNOT ||
                               bcType == ORV_DF_FREE_END || bcType == ORV_DF_PERIODIC;
    if (!needs_no_data && !bcData) return ORV_DF_NULL_BOUNDARY_DATA;
    task->bcType = bcType;
    task->bcData = bcData;
    if (icType != 0 && !icData) return ORV_DF_NULL_INTERNAL_DATA;
    if (icType == 0 && icData) return ORV_DF_BAD_INTERNAL_CONDITION;
    task->icType = icType;
    task->icData = icData;
    if (coeffs) {
        const orv_df_status status = set_coefficients(*task, coeffs, coeffHint);
        if (status != ORV_DF_OK) return status;
    }
    task->coeffHint = coeffHint;
    return ORV_DF_OK;
}

template <class T>
orv_df_status edit_pointer(DFTask* task, int64_t id, const T* pointer) {
    if (!task) return ORV_DF_NULL_TASK;
    if (task->editable != 1) return ORV_DF_OK;
    switch (id) {
        case ORV_DF_BREAKS:
            if (!pointer) return ORV_DF_NULL_BREAKS;
            task->breaks = pointer;
            return ORV_DF_OK;
        case ORV_DF_FUNCTIONS:
            if (!pointer) return ORV_DF_NULL_FUNCTIONS;
            orv_serv_deallocate(task->funcs);
            return set_functions(*task, pointer, task->funcCount, task->funcHint);
        case ORV_DF_INTERNAL_DATA:
            if (!pointer) return ORV_DF_NULL_INTERNAL_DATA;
            task->icData = pointer;
            return ORV_DF_OK;
        case ORV_DF_BOUNDARY_DATA:
            if (!pointer) return ORV_DF_NULL_BOUNDARY_DATA;
            task->bcData = pointer;
            return ORV_DF_OK;
        case ORV_DF_COEFFICIENTS:
            if (!pointer) return ORV_DF_NULL_COEFFICIENTS;
            return set_coefficients(*task, const_cast<T*>(pointer), task->coeffHint);
        default:
            return ORV_DF_BAD_PARAMETER;
    }
}

orv_df_status edit_value(DFTask* task, int64_t id, int64_t value) {
    if (!task) return ORV_DF_NULL_TASK;
    if (task->editable != 1) return ORV_DF_OK;
    switch (id) {
        case ORV_DF_BREAK_COUNT:
            if (value < 2) return ORV_DF_BAD_BREAK_COUNT;
            task->breakCount = value;
            return ORV_DF_OK;
        case ORV_DF_BREAK_HINT:
            if (!known_break_hint(value)) return ORV_DF_BAD_BREAK_HINT;
            task->breakHint = value;
            if (value != ORV_DF_BREAKS_NON_UNIFORM) return ORV_DF_OK;
            orv_serv_deallocate(task->cellTable);
            return task->isDouble ? build_bucket_table<double>(*task) : build_bucket_table<float>(*task);
        case ORV_DF_FUNCTION_COUNT:
            if (value <= 0) return ORV_DF_BAD_FUNCTION_COUNT;
            task->funcCount = value;
            return ORV_DF_OK;
        case ORV_DF_FUNCTION_HINT:
            if (!known_layout(value)) return ORV_DF_BAD_FUNCTION_HINT;
            task->funcHint = value;
            return ORV_DF_OK;
        case ORV_DF_SPLINE_ORDER:
            if (value < 0) return ORV_DF_BAD_SPLINE_ORDER;
            task->splineOrder = value;
            return ORV_DF_OK;
        case ORV_DF_SPLINE_TYPE:
            if (!((value >= 0 && value <= 5) || value == ORV_DF_TYPE_HYMAN)) return ORV_DF_BAD_SPLINE_TYPE;
            task->splineType = value;
            return ORV_DF_OK;
        case ORV_DF_INTERNAL_TYPE:
            if (!((value >= 0 && value <= 2) || (value & ORV_DF_INTERNAL_KNOTS))) return ORV_DF_BAD_INTERNAL_CONDITION;
            task->icType = value;
            return ORV_DF_OK;
        case ORV_DF_BOUNDARY_TYPE:
            if (value < 0) return ORV_DF_BAD_BOUNDARY_CONDITION;
            task->bcType = value;
            return ORV_DF_OK;
        case ORV_DF_COEFFICIENT_HINT:
            if (!known_layout(value)) return ORV_DF_BAD_COEFFICIENT_HINT;
            task->coeffHint = value;
            return ORV_DF_OK;
        case ORV_DF_CHECK_FLAG:
            if (value != 0 && value != 1) return ORV_DF_BAD_CHECK_FLAG;
            task->checkFlag = static_cast<int32_t>(value);
            return ORV_DF_OK;
        default:
            return ORV_DF_BAD_PARAMETER;
    }
}

template <class T>
orv_df_status edit_indexed_pointer(DFTask* task, int64_t id, int64_t index, const T* pointer) {
    if (!task) return ORV_DF_NULL_TASK;
    if (task->editable != 1) return ORV_DF_OK;
    const bool in_range = index >= 0 && index < task->funcCount;
    orv_df_status status;
    switch (id) {
        case ORV_DF_FUNCTIONS:
            if (task->funcHint == ORV_DF_COLUMNS) return ORV_DF_BAD_FUNCTION_HINT;
            if (!in_range) return ORV_DF_BAD_INDEX;
            if (!pointer) return ORV_DF_NULL_FUNCTIONS;
            status = make_room(task->funcs, task->funcCapacity, index, task->funcCount);
            if (status == ORV_DF_OK) task->funcs[index] = pointer;
            return status;
        case ORV_DF_COEFFICIENTS:
            if (!in_range) return ORV_DF_BAD_INDEX;
            if (!pointer) return ORV_DF_NULL_COEFFICIENTS;
            status = make_room(task->coeffs, task->coeffCapacity, index, task->funcCount);
            if (status == ORV_DF_OK) task->coeffs[index] = const_cast<T*>(pointer);
            return status;
        default:
            return ORV_DF_BAD_PARAMETER;
    }
}

}  // namespace

}  // namespace orv::fit

using namespace orv::fit;

#define ORV_TASK_ENTRIES(letter, T)                                                                                 \
    ORV_API int32_t orv_df_kernel_##letter##NewTask1D(DFTask** task, int64_t breakCount, const T* breaks,           \
                                                      int64_t breakHint, int64_t funcCount, const T* funcs,         \
                                                      int64_t funcHint, int32_t wideInts) {                         \
        return new_task(task, breakCount, breaks, breakHint, funcCount, funcs, funcHint, wideInts);                 \
    }                                                                                                               \
    ORV_API int32_t orv_df_kernel_##letter##EditPPSpline1D(DFTask* task, int64_t splineOrder, int64_t splineType,   \
                                                           int64_t bcType, const T* bcData, int64_t icType,         \
                                                           const T* icData, T* coeffs, int64_t coeffHint) {         \
        return edit_spline(task, splineOrder, splineType, bcType, bcData, icType, icData, coeffs, coeffHint);       \
    }                                                                                                               \
    ORV_API int32_t orv_df_kernel_##letter##EditPtr(DFTask* task, int64_t id, const T* pointer) {                   \
        return edit_pointer(task, id, pointer);                                                                     \
    }                                                                                                               \
    ORV_API int32_t orv_df_kernel_##letter##EditIdxPtr(DFTask* task, int64_t id, int64_t index, const T* pointer) { \
        return edit_indexed_pointer(task, id, index, pointer);                                                      \
    }

ORV_TASK_ENTRIES(d, double)
ORV_TASK_ENTRIES(s, float)

ORV_API int32_t orv_df_kernel_iEditVal(DFTask* task, int64_t id, int64_t value) { return edit_value(task, id, value); }

ORV_API int32_t orv_df_kernel_DeleteTask(DFTask** task) {
    if (!task || !*task) return ORV_DF_NULL_TASK;
    orv_serv_deallocate((*task)->funcs);
    orv_serv_deallocate((*task)->coeffs);
    orv_serv_deallocate((*task)->cellTable);
    orv_serv_deallocate(*task);
    *task = nullptr;
    return ORV_DF_OK;
}
