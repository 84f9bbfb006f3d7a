// What batteries of statistical tests leave out or see late: linear structure, which the generators over GF(2) must show at the
// known sizes and the others must not, spacings, serial correlation and the independence of family members.
#include "streams/streams.h"

#include <algorithm>
#include <cmath>
#include <random>

using namespace orv::test;

namespace {

using Words = std::vector<uint32_t>;

// The top 32 bits of a generator's double, whatever its words are.
Words top_words(int32_t id, uint32_t seed, int32_t n) {
    OwnedStream stream(id, {seed});
    std::vector<double> u(static_cast<size_t>(n));
    EXPECT_EQ(_kuzdRngUniform(0, stream, n, u.data(), 0, 1), StatusOk);
    Words words(u.size());
    for (size_t i = 0; i < u.size(); ++i) words[i] = static_cast<uint32_t>(std::min(u[i] * 4294967296.0, 4294967295.0));
    return words;
}

using Bits = std::vector<uint64_t>;

// The length of the shortest linear recurrence of the top bits (Berlekamp and Massey).
size_t linear_complexity(const Words& words) {
    const size_t limbs = words.size() / 64 + 2;
    Bits connection(limbs), before(limbs), past(limbs);
    connection[0] = before[0] = 1;
    size_t length = 0, shift = 1;
    for (size_t k = 0; k < words.size(); ++k, ++shift) {
        for (size_t i = limbs; i-- > 1;) past[i] = past[i] << 1 | past[i - 1] >> 63;
        past[0] = past[0] << 1 | words[k] >> 31;
        uint64_t discrepancy = 0;
        for (size_t i = 0; i < limbs; ++i) discrepancy ^= connection[i] & past[i];
        if (__builtin_parityll(discrepancy) == 0) continue;
        const Bits old = connection;
        for (size_t i = shift / 64; i < limbs; ++i) {
            connection[i] ^= before[i - shift / 64] << shift % 64;
            if (shift % 64 != 0 && i > shift / 64) connection[i] ^= before[i - shift / 64 - 1] >> (64 - shift % 64);
        }
        if (2 * length > k) continue;
        length = k + 1 - length;
        before = old;
        shift = 0;
    }
    return length;
}

TEST(LinearStructure, ComplexityIsTheDegreeOrHalfTheLength) {
    const struct {
        int32_t id;
        int32_t bits;
        size_t expected;
    } linear[] = {
        {BrngR250, 2000, 250},
        {BrngMT2203, 6000, 2203},
        {BrngMT2203 + 6023, 6000, 2203},
        {BrngMT19937, 40500, 19937},
    };
    for (const auto& c : linear) EXPECT_EQ(linear_complexity(top_words(c.id, 5, c.bits)), c.expected) << c.id;
    for (const int32_t id :
         {BrngMCG31M1 + 0, BrngMCG59 + 0, BrngMRG32K3A + 0, BrngWH + 0, BrngWH + 272, BrngPHILOX4X32X10 + 0})
        EXPECT_NEAR(static_cast<double>(linear_complexity(top_words(id, 5, 6000))), 3000, 20) << id;
}

// The rank of a square matrix of successive top bits.
size_t rank(const Words& words, size_t size) {
    std::vector<Bits> rows(size, Bits(size / 64 + 1));
    for (size_t i = 0; i < size * size; ++i)
        rows[i / size][i % size / 64] |= static_cast<uint64_t>(words[i] >> 31) << i % size % 64;
    size_t found = 0;
    for (size_t column = 0; column < size; ++column) {
        const auto set = [&](const Bits& row) { return (row[column / 64] >> column % 64 & 1) != 0; };
        const auto pivot = std::find_if(rows.begin() + static_cast<ptrdiff_t>(found), rows.end(), set);
        if (pivot == rows.end()) continue;
        std::swap(*pivot, rows[found]);
        for (size_t i = found + 1; i < size; ++i)
            if (set(rows[i]))
                for (size_t k = 0; k < rows[i].size(); ++k) rows[i][k] ^= rows[found][k];
        ++found;
    }
    return found;
}

// A random matrix lacks more than 6 of its full rank with a probability below 10^-14.
TEST(LinearStructure, RanksOfMatrices) {
    for (const int32_t id :
         {BrngMT2203 + 1, BrngMT19937 + 0, BrngSFMT19937 + 0, BrngMRG32K3A + 0, BrngWH + 1, BrngMCG59 + 0})
        EXPECT_GE(rank(top_words(id, 9, 400 * 400), 400), 394u) << id;
    EXPECT_EQ(rank(top_words(BrngR250, 9, 400 * 400), 400), 250u);
}

const int32_t all[] = {BrngMCG31M1 + 0,   BrngMCG59 + 0,     BrngMRG32K3A + 0,     BrngR250 + 0,
                       BrngWH + 0,        BrngWH + 272,      BrngMT19937 + 0,      BrngMT2203 + 0,
                       BrngMT2203 + 6023, BrngSFMT19937 + 0, BrngPHILOX4X32X10 + 0};

// Of 2^10 birthdays in a year of 2^24 days the spacings that occur again are Poisson with mean 2^30 / 2^26 = 16; over 64 years
// 1024, with standard deviation 32.
TEST(Spacings, OfBirthdays) {
    for (const int32_t id : all) {
        const Words words = top_words(id, 11, 64 << 10);
        int repeated = 0;
        for (size_t year = 0; year < 64; ++year) {
            Words days;
            for (size_t i = 0; i < 1024; ++i) days.push_back(words[year << 10 | i] >> 8);
            std::sort(days.begin(), days.end());
            for (size_t i = 1023; i > 0; --i) days[i] -= days[i - 1];
            std::sort(days.begin(), days.end());
            for (size_t i = 1; i < days.size(); ++i) repeated += days[i] == days[i - 1];
        }
        EXPECT_NEAR(repeated, 1024, 5 * 32) << id;
    }
}

double correlation(const std::vector<double>& a, const std::vector<double>& b, size_t lag) {
    double sum = 0;
    for (size_t i = 0; i + lag < a.size(); ++i) sum += (a[i] - 0.5) * (b[i + lag] - 0.5);
    return 12 * sum / std::sqrt(static_cast<double>(a.size() - lag));  // standard normal
}

std::vector<double> uniforms(int32_t id, uint32_t seed, int32_t n) {
    OwnedStream stream(id, {seed});
    std::vector<double> u(static_cast<size_t>(n));
    _kuzdRngUniform(0, stream, n, u.data(), 0, 1);
    return u;
}

TEST(Correlation, OfASequenceWithItself) {
    for (const int32_t id : all) {
        const std::vector<double> u = uniforms(id, 13, 100000);
        for (const size_t lag : {1, 2, 3, 4, 5, 16, 69, 103, 147, 624})
            EXPECT_LT(std::fabs(correlation(u, u, lag)), 4.5) << id << " lag " << lag;
    }
}

// With one seed the members begin with one block, and their words need some rounds through it to part: the first thousand are
// left out.
TEST(Correlation, OfMembersAndOfTheirBits) {
    constexpr ptrdiff_t begin = 1000;
    std::mt19937 random(1);
    double squares = 0;
    for (int pair = 0; pair < 100; ++pair) {
        const int32_t first = static_cast<int32_t>(random() % 6024), second = static_cast<int32_t>(random() % 6024);
        if (first == second) continue;
        const std::vector<double> a = uniforms(BrngMT2203 + first, 17, 20000),
                                  b = uniforms(BrngMT2203 + second, 17, 20000);
        const double z = correlation({a.begin() + begin, a.end()}, {b.begin() + begin, b.end()}, 0);
        squares += z * z;
        EXPECT_LT(std::fabs(z), 4.5) << first << " and " << second;
        const Words x = top_words(BrngMT2203 + first, 17, 6000), y = top_words(BrngMT2203 + second, 17, 6000);
        int differing = 0;
        for (size_t i = begin; i < x.size(); ++i) differing += __builtin_popcount(x[i] ^ y[i]);
        EXPECT_NEAR(differing, 80000, 5 * 200) << first << " and " << second;
    }
    EXPECT_NEAR(squares, 100, 5 * std::sqrt(200.0)) << "chi-square of 100 degrees of freedom";
}

}  // namespace
