// Modular powers, jumps of third-order recurrences, and jumps over GF(2) on a generator small enough to walk.
#include "services/test_switches.h"

#include <orv/random.h>
#include <orv/services.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

TEST(Powers, SmallExponentsByMultiplication) {
    const uint32_t moduli[] = {2, 3, 97, 65537, 2147483647, 4294967087, 4294967295};
    for (const uint32_t m : moduli)
        for (const uint32_t a : {0u, 1u, 2u, 1234567u, 4294967294u}) {
            uint64_t expected = 1;
            EXPECT_EQ(__kuziPowMod(a, 0, m), 1u);
            for (uint64_t n = 1; n <= 40; ++n) {
                expected = expected * (a % m) % m;
                ASSERT_EQ(__kuziPowMod(a, n, m), expected) << a << "^" << n << " mod " << m;
            }
        }
    EXPECT_EQ(__kuziPowMod(0, 0, 7), 1u);
}

TEST(Powers, OrdersOfTheGroups) {
    // By Fermat and Euler: a^(2^31 - 2) = 1 mod 2^31 - 1; odd a have a^(2^57) = 1 mod 2^59, and 5 no smaller power of two.
    for (const uint32_t a : {2u, 7u, 1132489760u, 2147483646u, 4294967295u}) {
        EXPECT_EQ(__kuziPowMod2P31M1(a, 2147483646), 1u) << a;
        for (const uint64_t n : {uint64_t{3}, uint64_t{1} << 40, ~uint64_t{0}})
            EXPECT_EQ(__kuziPowMod2P31M1(a, n), __kuziPowMod(a, n % 2147483646, 2147483647)) << a;
    }
    EXPECT_EQ(__kuziPowMod2P31M1(0, 0), 1u);
    EXPECT_EQ(__kuziPowMod2P59(13, 13), 302875106592253u);
    EXPECT_EQ(__kuziPowMod2P59(5, uint64_t{1} << 57), 1u);
    EXPECT_EQ(__kuziPowMod2P59(5, uint64_t{1} << 56), (uint64_t{1} << 58) + 1);
    EXPECT_EQ(__kuziPowMod2P59(2, 59), 0u);
}

// v(k) = row[0] v(k-1) + row[1] v(k-2) + row[2] v(k-3).
void walk(uint32_t* v, const uint32_t* row, uint32_t m, int steps) {
    for (int i = 0; i < steps; ++i) {
        const uint64_t next =
            (uint64_t{row[0]} * v[2] % m + uint64_t{row[1]} * v[1] % m + uint64_t{row[2]} * v[0] % m) % m;
        v[0] = v[1], v[1] = v[2], v[2] = static_cast<uint32_t>(next);
    }
}

TEST(Vectors, JumpsAreWalks) {
    const uint32_t row[] = {3000000019, 12, 4000000007};
    for (const uint32_t m : {11u, 65536u, 4294967295u})
        for (const int steps : {0, 1, 2, 3, 64, 1000}) {
            const uint32_t own_row[] = {row[0] % m, row[1] % m, row[2] % m};
            uint32_t jumped[] = {1 % m, 4294967290u % m, 5 % m}, array[3], walked[3];
            std::memcpy(walked, jumped, sizeof walked);
            std::memcpy(array, jumped, sizeof array);
            const uint64_t count[] = {static_cast<uint64_t>(steps), 0};
            __kuziVect3PowMod(jumped, own_row, m, count[0]);
            __kuziVect3PowArrayMod(array, own_row, m, 2, count);
            walk(walked, own_row, m, steps);
            EXPECT_EQ(std::memcmp(jumped, walked, sizeof walked), 0) << m << " " << steps;
            EXPECT_EQ(std::memcmp(array, walked, sizeof walked), 0) << m << " " << steps;
        }
}

