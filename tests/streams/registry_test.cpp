// The registry: rows in their places, the arithmetic of ids, registration. The tests that register run after those that
// count, in one program of their own, since a registration lasts.
#include <orv/random.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

int32_t accept_any(int32_t, Stream*, int32_t, const void*) { return StatusOk; }
int32_t no_floats(Stream*, int32_t, float*, float, float) { return StatusOk; }
int32_t no_doubles(Stream*, int32_t, double*, double, double) { return StatusOk; }
int32_t no_words(Stream*, int32_t, void*) { return StatusOk; }

constexpr BrngProperties least = {0, 1, 0, 4, 1, accept_any, no_floats, no_doubles, no_words};

struct Row {
    const char* name;
    int32_t id, small_id, stateBytes, seedCount, includesZero, wordBytes, bitCount, members;
};
const Row builtin[] = {
    {"MCG31M1", BrngMCG31M1, 0, 24, 1, 0, 4, 31, 1},
    {"R250", BrngR250, 1, 1024, 252, 1, 4, 32, 1},
    {"MRG32K3A", BrngMRG32K3A, 2, 40, 6, 1, 4, 32, 1},
    {"MCG59", BrngMCG59, 3, 32, 1, 0, 8, 59, 1},
    {"WH", BrngWH, 4, 48, 4, 1, 16, 24, 273},
    {"Sobol", BrngSobol, 277, 11712, 2604, 0, 4, 32, 1},
    {"Niederr", BrngNiederr, 278, 84288, 10498, 0, 4, 32, 1},
    {"MT19937", BrngMT19937, -1, 2520, 625, 1, 4, 32, 1},
    {"MT2203", BrngMT2203, -1, 312, 70, 1, 4, 32, 6024},
    {"iAbstract", BrngIAbstract, -1, 40, 0, 1, 4, 32, 1},
    {"dAbstract", BrngDAbstract, -1, 56, 0, 1, 4, 32, 1},
    {"sAbstract", BrngSAbstract, -1, 48, 0, 1, 4, 32, 1},
    {"SFMT19937", BrngSFMT19937, -1, 2536, 625, 1, 4, 32, 1},
    {"TRNG", BrngTRNG, -1, 24, 1, 0, 4, 32, 1},
    {"ARS5", BrngARS5, -1, 72, 8, 1, 4, 32, 1},
    {"PHILOX4X32X10", BrngPHILOX4X32X10, -1, 64, 8, 1, 4, 32, 1},
};

int32_t validity(int32_t id) {
    int32_t row, member;
    const BrngProperties* table = __kuzGetBrngBaseOffset(id, &row, &member);
    return __kuzIsBrngValid(table, row, member);
}

TEST(Registry, BuiltInRowsHoldTheirFigures) {
    ASSERT_EQ(__kuzGetNumRegBrngs(), 16);
    for (const Row& row : builtin) {
        BrngProperties p;
        ASSERT_EQ(__kuzGetBrngProperties(row.id, &p), StatusOk) << row.name;
        EXPECT_EQ(&__RegBrngsNew[(row.id >> 20) - 1].stateBytes - &__RegBrngsNew[0].stateBytes,
                  9 * ((row.id >> 20) - 1));
        const int32_t figures[] = {p.stateBytes, p.seedCount, p.includesZero, p.wordBytes, p.bitCount};
        const int32_t expected[] = {row.stateBytes, row.seedCount, row.includesZero, row.wordBytes, row.bitCount};
        EXPECT_EQ(std::memcmp(figures, expected, sizeof figures), 0) << row.name;
        EXPECT_EQ(validity(row.id + row.members - 1), StatusOk) << row.name;
        EXPECT_EQ(validity(row.id + row.members), BrngStatusBadId) << row.name;
        if (row.small_id < 0) continue;
        BrngProperties small;
        ASSERT_EQ(__kuzGetBrngProperties(row.small_id, &small), StatusOk) << row.name;
        EXPECT_EQ(std::memcmp(&small, &p, sizeof p), 0) << row.name;
    }
    EXPECT_EQ(std::memcmp(&__RegBrngs[276], &__RegBrngs[4], sizeof(BrngProperties)), 0);
    for (int32_t row = 279; row < 512; ++row)
        for (const char* byte = reinterpret_cast<const char*>(&__RegBrngs[row]);
             byte < reinterpret_cast<const char*>(&__RegBrngs[row + 1]); ++byte)
            ASSERT_EQ(*byte, 0) << row;
}

