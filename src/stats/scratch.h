// A block from the core services for the length of a call, cut up from the front.
#pragma once

#include "services/services.h"

#include <stddef.h>
#include <stdint.h>

namespace orv::stats {

// The bytes that arrays of the given sizes take, each on a line of the cache of its own.
inline uint64_t room_for(uint64_t elements, uint64_t size = sizeof(double)) {
    return (elements * size + 63) & ~uint64_t{63};
}

struct Scratch {
    char* block;
    char* next;
    bool owned = true;

    explicit Scratch(uint64_t bytes)
        : block(bytes >> 31 ? nullptr : static_cast<char*>(orv_serv_allocate(static_cast<size_t>(bytes) + 1, 128))),
          next(block) {}
    // Another's block, or a part of it.
    explicit Scratch(char* part) : block(part), next(part), owned(false) {}
    ~Scratch() {
        if (owned) orv_serv_deallocate(block);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    template <class T = double>
    T* take(uint64_t elements) {
        T* at = reinterpret_cast<T*>(next);
        next += room_for(elements, sizeof(T));
        return at;
    }
};

}  // namespace orv::stats
