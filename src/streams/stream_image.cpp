// Streams as bytes, in files and in memory: a header, the raw state, the chunks.
//
// One writer and one reader serve both media. A sink or source is a file, or a position in a memory block whose end
// nobody knows. In a file every size is held against the bytes that are left before memory is asked for.
#include "platform/platform.h"
#include "services/export.h"
#include "services/services.h"
#include "streams/chunks.h"
#include "streams/record.h"
#include "streams/state_checks.h"

#include <string.h>

using namespace orv::streams;
namespace platform = orv::platform;

namespace {

constexpr uint8_t current_version = 2;
constexpr uint8_t keyed_version = 1;
constexpr uint8_t keyless_version = 0;
constexpr uint32_t signature = 0x474E52;  // "RNG", little-endian
constexpr uint32_t signature_mask = 0xFFFFFF;
constexpr int32_t image_header_bytes = 24;
constexpr int32_t chunk_header_bytes = 24;
constexpr int32_t most_chunks = 0xFFFF;
// What a chunk may ask for in a file that cannot tell its length.
constexpr int64_t blind_limit = int64_t{1} << 26;

struct ImageStart {
    uint8_t version;
    uint8_t undefined0[3];
    uint32_t signature;
};

struct CurrentRest {
    uint16_t headerSize;
    uint16_t undefined0;
    uint32_t stateSize;
    uint16_t chunkCount;
    uint16_t undefined1;
    int32_t id;
};

struct OlderRest {
    uint16_t undefined0;
    uint16_t stateSize;
    uint16_t chunkCount;
    uint16_t undefined1;
    int32_t id;
};

static_assert(sizeof(ImageStart) == 8 && sizeof(CurrentRest) == 16 && sizeof(OlderRest) == 12);
static_assert(sizeof(ImageStart) + sizeof(CurrentRest) == image_header_bytes);

struct Sink {
    platform::File* file;
    uint8_t* at;
};

struct Source {
    platform::File* file;
    const uint8_t* at;
};

bool put(Sink& sink, const void* bytes, size_t count) {
    if (sink.file) return platform::file_write(sink.file, bytes, count);
    memcpy(sink.at, bytes, count);
    sink.at += count;
    return true;
}

bool get(Source& source, void* bytes, size_t count) {
    if (source.file) return platform::file_read(source.file, bytes, count);
    memcpy(bytes, source.at, count);
    source.at += count;
    return true;
}

// Whether the source may hold `count` more bytes.
bool plausible(const Source& source, int32_t count) {
    if (count < 0) return false;
    if (!source.file) return true;
    const int64_t left = platform::file_remaining(source.file);
    return count <= (left < 0 ? blind_limit : left);
}

bool put_chunk(Sink& sink, const Chunk* chunk) {
    put(sink, &chunk->chunkId, sizeof chunk->chunkId);
    put(sink, chunk->key, sizeof chunk->key);
    put(sink, &chunk->dataBytes, sizeof chunk->dataBytes);
    return chunk->dataBytes > 0 && put(sink, chunk->data, static_cast<size_t>(chunk->dataBytes));
}

int32_t save(Sink& sink, const Stream* stream) {
    const BrngProperties* row = row_of(stream);
    const size_t state_bytes = record_bytes(row) - header_bytes;
    const int32_t chunks = __kuzGetNumChunks(stream);
    const ImageStart start = {current_version, {}, signature};
    const CurrentRest rest = {
        image_header_bytes,
        0,
        static_cast<uint32_t>(state_bytes),
        static_cast<uint16_t>(chunks < most_chunks ? chunks : most_chunks),
        0,
        stream->brngId,
    };
    if (!put(sink, &start, sizeof start) || !put(sink, &rest, sizeof rest) || !put(sink, state_of(stream), state_bytes))
        return StreamStatusWriteFailed;
    // Only the data of the last chunk decides, and a write of nothing counts as failed: both are the contract.
    bool written = true;
    for (const Chunk* chunk = first_chunk(stream); chunk; chunk = chunk->next) written = put_chunk(sink, chunk);
    return written ? StatusOk : StreamStatusWriteFailed;
}

int32_t load_chunk(Source& source, uint8_t version, Stream* stream) {
    int32_t id, bytes;
    uint64_t key[2] = {0, 0};
    if (!get(source, &id, sizeof id)) return StreamStatusReadFailed;
    if (version != keyless_version) {
        if (version != keyed_version && version != current_version) return StreamStatusReadFailed;
        if (!get(source, key, sizeof key)) return StreamStatusReadFailed;
    }
    if (!get(source, &bytes, sizeof bytes) || !plausible(source, bytes)) return StreamStatusReadFailed;
    const size_t count = static_cast<size_t>(bytes);
    void* data = orv_serv_allocate(count, block_alignment);
    if (!data) return StatusNoMemory;
    // The key may be that of data in the table, which then stands in for what was read.
    bool shared = false;
    const int32_t status =
        get(source, data, count) ? add_loaded_chunk(stream, id, key, data, bytes, &shared) : StreamStatusReadFailed;
    if (status < 0 || shared) orv_serv_deallocate(data);
    return status;
}

int32_t processor_can(int32_t id) {
    if (id == BrngTRNG && !__kuzCPUisRDRAND()) return TrngStatusNotSupported;
    if (id == BrngARS5 && !__kuzCPUisAES()) return ArsStatusNotSupported;
    return StatusOk;
}

// Reads a header of either form into the current one.
bool get_header(Source& source, ImageStart* start, CurrentRest* header) {
    if (!get(source, start, sizeof *start)) return false;
    if (start->version == current_version) return get(source, header, sizeof *header);
    OlderRest older;
    if (!get(source, &older, sizeof older)) return false;
    *header = {image_header_bytes, 0, older.stateSize, older.chunkCount, 0, older.id};
    return true;
}

bool has_signature(const ImageStart& start) {
    uint32_t first;
    memcpy(&first, &start, sizeof first);
    return (start.signature & signature_mask) == signature || (first & signature_mask) == signature;
}

// The validity test lets some ids pass that have no row: negative ones, and those of the zero rows behind the last.
bool exists(const Place& place) {
    return __kuzIsBrngValid(place.table, place.row, place.member) >= 0 && place.row >= 0 &&
           place.table[place.row].wordBytes != 0;
}

int32_t load(Source& source, int32_t bad_image, Stream** stream) {
    *stream = nullptr;
    ImageStart start;
    CurrentRest header;
    if (!get_header(source, &start, &header)) return StreamStatusReadFailed;
    if (!has_signature(start)) return bad_image;
    const Place place = resolve(header.id);
    if (!exists(place)) return bad_image;
    const size_t state_bytes = record_bytes(&place.table[place.row]) - header_bytes;
    if (header.stateSize != state_bytes || header.headerSize < image_header_bytes) return bad_image;
    int32_t status = __kuzAllocateStream(stream, place.table, header.id, place.row, place.member);
    if (status < 0) return status;
    status = get(source, state_of(*stream), state_bytes) ? processor_can(header.id) : StreamStatusReadFailed;
    if (status >= 0 && !state_is_sound(*stream)) status = bad_image;
    for (uint32_t left = header.chunkCount; status >= 0 && left > 0; --left)
        status = load_chunk(source, start.version, *stream);
    return status >= 0 && !chunks_are_sound(*stream) ? bad_image : status;
}

// Opens a file by a name of `length` bytes without a final zero, or with one where the length is negative.
int32_t open_named(platform::File* (*open)(const char* name), const char* name, int32_t length, platform::File** file) {
    char* copy = nullptr;
    if (length >= 0) {
        const size_t count = static_cast<size_t>(length);
        copy = static_cast<char*>(orv_serv_allocate(count + 1, block_alignment));
        if (!copy) return StatusNoMemory;
        memcpy(copy, name, count);
        copy[count] = '\0';
    }
    *file = open(copy ? copy : name);
    orv_serv_deallocate(copy);
    return *file ? StatusOk : StreamStatusOpenFailed;
}

}  // namespace

