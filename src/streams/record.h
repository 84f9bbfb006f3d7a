// The stream record from inside: how its header is written, how its generator's row is found.
#pragma once

#include <orv/streams.h>

#include <stddef.h>
#include <stdint.h>

namespace orv::streams {

inline constexpr int32_t block_alignment = 128;
inline constexpr int32_t header_bytes = 16;

static_assert(sizeof(Stream) == header_bytes && alignof(Stream) == 8);
static_assert(offsetof(Stream, headerFlag) == 4 && offsetof(Stream, headerPad8) == 5);
static_assert(offsetof(Stream, headerPad16) == 6 && offsetof(Stream, chunks) == 8);
static_assert(sizeof(BrngProperties) == 36);
static_assert(sizeof(Chunk) == 32 && offsetof(Chunk, data) == 8 && offsetof(Chunk, next) == 12 &&
              offsetof(Chunk, key) == 16);

inline Chunk* first_chunk(const Stream* stream) {
    return reinterpret_cast<Chunk*>(static_cast<intptr_t>(stream->chunks));
}
inline void set_first_chunk(Stream* stream, Chunk* chunk) { stream->chunks = reinterpret_cast<intptr_t>(chunk); }

inline void write_header(Stream* stream, int32_t id) {
    stream->brngId = id;
    stream->headerFlag = 1;
    stream->headerPad8 = 0;
    stream->headerPad16 = 0;
    stream->chunks = 0;
}

inline uint8_t* state_of(Stream* stream) { return reinterpret_cast<uint8_t*>(stream) + header_bytes; }
inline const uint8_t* state_of(const Stream* stream) { return reinterpret_cast<const uint8_t*>(stream) + header_bytes; }

// The row of a live stream; ids of live streams have been tested.
inline const BrngProperties* row_of(const Stream* stream) {
    int32_t row, member;
    const BrngProperties* table = __kuzGetBrngBaseOffset(stream->brngId, &row, &member);
    return &table[row];
}

// The bytes of a record. A registered row may name fewer than the header takes; the record holds the header all the same.
inline size_t record_bytes(const BrngProperties* row) {
    return static_cast<size_t>(row->stateBytes > header_bytes ? row->stateBytes : header_bytes);
}

// Tests a resolved id as creation does: the row and member exist, and there is a generator behind the row. The second
// test catches the zero rows, the negative small ids and the generators that this build does not have.
int32_t check_creatable(const BrngProperties* table, int32_t row, int32_t member);

// Allocates a record for a tested row and writes its header. Stores null on failure.
int32_t allocate_record(Stream** stream, const BrngProperties* row, int32_t id);

// A record for any id that check_creatable lets pass, seeded with what its generator's initStream takes.
int32_t create_seeded(Stream** stream, int32_t id, int32_t n, const void* params);

// Adds a chunk as __kuzAddChunk does, except that data under a known key of another size is kept private; *shared tells
// whether the table's data took the place of `data`, which is then the caller's to free.
int32_t add_loaded_chunk(Stream* stream, int32_t id, const uint64_t* key, void* data, int32_t size, bool* shared);

}  // namespace orv::streams
