// Thread services with a limit that a bench sets.
#pragma once

#include <orv/services.h>

namespace orv::bench {

inline int32_t thread_limit = 1;
inline const orv_services* limited_services() {
    static const orv_services table = {orv_serv_services()->parallel_for, nullptr, orv_serv_services()->fan_out,
                                       nullptr, [] { return thread_limit; }};
    return &table;
}

}  // namespace orv::bench
