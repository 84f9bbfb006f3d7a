// The counter-based generators: published blocks, plain computations of others, cuts, jumps and the counter's ends.
#include "streams/streams.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

using namespace orv::test;

namespace {

using Words = std::vector<uint32_t>;
using Block = std::array<uint32_t, 4>;

// ---- Plain computations ----------------------------------------------------------------------------------------------

Block plain_philox(Block c, const uint32_t* key) {
    uint32_t k0 = key[0], k1 = key[1];
    for (int round = 0; round < 10; ++round) {
        const uint64_t p0 = uint64_t{0xD2511F53} * c[0], p1 = uint64_t{0xCD9E8D57} * c[2];
        c = {static_cast<uint32_t>(p1 >> 32) ^ c[1] ^ k0, static_cast<uint32_t>(p1),
             static_cast<uint32_t>(p0 >> 32) ^ c[3] ^ k1, static_cast<uint32_t>(p0)};
        k0 += 0x9E3779B9;
        k1 += 0xBB67AE85;
    }
    return c;
}

// Multiplication in AES' field of 256 elements, and its substitution: the inverse, then an affine map over the bits.
uint8_t times(uint8_t a, uint8_t b) {
    unsigned product = 0;
    for (unsigned x = a; b != 0; b = static_cast<uint8_t>(b >> 1)) {
        if (b & 1) product ^= x;
        x = x << 1 ^ (x & 0x80 ? 0x11B : 0);
    }
    return static_cast<uint8_t>(product);
}
const std::array<uint8_t, 256>& substitution() {
    static const std::array<uint8_t, 256> table = [] {
        std::array<uint8_t, 256> s = {};
        for (unsigned a = 0; a < 256; ++a) {
            uint8_t inverse = 0;
            for (unsigned b = 1; b < 256; ++b)
                if (times(static_cast<uint8_t>(a), static_cast<uint8_t>(b)) == 1) inverse = static_cast<uint8_t>(b);
            unsigned sum = 0x63;
            for (int i = 0; i < 5; ++i) sum ^= (inverse << i | inverse >> (8 - i)) & 0xFF;
            s[a] = static_cast<uint8_t>(sum);
        }
        return s;
    }();
    return table;
}

struct Bytes {
    uint8_t at[16];  // column by column
};
Bytes aes_round(const Bytes& x, const Bytes& key, bool mix) {
    Bytes shifted, result;
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 4; ++row)
            shifted.at[4 * column + row] = substitution()[x.at[4 * ((column + row) % 4) + row]];
    for (int i = 0; i < 16; ++i) {
        const uint8_t* c = shifted.at + i / 4 * 4;
        const auto byte = [&](int row) { return c[(i + row) % 4]; };
        const int mixed = times(byte(0), 2) ^ times(byte(1), 3) ^ byte(2) ^ byte(3);
        result.at[i] = static_cast<uint8_t>((mix ? mixed : shifted.at[i]) ^ key.at[i]);
    }
    return result;
}

Block plain_ars(Block counter, const uint32_t* key) {
    uint64_t k[2];
    Bytes x, round_key;
    std::memcpy(k, key, 16);
    std::memcpy(&x, counter.data(), 16);
    std::memcpy(&round_key, k, 16);
    for (int i = 0; i < 16; ++i) x.at[i] ^= round_key.at[i];
    for (int round = 1; round <= 5; ++round) {
        k[0] += 0x9E3779B97F4A7C15;
        k[1] += 0xBB67AE8584CAA73B;
        std::memcpy(&round_key, k, 16);
        x = aes_round(x, round_key, round < 5);
    }
    Block result;
    std::memcpy(result.data(), &x, 16);
    return result;
}

