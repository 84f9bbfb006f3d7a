// The library's entry point, called by the platform layer when the system loads or unloads the library or ends a thread.
#pragma once

#include <stdint.h>

enum : uint32_t {
    orv_event_process_detach = 0,
    orv_event_process_attach = 1,
    orv_event_thread_attach = 2,
    orv_event_thread_detach = 3,
};

// `reserved` is non-null where a process ends, null where the library alone goes. Returns 0 to refuse a load, else 1.
extern "C" int32_t orv_library_event(uint32_t reason, const void* reserved);
