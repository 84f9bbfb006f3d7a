// Processors without AES or RDRAND, and sources of random words that fail: another processor stands in this program in the
// place of the platform layer's.
#include "platform/platform.h"
#include "services/test_switches.h"
#include "streams/streams.h"

#include <orv/services.h>

#include <cstdio>

namespace {

orv::platform::ProcessorFeatures features = {true, true};
int32_t failures = 0;     // before the next word is ready; negative: none ever is
int32_t last_ready = -1;  // the attempt after which none is; negative: there is no such
int32_t attempts = 0;
uint32_t next_word = 0;

}  // namespace

namespace orv::platform {

ProcessorFeatures processor_features() { return features; }

bool hardware_word(uint32_t* word) {
    ++attempts;
    if (last_ready >= 0 && attempts > last_ready) return false;
    if (failures != 0) {
        if (failures > 0) --failures;
        return false;
    }
    *word = next_word++;
    return true;
}

}  // namespace orv::platform

namespace {

using namespace orv::test;

struct Processor : testing::Test {
    ~Processor() override {
        features = {true, true};
        failures = attempts = 0;
        last_ready = -1;
        next_word = 0;
    }
};

template <class Number>
std::vector<Number> five() {
    return std::vector<Number>(5, Number(99));
}

TEST_F(Processor, WithoutTheInstructions) {
    features = {false, false};
    EXPECT_EQ(__kuzCPUisRDRAND(), 0);
    EXPECT_EQ(__kuzCPUisAES(), 0);
    for (const int32_t id : {BrngARS5 + 0, BrngTRNG + 0}) {
        const int32_t status = id == BrngARS5 ? ArsStatusNotSupported : TrngStatusNotSupported;
        OwnedStream stream(id, {5, 6});  // seeding asks for nothing
        const std::vector<char> before(reinterpret_cast<char*>(stream.handle),
                                       reinterpret_cast<char*>(stream.handle) + generator_of(stream).stateBytes);
        auto words = five<uint32_t>();
        auto d = five<double>();
        auto s = five<float>();
        EXPECT_EQ(generator_of(stream).iBRng(stream, 5, words.data()), status);
        EXPECT_EQ(generator_of(stream).dBRng(stream, 5, d.data(), 0, 1), status);
        EXPECT_EQ(generator_of(stream).sBRng(stream, 5, s.data(), 0, 1), status);
        EXPECT_TRUE(words == five<uint32_t>() && d == five<double>() && s == five<float>());
        const uint64_t count[] = {5, 0};
        EXPECT_EQ(__kuzSkipAheadStream(stream, 5), id == BrngARS5 ? status : BrngStatusNoSkipAhead);
        EXPECT_EQ(__kuzSkipAheadStreamEx(stream, 2, count), id == BrngARS5 ? status : BrngStatusNoSkipAheadEx);
        EXPECT_EQ(std::memcmp(before.data(), stream.handle, before.size()), 0);
    }
    OwnedStream philox(BrngPHILOX4X32X10, {1});
    draw(philox, 5);
}

TEST_F(Processor, LoadersAskToo) {
    const int32_t blocks = orv_serv_live_blocks();
    for (const int32_t id : {BrngARS5 + 0, BrngTRNG + 0}) {
        OwnedStream stream(id, {5, 6});
        std::vector<char> image(static_cast<size_t>(__kuzGetStreamSize(stream)));
        __kuzSaveStreamM(stream, image.data());
        char name[L_tmpnam];
        ASSERT_NE(std::tmpnam(name), nullptr);
        ASSERT_EQ(__kuzSaveStreamF(stream, name, -1), StatusOk);
        for (const bool present : {true, false}) {
            features = {present, present};
            const int32_t status = present ? StatusOk : id == BrngARS5 ? ArsStatusNotSupported : TrngStatusNotSupported;
            Stream* loaded = stream;
            EXPECT_EQ(__kuzLoadStreamM(&loaded, image.data()), status);
            EXPECT_EQ(loaded != nullptr, present);
            if (loaded) __kuzDeleteStream(&loaded);
            loaded = stream;
            EXPECT_EQ(__kuzLoadStreamF(&loaded, name, -1), status);
            EXPECT_EQ(loaded != nullptr, present);
            if (loaded) __kuzDeleteStream(&loaded);
        }
        features = {true, true};
        std::remove(name);
    }
    EXPECT_EQ(orv_serv_live_blocks(), blocks);
}

TEST_F(Processor, WordsInTheirOrder) {
    OwnedStream stream(BrngTRNG, {});
    next_word = 0xFFFFFFFD;
    uint32_t words[3];
    ASSERT_EQ(__kuziBRngTRNG(stream, 3, words), StatusOk);
    EXPECT_TRUE(words[0] == 0xFFFFFFFD && words[1] == 0xFFFFFFFE && words[2] == 0xFFFFFFFF);
    EXPECT_EQ(attempts, 3);
    next_word = 0x80000001;
    double d;
    ASSERT_EQ(__kuzdBRngTRNG(stream, 1, &d, -1, 3), StatusOk);
    EXPECT_EQ(d, (0x80000002 * 0x1p32 + 0x80000001) * 0x1p-62 - 1) << "the low word is drawn first";
    next_word = 0xC0000000;
    float s[3];
    ASSERT_EQ(__kuzsBRngTRNG(stream, 3, s, 0, 4), StatusOk);
    EXPECT_TRUE(s[0] == 3 && s[2] == 3) << "a word is counted as unsigned";
}

TEST_F(Processor, RetriesAreCounted) {
    const struct {
        std::vector<uint32_t> seed;
        int32_t failures, status, attempts;  // for one word
    } cases[] = {
        {{5, 3}, 3, StatusOk, 4}, {{5, 3}, 4, TrngStatusRetriesExhausted, 4},
        {{5}, 10, StatusOk, 11},  {{5}, -1, TrngStatusRetriesExhausted, 11},
        {{0, 1}, 1, StatusOk, 2},
    };
    for (const auto& c : cases) {
        OwnedStream stream(BrngTRNG, c.seed);
        failures = c.failures;
        attempts = 0;
        uint32_t word;
        EXPECT_EQ(__kuziBRngTRNG(stream, 1, &word), c.status) << c.failures;
        EXPECT_EQ(attempts, c.attempts) << c.failures;
    }
}

// What stood before the failure stays; words that are taken together are both taken again.
TEST_F(Processor, AFailureInTheMiddle) {
    OwnedStream stream(BrngTRNG, {0, 2});
    last_ready = 3;
    auto words = five<uint32_t>();
    EXPECT_EQ(__kuziBRngTRNG(stream, 5, words.data()), TrngStatusRetriesExhausted);
    EXPECT_EQ(words, (std::vector<uint32_t>{0, 1, 99, 99, 99}));
    attempts = 0;
    auto d = five<double>();
    EXPECT_EQ(__kuzdBRngTRNG(stream, 5, d.data(), 0, 1), TrngStatusRetriesExhausted);
    EXPECT_TRUE(d[0] != 99 && d[1] == 99);
    EXPECT_EQ(attempts, 2 + 1 + 1 + 1 + 1) << "the first double; the low word of the second, and then three failures";
}

}  // namespace
