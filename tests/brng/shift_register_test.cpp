// The generators that are linear over GF(2), MT19937, MT2203, SFMT19937 and R250, against plain recurrences and published
// values; cuts, jumps and seeds.
#include "streams/streams.h"

#include <algorithm>
#include <functional>
#include <random>

using namespace orv::test;

namespace {

using Words = std::vector<uint32_t>;

// ---- Plain recurrences, over sequences that are kept whole -------------------------------------------------------------

struct TwisterParameters {
    size_t n, m;
    uint32_t upper, twist;
    int first_shift;
    uint32_t mask_b, mask_c;
};
const TwisterParameters mt19937 = {624, 397, 0x80000000, 0x9908B0DF, 11, 0x9D2C5680, 0xEFC60000};
// The first members of MT2203.
const TwisterParameters member0 = {69, 34, 0xFFFFFFE0, 0xAF81055F, 12, 0xDD7EEF80, 0xEFD78000};
const TwisterParameters member3 = {69, 34, 0xFFFFFFE0, 0x8B75046E, 12, 0x76957780, 0xEFC48000};

// The block that the array initialisation makes, then `count` raw words.
Words plain_raw(const TwisterParameters& p, Words key, size_t count) {
    if (key.empty()) key = {1};
    Words x(p.n);
    x[0] = 19650218;
    for (uint32_t i = 1; i < p.n; ++i) x[i] = 1812433253 * (x[i - 1] ^ x[i - 1] >> 30) + i;
    uint32_t i = 1, j = 0;
    const auto wrap = [&] {
        if (i >= p.n) x[0] = x[p.n - 1], i = 1;
    };
    for (size_t k = std::max(p.n, key.size()); k > 0; --k) {
        x[i] = (x[i] ^ (x[i - 1] ^ x[i - 1] >> 30) * 1664525) + key[j] + j;
        ++i, ++j;
        wrap();
        if (j >= key.size()) j = 0;
    }
    for (size_t k = p.n - 1; k > 0; --k) {
        x[i] = (x[i] ^ (x[i - 1] ^ x[i - 1] >> 30) * 1566083941) - i;
        ++i;
        wrap();
    }
    x[0] = 0x80000000;
    for (size_t k = 0; k < count; ++k) {
        const uint32_t y = (x[k] & p.upper) | (x[k + 1] & ~p.upper);
        x.push_back(x[k + p.m] ^ y >> 1 ^ (y % 2 * p.twist));
    }
    return x;
}
uint32_t tempered(const TwisterParameters& p, uint32_t y) {
    y ^= y >> p.first_shift;
    y ^= y << 7 & p.mask_b;
    y ^= y << 15 & p.mask_c;
    return y ^ y >> 18;
}
Words plain_twister(const TwisterParameters& p, const Words& key, size_t count) {
    Words words;
    for (const uint32_t raw : plain_raw(p, key, count)) words.push_back(tempered(p, raw));
    words.erase(words.begin(), words.begin() + static_cast<ptrdiff_t>(p.n));
    return words;
}

Words plain_r250(const Words& seed, size_t count) {
    Words x;
    if (seed.size() >= 250) {
        x.assign(seed.begin(), seed.begin() + 250);
    } else {
        uint32_t t = seed.empty() || seed[0] == 0 ? 1 : seed[0];
        for (int i = 0; i < 250; ++i) x.push_back(t = static_cast<uint32_t>(uint64_t{t} * 69069 % 0x100000000));
        for (uint32_t t32 = 0; t32 < 32; ++t32) {
            uint32_t& word = x[3 + 7 * t32];
            for (uint32_t bit = 0; bit < t32; ++bit) word &= ~(0x80000000 >> bit);
            word |= 0x80000000 >> t32;
        }
    }
    for (size_t k = 0; k < count; ++k) x.push_back(x[k] ^ x[k + 103]);
    return {x.begin() + 250, x.end()};
}

// Bytes shifted through the 128 bits; the seeded block is the library's, and published values hold it to account.
Words plain_sfmt(const Words& seed, size_t count) {
    OwnedStream stream(BrngSFMT19937, seed);
    const uint32_t* state = reinterpret_cast<const uint32_t*>(stream.handle + 1);
    Words x(state, state + 624);
    const uint32_t mask[] = {0xDFFFFFEF, 0xDDFECB7F, 0xBFFAFFFF, 0xBFFFFFF6};
    for (size_t k = 0; x.size() < 624 + count; k += 4) {
        const auto byte = [&](size_t word, int i) {
            return i < 0 || i > 15 ? 0u : x[word + static_cast<size_t>(i) / 4] >> i % 4 * 8 & 0xFF;
        };
        uint32_t fresh[4] = {};
        for (int i = 0; i < 16; ++i) fresh[i / 4] |= (byte(k, i) ^ byte(k, i - 1) ^ byte(k + 616, i + 1)) << i % 4 * 8;
        for (size_t i = 0; i < 4; ++i) x.push_back(fresh[i] ^ (x[k + 488 + i] >> 11 & mask[i]) ^ x[k + 620 + i] << 18);
    }
    return {x.begin() + 624, x.begin() + 624 + static_cast<ptrdiff_t>(count)};
}

struct Generator {
    const char* name;
    int32_t id;
    std::function<Words(const Words& seed, size_t count)> plain;

