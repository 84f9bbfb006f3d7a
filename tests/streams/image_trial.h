// What a loader must stand: any bytes as a stream file. The stream that comes out, if one does, must work, copy, save and
// go away without a trace. Used by the fuzzer and by the test that replays its corpus.
#pragma once

#include "services/test_switches.h"

#include <orv/random.h>
#include <orv/services.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace orv::test {

enum class Trial { refused, loaded, broken };

inline bool write_file(const char* name, const void* bytes, size_t count) {
    FILE* file = std::fopen(name, "wb");
    if (!file) return false;
    const bool written = count == 0 || std::fwrite(bytes, 1, count, file) == count;
    return std::fclose(file) == 0 && written;
}

// Draws, copies, saves to a block of the told size, loads that, and compares what both then draw.
inline bool stream_works(Stream* stream) {
    constexpr int32_t count = 150;
    uint64_t words[2 * count];  // of up to 16 bytes each
    double reals[count];
    if (__kuzGetNumChunks(stream) < 0) return false;
    if (_kuziRngUniformBits(0, stream, 7, words) < 0) return false;
    if (_kuzdRngUniform(0, stream, count, reals, 0.0, 1.0) < 0) return false;
    __kuzSkipAheadStream(stream, 0x123456789ABCDEF0);
    Stream *copy, *loaded = nullptr;
    if (__kuzCopyStream(&copy, stream) != StatusOk) return false;
    std::vector<char> image(static_cast<size_t>(__kuzGetStreamSize(copy)));
    bool works =
        __kuzSaveStreamM(copy, image.data()) == StatusOk && __kuzLoadStreamM(&loaded, image.data()) == StatusOk;
    if (works) {
        uint64_t other[2 * count];
        std::memset(words, 0, sizeof words);
        std::memset(other, 0, sizeof other);
        works = _kuziRngUniformBits(0, stream, count, words) >= 0 &&
                _kuziRngUniformBits(0, loaded, count, other) >= 0 && std::memcmp(words, other, sizeof words) == 0 &&
                __kuzCopyStreamState(copy, loaded) == StatusOk;
        __kuzDeleteStream(&loaded);
    }
    __kuzDeleteStream(&copy);
    return works && copy == nullptr;
}

inline Trial try_image(const char* file_name, const void* bytes, size_t count) {
    const int32_t before = orv_serv_live_blocks();
    // A stream in the same process whose key the image may name.
    static const uint64_t key[2] = {0x1111111111111111, 0x2222222222222222};
    Stream* keyed;
    const uint32_t seed = 1;
    if (__kuzNewStreamEx(&keyed, BrngMCG59, 1, &seed) != StatusOk) return Trial::broken;
    void* table = orv_serv_allocate(16, 128);
    std::memset(table, 7, 16);
    __kuzAddChunk(keyed, 9, key, table, 16);

    Trial result = Trial::refused;
    if (!write_file(file_name, bytes, count)) return Trial::broken;
    Stream* stream = keyed;
    const int32_t status = __kuzLoadStreamF(&stream, file_name, static_cast<int32_t>(std::strlen(file_name)));
    if (status < 0) {
        if (stream != nullptr) result = Trial::broken;
    } else {
        result = stream_works(stream) ? Trial::loaded : Trial::broken;
        __kuzDeleteStream(&stream);
    }
    __kuzDeleteStream(&keyed);
    return orv_serv_live_blocks() == before ? result : Trial::broken;
}

}  // namespace orv::test
