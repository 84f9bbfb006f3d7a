// Images of streams: the bytes themselves, both media, the older forms, and what a loader refuses.
#include "services/test_switches.h"
#include "streams/image_trial.h"
#include "streams/streams.h"

#include <orv/services.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using namespace orv::test;

namespace {

const std::string scratch = (std::filesystem::temp_directory_path() / "orv_image_test.").string() +
                            std::to_string(reinterpret_cast<uintptr_t>(&scratch) ^ __builtin_ia32_rdtsc());

struct Images : testing::Test {
    int32_t before = orv_serv_live_blocks();
    ~Images() override {
        std::error_code ignored;
        std::filesystem::remove(scratch, ignored);
        EXPECT_EQ(orv_serv_live_blocks(), before);
    }
};

std::string bytes_of(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string image_of(Stream* stream) {
    std::string image(static_cast<size_t>(__kuzGetStreamSize(stream)), '\x5A');
    EXPECT_EQ(__kuzSaveStreamM(stream, image.data()), StatusOk);
    return image;
}

int32_t load_file(const std::string& bytes, Stream** stream) {
    write_file(scratch.c_str(), bytes.data(), bytes.size());
    return __kuzLoadStreamF(stream, scratch.c_str(), -1);
}

void* copy_of(const std::string& bytes) {
    void* data = orv_serv_allocate(bytes.size(), 128);
    std::memcpy(data, bytes.data(), bytes.size());
    return data;
}

TEST_F(Images, TheFormatByteByByte) {
    OwnedStream stream(BrngMCG31M1, {0x01020304});
    const uint64_t key[] = {0x1122334455667788, 0x99};
    __kuzAddChunk(stream, 5, key, copy_of("abc"), 3);
    const unsigned char expected[] = {
        2,    0, 0, 0, 0x52, 0x4E, 0x47, 0,    24,   0,    0,    0,    8,   0,   0,
        0,    1, 0, 0, 0,    0,    0,    0x10, 0,                                      // header
        4,    3, 2, 1, 0x20, 0x6C, 0x80, 0x43,                                         // x and a
        5,    0, 0, 0, 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,                 // id, key
        0x99, 0, 0, 0, 0,    0,    0,    0,    3,    0,    0,    0,    'a', 'b', 'c',  // size, data
    };
    const std::string image = image_of(stream);
    EXPECT_EQ(image, std::string(reinterpret_cast<const char*>(expected), sizeof expected));
    // A name of counted bytes, with rubbish behind it.
    const std::string longer = scratch + "no part of the name";
    ASSERT_EQ(__kuzSaveStreamF(stream, longer.c_str(), static_cast<int32_t>(scratch.size())), StatusOk);
    EXPECT_EQ(bytes_of(scratch), image);
}

TEST_F(Images, LoadedStreamsGoOnWithTheSameNumbers) {
    std::vector<int32_t> all(std::begin(present), std::end(present));
    all.insert(all.end(), std::begin(without_skip), std::end(without_skip));
    for (const int32_t id : all) {
        OwnedStream stream(id, {2024});
        draw(stream, 333);
        __kuzAddChunk(stream, 1, nullptr, copy_of("one"), 3);
        __kuzAddChunk(stream, 2, nullptr, copy_of("second"), 6);
        Stream *from_memory, *from_file;
        ASSERT_EQ(__kuzLoadStreamM(&from_memory, image_of(stream).data()), StatusOk);
        ASSERT_EQ(__kuzSaveStreamF(stream, scratch.c_str(), -1), StatusOk);
        ASSERT_EQ(__kuzLoadStreamF(&from_file, scratch.c_str(), -1), StatusOk);
        OwnedStream a(from_memory), b(from_file);
        EXPECT_EQ(image_of(a), image_of(b));
        EXPECT_EQ(std::memcmp(__kuzSearchChunk(a, 2), "second", 6), 0);
        Stream* again;
        ASSERT_EQ(__kuzLoadStreamM(&again, image_of(a).data()), StatusOk);
        OwnedStream c(again);
        EXPECT_EQ(image_of(c), image_of(stream)) << "twice reversed, the chunks are in their first order";
        const std::vector<uint64_t> expected = draw(stream, 200);
        EXPECT_EQ(draw(a, 200), expected);
        EXPECT_EQ(draw(b, 200), expected);
    }
}

TEST_F(Images, OlderForms) {
    OwnedStream stream(BrngMCG59, {5});
    const std::string state = image_of(stream).substr(24);
    const std::string tail("\xEE\xEE\x10\0\0\0\xEE\xEE\0\0\x40\0", 12);  // state size 16, no chunks, the id
    std::string one_chunk = tail;
    one_chunk[4] = 1;
    const std::string keyless("\7\0\0\0\2\0\0\0hi", 10);
    const std::string keyed = std::string("\7\0\0\0", 4) + std::string(16, '\3') + std::string("\2\0\0\0hi", 6);
    const struct {
        const char* what;
        std::string image;
        int32_t status, chunks;
        uint64_t key;
    } cases[] = {
        {"version 0 without keys", std::string("\0xyzRNGx", 8) + one_chunk + state + keyless, StatusOk, 1, 0},
        {"version 1 with keys", std::string("\1xyzRNGx", 8) + one_chunk + state + keyed, StatusOk, 1,
         0x0303030303030303},
        {"signature first, no chunks", "RNGxabcd" + tail + state, StatusOk, 0, 0},
        {"signature first, a chunk", "RNGxabcd" + one_chunk + state + keyed, StreamStatusReadFailed, 0, 0},
        {"version 3, no chunks", std::string("\3xyzRNGx", 8) + tail + state, StatusOk, 0, 0},
        {"no signature", std::string("\1xyzRNHx", 8) + tail + state, StreamStatusBadFile, 0, 0},
    };
    for (const auto& c : cases) {
        Stream* loaded = stream;
        EXPECT_EQ(load_file(c.image, &loaded), c.status) << c.what;
        ASSERT_EQ(loaded == nullptr, c.status < 0) << c.what;
        if (!loaded) continue;
        OwnedStream owned(loaded);
        ASSERT_EQ(__kuzGetNumChunks(loaded), c.chunks) << c.what;
        if (c.chunks == 0) continue;
        const Chunk* chunk = reinterpret_cast<const Chunk*>(static_cast<intptr_t>(loaded->chunks));
        EXPECT_EQ(chunk->chunkId, 7);
        EXPECT_EQ(chunk->key[1], c.key) << c.what;
        EXPECT_EQ(std::memcmp(chunk->data, "hi", 2), 0);
    }
}

TEST_F(Images, DamageIsRefusedInBothMedia) {
    OwnedStream stream(BrngMRG32K3A, {5});
    const std::string good = image_of(stream);
    const auto with = [&](size_t offset, std::vector<int> bytes) {
        std::string damaged = good;
        for (size_t i = 0; i < bytes.size(); ++i) damaged[offset + i] = static_cast<char>(bytes[i]);
        return damaged;
    };
    const auto without_state = [&](int32_t id) {
        std::string image = with(12, {0}).substr(0, 24);
        std::memcpy(&image[20], &id, sizeof id);
        return image;
    };
    const struct {
        const char* what;
        std::string image;
        int32_t file, memory;
    } cases[] = {
        {"signature", with(5, {'n'}), StreamStatusBadFile, StreamStatusBadImage},
        {"header size", with(8, {23, 0}), StreamStatusBadFile, StreamStatusBadImage},
        {"state size", with(12, {23}), StreamStatusBadFile, StreamStatusBadImage},
        {"family member", with(20, {1, 0, 0x30}), StreamStatusBadFile, StreamStatusBadImage},
        {"unknown id", with(20, {0, 0, 0, 0x40}), StreamStatusBadFile, StreamStatusBadImage},
        {"zero row", with(20, {0x17, 1, 0, 0}), StreamStatusBadFile, StreamStatusBadImage},
        {"zero row, no state", without_state(0x117), StreamStatusBadFile, StreamStatusBadImage},
        {"beyond the small rows", without_state(281), StreamStatusBadFile, StreamStatusBadImage},
        {"negative id", with(20, {0, 0, 0, 0xFF}), StreamStatusBadFile, StreamStatusBadImage},
        {"negative id, no state", without_state(-1), StreamStatusBadFile, StreamStatusBadImage},
        {"state size of another generator", with(20, {0, 0, 0xD0, 0}), StreamStatusBadFile, StreamStatusBadImage},
        {"negative chunk size", with(16, {1}) + std::string(20, '\0') + std::string(4, '\xFF'), StreamStatusReadFailed,
         StreamStatusReadFailed},
    };
    for (const auto& c : cases) {
        Stream* loaded = stream;
        EXPECT_EQ(load_file(c.image, &loaded), c.file) << c.what;
        EXPECT_EQ(loaded, nullptr) << c.what;
        loaded = stream;
        EXPECT_EQ(__kuzLoadStreamM(&loaded, c.image.data()), c.memory) << c.what;
        EXPECT_EQ(loaded, nullptr) << c.what;
    }
    __kuzAddChunk(stream, 1, nullptr, copy_of("0123456789"), 10);
    const std::string whole = image_of(stream);
    for (size_t length = 0; length < whole.size(); ++length) {
        Stream* loaded = stream;
        ASSERT_EQ(load_file(whole.substr(0, length), &loaded), StreamStatusReadFailed) << length;
        ASSERT_EQ(loaded, nullptr);
    }
    for (int32_t nth = 1; nth <= 3; ++nth) {  // record, data, chunk
        Stream* loaded;
        orv_serv_fail_allocation(nth);
        EXPECT_EQ(load_file(whole, &loaded), StatusNoMemory) << nth;
        EXPECT_EQ(loaded, nullptr);
    }
}

// States that no generator can be in: words at or above a modulus, and those that would stay zero for ever.
TEST_F(Images, StatesThatCannotBe) {
    const uint64_t all = ~uint64_t{0};
    const struct {
        int32_t id;
        size_t offset;  // in the state
        std::vector<uint32_t> words;
        bool sound;
    } cases[] = {
        {BrngMCG31M1, 0, {0}, false},
        {BrngMCG31M1, 0, {0x7FFFFFFE}, true},
        {BrngMCG31M1, 0, {0x7FFFFFFF}, false},
        {BrngMCG31M1, 4, {0}, false},
        {BrngMCG31M1, 4, {1}, true},
        {BrngMCG31M1, 4, {0xFFFFFFFF}, false},
        {BrngMCG59, 0, {0, 0}, false},
        {BrngMCG59, 0, {0, 0x04000000}, true},
        {BrngMCG59, 0, {0, 0x08000000}, false},
        {BrngMCG59, 0, {static_cast<uint32_t>(all), static_cast<uint32_t>(all)}, false},
        {BrngMCG59, 8, {2, 0}, false},
        {BrngMCG59, 8, {1, 0x08000000}, false},
        {BrngMCG59, 8, {1, 0}, true},
        {0, 0, {0}, false},  // ids of the older form
        {3, 0, {0, 0}, false},
        {BrngMRG32K3A, 0, {0, 0, 0}, false},
        {BrngMRG32K3A, 12, {0, 0, 0}, false},
        {BrngMRG32K3A, 8, {4294967087}, false},
        {BrngMRG32K3A, 8, {4294967086}, true},
        {BrngMRG32K3A, 12, {4294944443}, false},
        {BrngMRG32K3A, 20, {4294944442}, true},
        {BrngMT19937, 2496, {624}, true},
        {BrngMT19937, 2496, {625}, false},
        {BrngMT19937, 2496, {0xFFFFFFFF}, false},
        {BrngMT2203 + 6023, 276, {0}, true},
        {BrngMT2203 + 6023, 276, {70}, false},
        {BrngSFMT19937, 2496, {620, 0, 0, 0, 1, 3}, true},
        {BrngSFMT19937, 2496, {622}, false},
        {BrngSFMT19937, 2496, {628}, false},
        {BrngSFMT19937, 2496, {0, 0, 0, 0, 2, 1}, false},
        {BrngSFMT19937, 2496, {0, 0, 0, 0, 0, 4}, false},
        {BrngSFMT19937, 2496, {0, 0, 0, 0, 0xFFFFFFFF, 3}, false},
        {BrngR250, 1000, {249, 102}, true},
        {BrngR250, 1000, {250, 103}, false},
        {BrngR250, 1000, {0, 104}, false},
        {1, 1000, {0xFFFFFFFF, 102}, false},
        {BrngWH, 0, {16770646, 1, 1, 1}, true},
        {BrngWH, 0, {16770647, 1, 1, 1}, false},
        {4, 12, {0}, false},
        {BrngWH + 272, 16, {0}, false},
    };
    for (const auto& c : cases) {
        OwnedStream stream(c.id, {5});
        __kuzAddChunk(stream, 5, nullptr, copy_of("abc"), 3);
        std::string image = image_of(stream);
        std::memcpy(&image[24 + c.offset], c.words.data(), 4 * c.words.size());
        Stream* loaded = stream;
        EXPECT_EQ(load_file(image, &loaded), c.sound ? StatusOk : StreamStatusBadFile) << c.id << " at " << c.offset;
        ASSERT_EQ(loaded == nullptr, !c.sound);
        if (loaded) __kuzDeleteStream(&loaded);
        loaded = stream;
        EXPECT_EQ(__kuzLoadStreamM(&loaded, image.data()), c.sound ? StatusOk : StreamStatusBadImage) << c.id;
        ASSERT_EQ(loaded == nullptr, !c.sound);
        if (loaded) __kuzDeleteStream(&loaded);
    }
}

TEST_F(Images, MoreChunksThanTheHeaderCanCount) {
    OwnedStream stream(BrngMCG31M1, {5});
    for (int32_t i = 0; i < 0xFFFF; ++i) __kuzAddChunk(stream, i, nullptr, copy_of("c"), 1);
    EXPECT_EQ(__kuzSaveStreamF(stream, scratch.c_str(), -1), StatusOk);
    const std::string full = bytes_of(scratch);
    __kuzAddChunk(stream, 0x10000, nullptr, copy_of("c"), 1);
    EXPECT_EQ(__kuzSaveStreamF(stream, scratch.c_str(), -1), StreamStatusWriteFailed);
    EXPECT_EQ(bytes_of(scratch), full) << "the file is not opened";
    const std::string image = image_of(stream);
    EXPECT_EQ(image.substr(16, 2), "\xFF\xFF");
    Stream* loaded;
    ASSERT_EQ(__kuzLoadStreamM(&loaded, image.data()), StatusOk);
    OwnedStream owned(loaded);
    EXPECT_EQ(__kuzGetNumChunks(owned), 0xFFFF);
    EXPECT_NE(__kuzSearchChunk(owned, 0x10000), nullptr) << "those at the head of the list are kept";
    EXPECT_EQ(__kuzSearchChunk(owned, 0), nullptr);
}

TEST_F(Images, FilesThatCannotBe) {
    OwnedStream stream(BrngMCG31M1, {5});
    Stream* loaded = stream;
    const std::string nowhere = scratch + "/no/such";
    EXPECT_EQ(__kuzSaveStreamF(stream, nowhere.c_str(), -1), StreamStatusOpenFailed);
    EXPECT_EQ(__kuzLoadStreamF(&loaded, nowhere.c_str(), -1), StreamStatusOpenFailed);
    EXPECT_EQ(loaded, nullptr);
    loaded = stream;
    orv_serv_fail_allocation(1);
    EXPECT_EQ(__kuzLoadStreamF(&loaded, nowhere.data(), 3), StatusNoMemory);
    EXPECT_EQ(loaded, stream.handle) << "untouched";
    // A last chunk without data counts as unwritten, one before it goes unnoticed; the file is whole all the same.
    __kuzAddChunk(stream, 1, nullptr, copy_of(""), 0);
    EXPECT_EQ(__kuzSaveStreamF(stream, scratch.c_str(), -1), StreamStatusWriteFailed);
    EXPECT_EQ(bytes_of(scratch), image_of(stream));
    __kuzDeleteChunks(stream);
    __kuzAddChunk(stream, 1, nullptr, copy_of("x"), 1);
    __kuzAddChunk(stream, 1, nullptr, copy_of(""), 0);
    EXPECT_EQ(__kuzSaveStreamF(stream, scratch.c_str(), -1), StatusOk);
#ifndef _WIN32
    // Buffered bytes that the device refuses show at the close, a block that exceeds the buffer at its write.
    EXPECT_EQ(__kuzSaveStreamF(stream, "/dev/full", -1), StreamStatusCloseFailed);
#endif
}

// What the fuzzer found worth keeping: every file is refused or gives a stream that works, and nothing is left behind.
TEST_F(Images, Corpus) {
    int files = 0, loaded = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORV_CORPUS)) {
        const std::string bytes = bytes_of(entry.path().string());
        const Trial result = try_image(scratch.c_str(), bytes.data(), bytes.size());
        EXPECT_NE(result, Trial::broken) << entry.path();
        loaded += result == Trial::loaded;
        ++files;
    }
    EXPECT_GE(files, 20);
    EXPECT_GE(loaded, 8);
}

}  // namespace
