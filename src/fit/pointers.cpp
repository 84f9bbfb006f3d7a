// Whether the arrays of all functions were given.
#include "fit/task.h"

namespace orv::fit {
namespace {

template <class P>
bool all_present(P* pointers, int32_t capacity, int64_t count) {
    if (count < 1) count = 1;
    if (count > capacity) return false;
    for (int64_t i = 0; i < count; ++i)
        if (!pointers[i]) return false;
    return true;
}

}  // namespace

orv_df_status functions_present(const DFTask& task) {
    const int64_t pointers = task.funcHint == ORV_DF_COLUMNS ? 1 : task.funcCount;
    return all_present(task.funcs, task.funcCapacity, pointers) ? ORV_DF_OK : ORV_DF_NULL_FUNCTIONS;
}

orv_df_status coefficients_present(const DFTask& task) {
    return all_present(task.coeffs, task.coeffCapacity, task.funcCount) ? ORV_DF_OK : ORV_DF_NULL_COEFFICIENTS;
}

}  // namespace orv::fit
