// One block of state per thread in a private heap, found through a thread slot.
//
// Slot and heap are made when the library is loaded, or at the first need if that has not happened, each under a lock of
// its own with a second look inside. A thread's block goes when the thread ends; unloading gives back the slot and, with
// the heap, the blocks of all threads that still run.
#include "frame/thread_block.h"

#include "platform/library_events.h"
#include "platform/platform.h"
#include "services/services.h"

namespace orv::frame {
namespace {

constexpr int32_t message_no_block = 773;
constexpr int32_t exit_no_block = 3;

uint32_t slot = platform::no_slot;
platform::Heap* heap = nullptr;
orv_serv_lock_word slot_lock = 0;
orv_serv_lock_word heap_lock = 0;

// Other threads look at slot and heap without the lock.
uint32_t current_slot() { return __atomic_load_n(&slot, __ATOMIC_ACQUIRE); }
platform::Heap* current_heap() { return __atomic_load_n(&heap, __ATOMIC_ACQUIRE); }

struct LockGuard {
    orv_serv_lock_word& lock;
    explicit LockGuard(orv_serv_lock_word& word) : lock(word) { orv_serv_lock(&lock); }
    ~LockGuard() { orv_serv_unlock(&lock); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;
};

void release_block(void* value) {
    ArqThreadBlock* block = static_cast<ArqThreadBlock*>(value);
    // The memory may become another thread's block, which must not inherit this vector.
    block->interf_input_vector = nullptr;
    platform::heap_free(current_heap(), block);
}

void report_no_block() { orv_serv_print(1, message_no_block, 0); }

// Returns true if the slot exists on return; `existed` tells whether it did before.
bool ensure_slot(bool& existed) {
    LockGuard guard(slot_lock);
    existed = slot != platform::no_slot;
    if (!existed) __atomic_store_n(&slot, platform::slot_allocate(release_block), __ATOMIC_RELEASE);
    return slot != platform::no_slot;
}

bool ensure_heap() {
    if (current_heap()) return true;
    LockGuard guard(heap_lock);
    if (!heap) __atomic_store_n(&heap, platform::heap_create(sizeof(ArqThreadBlock)), __ATOMIC_RELEASE);
    return heap != nullptr;
}

ArqThreadBlock* make_block() {
    if (!ensure_heap()) return nullptr;
    ArqThreadBlock* block = static_cast<ArqThreadBlock*>(platform::heap_allocate(heap, sizeof(ArqThreadBlock)));
    if (!block) return nullptr;
    if (!platform::slot_set(current_slot(), block)) {
        platform::heap_free(heap, block);
        return nullptr;
    }
    block->mode = 0;
    block->status = 0;
    block->callback = nullptr;
    block->reserved0 = 0;
    block->reserved1 = 0;
    return block;
}

[[gnu::noinline]] ArqThreadBlock* make_block_or_exit() {
    ArqThreadBlock* block = make_block();
    if (block) return block;
    report_no_block();
    orv_serv_exit(exit_no_block);
    return nullptr;
}

bool library_loaded() {
    bool existed;
    if (ensure_slot(existed)) {
        if (existed || make_block()) return true;
    }
    report_no_block();
    return false;
}

void thread_ended() {
    if (slot == platform::no_slot) return;
    if (void* block = platform::slot_get(slot)) {
        release_block(block);
        platform::slot_set(slot, nullptr);
    }
}

void library_unloaded() {
    thread_ended();
    if (slot != platform::no_slot) {
        platform::slot_free(slot);
        slot = platform::no_slot;
    }
    platform::Heap* last = heap;
    heap = nullptr;
    if (last) platform::heap_destroy(last);
}

}  // namespace

ArqThreadBlock* thread_block() {
    if (current_slot() == platform::no_slot) {
        bool existed;
        if (!ensure_slot(existed)) report_no_block();
    }
    if (void* block = platform::slot_get(current_slot())) return static_cast<ArqThreadBlock*>(block);
    return make_block_or_exit();
}

}  // namespace orv::frame

int32_t orv_library_event(uint32_t reason, const void* reserved) {
    using namespace orv::frame;
    switch (reason) {
        case orv_event_process_attach:
            return library_loaded() ? 1 : 0;
        case orv_event_thread_detach:
            thread_ended();
            return 1;
        case orv_event_process_detach:
            // At the end of the process other threads may be anywhere in a kernel: nothing is taken away from them.
            if (!reserved) library_unloaded();
            return 1;
        default:
            return 1;
    }
}