ORV_API int32_t __kuzSaveStreamF(const Stream* stream, const char* name, int32_t name_length) {
    if (__kuzGetNumChunks(stream) > most_chunks) return StreamStatusWriteFailed;
    Sink sink = {nullptr, nullptr};
    int32_t status = open_named(platform::file_create, name, name_length, &sink.file);
    if (status < 0) return status;
    status = save(sink, stream);
    if (!platform::file_close(sink.file)) status = StreamStatusCloseFailed;
    return status;
}

ORV_API int32_t __kuzLoadStreamF(Stream** stream, const char* name, int32_t name_length) {
    Source source = {nullptr, nullptr};
    int32_t status = open_named(platform::file_open, name, name_length, &source.file);
    if (status == StreamStatusOpenFailed) *stream = nullptr;
    if (status < 0) return status;
    status = load(source, StreamStatusBadFile, stream);
    if (!platform::file_close(source.file)) status = StreamStatusCloseFailed;
    if (status < 0 && *stream) __kuzDeleteStream(stream);
    return status;
}

ORV_API int32_t __kuzSaveStreamM(const Stream* stream, void* memory) {
    Sink sink = {nullptr, static_cast<uint8_t*>(memory)};
    save(sink, stream);
    return StatusOk;
}

ORV_API int32_t __kuzLoadStreamM(Stream** stream, const void* memory) {
    Source source = {nullptr, static_cast<const uint8_t*>(memory)};
    const int32_t status = load(source, StreamStatusBadImage, stream);
    if (status < 0 && *stream) __kuzDeleteStream(stream);
    return status;
}

ORV_API int32_t __kuzGetStreamSize(const Stream* stream) {
    int32_t size = static_cast<int32_t>(record_bytes(row_of(stream))) - header_bytes + image_header_bytes;
    for (const Chunk* chunk = first_chunk(stream); chunk; chunk = chunk->next)
        size += chunk_header_bytes + chunk->dataBytes;
    return size;
}
