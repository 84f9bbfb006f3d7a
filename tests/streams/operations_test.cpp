// Life of a stream: creation and its refusals, leapfrog, skip-ahead, copies.
#include "services/test_switches.h"
#include "streams/streams.h"

#include <orv/services.h>

#include <cstring>

using namespace orv::test;

extern "C" int32_t orv_test_header_from_c(void);

namespace {

TEST(Creation, RefusesWhatHasNoGenerator) {
    const int32_t blocks = orv_serv_live_blocks();
    const uint32_t seed = 1;
    for (const int32_t id : {BrngIAbstract + 0, BrngDAbstract + 0, BrngSAbstract + 0, BrngIAbstract + 1, BrngWH + 273,
                             BrngMCG59 + 1, 0x1100000, 279, 280, 281, -1, -0x7FFFFFFF}) {
        Stream untouched;
        Stream* stream = &untouched;
        EXPECT_EQ(__kuzNewStreamEx(&stream, id, 1, &seed), BrngStatusBadId) << id;
        EXPECT_EQ(stream, &untouched) << id;
    }
    EXPECT_EQ(orv_serv_live_blocks(), blocks);
}

TEST(Creation, HeaderAndDeletion) {
    Stream* stream;
    const uint32_t seed = 1;
    ASSERT_EQ(__kuzNewStreamEx(&stream, 3, 1, &seed), StatusOk);  // the older id of MCG59
    const Stream expected = {3, 1, 0, 0, 0};
    EXPECT_EQ(std::memcmp(stream, &expected, sizeof expected), 0);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(stream) % 128, 0u);
    EXPECT_EQ(__kuzDeleteStream(&stream), StatusOk);
    EXPECT_EQ(stream, nullptr);

    orv_serv_fail_allocation(1);
    EXPECT_EQ(__kuzNewStreamEx(&stream, BrngMCG31M1, 1, &seed), StatusNoMemory);
    EXPECT_EQ(stream, nullptr);
}

TEST(Headers, ServeC) { EXPECT_EQ(orv_test_header_from_c(), 0); }

int32_t never_called(Stream*, int32_t*, void*, int32_t*, int32_t*, int32_t*) { return 0; }

TEST(Creation, AbstractArguments) {
    Stream* stream;
    uint32_t words[4];
    double doubles[4];
    float floats[4];
    EXPECT_EQ(__kuziNewAbstractStream(&stream, 0, words, never_called), StatusBadAbstractArgs);
    EXPECT_EQ(__kuziNewAbstractStream(&stream, 4, nullptr, never_called), StatusBadAbstractArgs);
    EXPECT_EQ(__kuziNewAbstractStream(&stream, 4, words, nullptr), StatusBadAbstractArgs);
    EXPECT_EQ(__kuzdNewAbstractStream(&stream, 4, doubles, 1.0, 1.0, never_called), StatusBadAbstractArgs);
    EXPECT_EQ(__kuzsNewAbstractStream(&stream, 4, floats, 1.0f, 0.5f, never_called), StatusBadAbstractArgs);
    // Numbers of another type than the ring's.
    const BrngProperties* rows = &__RegBrngsNew[9];
    for (const int32_t status :
         {rows[0].sBRng(nullptr, 1, floats, 0, 1), rows[0].dBRng(nullptr, 1, doubles, 0, 1),
          rows[1].iBRng(nullptr, 1, words), rows[1].sBRng(nullptr, 1, floats, 0, 1), rows[2].iBRng(nullptr, 1, words),
          rows[2].dBRng(nullptr, 1, doubles, 0, 1), __kuzsBRngiAbstract(nullptr, 1, floats, 0, 1),
          __kuzdBRngiAbstract(nullptr, 1, doubles, 0, 1), __kuziBRngdAbstract(nullptr, 1, words),
          __kuzsBRngdAbstract(nullptr, 1, floats, 0, 1), __kuziBRngsAbstract(nullptr, 1, words),
          __kuzdBRngsAbstract(nullptr, 1, doubles, 0, 1)})
        EXPECT_EQ(status, AbstractStatusWrongKernel);
}

TEST(Jumps, WhatAGeneratorCannotDo) {
    const struct {
        int32_t id, leapfrog, skip, skip_ex;
    } cases[] = {
        {BrngMCG31M1, StatusOk, StatusOk, BrngStatusNoSkipAheadEx},
        {BrngMCG59, StatusOk, StatusOk, BrngStatusNoSkipAheadEx},
        {BrngMRG32K3A, BrngStatusNoLeapfrog, StatusOk, StatusOk},
        {BrngARS5, BrngStatusNoLeapfrog, StatusOk, StatusOk},
        {BrngPHILOX4X32X10, BrngStatusNoLeapfrog, StatusOk, StatusOk},
        {BrngWH + 9, StatusOk, StatusOk, BrngStatusNoSkipAheadEx},
        {BrngMT19937, BrngStatusNoLeapfrog, StatusOk, BrngStatusNoSkipAheadEx},
        {BrngSFMT19937, BrngStatusNoLeapfrog, StatusOk, BrngStatusNoSkipAheadEx},
        {BrngMT2203 + 9, BrngStatusNoLeapfrog, BrngStatusNoSkipAhead, BrngStatusNoSkipAheadEx},
        {BrngR250, BrngStatusNoLeapfrog, BrngStatusNoSkipAhead, BrngStatusNoSkipAheadEx},
    };
    for (const auto& c : cases) {
        OwnedStream stream(c.id, {7}), twin(c.id, {7});
        const uint64_t none[] = {0, 0};
        EXPECT_EQ(__kuzLeapfrogStream(stream, 0, -1), BrngStatusBadStreamCount);
        EXPECT_EQ(__kuzLeapfrogStream(stream, 0, 1), c.leapfrog);
        EXPECT_EQ(__kuzSkipAheadStream(stream, 0), c.skip);
        EXPECT_EQ(__kuzSkipAheadStreamEx(stream, 2, none), c.skip_ex);
        EXPECT_EQ(__RegBrngsNew[(c.id >> 20) - 1].initStream(4, stream, 0, none), StatusBadMethod);
        EXPECT_EQ(draw(stream, 50), draw(twin, 50)) << "none of this moves a stream";
    }
}