TEST(Registry, IdsResolve) {
    const struct {
        int32_t id, row, member, valid;
        bool main;
    } cases[] = {
        {0x900011, 8, 17, StatusOk, true},
        {0x500003, 4, 3, StatusOk, true},
        {3, 3, 0, StatusOk, false},
        {4, 4, 0, StatusOk, false},
        {276, 4, 272, StatusOk, false},
        {277, 277, 0, StatusOk, false},
        {280, 280, 0, StatusOk, false},
        {281, 281, 0, BrngStatusBadId, false},
        {-1, -1, 0, StatusOk, false},
        {0xFFFFF, 0xFFFFF, 0, BrngStatusBadId, false},
        {0x1100000, 16, 0, BrngStatusBadId, true},
        {0x7FFFFFFF, 2046, 0xFFFFF, BrngStatusBadId, true},
    };
    for (const auto& c : cases) {
        int32_t row, member;
        const BrngProperties* table = __kuzGetBrngBaseOffset(c.id, &row, &member);
        EXPECT_EQ(table, c.main ? __RegBrngsNew : __RegBrngs) << c.id;
        EXPECT_EQ(row, c.row) << c.id;
        EXPECT_EQ(member, c.member) << c.id;
        EXPECT_EQ(validity(c.id), c.valid) << c.id;
    }
    BrngProperties untouched = least;
    EXPECT_EQ(__kuzGetBrngProperties(281, &untouched), BrngStatusBadId);
    EXPECT_EQ(__kuzGetBrngProperties(-1, &untouched), BrngStatusBadId);
    EXPECT_EQ(std::memcmp(&untouched, &least, sizeof least), 0);
}

// The generators of the registry that this build does not have. The list may only become shorter.
TEST(Registry, MissingGeneratorsAreRefused) {
    const std::vector<std::string> missing;
    std::vector<std::string> found;
    for (const Row& row : builtin)
        if (!__RegBrngsNew[(row.id >> 20) - 1].initStream) found.push_back(row.name);
    EXPECT_EQ(found, missing);
    for (const Row& row : builtin) {
        if (row.seedCount == 0) continue;  // abstract ones have creators of their own
        Stream* stream = nullptr;
        const uint32_t seed = 1;
        const int32_t status = __kuzNewStreamEx(&stream, row.id, 1, &seed);
        if (status == StatusOk) {
            EXPECT_EQ(__kuzGetStreamStateBrng(stream), row.id);
            __kuzDeleteStream(&stream);
        } else {
            EXPECT_EQ(status, BrngStatusBadId) << row.name;
            EXPECT_EQ(stream, nullptr) << row.name;
        }
    }
}

TEST(Registration, FirstFailingTestDecides) {
    const struct {
        int32_t stateBytes, seedCount, wordBytes, bitCount, status;
    } cases[] = {
        {-1, 0, 12, 0, BrngStatusBadStateBytes},
        {0, 0, 12, 0, BrngStatusBadWordBytes},
        {0, 0, 16, 0, BrngStatusBadSeedCount},
        {0, 1, 8, 0, BrngStatusBadBitCount},
    };
    for (const auto& c : cases) {
        const BrngProperties row = {c.stateBytes, c.seedCount, 0,       c.wordBytes, c.bitCount,
                                    nullptr,      nullptr,     nullptr, nullptr};
        EXPECT_EQ(__kuzRegisterBrng(&row), c.status);
    }
    for (int slot = 0; slot < 4; ++slot) {
        BrngProperties row = least;
        if (slot == 0) row.initStream = nullptr;
        if (slot == 1) row.sBRng = nullptr;
        if (slot == 2) row.dBRng = nullptr;
        if (slot == 3) row.iBRng = nullptr;
        EXPECT_EQ(__kuzRegisterBrng(&row), StatusNullFunction);
    }
    EXPECT_EQ(__kuzGetNumRegBrngs(), 16);
}

TEST(Registration, RowsFillUpToTheLastAndNoFurther) {
    BrngProperties row = least;
    row.includesZero = -7;
    ASSERT_EQ(__kuzRegisterBrng(&row), 0x1100000);
    EXPECT_EQ(__kuzGetNumRegBrngs(), 17);
    BrngProperties back;
    ASSERT_EQ(__kuzGetBrngProperties(0x1100000, &back), StatusOk);
    EXPECT_EQ(std::memcmp(&back, &row, sizeof row), 0);
    EXPECT_EQ(validity(0x1100001), BrngStatusBadId);

    // A state of no bytes at all still has room for the header.
    Stream* stream;
    ASSERT_EQ(__kuzNewStreamEx(&stream, 0x1100000, 0, nullptr), StatusOk);
    Stream* copy;
    ASSERT_EQ(__kuzCopyStream(&copy, stream), StatusOk);
    EXPECT_EQ(__kuzCopyStreamState(copy, stream), StatusOk);
    EXPECT_EQ(__kuzGetStreamSize(copy), 24);
    __kuzDeleteStream(&copy);
    __kuzDeleteStream(&stream);

    for (int32_t count = 17; count < 512; ++count) ASSERT_EQ(__kuzRegisterBrng(&row), (count + 1) * 0x100000);
    EXPECT_EQ(__kuzRegisterBrng(&row), BrngStatusBadId);
    EXPECT_EQ(__kuzGetNumRegBrngs(), 512);
    EXPECT_EQ(validity(BrngWH + 272), StatusOk);
}

}  // namespace
