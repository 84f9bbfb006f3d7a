// The checks of the basic pass, in the order that the statuses promise. Nothing is written here.
#include "stats/basic/request.h"

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
    const Needs& row = needed::table[array];
    if (method & BasicFast) return row.fast;
    return method ? row.centred : row.from_sums;
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
    if (const int32_t status = check_estimates(estimates)) return status;

    request.order = 1;
    for (int32_t array = 0; array < array_count; ++array) {
        const Estimate& row = estimates_table[array];
        if (!(estimates & row.mask)) continue;
        request.asked |= bit(array);
        request.arrays |= needs(array, request.method);
        if (row.order > request.order) request.order = row.order;
    }
    if (request.asked == 0) return SSStatusOk;
    const uint32_t missing = request.arrays & ~existing_arrays(task);
    if (missing) {
        const int32_t lowest = __builtin_ctz(missing);
        return lowest == array_never ? SSStatusMethod : estimates_table[lowest].missing;
    }

    if (methods == 1) {
        if (const int32_t status = read_observations(task, request)) return status;
    } else if (!task->accumWeight && (!task->n || task->w)) {
        return SSStatusAccumWeight;
    }
    if (const int32_t status = read_components(task, request)) return status;
    request.count = task->n ? static_cast<double>(read_integer(task->n, task->wideInts)) : 0;

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
        *form = read_form(task, at);
    }
    return SSStatusOk;
}

}  // namespace orv::stats
