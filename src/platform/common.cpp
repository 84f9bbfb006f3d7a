// The contracts that the C library and the processor fulfil alike on every system.
#include "platform/stdio_file.h"

#include <x86intrin.h>

namespace orv::platform {

File* file_create(const char* name) { return reinterpret_cast<File*>(fopen(name, "wb")); }
File* file_open(const char* name) { return reinterpret_cast<File*>(fopen(name, "rb")); }

bool file_write(File* file, const void* bytes, size_t count) {
    return fwrite(bytes, 1, count, stream_of(file)) == count;
}

bool file_read(File* file, void* bytes, size_t count) { return fread(bytes, 1, count, stream_of(file)) == count; }

bool file_close(File* file) { return fclose(stream_of(file)) == 0; }

uint64_t time_stamp_counter() { return __rdtsc(); }

}  // namespace orv::platform
