#include "large_blocks.h"

#include <cstdlib>
#include <orv/services.h>

namespace orv::core {
namespace {

constexpr size_t large = 256 * 1024;
constexpr size_t most_kept = 32 * 1024 * 1024;
// The sanitizer finds a use after free only in blocks that are freed.
#ifdef __SANITIZE_ADDRESS__
constexpr bool keeps = false;
#else
constexpr bool keeps = true;
#endif

Extent kept[8];
size_t kept_bytes = 0;
orv_serv_lock_word lock = 0;

struct Locked {
    Locked() { orv_serv_lock(&lock); }
    ~Locked() { orv_serv_unlock(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

}  // namespace

Extent take_large_block(size_t size) {
    if (!keeps || size < large) return {nullptr, 0};
    const Locked locked;
    for (Extent& extent : kept) {
        if (!extent.origin || extent.capacity < size || extent.capacity / 2 > size) continue;
        const Extent found = extent;
        extent = {nullptr, 0};
        kept_bytes -= found.capacity;
        return found;
    }
    return {nullptr, 0};
}

bool keep_large_block(const Extent& extent) {
    if (!keeps || extent.capacity < large || extent.capacity > most_kept) return false;
    const Locked locked;
    if (extent.capacity > most_kept - kept_bytes) return false;
    for (Extent& slot : kept) {
        if (slot.origin) continue;
        slot = extent;
        kept_bytes += extent.capacity;
        return true;
    }
    return false;
}

bool release_large_blocks() {
    const Locked locked;
    bool any = false;
    for (Extent& extent : kept) {
        any |= extent.origin != nullptr;
        std::free(extent.origin);
        extent = {nullptr, 0};
    }
    kept_bytes = 0;
    return any;
}

}  // namespace orv::core
