// Quasi-random sequences from their definition: the point with index i is the sum over GF(2) of the direction numbers at
// the ones of the Gray code of i.
#pragma once

#include "streams/streams.h"

#include <random>

namespace orv::test {

using Words = std::vector<uint32_t>;

struct PlainSequence {
    std::vector<Words> numbers;  // 32 of each coordinate

    size_t dimension() const { return numbers.size(); }
    uint32_t coordinate(uint32_t index, size_t j) const {
        uint32_t sum = 0;
        for (uint32_t code = index ^ index >> 1, k = 0; k < 32; ++k)
            if (code >> k & 1) sum ^= numbers[j][k];
        return sum;
    }
    // `n` words of the flat sequence from word `first` on; the first point has the index 1.
    Words words(uint64_t first, size_t n) const {
        Words result;
        for (uint64_t i = first; i < first + n; ++i)
            result.push_back(coordinate(static_cast<uint32_t>(i / dimension()) + 1, i % dimension()));
        return result;
    }
};

// Any numbers: what the kernels do does not depend on whether they make a good sequence.
inline PlainSequence random_numbers(size_t dimension, uint32_t seed) {
    std::mt19937 dice(seed);
    PlainSequence result;
    for (size_t j = 0; j < dimension; ++j) {
        Words numbers;
        for (int k = 0; k < 32; ++k) numbers.push_back(dice());
        result.numbers.push_back(numbers);
    }
    return result;
}

// The seed words that hand direction numbers over.
inline Words block_of(const PlainSequence& sequence) {
    Words block = {static_cast<uint32_t>(sequence.dimension()), 1, 4};
    for (const Words& numbers : sequence.numbers) block.insert(block.end(), numbers.begin(), numbers.end());
    return block;
}

inline Words drawn(Stream* stream, int32_t n) {
    const std::vector<uint64_t> wide = draw(stream, n);
    return {wide.begin(), wide.end()};
}

// The direction numbers of a stream that has handed out nothing, from its points 2^k - 1 and 2^k, between which number k
// is added.
inline PlainSequence numbers_of(int32_t id, const Words& seed, size_t dimension) {
    PlainSequence result;
    result.numbers.assign(dimension, Words(32));
    for (uint32_t k = 0; k < 32; ++k) {
        OwnedStream stream(id, seed);
        Words before(dimension);
        if (k > 0) {
            const uint64_t to = ((uint64_t{1} << k) - 2) * dimension;
            EXPECT_EQ(__kuzSkipAheadStream(stream, to), StatusOk);
            before = drawn(stream, static_cast<int32_t>(dimension));
        }
        const Words after = drawn(stream, static_cast<int32_t>(dimension));
        for (size_t j = 0; j < dimension; ++j) result.numbers[j][k] = before[j] ^ after[j];
    }
    return result;
}

}  // namespace orv::test
