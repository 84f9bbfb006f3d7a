// Sequences whose numbers are in chunks: saved, loaded, copied, cut short and altered.
#include "quasi.h"
#include "services/test_switches.h"
#include "streams/image_trial.h"

#include <orv/services.h>

#include <cstdio>
#include <string>

using namespace orv::test;

namespace {

std::string image_of(Stream* stream) {
    std::string image(static_cast<size_t>(__kuzGetStreamSize(stream)), '\0');
    EXPECT_EQ(__kuzSaveStreamM(stream, image.data()), StatusOk);
    return image;
}

const Chunk* chunk_of(const Stream* stream, int32_t id) {
    const Chunk* chunk = reinterpret_cast<const Chunk*>(static_cast<intptr_t>(stream->chunks));
    while (chunk && chunk->chunkId != id) chunk = chunk->next;
    return chunk;
}

struct QuasiImages : testing::Test {
    int32_t before = orv_serv_live_blocks();
    ~QuasiImages() override { EXPECT_EQ(orv_serv_live_blocks(), before); }
};

TEST_F(QuasiImages, SizesOfTheChunks) {
    for (const size_t dimension : {1, 16, 17, 110, 111, 112, 206, 1000}) {
        OwnedStream stream(BrngSobol, block_of(random_numbers(dimension, 1)));
        ASSERT_EQ(__kuzGetNumChunks(stream), 2);
        const size_t words = 64 * dimension - 32 * ((4 * dimension) & 63) + 2048;
        EXPECT_EQ(chunk_of(stream, 9)->dataBytes, static_cast<int32_t>(4 * words)) << dimension;
        EXPECT_EQ(chunk_of(stream, 13)->dataBytes, static_cast<int32_t>(4 * dimension));
        EXPECT_NE(chunk_of(stream, 9)->key[0] | chunk_of(stream, 9)->key[1], 0u);
        EXPECT_EQ(chunk_of(stream, 13)->key[0] | chunk_of(stream, 13)->key[1], 0u);
    }
    OwnedStream small(BrngNiederr, block_of(random_numbers(318, 1))),
        large(BrngNiederr, block_of(random_numbers(319, 1)));
    EXPECT_EQ(__kuzGetNumChunks(small), 0);
    ASSERT_EQ(__kuzGetNumChunks(large), 1);
    EXPECT_EQ(chunk_of(large, 10)->dataBytes, 132 * 319);
    EXPECT_EQ(chunk_of(large, 10)->key[0] | chunk_of(large, 10)->key[1], 0u);
}

TEST_F(QuasiImages, LoadedAndCopiedStreamsGoOnAlone) {
    for (const int32_t id : {BrngSobol, BrngNiederr})
        for (const size_t dimension : {3, 50, 400}) {
            OwnedStream stream(id, block_of(random_numbers(dimension, 9)));
            draw(stream, 1234);
            Stream *loaded, *copied;
            ASSERT_EQ(__kuzLoadStreamM(&loaded, image_of(stream).data()), StatusOk);
            ASSERT_EQ(__kuzCopyStream(&copied, stream), StatusOk);
            OwnedStream a(loaded), b(copied);
            if (const Chunk* shared = chunk_of(stream, 9)) {
                EXPECT_EQ(chunk_of(a, 9)->data, shared->data) << "the numbers are shared";
                EXPECT_EQ(chunk_of(b, 9)->data, shared->data);
                RoDataEntry* entry;
                ASSERT_EQ(__kuzFindGlobRODataTableEntry(&entry, shared->key), StatusOk);
                EXPECT_EQ(entry->refCount, 3u);
                EXPECT_NE(chunk_of(b, 13)->data, chunk_of(stream, 13)->data) << "the point is not";
            }
            const Words expected = drawn(stream, 999);
            __kuzDeleteStream(&stream.handle);
            EXPECT_EQ(drawn(a, 999), expected);
            EXPECT_EQ(drawn(b, 999), expected);
        }
}

TEST_F(QuasiImages, DamageIsRefused) {
    constexpr size_t index_at = 24, dimension_at = 28, selected_at = 32, left_at = 36;
    constexpr size_t sobol_chunks = 24 + 11712 - 16, niederr_chunks = 24 + 84288 - 16;
    OwnedStream builtin(BrngSobol, {7}), user(BrngSobol, block_of(random_numbers(60, 1)));
    OwnedStream wide(BrngNiederr, block_of(random_numbers(330, 1))), counted(BrngPHILOX4X32X10, {1});
    // The list is the point's chunk, then the numbers'.
    const size_t numbers_at = sobol_chunks + 24 + 4 * 60;
    const struct {
        Stream* stream;
        size_t at;
        uint32_t word;
        bool sound;
    } cases[] = {
        {builtin, index_at, 0, true},
        {builtin, dimension_at, 0, false},
        {builtin, dimension_at, 0x80000000, false},
        {builtin, dimension_at, 40, true},
        {builtin, dimension_at, 41, false},  // no chunks for it
        {builtin, selected_at, 0xFFFFFFFE, false},
        {builtin, selected_at, 6, true},
        {builtin, selected_at, 7, false},
        {builtin, left_at, 6, true},
        {builtin, left_at, 7, false},
        {builtin, left_at, 0xFFFFFFFF, false},
        {user, dimension_at, 61, false},  // chunks of another size
        {user, dimension_at, 59, false},
        {user, dimension_at, 7, false},
        {user, sobol_chunks, 14, false},     // no point
        {user, numbers_at, 8, false},        // no numbers
        {user, sobol_chunks + 4, 1, false},  // a point that would be shared
        {wide, dimension_at, 329, false},
        {wide, dimension_at, 0x02000000, false},
        {wide, dimension_at, 318, true},  // the state's own numbers serve, all zero
        {wide, niederr_chunks, 9, false},
        {wide, niederr_chunks + 12, 1, false},
        {counted, 24 + 24, 3, true},
        {counted, 24 + 24, 4, false},
        {counted, 24 + 24, 0xFFFFFFFF, false},
    };
    for (const auto& c : cases) {
        std::string image = image_of(c.stream);
        std::memcpy(&image[c.at], &c.word, 4);
        Stream* loaded = nullptr;
        const int32_t status = __kuzLoadStreamM(&loaded, image.data());
        EXPECT_EQ(status, c.sound ? StatusOk : StreamStatusBadImage) << &c - cases;
        ASSERT_EQ(loaded != nullptr, c.sound);
        if (!loaded) continue;
        draw(loaded, 100);
        __kuzDeleteStream(&loaded);
    }
}

// Chunks that a caller takes away are missed before they are read.
TEST_F(QuasiImages, MissingChunks) {
    OwnedStream user(BrngSobol, block_of(random_numbers(60, 1))), wide(BrngNiederr, block_of(random_numbers(330, 1)));
    for (Stream* stream : {user.handle, wide.handle}) {
        __kuzDeleteChunks(stream);
        Words r(5, 99);
        EXPECT_EQ(_kuziRngUniformBits(0, stream, 5, r.data()), StreamStatusBadImage);
        EXPECT_EQ(__kuzSkipAheadStream(stream, 5), StreamStatusBadImage);
        EXPECT_EQ(__kuzLeapfrogStream(stream, 0, 0x7FFFFFFF), StreamStatusBadImage);
        EXPECT_EQ(r, Words(5, 99));
    }
}

// Words changed at random and files cut anywhere: a refusal, or a stream that works.
TEST_F(QuasiImages, AlteredImages) {
    std::mt19937 dice(3);
    char name[L_tmpnam];
    ASSERT_NE(std::tmpnam(name), nullptr);
    for (const int32_t id : {BrngSobol, BrngNiederr}) {
        OwnedStream stream(id, block_of(random_numbers(id == BrngSobol ? 45 : 320, 1)));
        draw(stream, 100);
        const std::string good = image_of(stream);
        int loaded = 0;
        for (int trial = 0; trial < 300; ++trial) {
            std::string image = good;
            const size_t chunks = 24 + static_cast<size_t>(generator_of(stream).stateBytes) - 16;
            const size_t places[] = {0, 24, chunks, dice() % image.size()};
            const size_t at = (places[dice() % 4] + dice() % 40) % (image.size() - 4);
            const uint32_t word = dice() >> dice() % 32;
            if (trial % 4 == 0)
                image.resize(at);
            else
                std::memcpy(&image[at], &word, 4);
            const Trial result = try_image(name, image.data(), image.size());
            ASSERT_NE(result, Trial::broken) << id << " trial " << trial << " at " << at;
            loaded += result == Trial::loaded;
        }
        EXPECT_GT(loaded, 20);
    }
    std::remove(name);
}

}  // namespace
