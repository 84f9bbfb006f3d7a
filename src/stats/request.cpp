// The checks of the basic pass, in the order that the statuses promise. Nothing is written here.
#include "stats/request.h"

#include <limits.h>

namespace orv::stats {
namespace {

constexpr uint64_t methods_with_data[] = {BasicFast, BasicOnePass, BasicUserMean};
constexpr uint64_t methods_without_data = BasicFromCrossProduct | BasicFromSums;

uint32_t existing_arrays(const SSTask* task) {
    uint32_t found = 0;
    for (int32_t array = 0; array < array_count; ++array)
        if (array_of(task, array)) found |= bit(array);
    return found;
}

uint32_t needs(int32_t array, uint64_t method) {
    const Needs& row = needs_table[array];
    if (method & BasicFast) return row.fast;
    return method ? row.centred : row.from_sums;
}

// Only the two low bits of a matrix form are looked at.
Form matrix_form(const void* at, int32_t wide) {
    const int64_t value = read_integer(at, wide);
    if (value & 2) return Form::packed_lower;
    return value & 1 ? Form::full : Form::packed_upper;
}

int32_t check_data(const SSTask* task, Request& request) {
    const int32_t wide = task->wideInts;
    if (!task->n || read_integer(task->n, wide) <= 0) return SSStatusN;
    if (!task->x) return SSStatusX;
    if (!task->xStorage) return SSStatusStorage;
    const int64_t form = read_integer(task->xStorage, wide);
    if (!(form & (StorageRows | StorageColumns))) return SSStatusStorageValue;
    request.by_rows = (form & StorageRows) != 0;
    // x lies in this process' memory, so p * n and with it n fit in 32 bits.
    const int64_t n = read_integer(task->n, wide);
    if (n > INT_MAX) return SSStatusN;
    request.n = static_cast<int32_t>(n);
    return SSStatusOk;
}

}  // namespace

int32_t check_request(SSTask* task, uint64_t estimates, uint64_t method, Request& request) {
    if (!task) return SSStatusNullTask;
    request = {};
    request.task = task;

    int32_t methods = 0;
    for (const uint64_t one : methods_with_data) methods += (method & one) != 0;
    if (methods > 1 || (methods == 0 && !(method & methods_without_data))) return SSStatusMethod;
    request.method = methods == 1 ? method & (BasicFast | BasicOnePass | BasicUserMean) : 0;

    request.order = 1;
    for (int32_t array = 0; array < array_count; ++array) {
        const Estimate& row = estimates_table[array];
        if (!(estimates & row.mask)) continue;
        request.asked |= bit(array);
        request.arrays |= needs(array, request.method);
        if (row.order > request.order) request.order = row.order;
    }
    const uint32_t missing = request.arrays & ~existing_arrays(task);
    if (missing) {
        const int32_t lowest = __builtin_ctz(missing);
        return lowest == array_never ? SSStatusMethod : estimates_table[lowest].missing;
    }

    const int32_t wide = task->wideInts;
    if (methods == 1) {
        const int32_t status = check_data(task, request);
        if (status != SSStatusOk) return status;
    } else if (!task->accumWeight && (!task->n || task->w)) {
        return SSStatusAccumWeight;
    }
    if (!task->p || read_integer(task->p, wide) <= 0 || read_integer(task->p, wide) > INT_MAX) return SSStatusP;
    request.p = static_cast<int32_t>(read_integer(task->p, wide));
    request.count = task->n ? static_cast<double>(read_integer(task->n, wide)) : 0;
    for (int32_t j = 0; task->indices && j < request.p; ++j) request.has_gaps |= !request.takes_part(j);

    const struct {
        int32_t array;
        const void* at;
        Form* form;
    } forms[] = {{array_cov, task->covStorage, &request.cov_form},
                 {array_cor, task->corStorage, &request.cor_form},
                 {array_cp, task->cpStorage, &request.cp_form}};
    for (const auto& [array, at, form] : forms) {
        if (!request.writes(array)) continue;
        if (!at) return SSStatusStorage;
        *form = matrix_form(at, wide);
    }
    return SSStatusOk;
}

}  // namespace orv::stats