// The table route with tables made here, against general powers of the same matrix.
template <class Route>
void compare_route(Route route, uint32_t m, const uint32_t* row) {
    std::vector<uint32_t> table(193 * 9);
    for (size_t k = 0; k < 193; ++k) {
        uint32_t column[3];
        uint64_t count[4] = {};
        count[k / 64] = uint64_t{1} << k % 64;
        for (size_t j = 0; j < 3; ++j) {
            for (size_t i = 0; i < 3; ++i) column[i] = i == j;
            __kuziVect3PowArrayMod(column, row, m, 4, count);
            for (size_t i = 0; i < 3; ++i) table[9 * k + 3 * i + j] = column[i];
        }
    }
    const uint64_t counts[][4] = {
        {0, 0, 0, 0}, {1, 0, 0, 0}, {~0ull, 0, 0, 1}, {0x123456789ABCDEF, ~0ull, 0x8000000000000000, 1}};
    for (const auto& count : counts) {
        uint32_t by_table[] = {m - 1, 0, m - 2}, general[] = {m - 1, 0, m - 2};
        route(by_table, 4, count, table.data());
        __kuziVect3PowArrayMod(general, row, m, 4, count);
        EXPECT_EQ(std::memcmp(by_table, general, sizeof general), 0) << count[0];
    }
}

TEST(Vectors, TableRoute) {
    const uint32_t row1[] = {0, 1403580, 4294967087 - 810728}, row2[] = {527612, 0, 4294944443 - 1370589};
    compare_route(__kuziVect3PowArrayMod_M1, 4294967087, row1);
    compare_route(__kuziVect3PowArrayMod_M2, 4294944443, row2);
}

// A linear generator whose characteristic polynomial is known by construction: x(i + p) = x(i + q) ^ x(i) on 32-bit words
// is 32 copies of the recurrence of x^p + x^q + 1. The words stand in a ring with a position of its own in every state.
constexpr int32_t p = 89, q = 38;
constexpr int32_t terms[] = {0, q, p};
constexpr int32_t words = 3;

struct Ring {
    Stream header;
    int32_t position;
    uint32_t word[p];
};
Ring* ring(Stream* state) { return reinterpret_cast<Ring*>(state); }
const Ring* ring(const Stream* state) { return reinterpret_cast<const Ring*>(state); }
uint32_t& at(Stream* state, int32_t i) { return ring(state)->word[(ring(state)->position + i) % p]; }
uint32_t value(const Stream* state, int32_t i) { return ring(state)->word[(ring(state)->position + i) % p]; }

void zero_state(Stream* state) {
    std::memset(ring(state)->word, 0, sizeof ring(state)->word);
    ring(state)->position = 0;
}
void add_state(Stream* dest, const Stream* source) {
    for (int32_t i = 0; i < p; ++i) at(dest, i) ^= value(source, i);
}
void copy_state(Stream* dest, const Stream* source) {
    ring(dest)->position = ring(source)->position;
    std::memcpy(ring(dest)->word, ring(source)->word, sizeof ring(source)->word);
}
void step_state(Stream* state) {
    at(state, 0) ^= value(state, q);
    ring(state)->position = (ring(state)->position + 1) % p;
}
void finish_state(Stream* stream, const Stream* state, int32_t adjust) {
    for (int32_t i = 0; i < p; ++i) ring(stream)->word[i] = value(state, i);
    ring(stream)->position = 0;
    ring(stream)->header.headerPad16 = static_cast<uint16_t>(adjust);
}
// Jumps of up to 10 are walked here; of longer ones three steps are, and that is noted.
int32_t pre_skip(Stream* stream, uint64_t* nskip, int32_t* adjust) {
    EXPECT_EQ(*adjust, 0);
    const uint64_t walked = *nskip <= 10 ? *nskip : 3;
    for (uint64_t i = 0; i < walked; ++i) step_state(stream);
    *nskip -= walked;
    *adjust = 3;
    return *nskip != 0;
}

Ring fresh() {
    Ring result = {};
    result.position = 17;
    uint32_t x = 1;
    for (uint32_t& word : result.word) word = x = x * 1664525 + 1013904223;
    return result;
}
bool same(const Ring& a, const Ring& b) {
    for (int32_t i = 0; i < p; ++i)
        if (value(&a.header, i) != value(&b.header, i)) return false;
    return true;
}

using Skip = decltype(&__kuz_SkipAheadHorner);
int32_t jump(Skip skip, Ring& state, uint64_t n) {
    return skip(&state.header, zero_state, add_state, copy_state, step_state, finish_state, pre_skip, n, words, p,
                static_cast<int32_t>(sizeof(Ring)), 3, terms);
}

