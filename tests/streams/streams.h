// Streams for tests: made from seed words, deleted at the end of their scope.
#pragma once

#include <orv/random.h>

#include <gtest/gtest.h>

#include <vector>

namespace orv::test {

struct OwnedStream {
    OwnedStream(int32_t id, const std::vector<uint32_t>& seed) {
        EXPECT_EQ(__kuzNewStreamEx(&handle, id, static_cast<int32_t>(seed.size()), seed.data()), StatusOk);
    }
    explicit OwnedStream(Stream* taken) : handle(taken) {}
    ~OwnedStream() {
        if (handle) __kuzDeleteStream(&handle);
    }
    OwnedStream(const OwnedStream&) = delete;
    OwnedStream& operator=(const OwnedStream&) = delete;
    operator Stream*() const { return handle; }

    Stream* handle = nullptr;
};

// The next n raw words, widened.
inline std::vector<uint64_t> draw(Stream* stream, int32_t n) {
    int32_t row, member;
    const BrngProperties& generator = __kuzGetBrngBaseOffset(stream->brngId, &row, &member)[row];
    std::vector<uint64_t> words(static_cast<size_t>(n));
    if (generator.wordBytes == 8) {
        EXPECT_EQ(generator.iBRng(stream, n, words.data()), StatusOk);
        return words;
    }
    std::vector<uint32_t> narrow(static_cast<size_t>(n));
    EXPECT_EQ(generator.iBRng(stream, n, narrow.data()), StatusOk);
    words.assign(narrow.begin(), narrow.end());
    return words;
}

inline constexpr int32_t present[] = {BrngMCG31M1, BrngMCG59, BrngMRG32K3A};

}  // namespace orv::test
