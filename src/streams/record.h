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
static_assert(sizeof(void*) != 4 || sizeof(BrngProperties) == 36);
static_assert(sizeof(void*) != 4 || (sizeof(Chunk) == 32 && offsetof(Chunk, data) == 8 && offsetof(Chunk, next) == 12 &&
                                     offsetof(Chunk, key) == 16));

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

// A main id is (row + 1) << 20 plus the member of a family. Ids below 0x100000 are the older form: a row number, except
// that 4 to 276 name the members of the WH family, which all share row 4.
inline constexpr int32_t main_id_unit = 0x100000;
inline constexpr int32_t small_wh_row = 4;
inline constexpr uint32_t small_wh_members = 273;

struct Place {
    const BrngProperties* table;
    int32_t row, member;
};

// Tests nothing: a negative id gives a negative row, which is not to be read.
inline Place resolve(int32_t id) {
    if (id >= main_id_unit) return {__RegBrngsNew, (id >> 20) - 1, id & (main_id_unit - 1)};
    const uint32_t member = static_cast<uint32_t>(id) - small_wh_row;
    if (member < small_wh_members) return {__RegBrngs, small_wh_row, static_cast<int32_t>(member)};
    return {__RegBrngs, id, 0};
}

// The row of a live stream; ids of live streams have been tested.
inline const BrngProperties* row_of(const Stream* stream) {
    const Place place = resolve(stream->brngId);
    return &place.table[place.row];
}

// The bytes of a record. A registered row may name fewer than the header takes; the record holds the header all the same.
inline size_t record_bytes(const BrngProperties* row) {
    return static_cast<size_t>(row->stateBytes > header_bytes ? row->stateBytes : header_bytes);
}

// Tests a resolved id as creation does: the row and member exist, and there is a generator behind the row. The second
// test catches the zero rows, the negative small ids and the generators that this build does not have.
int32_t check_creatable(const Place& place);

// Allocates a record for a tested row and writes its header. Stores null on failure.
int32_t allocate_record(Stream** stream, const BrngProperties* row, int32_t id);

// A record for any id that check_creatable lets pass, seeded with what its generator's initStream takes.
int32_t create_seeded(Stream** stream, int32_t id, int32_t n, const void* params);

}  // namespace orv::streams
