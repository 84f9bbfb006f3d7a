// The common tests of the construction kernels.
#include "fit/construct/construct.h"

namespace orv::fit {

orv_df_status boundary_index(const DFTask& task, BoundaryIndex& index) {
    struct Row {
        int64_t code;
        BoundaryIndex index;
        bool needs_data;
    };
    // A periodic Default or Hermite spline cannot find its end values from its neighbours: they are given.
    const bool given_ends = task.splineType == ORV_DF_TYPE_DEFAULT || task.splineType == ORV_DF_TYPE_HERMITE;
    const Row rows[] = {
        {ORV_DF_NOT_A_KNOT, not_a_knot, false},    {ORV_DF_FREE_END, free_end, false},
        {ORV_DF_FIRST_FIRST, first_first, true},   {ORV_DF_FIRST_SECOND, first_second, true},
        {ORV_DF_SECOND_FIRST, second_first, true}, {ORV_DF_SECOND_SECOND, second_second, true},
        {ORV_DF_PERIODIC, periodic, given_ends},   {ORV_DF_NO_CONDITION, no_condition, false},
    };
    for (const Row& row : rows) {
        if (row.code != task.bcType) continue;
        index = row.index;
        return row.needs_data && !task.bcData ? ORV_DF_NULL_BOUNDARY_DATA : ORV_DF_OK;
    }
    return ORV_DF_BAD_BOUNDARY_CONDITION;
}

template <class T>
orv_df_status prepare(const DFTask* task, int64_t least_breaks, NoCondition no_condition_is,
                      Construction<T>& construction) {
    if (!task) return ORV_DF_NULL_TASK;
    if (task->breakCount < least_breaks) return ORV_DF_BAD_BREAK_COUNT;
    if (!known_function_layout(*task)) return ORV_DF_BAD_FUNCTION_HINT;
    const orv_df_status status = boundary_index(*task, construction.boundary);
    if (status != ORV_DF_OK) return status;
    if (construction.boundary == no_condition && no_condition_is == NoCondition::refused)
        return ORV_DF_BAD_BOUNDARY_CONDITION;
    return prepare_data(*task, construction);
}

template <class T>
orv_df_status prepare_data(const DFTask& task, Construction<T>& construction) {
    orv_df_status status = functions_present(task);
    if (status == ORV_DF_OK) status = coefficients_present(task);
    if (status != ORV_DF_OK) return status;
    construction.partition = partition_of<T>(task);
    construction.functions = task.funcCount > 1 ? static_cast<int32_t>(task.funcCount) : 1;
    construction.funcs = reinterpret_cast<const T* const*>(task.funcs);
    construction.coeffs = reinterpret_cast<T* const*>(task.coeffs);
    construction.bc = static_cast<const T*>(task.bcData);
    construction.ic = static_cast<const T*>(task.icData);
    construction.interleaved = task.funcHint == ORV_DF_COLUMNS;
    construction.uniform = is_uniform(task);
    return ORV_DF_OK;
}

template <class T>
orv_df_status check_periodic(const Construction<T>& c) {
    if (c.boundary != periodic) return ORV_DF_OK;
    for (int32_t f = 0; f < c.functions; ++f) {
        const T* y = c.interleaved ? c.funcs[0] + f : c.funcs[f];
        const ptrdiff_t last = static_cast<ptrdiff_t>(c.partition.count - 1) * (c.interleaved ? c.functions : 1);
        if (!(y[0] == y[last])) return ORV_DF_NOT_PERIODIC;
    }
    return ORV_DF_OK;
}

template orv_df_status prepare(const DFTask*, int64_t, NoCondition, Construction<double>&);
template orv_df_status prepare(const DFTask*, int64_t, NoCondition, Construction<float>&);
template orv_df_status prepare_data(const DFTask&, Construction<double>&);
template orv_df_status prepare_data(const DFTask&, Construction<float>&);
template orv_df_status check_periodic(const Construction<double>&);
template orv_df_status check_periodic(const Construction<float>&);

}  // namespace orv::fit