    // What the floating kernels make of a word.
    double as_double(uint32_t z, double a, double b) const {
        if (id == BrngSFMT19937) return static_cast<int32_t>(z) * ((b - a) * 0x1p-32) + (a + b) * 0.5;
        return z * ((b - a) * 0x1p-32) + a;
    }
    float as_float(uint32_t z, float a, float b) const {
        if (id != BrngSFMT19937) return static_cast<float>(as_double(z, a, b));
        const float s = static_cast<float>((static_cast<double>(b) - a) * 0x1p-32);
        const float m = static_cast<float>((static_cast<double>(a) + b) * 0.5);
        const float product = static_cast<float>(static_cast<int32_t>(z)) * s;
        return product + m;
    }
};
const auto twister = [](const TwisterParameters& p) {
    return [&p](const Words& seed, size_t count) { return plain_twister(p, seed, count); };
};
const Generator generators[] = {
    {"MT19937", BrngMT19937, twister(mt19937)},
    {"MT2203 member 0", BrngMT2203, twister(member0)},
    {"MT2203 member 3", BrngMT2203 + 3, twister(member3)},
    {"SFMT19937", BrngSFMT19937, plain_sfmt},
    {"R250", BrngR250, plain_r250},
};

Words drawn(Stream* stream, int32_t n) {
    const std::vector<uint64_t> wide = draw(stream, n);
    return {wide.begin(), wide.end()};
}

// ---- Numbers -----------------------------------------------------------------------------------------------------------

// The outputs that the authors publish for initialisation by these arrays.
TEST(Published, TwistersFromArrays) {
    OwnedStream mt(BrngMT19937, {0x123, 0x234, 0x345, 0x456});
    EXPECT_EQ(drawn(mt, 5), (Words{1067595299, 955945823, 477289528, 4107218783, 4228976476}));
    OwnedStream sfmt(BrngSFMT19937, {0x1234, 0x5678, 0x9ABC, 0xDEF0});
    EXPECT_EQ(drawn(sfmt, 5), (Words{2920711183, 3885745737, 3501893680, 856470934, 1421864068}));
}

// Every kernel over pieces around the lengths at which it changes its way, the pieces of all kernels in one sequence.
TEST(ShiftRegisters, PiecesOfTheSequence) {
    const float a = -0.75f, b = 3.125f;
    for (const Generator& g : generators) {
        std::mt19937 random(5);
        const Words expected = g.plain({7, 8, 9}, 60000);
        OwnedStream stream(g.id, {7, 8, 9});
        const BrngProperties& kernels = generator_of(stream);
        const int32_t around[] = {0, 1, 2, 3, 4, 5, 63, 68, 69, 70, 103, 147, 249, 250, 251, 623, 624, 625, 1300, 2701};
        const uint32_t* next = expected.data();
        for (int call = 0; next + 2701 <= expected.data() + expected.size(); ++call) {
            const int32_t n = call < 60 ? around[call % 20] : static_cast<int32_t>(random() % 800);
            Guarded<uint32_t> i(n);
            Guarded<double> d(n);
            Guarded<float> s(n);
            switch ((call + call / 20) % 3) {
                case 0:
                    ASSERT_EQ(kernels.iBRng(stream, n, i.data()), StatusOk);
                    break;
                case 1:
                    ASSERT_EQ(kernels.dBRng(stream, n, d.data(), a, b), StatusOk);
                    break;
                case 2:
                    ASSERT_EQ(kernels.sBRng(stream, n, s.data(), a, b), StatusOk);
                    break;
            }
            ASSERT_TRUE(i.sentinels_stand() && d.sentinels_stand() && s.sentinels_stand()) << g.name << " " << n;
            for (int32_t k = 0; k < n; ++k, ++next) switch ((call + call / 20) % 3) {
                    case 0:
                        ASSERT_EQ(i.data()[k], *next) << g.name << " call " << call << " of " << n << " at " << k;
                        break;
                    case 1:
                        ASSERT_EQ(d.data()[k], g.as_double(*next, a, b)) << g.name << " call " << call;
                        break;
                    case 2:
                        ASSERT_EQ(s.data()[k], g.as_float(*next, a, b)) << g.name << " call " << call;
                        break;
                }
        }
    }
}

TEST(ShiftRegisters, Seeds) {
    Words long_key(700);
    for (uint32_t i = 0; i < 700; ++i) long_key[i] = i * 2654435761u;
    for (const Generator& g : generators) {
        for (const Words& seed : {Words{}, Words{0}, Words{1}, Words{0xFFFFFFFF, 2}, long_key}) {
            OwnedStream stream(g.id, seed);
            EXPECT_EQ(drawn(stream, 700), g.plain(seed, 700)) << g.name << " " << seed.size();
        }
        OwnedStream none(g.id, {}), one(g.id, {1});
        EXPECT_EQ(drawn(none, 3), drawn(one, 3)) << g.name;
    }
    OwnedStream r250(BrngR250, {}), zero(BrngR250, {0});
    const uint32_t* x = reinterpret_cast<const uint32_t*>(r250.handle + 1);
    EXPECT_EQ(x[3] >> 31, 1u);
    EXPECT_EQ(x[10] >> 30, 1u);
    EXPECT_EQ(drawn(r250, 300), drawn(zero, 300));
}

// A state whose certified parity is even gets its lowest bit turned: seeds of both kinds among a few.
TEST(ShiftRegisters, TheLongPeriodOfSfmtIsCertified) {
    int turned = 0;
    for (uint32_t seed = 0; seed < 20; ++seed) {
        OwnedStream stream(BrngSFMT19937, {seed});
        const uint32_t* x = reinterpret_cast<const uint32_t*>(stream.handle + 1);
        EXPECT_EQ(__builtin_parity((x[0] & 1) ^ (x[3] & 0x13C9E684)), 1) << seed;
        turned += static_cast<int>(x[0] & 1);
    }
    EXPECT_TRUE(turned > 0 && turned < 20);
}

// ---- Jumps -------------------------------------------------------------------------------------------------------------

TEST(ShiftRegisters, SkipsFromEveryPosition) {
    struct Case {
        int32_t id;
        std::vector<uint64_t> counts;
    };
    const Case cases[] = {
        {BrngMT19937, {0, 1, 623, 624, 625, 5000, 1048575, 1048576, 1048577 + 624}},
        {BrngSFMT19937, {0, 1, 2, 3, 4, 620, 621, 623, 624, 625, 626, 627, 628, 2497, 19967, 19968, 19969, 79873}},
    };
    for (const Case& c : cases)
        for (const int32_t before : {0, 3, 300, 623}) {
            OwnedStream walked(c.id, {3});
            drawn(walked, before);
            uint64_t done = 0;
            for (const uint64_t count : c.counts) {
                OwnedStream skipped(c.id, {3});
                drawn(skipped, before);
                ASSERT_EQ(__kuzSkipAheadStream(skipped, count), StatusOk);
                drawn(walked, static_cast<int32_t>(count - done));
                done = count;
                Stream* copy;
                __kuzCopyStream(&copy, walked);
                OwnedStream twin(copy);
                const Words expected = drawn(twin, 1300);
                EXPECT_EQ(drawn(skipped, 1), Words(1, expected[0])) << c.id << " from " << before << " by " << count;
                EXPECT_EQ(drawn(skipped, 1299), Words(expected.begin() + 1, expected.end())) << c.id << " by " << count;
            }
        }
}

// g(A) on the sequence itself: x(c + j) is the sum of x(i + j) over the terms t^i of t^c modulo the characteristic
// polynomial u v^31 + a_0 u v^30 + ... + a_30 u + a_31, with u = t^624 + t^397 and v = t^623 + t^396.
TEST(ShiftRegisters, FarSkipsByPlainPolynomials) {
    constexpr size_t degree = 19937;
    using Bits = std::vector<bool>;
    const auto times_binomial = [](const Bits& p, size_t high, size_t low) {
        Bits product(2 * degree);
        for (size_t i = 0; i < degree; ++i)
            if (p[i]) {
                product[i + high] = !product[i + high];
                product[i + low] = !product[i + low];
            }
        return product;
    };
    Bits power(2 * degree), polynomial(2 * degree);
    power[0] = true;
    for (int i = 31; i >= 0; --i) {
        const bool wanted = (mt19937.twist >> i & 1) != 0;
        for (size_t k = 0; wanted && k < power.size(); ++k) polynomial[k] = polynomial[k] != power[k];
        power = i < 31 ? times_binomial(power, 623, 396) : times_binomial(power, 624, 397);
    }
    std::vector<size_t> terms;
    for (size_t k = 0; k <= degree; ++k)
        if (polynomial[k] != power[k]) terms.push_back(k);
    ASSERT_EQ(terms.size(), 135u);
    ASSERT_EQ(terms.back(), degree);
    const auto squared = [&](const Bits& p) {
        Bits square(2 * degree);
        for (size_t i = 0; i < degree; ++i) square[2 * i] = p[i];
        for (size_t i = 2 * degree - 1; i >= degree; --i)
            if (square[i])
                for (const size_t term : terms) square[i - degree + term] = !square[i - degree + term];
        return square;
    };
    const Words raw = plain_raw(mt19937, {3}, degree + 1300);
    Bits g(2 * degree);
    g[1] = true;
    for (int log = 1; log <= 60; ++log) {
        g = squared(g);
        if (log != 40 && log != 60) continue;
        Words expected(600);
        for (size_t j = 0; j < expected.size(); ++j) {
            uint32_t sum = 0;
            for (size_t i = 0; i < degree; ++i)
                if (g[i]) sum ^= raw[624 + i + j];
            expected[j] = tempered(mt19937, sum);
        }
        OwnedStream stream(BrngMT19937, {3});
        ASSERT_EQ(__kuzSkipAheadStream(stream, uint64_t{1} << log), StatusOk);
        EXPECT_EQ(drawn(stream, 600), expected) << log;
    }
}

TEST(ShiftRegisters, FarSkipsAdd) {
    for (const int32_t id : {BrngMT19937 + 0, BrngSFMT19937 + 0})
        for (const uint64_t whole : {uint64_t{1} << 40, (uint64_t{1} << 60) + 3}) {
            OwnedStream once(id, {3}), pieces(id, {3});
            drawn(once, 5);
            drawn(pieces, 5);
            __kuzSkipAheadStream(once, whole);
            for (const uint64_t piece : {uint64_t{1}, whole / 3, uint64_t{2}, whole - whole / 3 - 3})
                __kuzSkipAheadStream(pieces, piece);
            EXPECT_EQ(drawn(once, 700), drawn(pieces, 700)) << id << " " << whole;
        }
}

TEST(ShiftRegisters, MembersAreDifferent) {
    OwnedStream first(BrngMT2203, {5}), last(BrngMT2203 + 6023, {5});
    EXPECT_NE(drawn(first, 10), drawn(last, 10));
    // Copying a state moves words and index, not the member.
    OwnedStream source(BrngMT2203, {9}), twin(BrngMT2203 + 3, {9}), dest(BrngMT2203 + 3, {4});
    __kuzCopyStreamState(dest, source);
    EXPECT_EQ(drawn(dest, 200), drawn(twin, 200));
}

}  // namespace
