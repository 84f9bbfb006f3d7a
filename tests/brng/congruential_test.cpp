// The congruential generators against walks of their plain recurrences, and published values.
#include "streams/streams.h"

#include <cmath>
#include <cstring>
#include <xmmintrin.h>

using namespace orv::test;

namespace {

// a b mod m for m below 2^63 by doubling and adding, which has nothing in common with the kernels' products.
uint64_t mul_mod(uint64_t a, uint64_t b, uint64_t m) {
    uint64_t sum = 0;
    for (a %= m; b != 0; b >>= 1) {
        if (b & 1) sum = (sum + a) % m;
        a = 2 * a % m;
    }
    return sum;
}

constexpr uint64_t m1 = 4294967087, m2 = 4294944443;

// A plain walk: raw outputs, and what the floating kernels make of them.
struct Walk {
    int32_t id;
    uint64_t x[3], y[3];

    Walk(int32_t generator, const std::vector<uint32_t>& seed) : id(generator), x{}, y{} {
        if (id == BrngMRG32K3A)
            for (size_t i = 0; i < 3; ++i) x[i] = seed[i], y[i] = seed[i + 3];
        else
            x[0] = seed[0] + (seed.size() > 1 ? uint64_t{seed[1]} << 32 : 0);
    }
    uint64_t next() {
        const uint64_t out = x[0];
        if (id == BrngMCG31M1) {
            x[0] = mul_mod(x[0], 1132489760, 2147483647);
            return out;
        }
        if (id == BrngMCG59) {
            x[0] = mul_mod(x[0], 302875106592253, uint64_t{1} << 59);
            return out;
        }
        const uint64_t nx = (mul_mod(1403580, x[1], m1) + mul_mod(m1 - 810728, x[0], m1)) % m1;
        const uint64_t ny = (mul_mod(527612, y[2], m2) + mul_mod(m2 - 1370589, y[0], m2)) % m2;
        x[0] = x[1], x[1] = x[2], x[2] = nx;
        y[0] = y[1], y[1] = y[2], y[2] = ny;
        return (nx + m1 - ny % m1) % m1;
    }
    double as_double(uint64_t z, double a, double b) const {
        if (id == BrngMCG59) {
            const double s = (b - a) * 1.734723475976807e-18;
            const double low = static_cast<double>(z & 0xFFFFFFFF), high = static_cast<double>(z >> 32) * 4294967296.0;
            const double low_part = low * s, high_part = high * s;
            return low_part + high_part + a;
        }
        const double s = (b - a) * (id == BrngMCG31M1 ? 4.656612875245797e-10 : 2.328306549837829e-10);
        const double product = static_cast<double>(z) * s;
        return product + a;
    }
    float as_float(uint64_t z, double a, double b) const {
        if (id != BrngMCG59) return static_cast<float>(as_double(z, a, b));
        const double whole = static_cast<double>(z & 0xFFFFFFFF) + static_cast<double>(z >> 32) * 4294967296.0;
        const double product = whole * ((b - a) * 1.734723475976807e-18);
        return static_cast<float>(product + a);
    }
};

const struct {
    int32_t id;
    std::vector<uint32_t> seed;
} starts[] = {
    {BrngMCG31M1, {1}},
    {BrngMCG31M1, {2147483646}},
    {BrngMCG59, {1}},
    {BrngMCG59, {0xFFFFFFFF, 0x7FFFFFF}},
    {BrngMCG59, {4, 2}},
    {BrngMRG32K3A, {12345, 12345, 12345, 12345, 12345, 12345}},
    {BrngMRG32K3A, {4294967086, 4294967086, 4294967086, 4294944442, 4294944442, 4294944442}},
    {BrngMRG32K3A, {0, 0, 1, 4294944442, 0, 0}},
};
// Around every length at which a kernel changes its way of working.
constexpr int32_t lengths[] = {1,  2,  3,   4,   5,   7,   11,  12,  13,  16,   31,   32,   33,
                               63, 64, 127, 128, 129, 145, 511, 512, 640, 2047, 2048, 2049, 5000};

TEST(Congruential, KernelsWalkThePlainRecurrence) {
    for (const auto& start : starts) {
        OwnedStream words(start.id, start.seed), doubles(start.id, start.seed), floats(start.id, start.seed);
        const BrngProperties& generator = __RegBrngsNew[(start.id >> 20) - 1];
        Walk walk(start.id, start.seed);
        const double a = -0.75, b = 3.125;
        for (const int32_t n : lengths) {
            const std::vector<uint64_t> drawn = draw(words, n);
            Guarded<double> d(n);
            Guarded<float> s(n);
            ASSERT_EQ(generator.dBRng(doubles, n, d.data(), a, b), StatusOk);
            ASSERT_EQ(generator.sBRng(floats, n, s.data(), static_cast<float>(a), static_cast<float>(b)), StatusOk);
            for (int32_t i = 0; i < n; ++i) {
                const uint64_t z = walk.next();
                ASSERT_EQ(drawn[static_cast<size_t>(i)], z) << start.id << " " << n << " " << i;
                ASSERT_EQ(d.data()[i], walk.as_double(z, a, b)) << start.id << " " << n << " " << i;
                ASSERT_EQ(s.data()[i], walk.as_float(z, a, b)) << start.id << " " << n << " " << i;
            }
            ASSERT_TRUE(d.sentinels_stand() && s.sentinels_stand()) << n;
        }
    }
}

TEST(Congruential, NoRoundingModeTouchesTheSequence) {
    for (const int32_t id : present) {
        OwnedStream stream(id, {11}), twin(id, {11});
        const std::vector<uint64_t> expected = draw(twin, 5000);
        for (const unsigned mode : {_MM_ROUND_DOWN, _MM_ROUND_UP, _MM_ROUND_TOWARD_ZERO}) {
            OwnedStream odd(id, {11});
            const unsigned saved = _mm_getcsr();
            _MM_SET_ROUNDING_MODE(mode);
            const std::vector<uint64_t> drawn = draw(odd, 5000);
            _mm_setcsr(saved);
            EXPECT_EQ(drawn, expected) << id << " " << mode;
        }
    }
}

TEST(Congruential, Seeds) {
    const struct {
        int32_t id;
        std::vector<uint32_t> seed, state;
    } cases[] = {
        {BrngMCG31M1, {}, {1, 1132489760}},
        {BrngMCG31M1, {0}, {1, 1132489760}},
        {BrngMCG31M1, {0xFFFFFFFE}, {1, 1132489760}},
        {BrngMCG31M1, {0xFFFFFFFF, 5}, {1, 1132489760}},
        {BrngMCG31M1, {0x80000005, 5}, {6, 1132489760}},
        {BrngMCG59, {}, {1, 0}},
        {BrngMCG59, {0}, {1, 0}},
        {BrngMCG59, {0, 0x08000000}, {1, 0}},
        {BrngMCG59, {7}, {7, 0}},
        {BrngMCG59, {6, 0xFFFFFFFF, 3}, {6, 0x7FFFFFF}},
        {BrngMRG32K3A, {}, {1, 1, 1, 1, 1, 1}},
        {BrngMRG32K3A, {5, 6}, {5, 6, 1, 1, 1, 1}},
        {BrngMRG32K3A, {0, 0, 0, 0, 0, 0}, {1, 0, 0, 1, 0, 0}},
        {BrngMRG32K3A, {4294967087, 4294967088, 9, 4294944443, 0xFFFFFFFF, 7, 8}, {0, 1, 9, 0, 22852, 7}},
    };
    for (const auto& c : cases) {
        OwnedStream stream(c.id, c.seed);
        const uint32_t* state = reinterpret_cast<const uint32_t*>(stream.handle + 1);
        for (size_t i = 0; i < c.state.size(); ++i) EXPECT_EQ(state[i], c.state[i]) << c.id << " " << i;
    }
}

TEST(Congruential, ACallForNothing) {
    for (const int32_t id : present) {
        OwnedStream stream(id, {5}), twin(id, {5});
        const BrngProperties& generator = __RegBrngsNew[(id >> 20) - 1];
        const std::vector<uint64_t> expected = draw(twin, 2);
        double r = 99.0;
        EXPECT_EQ(generator.dBRng(stream, 0, &r, 0.0, 1.0), StatusOk);
        // MCG31M1 writes its first element before it looks at the count.
        const bool eager = id == BrngMCG31M1;
        EXPECT_EQ(r != 99.0, eager) << id;
        EXPECT_EQ(draw(stream, 1)[0], expected[eager]) << id;
    }
}

// The generator's publication: from the seed 12345 in all words, the sum of ten million outputs is 5001090.95.
TEST(Published, Mrg32k3aSum) {
    OwnedStream stream(BrngMRG32K3A, {12345, 12345, 12345, 12345, 12345, 12345});
    std::vector<double> r(10000);
    double sum = 0;
    for (int call = 0; call < 1000; ++call) {
        __kuzdBRngMRG32K3A(stream, 10000, r.data(), 0.0, 1.0);
        if (call == 0) {
            const double first[] = {0.1270111221, 0.3185275653, 0.3091860155, 0.8258468629, 0.2216299157};
            for (int i = 0; i < 5; ++i) EXPECT_NEAR(r[static_cast<size_t>(i)], first[i], 5e-10);
        }
        for (const double x : r) sum += x;
    }
    EXPECT_NEAR(sum, 5001090.95, 0.005);
}

// The multiplier is a primitive root: a period visits every value from 1 to 2^31 - 2 once and comes back.
TEST(ExhaustiveCongruential, Mcg31m1VisitsEveryValue) {
    constexpr uint64_t period = 2147483646;
    constexpr int32_t piece = 1 << 16;
    OwnedStream stream(BrngMCG31M1, {1});
    std::vector<uint32_t> words(piece);
    uint64_t sum = 0, squares = 0;  // the squares modulo 2^64
    for (uint64_t left = period; left > 0;) {
        const int32_t n = left < piece ? static_cast<int32_t>(left) : piece;
        __kuziBRngMCG31M1(stream, n, words.data());
        for (int32_t i = 0; i < n; ++i) {
            sum += words[static_cast<size_t>(i)];
            squares += uint64_t{words[static_cast<size_t>(i)]} * words[static_cast<size_t>(i)];
        }
        left -= static_cast<uint64_t>(n);
    }
    EXPECT_EQ(sum, period * (period + 1) / 2);
    EXPECT_EQ(squares, period / 6 * (period + 1) * (2 * period + 1)) << "the period is a multiple of 6";
    EXPECT_EQ(draw(stream, 1)[0], 1u);
}

}  // namespace
