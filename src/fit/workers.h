// Division of work over the thread service.
#pragma once

#include "services/services.h"

#include <stdint.h>

namespace orv::fit {

// Threads for `pieces` pieces of work: at least 1, at most what the service allows.
inline int32_t threads_for(const orv_services* services, int64_t pieces) {
    const int32_t limit = services ? services->thread_limit() : 1;
    if (limit < 1 || pieces < 1) return 1;
    return pieces < limit ? static_cast<int32_t>(pieces) : limit;
}

// Runs body(index) for each index below count, on as many threads; on this one without a service.
template <class Body>
void parallel(const orv_services* services, int32_t count, const Body& body) {
    if (!services || count == 1) {
        for (int32_t index = 0; index < count; ++index) body(index);
        return;
    }
    services->parallel_for(count, count, const_cast<Body*>(&body), [](int32_t index, int32_t, int32_t, void* args) {
        (*static_cast<const Body*>(args))(index);
    });
}

// The part of `total` items that falls to worker `index` of `count`, cut at multiples of `grain`.
struct Share {
    int64_t begin, end;
};

inline Share share_of(int64_t total, int64_t grain, int32_t index, int32_t count) {
    const int64_t grains = (total + grain - 1) / grain;
    const int64_t begin = grains * index / count * grain, end = grains * (index + 1) / count * grain;
    return {begin < total ? begin : total, end < total ? end : total};
}

}  // namespace orv::fit
