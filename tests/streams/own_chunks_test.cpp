// Chunks of one id found, made and replaced: the others stay on the list, in their order.
#include "services/test_switches.h"
#include "streams/chunks.h"

#include <orv/services.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace orv::streams;

namespace {

std::vector<int32_t> ids(const Stream& stream) {
    std::vector<int32_t> result;
    for (auto* chunk = reinterpret_cast<const Chunk*>(static_cast<intptr_t>(stream.chunks)); chunk; chunk = chunk->next)
        result.push_back(chunk->chunkId);
    return result;
}

using Ids = std::vector<int32_t>;

TEST(OwnChunks, OthersStay) {
    const int32_t before = orv_serv_live_blocks();
    Stream stream = {};
    // Kept chunks before, between and behind; data under a key beside private data.
    const uint64_t key[] = {12, 13};
    for (const int32_t id : {1, 2, 3, 2, 4, 2}) {
        void* data = orv_serv_allocate(8, 128);
        std::memset(data, id, 8);
        ASSERT_EQ(__kuzAddChunk(&stream, id, id == 2 ? nullptr : key, data, 8), StatusOk);
        if (id == 3 || id == 4) orv_serv_deallocate(data);
    }
    EXPECT_EQ(ids(stream), (Ids{2, 4, 2, 3, 2, 1}));
    Chunk* newest = find_chunk(&stream, 2);
    EXPECT_EQ(find_or_create_chunk(&stream, 2, 8), newest);
    EXPECT_EQ(ids(stream), (Ids{2, 4, 2, 3, 2, 1})) << "the size fits: nothing is touched";
    EXPECT_EQ(find_chunk(&stream, 5), nullptr);

    for (const int32_t nth : {1, 2}) {
        orv_serv_fail_allocation(nth);
        EXPECT_EQ(find_or_create_chunk(&stream, 2, 9), nullptr);
        EXPECT_EQ(ids(stream), (Ids{2, 4, 2, 3, 2, 1}));
    }
    const Chunk* made = find_or_create_chunk(&stream, 2, 9);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(ids(stream), (Ids{2, 4, 3, 1}));
    const char zeros[9] = {};
    EXPECT_TRUE(made->dataBytes == 9 && std::memcmp(made->data, zeros, 9) == 0);
    EXPECT_EQ(static_cast<char*>(find_chunk(&stream, 3)->data)[7], 1) << "the data under the key lives on";

    static_cast<char*>(made->data)[0] = 1;
    made = replace_chunks(&stream, 2, 9);
    EXPECT_EQ(static_cast<char*>(made->data)[0], 0);
    replace_chunks(&stream, 1, 4);
    EXPECT_EQ(ids(stream), (Ids{1, 2, 4, 3}));
    __kuzDeleteChunks(&stream);
    EXPECT_EQ(orv_serv_live_blocks(), before);
}

}  // namespace
