// Streams for tests: made from seed words, deleted at the end of their scope.
#pragma once

#include <orv/random.h>

#include <gtest/gtest.h>

#include <cstring>
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

inline const BrngProperties& generator_of(const Stream* stream) {
    int32_t row, member;
    return __kuzGetBrngBaseOffset(stream->brngId, &row, &member)[row];
}

// The next n raw words in 64-bit pieces, as many as hold a word of the generator: one, or two for 16 bytes.
inline std::vector<uint64_t> draw(Stream* stream, int32_t n) {
    const BrngProperties& generator = generator_of(stream);
    const size_t count = static_cast<size_t>(n), bytes = static_cast<size_t>(generator.wordBytes);
    std::vector<char> raw(count * bytes);
    EXPECT_EQ(generator.iBRng(stream, n, raw.data()), StatusOk);
    const size_t pieces = bytes > 8 ? bytes / 8 : 1, piece_bytes = bytes / pieces;
    std::vector<uint64_t> words(count * pieces);
    for (size_t i = 0; i < words.size(); ++i) std::memcpy(&words[i], &raw[i * piece_bytes], piece_bytes);
    return words;
}

// An array for outputs, one element off a 16-byte boundary, with a sentinel on both sides.
template <class Element>
struct Guarded {
    explicit Guarded(int32_t n) : all(static_cast<size_t>(n) + 2, Element(99)) {}
    Element* data() { return all.data() + 1; }
    bool sentinels_stand() const { return all.front() == Element(99) && all.back() == Element(99); }
    std::vector<Element> all;
};

// Generators that can skip ahead, and those that cannot.
inline constexpr int32_t present[] = {BrngMCG31M1, BrngMCG59,   BrngMRG32K3A, BrngPHILOX4X32X10,
                                      BrngWH + 3,  BrngMT19937, BrngSFMT19937};
inline constexpr int32_t without_skip[] = {BrngR250, BrngMT2203 + 17};

}  // namespace orv::test
