// The environment of a Windows process. The system's own block is read, not a C runtime's copy of it: the host may set
// variables through another runtime than ours.
#include "services/export.h"

#include <orv/services.h>
#include <windows.h>

ORV_API int32_t orv_serv_getenv(const char* name, char* buffer, int32_t size) {
    if (size <= 0) return -1;
    // The length without the final zero when the value fits, the space that it needs when not, 0 when there is none.
    const DWORD length = GetEnvironmentVariableA(name, buffer, static_cast<DWORD>(size));
    const bool fits = length < static_cast<DWORD>(size);
    if (length == 0 || !fits) buffer[0] = '\0';
    return fits ? static_cast<int32_t>(length) : -1;
}
