// The table is small and searched by a walk. A search and what follows from it happen in one hold of the lock, so an
// entry cannot vanish or be doubled in between.
#include "streams/shared_table.h"

#include "platform/platform.h"
#include "services/export.h"
#include "services/services.h"
#include "streams/spin_lock.h"

#include <orv/streams.h>

#include <stddef.h>

using namespace orv::streams;

static_assert(sizeof(void*) != 4 || (sizeof(RoDataEntry) == 24 && offsetof(RoDataEntry, refCount) == 16 &&
                                     offsetof(RoDataEntry, data) == 20));

namespace {

constexpr uint32_t table_entries = 128;
constexpr uint32_t chunk_entries = 127;  // chunks leave the last entry to direct creation

struct SharedTable {
    RoDataEntry entries[table_entries];
    uint32_t count;  // entries 0 to count - 1 are in use
    SpinLock lock;
    int32_t bytes[table_entries];  // of each entry's data, or unknown_size
};

SharedTable table;

// Called under the lock; the index, or `count` for an unknown key.
uint32_t find(const uint64_t* key) {
    uint32_t index = 0;
    while (index < table.count && (table.entries[index].key[0] != key[0] || table.entries[index].key[1] != key[1]))
        ++index;
    return index;
}

RoDataEntry* append(const uint64_t* key, void* data, int32_t bytes) {
    const uint32_t index = table.count;
    table.entries[index] = {{key[0], key[1]}, 1, data};
    table.bytes[index] = bytes;
    table.count = index + 1;
    return &table.entries[index];
}

bool size_differs(uint32_t index, int32_t bytes) {
    return bytes != unknown_size && table.bytes[index] != unknown_size && table.bytes[index] != bytes;
}

}  // namespace

namespace orv::streams {

bool take_reference(const uint64_t* key, int32_t bytes, void** data) {
    SpinHold hold(table.lock);
    const uint32_t index = find(key);
    if (index == table.count || size_differs(index, bytes)) return false;
    ++table.entries[index].refCount;
    *data = table.entries[index].data;
    return true;
}

Entered enter(const uint64_t* key, int32_t bytes, bool same_size, void** data) {
    SpinHold hold(table.lock);
    const uint32_t index = find(key);
    if (index < table.count) {
        if (same_size && size_differs(index, bytes)) return Entered::rejected;
        ++table.entries[index].refCount;
        *data = table.entries[index].data;
        return Entered::found;
    }
    if (table.count >= chunk_entries) return Entered::rejected;
    append(key, *data, bytes);
    return Entered::added;
}

bool release_reference(const uint64_t* key) {
    SpinHold hold(table.lock);
    bool known = false;
    // Direct creation does not look for an equal key, so there may be several entries of one.
    for (uint32_t index = find(key); index < table.count; ++index) {
        RoDataEntry& entry = table.entries[index];
        if (entry.key[0] != key[0] || entry.key[1] != key[1]) continue;
        known = true;
        if (--entry.refCount != 0) continue;
        orv_serv_deallocate(entry.data);
        const uint32_t last = --table.count;
        if (index == last) break;
        entry = table.entries[last];
        table.bytes[index] = table.bytes[last];
    }
    return known;
}

}  // namespace orv::streams

ORV_API int32_t __kuzFindGlobRODataTableEntry(RoDataEntry** entry, const uint64_t* key) {
    if (!key || is_zero_key(key)) return RoTableStatusNotFound;
    SpinHold hold(table.lock);
    const uint32_t index = find(key);
    if (index == table.count) return RoTableStatusNotFound;
    *entry = &table.entries[index];
    return StatusOk;
}

ORV_API int32_t __kuzCreateGlobRODataTableEntry(RoDataEntry** entry, const uint64_t* key, void* data) {
    SpinHold hold(table.lock);
    if (table.count >= table_entries) return RoTableStatusFull;
    *entry = append(key, data, unknown_size);
    return StatusOk;
}

ORV_API void __kuzRegisterGlobRODataReference(Chunk* chunk, const uint64_t* key) {
    take_reference(key, unknown_size, &chunk->data);
}

ORV_API void __kuzUnregisterGlobRODataReference(const uint64_t* key) {
    if (!is_zero_key(key)) release_reference(key);
}

ORV_API int32_t __kuzGenerateNewGlobalRODataTableEntryId(uint64_t* key, int32_t value) {
    // The caller's data pointer makes keys differ even where the counter repeats; the loop serves the rest.
    key[1] = static_cast<uint64_t>(int64_t{value});
    RoDataEntry* entry;
    do {
        key[0] = orv::platform::time_stamp_counter();
        if (is_zero_key(key)) return StatusOk;
    } while (__kuzFindGlobRODataTableEntry(&entry, key) == StatusOk);
    return StatusOk;
}
