// The table of MT2203's members: what it was searched for.
#include "streams/streams.h"

#include <array>
#include <set>

using namespace orv::test;

namespace {

struct Member {
    uint32_t twist, mask_b, mask_c;
};
const Member members[] = {
#include "../../data/mt2203.inc"
};
constexpr size_t count = std::size(members);

constexpr int degree = 2203;
constexpr size_t limbs = 35;
using Polynomial = std::array<uint64_t, limbs>;

// With u = t^69 + t^34 and v = t^68 + t^33: u^27 (v^5 + a_0 v^4 + ... + a_4) + a_5 u^26 + ... + a_31.
std::vector<int> characteristic_terms(uint32_t twist) {
    std::vector<bool> sum(degree + 1), power(degree + 1);
    power[0] = true;
    for (int i = 31; i >= -1; --i) {
        if (i < 0 || (twist >> i & 1) != 0)
            for (size_t k = 0; k <= degree; ++k) sum[k] = sum[k] != power[k];
        const size_t high = i >= 5 ? 69 : 68;
        for (size_t k = degree + 1; k-- > 0;) {
            const bool far = k >= high && power[k - high], near = k >= high - 35 && power[k - high + 35];
            power[k] = far != near;
        }
    }
    std::vector<int> terms;
    for (int k = 0; k <= degree; ++k)
        if (sum[static_cast<size_t>(k)]) terms.push_back(k);
    return terms;
}

uint64_t spread(uint64_t half) {
    half = (half | half << 16) & 0x0000FFFF0000FFFF;
    half = (half | half << 8) & 0x00FF00FF00FF00FF;
    half = (half | half << 4) & 0x0F0F0F0F0F0F0F0F;
    half = (half | half << 2) & 0x3333333333333333;
    return (half | half << 1) & 0x5555555555555555;
}

// p^2 modulo the polynomial of `terms`, whose second-highest term lies 34 or more below the degree: 32 bits at a time, which
// a shift by less than a byte brings to any place.
void square(Polynomial& p, const std::vector<int>& terms) {
    std::array<uint64_t, 2 * limbs + 1> wide{};
    for (size_t k = 0; k < limbs; ++k) {
        wide[2 * k] = spread(p[k] & 0xFFFFFFFF);
        wide[2 * k + 1] = spread(p[k] >> 32);
    }
    char* const bytes = reinterpret_cast<char*>(wide.data());
    for (int place = 2 * degree + 2; place > degree;) {  // a multiple of 8
        place -= 32;
        uint32_t bits;
        std::memcpy(&bits, bytes + place / 8, sizeof bits);
        const int base = std::max(place, degree) - degree;
        bits >>= std::max(degree - place, 0);
        uint64_t shifted[8];
        for (int k = 0; k < 8; ++k) shifted[k] = uint64_t{bits} << k;
        for (const int term : terms) {
            uint64_t at;
            std::memcpy(&at, bytes + (base + term) / 8, sizeof at);
            at ^= shifted[(base + term) % 8];
            std::memcpy(bytes + (base + term) / 8, &at, sizeof at);
        }
    }
    std::copy_n(wide.begin(), limbs, p.begin());
}

// f divides t^(2^2203) + t, and as 2203 is a prime all its factors are of degree 2203 but for t and t + 1.
bool is_irreducible(uint32_t twist) {
    const std::vector<int> terms = characteristic_terms(twist);
    if (terms.front() != 0 || terms.back() != degree || terms.size() % 2 == 0) return false;
    if (terms[terms.size() - 2] > degree - 34) return false;
    Polynomial power{};
    power[0] = 2;
    for (int k = 0; k < degree; ++k) square(power, terms);
    return power == Polynomial{2};
}

uint32_t temper(uint32_t y, const Member& m) {
    y ^= y >> 12;
    y ^= y << 7 & m.mask_b;
    y ^= y << 15 & m.mask_c;
    return y ^ y >> 18;
}

// The v leading bits of k successive words, as linear forms of the 2203 bits of a state: independent if every pattern of
// them occurs for equally many states.
bool is_equidistributed(const Member& m, int v, int k) {
    std::vector<Polynomial> columns(static_cast<size_t>(v * k));
    for (int bit = 0; bit < degree; ++bit) {
        std::vector<uint32_t> x(69 + static_cast<size_t>(k));
        const int place = bit + 5;  // the five low bits of the first word are no part of the state
        x[static_cast<size_t>(place / 32)] = 1u << place % 32;
        for (size_t j = 0; j < static_cast<size_t>(k); ++j) {
            const uint32_t y = (x[j] & 0xFFFFFFE0) | (x[j + 1] & 0x1F);
            x[j + 69] = x[j + 34] ^ y >> 1 ^ (y % 2 * m.twist);
            const uint32_t z = temper(x[j + 69], m);
            for (int i = 0; i < v; ++i)
                if ((z >> (31 - i) & 1) != 0)
                    columns[j * static_cast<size_t>(v) + static_cast<size_t>(i)][static_cast<size_t>(bit / 64)] |=
                        uint64_t{1} << bit % 64;
        }
    }
    for (size_t c = 0; c < columns.size(); ++c) {
        size_t limb = 0;
        while (limb < limbs && columns[c][limb] == 0) ++limb;
        if (limb == limbs) return false;
        const uint64_t pivot = columns[c][limb] & -columns[c][limb];
        for (size_t d = c + 1; d < columns.size(); ++d)
            if (columns[d][limb] & pivot)
                for (size_t k2 = limb; k2 < limbs; ++k2) columns[d][k2] ^= columns[c][k2];
    }
    return true;
}

TEST(Mt2203Table, FirstMembersAndDifferentConstants) {
    ASSERT_EQ(count, 6024u);
    const Member first[] = {{0xAF81055F, 0xDD7EEF80, 0xEFD78000},
                            {0x832604E1, 0x66AD7F80, 0xEBD58000},
                            {0x92F70739, 0x656D7780, 0xEFC50000},
                            {0x8B75046E, 0x76957780, 0xEFC48000}};
    std::set<uint32_t> twists;
    for (size_t i = 0; i < count; ++i) {
        twists.insert(members[i].twist);
        EXPECT_EQ(members[i].mask_b & 0x7F, 0u) << i;
        EXPECT_EQ(members[i].mask_c & 0x7FFF, 0u) << i;
    }
    EXPECT_EQ(twists.size(), count);
    EXPECT_EQ(std::memcmp(members, first, sizeof first), 0);
    // A stream takes its member's row.
    for (const int32_t member : {0, 1, 2999, 6023}) {
        OwnedStream stream(BrngMT2203 + member, {1});
        EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(stream.handle) + 296, &members[member], sizeof(Member)), 0);
    }
}

TEST(Mt2203Table, SpreadMembersAreIrreducible) {
    for (size_t i = 0; i < 60; ++i) {
        const size_t member = i * (count - 1) / 59;
        EXPECT_TRUE(is_irreducible(members[member].twist)) << member;
    }
    EXPECT_FALSE(is_irreducible(members[0].twist ^ 1)) << "the test can fail";
}

TEST(ExhaustiveMt2203Table, AllMembersAreIrreducible) {
    for (size_t i = 0; i < count; ++i) EXPECT_TRUE(is_irreducible(members[i].twist)) << i;
}

// The least dimensions that the four first members reach, and with them every other.
constexpr struct { int v, k; } required[] = {{2, 1101}, {3, 705}, {4, 548}, {8, 274}, {16, 137}, {32, 68}};

TEST(Mt2203Table, SpreadMembersAreEquidistributed) {
    for (const auto& [v, k] : required)
        for (const size_t member : {size_t{0}, size_t{3}, size_t{150}, count / 2, count - 1})
            EXPECT_TRUE(is_equidistributed(members[member], v, k)) << member << " at " << v;
    EXPECT_FALSE(is_equidistributed({members[0].twist, 0, 0}, 3, 690)) << "the test can fail";
}

}  // namespace
