// Chunks as this library's own generators and distributions use them: one of an id, found or made, and taken out without
// touching the others.
#pragma once

#include <orv/streams.h>

namespace orv::streams {

// The chunk with this id that was added last, or null.
Chunk* find_chunk(const Stream* stream, int32_t id);

// The chunk with this id if its data has `size` bytes; else a new one of zeros, without a key, in the place of all others
// of the id. Null without memory, and then the stream's chunks are as they were.
Chunk* find_or_create_chunk(Stream* stream, int32_t id, int32_t size);

// Puts a new chunk of zeros, without a key, in the place of all that have this id. Null without memory, and then the
// stream's chunks are as they were.
Chunk* replace_chunks(Stream* stream, int32_t id, int32_t size);

// Deletes all chunks with this id.
void remove_chunks(Stream* stream, int32_t id);

// Adds a chunk as __kuzAddChunk does, except that data under a known key of another size is kept private; *shared tells
// whether the table's data took the place of `data`, which is then the caller's to free.
int32_t add_loaded_chunk(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size, bool* shared);

}  // namespace orv::streams
