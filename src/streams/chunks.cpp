// The list of memory chunks that hangs off a stream.
#include "streams/chunks.h"

#include "services/export.h"
#include "services/services.h"
#include "streams/record.h"
#include "streams/shared_table.h"

#include <string.h>

using namespace orv::streams;

namespace {

Chunk* new_chunk(int32_t id, int32_t size, void* data) {
    Chunk* chunk = static_cast<Chunk*>(orv_serv_allocate(sizeof(Chunk), block_alignment));
    if (chunk) *chunk = {id, size, data, nullptr, {0, 0}};
    return chunk;
}

void push_front(Stream* stream, Chunk* chunk) {
    chunk->next = first_chunk(stream);
    set_first_chunk(stream, chunk);
}

void delete_chunk(Chunk* chunk) {
    const bool shared = !is_zero_key(chunk->key) && release_reference(chunk->key);
    if (!shared) orv_serv_deallocate(chunk->data);
    orv_serv_deallocate(chunk);
}

void set_key(Chunk* chunk, const uint64_t* key) {
    chunk->key[0] = key[0];
    chunk->key[1] = key[1];
}

// Gives the chunk its key and its data their place in the shared table; the chunk stays private when that is refused.
Entered share(Chunk* chunk, const uint64_t* key, bool same_size) {
    const Entered entered = enter(key, chunk->dataBytes, same_size, &chunk->data);
    if (entered != Entered::rejected) set_key(chunk, key);
    return entered;
}

int32_t add(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size, bool same_size, bool* shared) {
    Chunk* chunk = new_chunk(id, size, data);
    if (!chunk) return StatusNoMemory;
    *shared = key && !is_zero_key(key) && share(chunk, key, same_size) == Entered::found;
    push_front(stream, chunk);
    return StatusOk;
}

// A copy of one chunk, or null without memory.
Chunk* copy_chunk(const Chunk* source) {
    Chunk* copy = new_chunk(source->chunkId, source->dataBytes, nullptr);
    if (!copy) return nullptr;
    const bool keyed = !is_zero_key(source->key);
    if (keyed && take_reference(source->key, unknown_size, &copy->data)) {
        set_key(copy, source->key);
        return copy;
    }
    const size_t bytes = static_cast<size_t>(source->dataBytes);
    void* own = orv_serv_allocate(bytes, block_alignment);
    if (!own) {
        orv_serv_deallocate(copy);
        return nullptr;
    }
    orv_serv_memcpy_s(own, bytes, source->data, bytes);
    copy->data = own;
    // Another thread may have entered the key meanwhile; its data serves as well.
    if (keyed && share(copy, source->key, false) == Entered::found) orv_serv_deallocate(own);
    return copy;
}

}  // namespace

namespace orv::streams {

void remove_chunks(Stream* stream, int32_t id) {
    Chunk* kept = nullptr;
    for (Chunk* chunk = first_chunk(stream); chunk;) {
        Chunk* next = chunk->next;
        if (chunk->chunkId != id) {
            kept = chunk;
        } else {
            if (kept)
                kept->next = next;
            else
                set_first_chunk(stream, next);
            delete_chunk(chunk);
        }
        chunk = next;
    }
}

Chunk* find_chunk(const Stream* stream, int32_t id) {
    Chunk* chunk = first_chunk(stream);
    while (chunk && chunk->chunkId != id) chunk = chunk->next;
    return chunk;
}

Chunk* replace_chunks(Stream* stream, int32_t id, int32_t size) {
    const size_t bytes = static_cast<size_t>(size);
    void* data = orv_serv_allocate(bytes, block_alignment);
    Chunk* chunk = data ? new_chunk(id, size, data) : nullptr;
    if (!chunk) {
        orv_serv_deallocate(data);
        return nullptr;
    }
    memset(data, 0, bytes);
    remove_chunks(stream, id);
    push_front(stream, chunk);
    return chunk;
}

Chunk* find_or_create_chunk(Stream* stream, int32_t id, int32_t size) {
    Chunk* found = find_chunk(stream, id);
    return found && found->dataBytes == size ? found : replace_chunks(stream, id, size);
}

int32_t add_loaded_chunk(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size, bool* shared) {
    return add(stream, id, key, data, size, true, shared);
}

}  // namespace orv::streams

ORV_API int32_t __kuzAddChunk(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size) {
    bool shared;
    return add(stream, id, key, data, size, false, &shared);
}

ORV_API void* __kuzSearchChunk(const Stream* stream, int32_t id) {
    const Chunk* found = find_chunk(stream, id);
    return found ? found->data : nullptr;
}

ORV_API int32_t __kuzGetNumChunks(const Stream* stream) {
    int32_t count = 0;
    for (const Chunk* chunk = first_chunk(stream); chunk; chunk = chunk->next) ++count;
    return count;
}

ORV_API void __kuzDeleteChunksById(Stream* stream, int32_t id) {
    Chunk* kept = nullptr;
    for (Chunk* chunk = first_chunk(stream); chunk;) {
        Chunk* next = chunk->next;
        if (chunk->chunkId != id) {
            kept = chunk;
        } else {
            if (kept) kept->next = next;
            delete_chunk(chunk);
        }
        chunk = next;
    }
    // The list goes on from the last chunk kept. This is the contract, and callers keep at most one.
    set_first_chunk(stream, kept);
}

ORV_API void __kuzDeleteChunks(Stream* stream) {
    for (Chunk* chunk = first_chunk(stream); chunk;) {
        Chunk* next = chunk->next;
        delete_chunk(chunk);
        chunk = next;
    }
    set_first_chunk(stream, nullptr);
}

ORV_API int32_t __kuzCopyChunks(Stream* destination, const Stream* source) {
    for (const Chunk* chunk = first_chunk(source); chunk; chunk = chunk->next) {
        Chunk* copy = copy_chunk(chunk);
        if (!copy) {
            __kuzDeleteChunks(destination);
            return StatusNoMemory;
        }
        push_front(destination, copy);
    }
    return StatusOk;
}
