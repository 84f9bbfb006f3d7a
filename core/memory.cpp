// Aligned memory with a live-block count and a switch that makes a chosen allocation fail.
#include "large_blocks.h"
#include "services/export.h"
#include "services/test_switches.h"

#include <orv/services.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<int32_t> allocations_to_failure{0};
std::atomic<int32_t> live_blocks{0};

// The words before a block tell where the system's own block starts and how long it is.
struct Head {
    size_t capacity;
    void* origin;
};

Head& head_of(void* block) { return static_cast<Head*>(block)[-1]; }

bool chosen_to_fail() {
    int32_t left = allocations_to_failure.load(std::memory_order_relaxed);
    // Of several threads, exactly one takes each count; none counts on below 0.
    while (left > 0)
        if (allocations_to_failure.compare_exchange_weak(left, left - 1)) return left == 1;
    return false;
}

}  // namespace

ORV_API void* orv_serv_allocate(size_t size, int32_t alignment) {
    if (chosen_to_fail()) return nullptr;
    const size_t step = static_cast<size_t>(alignment) < alignof(Head) ? alignof(Head) : static_cast<size_t>(alignment);
    const size_t total = size + step + sizeof(Head);
    if (total < size) return nullptr;
    orv::core::Extent extent = orv::core::take_large_block(total);
    if (!extent.origin) {
        extent = {std::malloc(total), total};
        if (!extent.origin && orv::core::release_large_blocks()) extent.origin = std::malloc(total);
        if (!extent.origin) return nullptr;
    }
    const uintptr_t first = reinterpret_cast<uintptr_t>(extent.origin) + sizeof(Head);
    void* block = reinterpret_cast<void*>((first + step - 1) & ~(step - 1));
    head_of(block) = {extent.capacity, extent.origin};
    live_blocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

ORV_API void orv_serv_deallocate(void* block) {
    if (!block) return;
    live_blocks.fetch_sub(1, std::memory_order_relaxed);
    const Head head = head_of(block);
    if (!orv::core::keep_large_block({head.origin, head.capacity})) std::free(head.origin);
}

ORV_API int32_t orv_serv_memcpy_s(void* destination, size_t capacity, const void* source, size_t count) {
    constexpr int32_t bad_pointer = 22;
    constexpr int32_t too_large = 34;
    if (!destination || !source) return bad_pointer;
    if (count > capacity) return too_large;
    std::memcpy(destination, source, count);
    return 0;
}

ORV_API void orv_serv_fail_allocation(int32_t nth) { allocations_to_failure.store(nth > 0 ? nth : 0); }
ORV_API int32_t orv_serv_live_blocks() { return live_blocks.load(); }