TEST(Gf2, JumpsAreWalks) {
    Ring walked = fresh();
    uint64_t done = 0;
    for (const uint64_t n : {0, 1, 10, 11, 12, 91, 92, 93, 99, 100, 101, 102, 103, 256, 1000, 12345, 100000}) {
        for (; done < n; ++done) step_state(&walked.header);
        for (const Skip skip : {__kuz_SkipAheadHorner, __kuz_SkipAheadSWin}) {
            Ring jumped = fresh();
            ASSERT_EQ(jump(skip, jumped, n), StatusOk);
            EXPECT_TRUE(same(jumped, walked)) << n;
            EXPECT_EQ(jumped.header.headerPad16, n > 10 ? 3 : 0) << n;
        }
    }
}

TEST(Gf2, LongJumpsAgreeAndAdd) {
    for (const uint64_t n : {uint64_t{1} << 63, ~uint64_t{0}, uint64_t{0x123456789ABCDEF}}) {
        Ring horner = fresh(), window = fresh(), halves = fresh();
        jump(__kuz_SkipAheadHorner, horner, n);
        jump(__kuz_SkipAheadSWin, window, n);
        jump(__kuz_SkipAheadSWin, halves, n / 2);
        jump(__kuz_SkipAheadHorner, halves, n - n / 2);
        EXPECT_TRUE(same(horner, window)) << n;
        EXPECT_TRUE(same(horner, halves)) << n;
        EXPECT_FALSE(same(horner, fresh()));
    }
}

TEST(Gf2, EveryFailingAllocationIsToldAndReturned) {
    const int32_t before = orv_serv_live_blocks();
    const struct {
        Skip skip;
        int32_t allocations;
    } routes[] = {{__kuz_SkipAheadHorner, 3}, {__kuz_SkipAheadSWin, 5}};
    for (const auto& route : routes)
        for (int32_t nth = 1; nth <= route.allocations; ++nth) {
            Ring state = fresh(), stepped = fresh();
            for (int i = 0; i < 3; ++i) step_state(&stepped.header);
            orv_serv_fail_allocation(nth);
            EXPECT_EQ(jump(route.skip, state, 1000), StatusNoMemory) << nth;
            EXPECT_TRUE(same(state, stepped)) << "as pre_skip left it";
            EXPECT_EQ(orv_serv_live_blocks(), before);
        }
    orv_serv_fail_allocation(0);
}

// x^n by repeated multiplication by x.
TEST(Gf2, PolynomialRemainders) {
    const struct {
        std::vector<int32_t> terms;
        int32_t words;
    } polynomials[] = {
        {{0, 1}, 1},     {{0, 1, 2}, 1},   {{0, 1, 3}, 1},         {{0, 3, 31}, 1},          {{0, 5, 31, 32}, 1},
        {{0, 1, 3}, 40}, {{0, 7, 128}, 4}, {{0, 1, 2, 22, 32}, 2}, {{0, 40, 62, 63, 64}, 2},
    };
    for (const auto& polynomial : polynomials) {
        const int32_t degree = polynomial.terms.back();
        std::vector<uint32_t> out(2 * static_cast<size_t>(polynomial.words) + 1, 0xAAAAAAAA);
        std::vector<bool> expected(static_cast<size_t>(degree) + 1);
        expected[0] = true;
        for (int64_t n = 0; n < 300; ++n) {
            ASSERT_EQ(__kuzPolyRem(n, degree, static_cast<int32_t>(polynomial.terms.size()), polynomial.terms.data(),
                                   polynomial.words, out.data()),
                      StatusOk);
            for (int32_t i = 0; i < 32 * polynomial.words; ++i)
                ASSERT_EQ((out[static_cast<size_t>(i / 32)] >> i % 32 & 1) != 0,
                          i < degree && expected[static_cast<size_t>(i)])
                    << "degree " << degree << ", x^" << n << ", bit " << i;
            ASSERT_EQ(out.back(), 0xAAAAAAAA) << "written past the end";
            expected.insert(expected.begin(), false);
            const bool over = expected[static_cast<size_t>(degree)];
            if (over)
                for (const int32_t term : polynomial.terms)
                    expected[static_cast<size_t>(term)] = !expected[static_cast<size_t>(term)];
            expected.resize(static_cast<size_t>(degree) + 1);
        }
    }
}

}  // namespace
