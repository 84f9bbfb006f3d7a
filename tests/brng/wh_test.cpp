// WH against its plain recurrences in whole numbers, its jumps, and the table of its members.
#include "streams/streams.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <xmmintrin.h>

using namespace orv::test;

namespace {

using Words = std::vector<uint32_t>;

struct MemberRow {
    uint32_t moduli[4];
    uint32_t multipliers;

    uint32_t multiplier(int k) const { return multipliers >> 8 * k & 0xFF; }
};
const MemberRow members[] = {
#include "../../data/wh.inc"
};

constexpr int32_t tried[] = {0, 1, 137, 272};

// `a` raised to what a leapfrog of `stride` streams makes of it.
struct Plain {
    const MemberRow& row;
    uint64_t x[4], a[4];

    Plain(int32_t member, const Words& seed) : row(members[member]) {
        for (size_t k = 0; k < 4; ++k) {
            x[k] = k < seed.size() ? seed[k] % row.moduli[k] : 1;
            if (x[k] == 0) x[k] = 1;
            a[k] = row.multiplier(static_cast<int>(k));
        }
    }
    void step() {
        for (int k = 0; k < 4; ++k) x[k] = x[k] * a[k] % row.moduli[k];
    }
    // The fraction of the sum, scaled; toward zero in every operation but b - a and the reciprocals.
    double fraction(double width, double from) const {
        volatile double reciprocal[4];
        for (int k = 0; k < 4; ++k) reciprocal[k] = 1.0 / row.moduli[k];
        const unsigned saved = _mm_getcsr();
        _MM_SET_ROUNDING_MODE(_MM_ROUND_TOWARD_ZERO);
        volatile double u = static_cast<double>(x[0]) * reciprocal[0];
        for (int k = 1; k < 4; ++k) {
            volatile const double term = static_cast<double>(x[k]) * reciprocal[k];
            u = u + term;
        }
        u = u - static_cast<int>(u);
        u = u * width;
        u = u + from;
        _mm_setcsr(saved);
        return u;
    }
    static float toward_zero(double v) {
        const unsigned saved = _mm_getcsr();
        _MM_SET_ROUNDING_MODE(_MM_ROUND_TOWARD_ZERO);
        volatile const float narrow = static_cast<float>(static_cast<volatile const double&>(v));
        _mm_setcsr(saved);
        return narrow;
    }
};

// Pieces of every kernel in one sequence, around the lengths at which they change their way; in each rounding mode the same but
// for b - a.
TEST(Wh, PiecesOfTheSequence) {
    const float a = -0.7f, b = 3.1f;
    for (const int32_t member : tried)
        for (const unsigned mode : {_MM_ROUND_NEAREST, _MM_ROUND_UP, _MM_ROUND_DOWN, _MM_ROUND_TOWARD_ZERO}) {
            const Words seed = {123456789, 987654321, 4294967295u, 77};
            Plain walk(member, seed);
            OwnedStream stream(BrngWH + member, seed);
            std::mt19937 random(3);
            for (int call = 0; call < 150; ++call) {
                const int32_t n = call < 63 ? call % 21 : static_cast<int32_t>(random() % 100);
                Guarded<uint32_t> words(4 * n);
                Guarded<double> d(n);
                Guarded<float> s(n);
                const unsigned saved = _mm_getcsr();
                _MM_SET_ROUNDING_MODE(mode);
                volatile const double wide_a = a, wide_b = b;
                volatile const double width = wide_b - wide_a;
                if (call % 3 == 0) __kuziBRngWH(stream, n, words.data());
                if (call % 3 == 1) __kuzdBRngWH(stream, n, d.data(), wide_a, wide_b);
                if (call % 3 == 2) __kuzsBRngWH(stream, n, s.data(), a, b);
                const unsigned after = _mm_getcsr();
                _mm_setcsr(saved);
                EXPECT_EQ(after & _MM_ROUND_MASK, mode);
                ASSERT_TRUE(words.sentinels_stand() && d.sentinels_stand() && s.sentinels_stand());
                for (int32_t i = 0; i < n; ++i, walk.step()) {
                    const double u = walk.fraction(width, a);
                    if (call % 3 == 0) {
                        for (int k = 0; k < 4; ++k) ASSERT_EQ(words.data()[4 * i + k], walk.x[k]) << call << " " << i;
                    } else if (call % 3 == 1) {
                        ASSERT_EQ(d.data()[i], u) << member << " " << call << " " << i;
                    } else {
                        ASSERT_EQ(s.data()[i], Plain::toward_zero(u)) << member << " " << call << " " << i;
                    }
                }
            }
        }
}

TEST(Wh, Seeds) {
    const uint32_t* m = members[5].moduli;
    const struct {
        Words seed, state;
    } cases[] = {
        {{}, {1, 1, 1, 1}},
        {{7}, {7, 1, 1, 1}},
        {{m[0], 0, m[2] + 1, 2 * m[3] - 1, 99}, {1, 1, 1, m[3] - 1}},
    };
    for (const auto& c : cases) {
        OwnedStream stream(BrngWH + 5, c.seed);
        Words first(4);
        __kuziBRngWH(stream, 1, first.data());
        EXPECT_EQ(first, c.state) << "the state is the first output";
    }
    // Both forms of the id reach a member.
    OwnedStream small(4 + 272, {5, 6, 7, 8}), main(BrngWH + 272, {5, 6, 7, 8});
    EXPECT_EQ(draw(small, 50), draw(main, 50));
}

TEST(Wh, LeapfrogAndSkip) {
    const Words seed = {11, 22, 33, 44};
    for (const int32_t member : tried)
        for (const auto& [k, streams] : {std::pair{0, 1}, {1, 3}, {2, 3}, {40, 1000}, {5, 16777259}}) {
            OwnedStream leaping(BrngWH + member, seed);
            ASSERT_EQ(__kuzLeapfrogStream(leaping, k, streams), StatusOk);
            Plain walk(member, seed);
            for (int i = 0; i < k; ++i) walk.step();
            for (int j = 0; j < 4; ++j) {
                uint64_t power = 1;
                for (int i = 0; i < streams % static_cast<int>(walk.row.moduli[j] - 1); ++i)
                    power = power * walk.a[j] % walk.row.moduli[j];
                walk.a[j] = power;
            }
            std::vector<uint64_t> expected;
            for (int i = 0; i < 60; ++i, walk.step()) {
                expected.push_back(walk.x[0] | walk.x[1] << 32);
                expected.push_back(walk.x[2] | walk.x[3] << 32);
            }
            EXPECT_EQ(draw(leaping, 60), expected) << member << ": " << k << " of " << streams;
            // A skip of a leaping stream is one of its own steps.
            OwnedStream skipped(BrngWH + member, seed);
            __kuzLeapfrogStream(skipped, k, streams);
            ASSERT_EQ(__kuzSkipAheadStream(skipped, 20), StatusOk);
            expected.erase(expected.begin(), expected.begin() + 40);
            EXPECT_EQ(draw(skipped, 40), expected) << member;
        }
}

// ---- The table -----------------------------------------------------------------------------------------------------------

std::vector<uint32_t> prime_factors(uint32_t n) {
    std::vector<uint32_t> factors;
    for (uint32_t d = 2; d * d <= n; ++d)
        for (; n % d == 0; n /= d) factors.push_back(d);
    if (n > 1) factors.push_back(n);
    return factors;
}

// What makes the period of a member twice the product of its (m - 1) / 2.
TEST(WhTable, PrimesPrimitiveRootsAndCoprimeOrders) {
    ASSERT_EQ(std::size(members), 273u);
    const uint32_t second[] = {16770311, 16770283, 16770263, 16770209};
    EXPECT_EQ(members[0].multipliers, 0x7E7F757Du);
    EXPECT_TRUE(std::equal(second, second + 4, members[1].moduli));
    uint32_t above = 1 << 24;
    for (const MemberRow& row : members)
        for (int k = 0; k < 4; ++k) {
            const uint32_t m = row.moduli[k];
            EXPECT_LT(m, above) << "falling, so all different";
            above = m;
            EXPECT_EQ(prime_factors(m).size(), 1u) << m;
            EXPECT_TRUE(row.multiplier(k) >= 112 && row.multiplier(k) <= 127) << m;
            for (const uint32_t factor : prime_factors(m - 1))
                EXPECT_NE(__kuziPowMod(row.multiplier(k), (m - 1) / factor, m), 1u) << m << ": no primitive root";
            for (int other = 0; other < k; ++other)
                EXPECT_EQ(std::gcd((m - 1) / 2, (row.moduli[other] - 1) / 2), 1u) << m;
        }
}

}  // namespace
