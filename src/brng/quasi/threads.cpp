// When a run is worth threads, and where these come from.
#include "brng/quasi/threads.h"

namespace orv::brng::quasi {

bool worth_threads(const Division& division, int32_t dimension, int32_t points) {
    constexpr int32_t least_points = 16, longest_kind = 0x20000;
    if (points < least_points || dimension <= division.least) return false;
    if (dimension < division.whole_groups) return dimension % division.group == 0 && points >= longest_kind;
    if (points >= longest_kind) return true;
    // The wider a point, the fewer of them are worth it.
    static constexpr struct {
        int32_t dimension;  // below this one not
        int32_t points;     // from it on with so many points
    } ladder[] = {{250, 0x2000}, {500, 0x100}, {1000, 0x40}, {2000, 0x20}, {4000, 8}, {16000, 2}};
    for (const auto& rung : ladder) {
        if (dimension < rung.dimension) return false;
        if (points >= rung.points) return true;
    }
    return dimension >= 32000;
}

bool fan_out(int32_t groups, void* args, orv_serv_worker worker) {
    const auto limit = reinterpret_cast<decltype(&orv_kuz_serv_threader_get_num_threads_limit)>(
        orv_serv_load_thread_fun("orv_kuz_serv_threader_get_num_threads_limit"));
    const auto parallel_for =
        reinterpret_cast<decltype(&orv_kuz_serv_threader_for)>(orv_serv_load_thread_fun("orv_kuz_serv_threader_for"));
    if (!limit || !parallel_for || limit() <= 1) return false;
    parallel_for(groups, 0, args, worker);
    return true;
}

}  // namespace orv::brng::quasi
