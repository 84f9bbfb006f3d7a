// The platform contracts on POSIX systems.
#include "platform/library_events.h"
#include "platform/stdio_file.h"

#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

namespace orv::platform {

uint32_t slot_allocate(void (*at_thread_end)(void* value)) {
    pthread_key_t key;
    return pthread_key_create(&key, at_thread_end) == 0 ? key : no_slot;
}

bool slot_free(uint32_t slot) { return pthread_key_delete(slot) == 0; }
void* slot_get(uint32_t slot) { return pthread_getspecific(slot); }
bool slot_set(uint32_t slot, void* value) { return pthread_setspecific(slot, value) == 0; }

namespace {

// Every block of a heap stands in a ring through its head, so that the heap can be given back whole.
struct alignas(16) BlockHead {
    BlockHead* next;
    BlockHead* previous;
};

}  // namespace

struct Heap {
    pthread_mutex_t mutex;
    BlockHead ring;
};

Heap* heap_create(size_t) {
    Heap* heap = static_cast<Heap*>(calloc(1, sizeof(Heap)));
    if (!heap) return nullptr;
    if (pthread_mutex_init(&heap->mutex, nullptr) != 0) {
        free(heap);
        return nullptr;
    }
    heap->ring.next = heap->ring.previous = &heap->ring;
    return heap;
}

void heap_destroy(Heap* heap) {
    for (BlockHead* block = heap->ring.next; block != &heap->ring;) {
        BlockHead* next = block->next;
        free(block);
        block = next;
    }
    pthread_mutex_destroy(&heap->mutex);
    free(heap);
}

void* heap_allocate(Heap* heap, size_t bytes) {
    BlockHead* block = static_cast<BlockHead*>(calloc(1, sizeof(BlockHead) + bytes));
    if (!block) return nullptr;
    pthread_mutex_lock(&heap->mutex);
    block->next = heap->ring.next;
    block->previous = &heap->ring;
    block->next->previous = block;
    heap->ring.next = block;
    pthread_mutex_unlock(&heap->mutex);
    return block + 1;
}

void heap_free(Heap* heap, void* bytes) {
    BlockHead* block = static_cast<BlockHead*>(bytes) - 1;
    pthread_mutex_lock(&heap->mutex);
    block->previous->next = block->next;
    block->next->previous = block->previous;
    pthread_mutex_unlock(&heap->mutex);
    free(block);
}

void touch_standard_error() {}

ErrnoAddress find_errno_address() { return reinterpret_cast<ErrnoAddress>(dlsym(RTLD_DEFAULT, "__errno_location")); }

int64_t file_remaining(File* file) {
    struct stat status;
    if (fstat(fileno(stream_of(file)), &status) != 0 || !S_ISREG(status.st_mode)) return -1;
    const off_t position = ftello(stream_of(file));
    return position < 0 ? -1 : int64_t{status.st_size} - position;
}

}  // namespace orv::platform

namespace {

// Handlers of atexit run before any library is finalised when the process ends, but after this library's destructors
// when dlclose takes it away: so the flag is set at a destructor exactly where the whole process ends.
bool process_ends = false;

void note_process_end() { process_ends = true; }

[[gnu::constructor]] void at_load() {
    // A constructor has no way to refuse the load, so the process ends, with the status that a thread's first call gives.
    constexpr int32_t exit_not_loaded = 3;
    if (!orv_library_event(orv_event_process_attach, nullptr)) exit(exit_not_loaded);
    atexit(note_process_end);
}

[[gnu::destructor]] void at_unload() {
    orv_library_event(orv_event_process_detach, process_ends ? &process_ends : nullptr);
}

}  // namespace
