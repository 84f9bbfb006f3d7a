// Large blocks given back are kept for the next caller. The system maps and unmaps them each time, and filling fresh pages
// costs more than most kernels' work on them.
#pragma once

#include <cstddef>

namespace orv::core {

struct Extent {
    void* origin;
    size_t capacity;
};

// A kept block of at least `size` bytes and at most twice that, or a null origin.
Extent take_large_block(size_t size);

// True when the block was kept; false leaves it to the caller to free.
bool keep_large_block(const Extent& extent);

// Frees all kept blocks; true when there was one.
bool release_large_blocks();

}  // namespace orv::core
