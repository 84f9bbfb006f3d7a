// What the platform layer asks of the rest of the library, for programs made of the streams' own units alone.
#include "platform/library_events.h"

#include <orv/services.h>

#include <cstdlib>

int32_t orv_library_event(uint32_t, const void*) { return 1; }
void orv_serv_exit(int32_t code) { std::exit(code); }
