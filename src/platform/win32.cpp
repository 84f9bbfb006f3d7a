// The platform contracts on Windows: the KERNEL32 calls themselves.
#include "platform/library_events.h"
#include "platform/stdio_file.h"

#include <io.h>
#include <stdio.h>
#include <windows.h>

namespace orv::platform {

static_assert(TLS_OUT_OF_INDEXES == no_slot);

uint32_t slot_allocate(void (*)(void* value)) { return TlsAlloc(); }
bool slot_free(uint32_t slot) { return TlsFree(slot) != 0; }

void* slot_get(uint32_t slot) {
    // TlsGetValue clears the last error; the caller's own must survive a kernel.
    const DWORD error = GetLastError();
    void* value = TlsGetValue(slot);
    SetLastError(error);
    return value;
}

bool slot_set(uint32_t slot, void* value) { return TlsSetValue(slot, value) != 0; }

Heap* heap_create(size_t initial_bytes) { return static_cast<Heap*>(HeapCreate(0, initial_bytes, 0)); }
void heap_destroy(Heap* heap) { HeapDestroy(heap); }
void* heap_allocate(Heap* heap, size_t bytes) { return HeapAlloc(heap, 0, bytes); }
void heap_free(Heap* heap, void* block) { HeapFree(heap, 0, block); }

void touch_standard_error() { GetStdHandle(STD_ERROR_HANDLE); }

ErrnoAddress find_errno_address() {
    static const char* const runtimes[] = {
        "MSVCR100.DLL",  "MSVCR90.DLL",  "MSVCR80.DLL",  "MSVCR71.DLL",  "MSVCR70.DLL",  "MSVCRT.DLL",
        "MSVCR100D.DLL", "MSVCR90D.DLL", "MSVCR80D.DLL", "MSVCR71D.DLL", "MSVCR70D.DLL", "MSVCRTD.DLL",
    };
    for (const char* name : runtimes)
        if (HMODULE runtime = GetModuleHandleA(name))
            return reinterpret_cast<ErrnoAddress>(reinterpret_cast<void (*)()>(GetProcAddress(runtime, "_errno")));
    return nullptr;
}

int64_t file_remaining(File* file) {
    const int descriptor = _fileno(stream_of(file));
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    if (GetFileType(handle) != FILE_TYPE_DISK) return -1;
    const __int64 end = _filelengthi64(descriptor);
    const __int64 position = _ftelli64(stream_of(file));
    return end < 0 || position < 0 ? -1 : end - position;
}

}  // namespace orv::platform

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved);
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) { return orv_library_event(reason, reserved); }