TEST(Jumps, SkippingIsGenerating) {
    for (const int32_t id : present)
        for (const int32_t n : {1, 2, 127, 1000, 4099}) {
            OwnedStream skipped(id, {99}), walked(id, {99});
            ASSERT_EQ(__kuzSkipAheadStream(skipped, static_cast<uint64_t>(n)), StatusOk);
            draw(walked, n);
            EXPECT_EQ(draw(skipped, 20), draw(walked, 20)) << id << " " << n;
        }
}

// Two jumps of halves make the whole; the halves of the long counts cross 32- and 64-bit boundaries.
TEST(Jumps, LongSkipsAdd) {
    for (const int32_t id : present) {
        OwnedStream whole(id, {5}), parts(id, {5});
        __kuzSkipAheadStream(whole, 0xFEDCBA9876543210);
        __kuzSkipAheadStream(parts, 0xFEDCBA9800000000);
        __kuzSkipAheadStream(parts, 0x0000000076543210);
        EXPECT_EQ(draw(whole, 20), draw(parts, 20)) << id;
    }
    const struct {
        std::vector<uint64_t> sum, first, second;
    } cases[] = {
        {{1000, 0}, {999}, {1}},
        {{5, 1}, {~uint64_t{0}}, {6}},
        {{0, 0, 1}, {~uint64_t{0}, ~uint64_t{0}}, {1}},
        {{3, 4, 5, 1}, {3, 4, 5}, {0, 0, 0, 1}},
        {{3, 4, 5, 2}, {3, 4, 5, 1}, {0, 0, 0, 1}},  // beyond 2^193, by general powers
        {{9, 0, 0, 0, 1}, {9, 0, 0, ~uint64_t{0}}, {0, 0, 0, 1}},
    };
    for (const auto& c : cases) {
        OwnedStream whole(BrngMRG32K3A, {1, 2, 3, 4, 5, 6}), parts(BrngMRG32K3A, {1, 2, 3, 4, 5, 6});
        __kuzSkipAheadStreamEx(whole, static_cast<int32_t>(c.sum.size()), c.sum.data());
        __kuzSkipAheadStreamEx(parts, static_cast<int32_t>(c.first.size()), c.first.data());
        __kuzSkipAheadStreamEx(parts, static_cast<int32_t>(c.second.size()), c.second.data());
        EXPECT_EQ(draw(whole, 20), draw(parts, 20)) << c.sum.size();
    }
}

TEST(Jumps, LeapfrogDealsOutTheSequence) {
    for (const int32_t id : {BrngMCG31M1, BrngMCG59})
        for (const int32_t streams : {1, 3, 8}) {
            OwnedStream twin(id, {4711});
            const std::vector<uint64_t> all = draw(twin, streams * 100);
            for (int32_t k = 0; k < streams; ++k) {
                OwnedStream one(id, {4711});
                ASSERT_EQ(__kuzLeapfrogStream(one, k, streams), StatusOk);
                const std::vector<uint64_t> own = draw(one, 100);
                for (int32_t i = 0; i < 100; ++i)
                    ASSERT_EQ(own[i], all[i * streams + k]) << id << " " << k << " of " << streams;
            }
        }
}

TEST(Copies, AreIndependentAndEqual) {
    for (const int32_t id : present) {
        OwnedStream source(id, {3}), other(id, {8});
        draw(source, 77);
        Stream* handle;
        ASSERT_EQ(__kuzCopyStream(&handle, source), StatusOk);
        OwnedStream copy(handle);
        ASSERT_EQ(__kuzCopyStreamState(source, source), StatusOk);
        const std::vector<uint64_t> before = draw(source, 303);
        EXPECT_EQ(draw(copy, 303), before);
        // The part of a state that a seed sets; of PHILOX4X32X10 not the whole buffer, which is empty after 380 words.
        ASSERT_EQ(__kuzCopyStreamState(other, source), StatusOk);
        EXPECT_EQ(draw(other, 300), draw(source, 300));
    }
}

TEST(Copies, StateKeepsTheMultiplierOfTheDestination) {
    OwnedStream third(BrngMCG59, {3}), whole(BrngMCG59, {8});
    __kuzLeapfrogStream(third, 0, 3);
    const std::vector<uint64_t> expected = draw(whole, 31);
    OwnedStream source(BrngMCG59, {8});
    ASSERT_EQ(__kuzCopyStreamState(third, source), StatusOk);
    const std::vector<uint64_t> every_third = draw(third, 10);
    for (size_t i = 0; i < every_third.size(); ++i) EXPECT_EQ(every_third[i], expected[3 * i]);
}

}  // namespace