// The words of a seed's sequence from word `first` on.
Words plain(int32_t id, Words seed, uint64_t first, size_t n) {
    const size_t key_words = id == BrngARS5 ? 4 : 2;
    seed.resize(std::max<size_t>(seed.size(), 8));
    Words result;
    for (uint64_t i = first; i < first + n; ++i) {
        uint64_t low = seed[key_words] | uint64_t{seed[key_words + 1]} << 32;
        uint64_t high = seed[key_words + 2] | uint64_t{seed[key_words + 3]} << 32;
        low += i / 4;
        high += low < i / 4;
        const Block counter = {static_cast<uint32_t>(low), static_cast<uint32_t>(low >> 32),
                               static_cast<uint32_t>(high), static_cast<uint32_t>(high >> 32)};
        result.push_back((id == BrngARS5 ? plain_ars : plain_philox)(counter, seed.data())[i % 4]);
    }
    return result;
}

Words drawn(Stream* stream, int32_t n) {
    const std::vector<uint64_t> wide = draw(stream, n);
    return {wide.begin(), wide.end()};
}

struct CounterBased : testing::TestWithParam<int32_t> {
    void SetUp() override {
        if (GetParam() == BrngARS5 && !__kuzCPUisAES()) GTEST_SKIP() << "this processor has no AES";
    }
    int32_t id = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, CounterBased, testing::Values(BrngPHILOX4X32X10 + 0, BrngARS5 + 0),
                         [](const auto& chosen) { return chosen.param == BrngARS5 ? "ARS5" : "PHILOX4X32X10"; });

// ---- Numbers ---------------------------------------------------------------------------------------------------------

// The known answers that the generator's authors publish; the counter comes behind the key in the seed.
TEST(Published, PhiloxBlocks) {
    const struct {
        Words seed;
        Words block;
    } cases[] = {
        {{0, 0, 0, 0, 0, 0}, {0x6627E8D5, 0xE169C58D, 0xBC57AC4C, 0x9B00DBD8}},
        {Words(6, 0xFFFFFFFF), {0x408F276D, 0x41C83B0E, 0xA20BC7C6, 0x6D5451FD}},
        {{0xA4093822, 0x299F31D0, 0x243F6A88, 0x85A308D3, 0x13198A2E, 0x03707344},
         {0xD16CFE09, 0x94FDCCEB, 0x5001E420, 0x24126EA1}},
    };
    for (const auto& c : cases) {
        OwnedStream stream(BrngPHILOX4X32X10, c.seed);
        EXPECT_EQ(drawn(stream, 4), c.block);
    }
}

// FIPS 197, appendix B: the first round of its example, after which AES has no more secrets for the plain rounds.
TEST(Published, AesRound) {
    const Bytes start = {
        {0x19, 0x3D, 0xE3, 0xBE, 0xA0, 0xF4, 0xE2, 0x2B, 0x9A, 0xC6, 0x8D, 0x2A, 0xE9, 0xF8, 0x48, 0x08}};
    const Bytes key = {
        {0xA0, 0xFA, 0xFE, 0x17, 0x88, 0x54, 0x2C, 0xB1, 0x23, 0xA3, 0x39, 0x39, 0x2A, 0x6C, 0x76, 0x05}};
    const Bytes after = {
        {0xA4, 0x9C, 0x7F, 0xF2, 0x68, 0x9F, 0x35, 0x2B, 0x6B, 0x5B, 0xEA, 0x43, 0x02, 0x6A, 0x50, 0x49}};
    const Bytes result = aes_round(start, key, true);
    EXPECT_EQ(std::memcmp(&result, &after, sizeof after), 0);
}

