// Creation, jumps, copies and deletion of whole streams. What a generator can do is decided in its initStream alone.
#include "services/export.h"
#include "services/services.h"
#include "streams/record.h"

namespace orv::streams {

int32_t allocate_record(Stream** stream, const BrngProperties* row, int32_t id) {
    *stream = static_cast<Stream*>(orv_serv_allocate(record_bytes(row), block_alignment));
    if (!*stream) return StatusNoMemory;
    write_header(*stream, id);
    return StatusOk;
}

int32_t create_seeded(Stream** stream, int32_t id, int32_t n, const void* params) {
    const Place place = resolve(id);
    int32_t status = check_creatable(place);
    if (status < 0) return status;
    const BrngProperties* row = &place.table[place.row];
    status = allocate_record(stream, row, id);
    if (status < 0) return status;
    return row->initStream(InitMethodSeed, *stream, n, params);
}

}  // namespace orv::streams

using namespace orv::streams;

ORV_API int32_t __kuzNewStreamEx(Stream** stream, int32_t id, int32_t n, const uint32_t* params) {
    // Streams of the abstract generators come from creators of their own.
    constexpr int32_t between_i_and_d = BrngIAbstract ^ BrngDAbstract;
    if ((id & ~between_i_and_d) == BrngIAbstract || id == BrngSAbstract) return BrngStatusBadId;
    return create_seeded(stream, id, n, params);
}

ORV_API int32_t __kuzAllocateStream(Stream** stream, const BrngProperties* table, int32_t id, int32_t row,
                                    int32_t member) {
    const int32_t status = check_creatable({table, row, member});
    return status < 0 ? status : allocate_record(stream, &table[row], id);
}

ORV_API int32_t __kuzLeapfrogStream(Stream* stream, int32_t k, int32_t nstreams) {
    if (nstreams < 0) return BrngStatusBadStreamCount;
    return row_of(stream)->initStream(InitMethodLeapfrog, stream, nstreams, &k);
}

ORV_API int32_t __kuzSkipAheadStream(Stream* stream, uint64_t nskip) {
    return row_of(stream)->initStream(InitMethodSkipAhead, stream, 2, &nskip);
}

ORV_API int32_t __kuzSkipAheadStreamEx(Stream* stream, int32_t n, const uint64_t* nskip) {
    return row_of(stream)->initStream(InitMethodSkipAheadEx, stream, n, nskip);
}

ORV_API int32_t __kuzDeleteStream(Stream** stream) {
    __kuzDeleteChunks(*stream);
    orv_serv_deallocate(*stream);
    *stream = nullptr;
    return StatusOk;
}

ORV_API int32_t __kuzCopyStream(Stream** stream, const Stream* source) {
    const Place place = resolve(source->brngId);
    int32_t status = check_creatable(place);
    if (status < 0) return status;
    const BrngProperties* row = &place.table[place.row];
    status = allocate_record(stream, row, source->brngId);
    if (status < 0) return status;
    const size_t bytes = record_bytes(row);
    orv_serv_memcpy_s(*stream, bytes, source, bytes);
    (*stream)->chunks = 0;
    return __kuzCopyChunks(*stream, source);
}

ORV_API int32_t __kuzCopyStreamState(Stream* destination, const Stream* source) {
    if (destination == source) return StatusOk;
    const BrngProperties* row = row_of(source);
    // What is copied is the part of the state that a seed sets, as far as there is a state.
    const size_t capacity = record_bytes(row) - header_bytes;
    const uint64_t seeded =
        static_cast<uint64_t>(static_cast<uint32_t>(row->seedCount)) * static_cast<uint32_t>(row->wordBytes);
    const size_t count = seeded < capacity ? static_cast<size_t>(seeded) : capacity;
    orv_serv_memcpy_s(state_of(destination), capacity, state_of(source), count);
    __kuzDeleteChunks(destination);
    return __kuzCopyChunks(destination, source);
}
