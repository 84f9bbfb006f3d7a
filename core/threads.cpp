// Thread fan-out on OpenMP. A parallel region inside another runs on the thread that meets it.
#include "platform/export.h"

#include <orv/services.h>

#include <algorithm>
#include <cstring>
#include <omp.h>

ORV_API int32_t orv_kuz_serv_threader_get_num_threads_limit() {
    return omp_in_parallel() ? 1 : std::max(1, omp_get_max_threads());
}

ORV_API void orv_kuz_serv_threader_for(int32_t count, int32_t threads, void* args, orv_serv_worker worker) {
    int32_t team = orv_kuz_serv_threader_get_num_threads_limit();
    if (threads > 0) team = std::min(team, threads);
    team = std::min(team, count);
    if (team <= 1) {
        for (int32_t index = 0; index < count; ++index) worker(index, 0, count, args);
        return;
    }
#pragma omp parallel for num_threads(team) schedule(dynamic, 1)
    for (int32_t index = 0; index < count; ++index) worker(index, 0, count, args);
}

namespace {

void fan_out(int32_t count, void* args, orv_serv_worker worker) { orv_kuz_serv_threader_for(count, 0, args, worker); }

constexpr orv_services ready_table = {
    orv_kuz_serv_threader_for, nullptr, fan_out, nullptr, orv_kuz_serv_threader_get_num_threads_limit,
};

}  // namespace

ORV_API const orv_services* orv_serv_services() { return &ready_table; }

ORV_API orv_serv_function orv_serv_load_thread_fun(const char* name) {
    if (std::strcmp(name, "orv_kuz_serv_threader_for") == 0)
        return reinterpret_cast<orv_serv_function>(orv_kuz_serv_threader_for);
    if (std::strcmp(name, "orv_kuz_serv_threader_get_num_threads_limit") == 0)
        return reinterpret_cast<orv_serv_function>(orv_kuz_serv_threader_get_num_threads_limit);
    return nullptr;
}