// Seeds short and long, counters about to carry or to wrap.
const Words seeds[] = {
    {},
    {77},
    {1, 2, 3},
    {1, 2, 0xFFFFFFFE, 4, 5, 0xFFFFFFFF, 7, 8, 9},
    {1, 2, 3, 4, 0xFFFFFFFD, 0xFFFFFFFF, 0xFFFFFFFF, 8},
    {9, 8, 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
    Words(8, 0xFFFFFFFF),
};

TEST_P(CounterBased, WordsAreThoseOfThePlainComputation) {
    for (const Words& seed : seeds) {
        OwnedStream stream(id, seed);
        const int32_t state_words = 1 + 4 + 4 + (id == BrngARS5 ? 4 : 2);
        Words state(static_cast<size_t>(state_words));
        std::memcpy(state.data(), stream.handle + 1, 4 * state.size());
        for (size_t i = 0; i < state.size(); ++i)
            EXPECT_EQ(state[i], i + 5 < state.size() && i < seed.size() ? seed[i] : 0u) << i;
        EXPECT_EQ(drawn(stream, 203), plain(id, seed, 0, 203)) << seed.size();
    }
}

TEST_P(CounterBased, CallsCutAnywhereAndNumbersOfEveryType) {
    const BrngProperties& generator = __RegBrngsNew[(id >> 20) - 1];
    std::mt19937 dice(5);
    const double a = -3, b = 1.5;
    for (const Words& seed : seeds) {
        OwnedStream words(id, seed), doubles(id, seed), floats(id, seed);
        const Words expected = plain(id, seed, 0, 600);
        for (size_t at = 0; at < 560;) {
            const int32_t n = static_cast<int32_t>(dice() % 40);
            std::vector<double> d(static_cast<size_t>(n) + 1, 99);
            std::vector<float> s(static_cast<size_t>(n) + 1, 99);
            const Words i = drawn(words, n);
            ASSERT_EQ(generator.dBRng(doubles, n, d.data(), a, b), StatusOk);
            ASSERT_EQ(generator.sBRng(floats, n, s.data(), static_cast<float>(a), static_cast<float>(b)), StatusOk);
            ASSERT_TRUE(d.back() == 99 && s.back() == 99);
            for (size_t k = 0; k < i.size(); ++k, ++at) {
                ASSERT_EQ(i[k], expected[at]) << at;
                const int32_t x = static_cast<int32_t>(expected[at]);
                const double product = x * ((b - a) * 0x1p-32);
                ASSERT_EQ(d[k], product + (a + b) * 0.5) << at;
                const float single = static_cast<float>(x) * static_cast<float>((b - a) * 0x1p-32);
                ASSERT_EQ(s[k], single + static_cast<float>((a + b) * 0.5)) << at;
            }
        }
    }
}

// ---- Jumps -----------------------------------------------------------------------------------------------------------

TEST_P(CounterBased, SkipsFromEveryPlaceInABlock) {
    for (const Words& seed : seeds)
        for (int32_t drawn_before = 0; drawn_before < 8; ++drawn_before)
            for (int32_t skip = 0; skip < 14; ++skip) {
                OwnedStream skipped(id, seed), walked(id, seed);
                draw(skipped, drawn_before);
                draw(walked, drawn_before + skip);
                ASSERT_EQ(__kuzSkipAheadStream(skipped, static_cast<uint64_t>(skip)), StatusOk);
                ASSERT_EQ(drawn(skipped, 9), drawn(walked, 9)) << drawn_before << " " << skip;
            }
}

TEST_P(CounterBased, LongSkips) {
    // What has been drawn before, the count, and what it adds to the counter beyond whole blocks: (block, word in it).
    const uint64_t all = ~uint64_t{0};
    const struct {
        int32_t before;
        std::vector<uint64_t> count;
        Words counter;  // of the next word's block, from a counter of zero
        int32_t word;
    } cases[] = {
        {0, {all}, {0xFFFFFFFF, 0x3FFFFFFF, 0, 0}, 3},
        {1, {all}, {0, 0x40000000, 0, 0}, 0},
        {0, {all, 1}, {0xFFFFFFFF, 0x7FFFFFFF, 0, 0}, 3},
        {2, {all, 1, 0, 0}, {0, 0x80000000, 0, 0}, 1},
        {3, {0, 1}, {0, 0x40000000, 0, 0}, 3},
        {0, {6, 0, 1}, {1, 0, 0, 0x40000000}, 2},
        {0, {all, all, 3}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}, 3},
        {1, {all, all, 3}, {0, 0, 0, 0}, 0},
        {0, {5, 0, 4, 77}, {1, 0, 0, 0}, 1},  // beyond 2^130 and beyond three words
        {0, {0, 0, 0, 1}, {0, 0, 0, 0}, 0},
    };
    for (const auto& c : cases) {
        Words seed = {11, 12, 13, 14, 0, 0, 0, 0};
        if (id == BrngPHILOX4X32X10) seed = {11, 12, 0, 0, 0, 0};
        OwnedStream stream(id, seed);
        draw(stream, c.before);
        ASSERT_EQ(__kuzSkipAheadStreamEx(stream, static_cast<int32_t>(c.count.size()), c.count.data()), StatusOk);
        Words there(seed.begin(), seed.end() - 4);
        there.insert(there.end(), c.counter.begin(), c.counter.end());
        EXPECT_EQ(drawn(stream, 10), plain(id, there, static_cast<uint64_t>(c.word), 10)) << c.count.size();
    }
}

