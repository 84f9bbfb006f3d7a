// Chunks on a stream's list and the shared table behind keys.
#include "services/test_switches.h"
#include "streams/streams.h"

#include <orv/services.h>

#include <cstring>

using namespace orv::test;

namespace {

void* filled(int32_t size, int byte) {
    void* data = orv_serv_allocate(static_cast<size_t>(size), 128);
    std::memset(data, byte, static_cast<size_t>(size));
    return data;
}

Chunk* first(const Stream* stream) { return reinterpret_cast<Chunk*>(static_cast<intptr_t>(stream->chunks)); }

int32_t references(const uint64_t* key) {
    RoDataEntry* entry;
    return __kuzFindGlobRODataTableEntry(&entry, key) == StatusOk ? static_cast<int32_t>(entry->refCount) : 0;
}

struct BlocksReturned : testing::Test {
    int32_t before = orv_serv_live_blocks();
    ~BlocksReturned() override { EXPECT_EQ(orv_serv_live_blocks(), before); }
};
struct Chunks : BlocksReturned {};
struct SharedTable : BlocksReturned {};

TEST_F(Chunks, TheLastAddedIsFoundFirst) {
    OwnedStream stream(BrngMCG31M1, {1});
    EXPECT_EQ(__kuzSearchChunk(stream, 1), nullptr);
    void* early = filled(8, 1);
    void* late = filled(16, 2);
    ASSERT_EQ(__kuzAddChunk(stream, 1, nullptr, early, 8), StatusOk);
    ASSERT_EQ(__kuzAddChunk(stream, 2, nullptr, filled(4, 3), 4), StatusOk);
    ASSERT_EQ(__kuzAddChunk(stream, 1, nullptr, late, 16), StatusOk);
    EXPECT_EQ(__kuzSearchChunk(stream, 1), late);
    EXPECT_EQ(__kuzGetNumChunks(stream), 3);
    __kuzDeleteChunksById(stream, 1);
    EXPECT_EQ(__kuzGetNumChunks(stream), 1);
    EXPECT_EQ(__kuzSearchChunk(stream, 1), nullptr);
    EXPECT_NE(__kuzSearchChunk(stream, 2), nullptr);
    __kuzDeleteChunksById(stream, 2);
    EXPECT_EQ(stream.handle->chunks, 0);
    orv_serv_fail_allocation(1);
    EXPECT_EQ(__kuzAddChunk(stream, 1, nullptr, nullptr, 0), StatusNoMemory);
}

TEST_F(Chunks, DeletionByIdGoesOnFromTheLastKept) {
    OwnedStream stream(BrngMCG31M1, {1});
    for (const int32_t id : {1, 2, 3, 2}) __kuzAddChunk(stream, id, nullptr, filled(4, id), 4);
    Chunk* dropped = first(stream)->next;  // the list is 2, 3, 2, 1
    __kuzDeleteChunksById(stream, 2);
    EXPECT_EQ(dropped->chunkId, 3);
    EXPECT_EQ(__kuzGetNumChunks(stream), 1);
    EXPECT_EQ(first(stream)->chunkId, 1);
    orv_serv_deallocate(dropped->data);
    orv_serv_deallocate(dropped);
}

TEST_F(Chunks, CopiesAreDeepAndReversed) {
    OwnedStream source(BrngMRG32K3A, {1});
    for (const int32_t id : {1, 2, 3}) __kuzAddChunk(source, id, nullptr, filled(4 * id, id), 4 * id);
    Stream* handle;
    ASSERT_EQ(__kuzCopyStream(&handle, source), StatusOk);
    OwnedStream copy(handle);
    __kuzDeleteStream(&source.handle);
    int32_t id = 1;
    for (const Chunk* chunk = first(copy); chunk; chunk = chunk->next, ++id) {
        EXPECT_EQ(chunk->chunkId, id);
        ASSERT_EQ(chunk->dataBytes, 4 * id);
        EXPECT_EQ(static_cast<char*>(chunk->data)[4 * id - 1], id);
    }
    EXPECT_EQ(id, 4);
}

TEST_F(Chunks, EveryFailingAllocationOfACopyLeavesADeletableStream) {
    const uint64_t key[] = {77, 78};
    OwnedStream source(BrngMRG32K3A, {1});
    __kuzAddChunk(source, 1, nullptr, filled(8, 1), 8);
    __kuzAddChunk(source, 9, key, filled(8, 9), 8);
    constexpr int32_t allocations = 4;  // record, shared chunk, private chunk and its data
    for (int32_t nth = 1; nth <= allocations; ++nth) {
        Stream* copy;
        orv_serv_fail_allocation(nth);
        ASSERT_EQ(__kuzCopyStream(&copy, source), StatusNoMemory) << nth;
        EXPECT_EQ(copy == nullptr, nth == 1);
        if (copy) {
            EXPECT_EQ(copy->chunks, 0);
            __kuzDeleteStream(&copy);
        }
        EXPECT_EQ(references(key), 1) << nth;
    }
    Stream* copy;
    ASSERT_EQ(__kuzCopyStream(&copy, source), StatusOk);
    EXPECT_EQ(references(key), 2);
    EXPECT_EQ(__kuzSearchChunk(copy, 9), __kuzSearchChunk(source, 9));
    EXPECT_NE(__kuzSearchChunk(copy, 1), __kuzSearchChunk(source, 1));
    __kuzCopyStreamState(copy, source);
    EXPECT_EQ(references(key), 2);
    EXPECT_EQ(__kuzGetNumChunks(copy), 2);
    __kuzDeleteStream(&copy);
}

TEST_F(SharedTable, TheLastReferenceFreesTheData) {
    const uint64_t key[] = {0x1234, 0};
    void* data = filled(64, 5);
    void* forgotten = filled(64, 6);
    OwnedStream a(BrngMCG59, {1}), b(BrngMCG59, {2});
    __kuzAddChunk(a, 9, key, data, 64);
    __kuzAddChunk(b, 9, key, forgotten, 64);
    EXPECT_EQ(__kuzSearchChunk(b, 9), data) << "the table's data stands in for the caller's";
    orv_serv_deallocate(forgotten);
    Chunk third = {};
    __kuzRegisterGlobRODataReference(&third, key);
    EXPECT_EQ(third.data, data);
    EXPECT_EQ(references(key), 3);
    __kuzDeleteChunks(a);
    __kuzUnregisterGlobRODataReference(key);
    EXPECT_EQ(references(key), 1);
    EXPECT_EQ(static_cast<char*>(__kuzSearchChunk(b, 9))[63], 5);
    __kuzDeleteChunks(b);
    EXPECT_EQ(references(key), 0);
}

TEST_F(SharedTable, LimitsAndTheMovingEntry) {
    OwnedStream stream(BrngMCG59, {1});
    std::vector<Stream*> owners;
    for (uint64_t k = 1; k <= 127; ++k) {
        const uint64_t key[] = {k, ~k};
        Stream* owner;
        ASSERT_EQ(__kuzNewStreamEx(&owner, BrngMCG59, 0, nullptr), StatusOk);
        __kuzAddChunk(owner, 9, key, filled(4, 1), 4);
        owners.push_back(owner);
    }
    const uint64_t late[] = {1000, 1000}, last[] = {2000, 2000}, beyond[] = {3000, 3000};
    __kuzAddChunk(stream, 9, late, filled(4, 2), 4);
    EXPECT_EQ(references(late), 0);
    EXPECT_EQ(first(stream)->key[0] | first(stream)->key[1], 0u) << "private";
    RoDataEntry* entry;
    EXPECT_EQ(__kuzCreateGlobRODataTableEntry(&entry, last, filled(4, 3)), StatusOk);
    EXPECT_EQ(entry->refCount, 1u);
    EXPECT_EQ(__kuzCreateGlobRODataTableEntry(&entry, beyond, nullptr), RoTableStatusFull);
    // The 128th entry moves into the slot of the 50th.
    __kuzDeleteStream(&owners[49]);
    for (uint64_t k = 1; k <= 127; ++k) {
        const uint64_t key[] = {k, ~k};
        EXPECT_EQ(references(key), k == 50 ? 0 : 1) << k;
    }
    EXPECT_EQ(references(last), 1);
    __kuzUnregisterGlobRODataReference(last);
    for (Stream*& owner : owners)
        if (owner) __kuzDeleteStream(&owner);
}

TEST_F(SharedTable, KeysOfNothing) {
    RoDataEntry* entry;
    const uint64_t zero[] = {0, 0};
    EXPECT_EQ(__kuzFindGlobRODataTableEntry(&entry, nullptr), RoTableStatusNotFound);
    EXPECT_EQ(__kuzFindGlobRODataTableEntry(&entry, zero), RoTableStatusNotFound);
    uint64_t made[2], again[2];
    EXPECT_EQ(__kuzGenerateNewGlobalRODataTableEntryId(made, -5), StatusOk);
    EXPECT_EQ(made[1], static_cast<uint64_t>(-5));
    __kuzGenerateNewGlobalRODataTableEntryId(again, -5);
    EXPECT_NE(made[0], again[0]);
}

}  // namespace
