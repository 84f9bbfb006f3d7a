// The environment of a POSIX process.
#include "services/export.h"

#include <cstdlib>
#include <cstring>
#include <orv/services.h>

ORV_API int32_t orv_serv_getenv(const char* name, char* buffer, int32_t size) {
    if (size <= 0) return -1;
    buffer[0] = '\0';
    const char* value = std::getenv(name);
    if (!value) return 0;
    const size_t length = std::strlen(value);
    if (length >= static_cast<size_t>(size)) return -1;
    std::memcpy(buffer, value, length + 1);
    return static_cast<int32_t>(length);
}
