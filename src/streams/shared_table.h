// The process-wide table of read-only data that streams share, with a count of references under each key.
#pragma once

#include <stdint.h>

namespace orv::streams {

inline bool is_zero_key(const uint64_t* key) { return (key[0] | key[1]) == 0; }

inline constexpr int32_t unknown_size = -1;

// Adds a reference to the key's data, stores the data and returns true; false for an unknown key, and for data that is
// known to have another size than `bytes` (unknown_size: any).
bool take_reference(const uint64_t* key, int32_t bytes, void** data);

enum class Entered {
    found,    // the key was there; a reference was added and *data replaced
    added,    // a new entry refers to *data
    rejected  // the table is as full as chunks may make it, or the key names data of another size
};
// take_reference, or else a new entry for the key, in one hold of the lock: two threads that enter one key at once end
// with one entry.
Entered enter(const uint64_t* key, int32_t bytes, bool same_size, void** data);

// Gives back a reference. False for an unknown key: the data then belongs to the caller.
bool release_reference(const uint64_t* key);

}  // namespace orv::streams