// The last block stands in the buffer and the counter behind it, after a jump as after a draw.
TEST_P(CounterBased, AJumpLeavesTheStateOfADraw) {
    for (int32_t n = 5; n < 9; ++n) {
        OwnedStream skipped(id, {3}), walked(id, {3});
        __kuzSkipAheadStream(skipped, static_cast<uint64_t>(n));
        draw(walked, n);
        const int32_t counter_at = id == BrngARS5 ? 16 : 8;
        const char* a = reinterpret_cast<const char*>(skipped.handle + 1) + counter_at;
        const char* b = reinterpret_cast<const char*>(walked.handle + 1) + counter_at;
        // A draw to the end of a block leaves the buffer alone, and nothing buffered.
        EXPECT_EQ(std::memcmp(a, b, n % 4 == 0 ? 20 : 36), 0) << n;
    }
}

// ---- The hardware source ---------------------------------------------------------------------------------------------

TEST(Trng, SeedsAndNumbers) {
    const struct {
        Words seed;
        uint32_t retries;
    } cases[] = {{{}, 10}, {{5}, 10}, {{5, 3}, 3}, {{5, 0}, 10}, {{5, 0xFFFFFFFF, 1}, 0xFFFFFFFF}};
    for (const auto& c : cases) {
        OwnedStream stream(BrngTRNG, c.seed);
        const uint32_t* state = reinterpret_cast<const uint32_t*>(stream.handle + 1);
        EXPECT_EQ(state[0], 0u);
        EXPECT_EQ(state[1], c.retries);
    }
    OwnedStream stream(BrngTRNG, {1});
    if (!__kuzCPUisRDRAND()) GTEST_SKIP() << "this processor has no RDRAND";
    for (const int32_t n : {0, 1, 2, 7, 1000}) {
        const size_t count = static_cast<size_t>(n);
        Words words(count + 1, 99);
        std::vector<double> d(count + 1, 99);
        std::vector<float> s(count + 1, 99);
        ASSERT_EQ(__kuziBRngTRNG(stream, n, words.data()), StatusOk);
        ASSERT_EQ(__kuzdBRngTRNG(stream, n, d.data(), 2, 5), StatusOk);
        ASSERT_EQ(__kuzsBRngTRNG(stream, n, s.data(), 2, 5), StatusOk);
        EXPECT_TRUE(words.back() == 99 && d.back() == 99 && s.back() == 99);
        double sum = 0, sum_s = 0;
        for (size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(d[i] >= 2 && d[i] <= 5 && s[i] >= 2 && s[i] <= 5);
            sum += d[i];
            sum_s += s[i];
        }
        if (n < 1000) continue;
        // Six standard deviations of a mean of 1000, and no word twice as often as chance could have it.
        const double wide = 6 * 3 / std::sqrt(12.0 * n);
        EXPECT_NEAR(sum / n, 3.5, wide);
        EXPECT_NEAR(sum_s / n, 3.5, wide);
        std::sort(words.begin(), words.end());
        EXPECT_GE(std::unique(words.begin(), words.end()) - words.begin(), n - 5);
    }
}

}  // namespace
