// Thread fan-out on OpenMP. A parallel region inside another runs on the thread that meets it.
#include "services/export.h"

#include <orv/services.h>

#include <algorithm>
#include <cstring>
#include <omp.h>

namespace {

// Set while this thread runs workers: OpenMP does not count a team of one as parallel, and a call from inside it is
// nested all the same.
thread_local bool inside_worker = false;

void run_worker(int32_t index, int32_t count, void* args, orv_serv_worker worker) {
    const bool nested = inside_worker;
    inside_worker = true;
    worker(index, 0, count, args);
    inside_worker = nested;
}

}  // namespace

ORV_API int32_t orv_kuz_serv_threader_get_num_threads_limit() {
    if (inside_worker || omp_in_parallel()) return 1;
    return std::max(1, std::min(omp_get_max_threads(), omp_get_thread_limit()));
}

ORV_API void orv_kuz_serv_threader_for(int32_t count, int32_t threads, void* args, orv_serv_worker worker) {
    int32_t team = orv_kuz_serv_threader_get_num_threads_limit();
    if (threads > 0) team = std::min(team, threads);
    team = std::min(team, count);
    if (team <= 1) {
        for (int32_t index = 0; index < count; ++index) run_worker(index, count, args, worker);
        return;
    }
#pragma omp parallel for num_threads(team) schedule(dynamic, 1)
    for (int32_t index = 0; index < count; ++index) run_worker(index, count, args, worker);
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
