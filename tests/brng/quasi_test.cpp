// Sobol and Niederr: points against their definition, direction numbers against plain recurrences, parameter blocks, jumps,
// and how evenly the points lie.
#include "quasi.h"
#include "services/test_switches.h"

#include <orv/services.h>

#include <cmath>

using namespace orv::test;

namespace {

constexpr int32_t both[] = {BrngSobol, BrngNiederr};

// ---- The walk --------------------------------------------------------------------------------------------------------

TEST(Quasi, BeginningOfTheFirstDimension) {
    for (const int32_t id : both) {
        OwnedStream stream(id, {1});
        double r[5];
        ASSERT_EQ(_kuzdRngUniform(0, stream, 5, r, 0, 1), StatusOk);
        EXPECT_TRUE(r[0] == 0.5 && r[1] == 0.75 && r[2] == 0.25 && r[3] == 0.375 && r[4] == 0.875) << id;
    }
}

// Calls cut anywhere, after jumps, for numbers of all types, in dimensions where the kernels and the places of the tables
// change.
TEST(Quasi, PointsAreThoseOfTheDefinition) {
    std::mt19937 dice(8);
    for (const int32_t id : both)
        for (const size_t dimension :
             {1, 2, 3, 4, 5, 7, 8, 13, 15, 16, 17, 31, 40, 41, 59, 60, 61, 64, 110, 111, 112, 206, 318, 319, 1000}) {
            const PlainSequence plain = random_numbers(dimension, 77 + static_cast<uint32_t>(dimension));
            const Words block = block_of(plain);
            OwnedStream words(id, block), doubles(id, block), floats(id, block);
            const double a = -1.5, b = 4;
            uint64_t at = 0;
            const int32_t limit = static_cast<int32_t>(3 * dimension) + 300;
            for (int call = 0; call < 40; ++call) {
                const int32_t n = static_cast<int32_t>(dice() % static_cast<uint32_t>(limit));
                const Words expected = plain.words(at, static_cast<size_t>(n));
                ASSERT_EQ(drawn(words, n), expected) << dimension << " from " << at;
                std::vector<double> d(static_cast<size_t>(n) + 1, 99);
                std::vector<float> s(static_cast<size_t>(n) + 1, 99);
                ASSERT_EQ(_kuzdRngUniform(0, doubles, n, d.data(), a, b), StatusOk);
                ASSERT_EQ(_kuzsRngUniform(0, floats, n, s.data(), a, b), StatusOk);
                ASSERT_TRUE(d.back() == 99 && s.back() == 99);
                for (size_t i = 0; i < expected.size(); ++i) {
                    const int32_t x = static_cast<int32_t>(expected[i] >> 1);
                    const double product = x * ((b - a) * 0x1p-31);
                    ASSERT_EQ(d[i], product + a) << dimension << " at " << at + i;
                    const float single = static_cast<float>(x) * static_cast<float>((b - a) * 0x1p-31);
                    ASSERT_EQ(s[i], single + static_cast<float>(a)) << dimension << " at " << at + i;
                }
                at += expected.size();
                if (call % 4 != 3) continue;
                const uint64_t skip =
                    call % 8 == 3 ? dice() % 1000 : dice() * (dimension < 100 ? uint64_t{dimension} : 3);
                if (at + skip > 0xF0000000 * uint64_t{dimension}) continue;
                for (Stream* stream : {words.handle, doubles.handle, floats.handle})
                    ASSERT_EQ(__kuzSkipAheadStream(stream, skip), StatusOk);
                at += skip;
            }
        }
}

TEST(Quasi, OneCoordinateAlone) {
    for (const int32_t id : both)
        for (const size_t dimension : {3, 50, 400}) {
            const PlainSequence plain = random_numbers(dimension, 5);
            OwnedStream stream(id, block_of(plain));
            EXPECT_EQ(__kuzLeapfrogStream(stream, 0, 5), BrngStatusNoLeapfrog);
            EXPECT_EQ(__kuzLeapfrogStream(stream, static_cast<int32_t>(dimension), 0x7FFFFFFF), BrngStatusNoLeapfrog);
            EXPECT_EQ(__kuzLeapfrogStream(stream, -1, 0x7FFFFFFF), BrngStatusNoLeapfrog);
            const auto expect = [&](uint32_t index, size_t j, int32_t n) {
                const Words own = drawn(stream, n);
                for (int32_t i = 0; i < n; ++i)
                    ASSERT_EQ(own[static_cast<size_t>(i)], plain.coordinate(index + static_cast<uint32_t>(i), j)) << i;
            };
            // In the middle of point 2: a coordinate that is still to come begins there, one that is over a point later.
            const int32_t before = static_cast<int32_t>(dimension) + 2;
            draw(stream, before);
            Stream* handle;
            ASSERT_EQ(__kuzCopyStream(&handle, stream), StatusOk);
            OwnedStream over(handle);
            ASSERT_EQ(__kuzLeapfrogStream(stream, 2, 0x7FFFFFFF), StatusOk);
            expect(2, 2, 100);
            ASSERT_EQ(__kuzLeapfrogStream(stream, 2, 0x7FFFFFFF), StatusOk) << "the same again changes nothing";
            expect(102, 2, 37);
            ASSERT_EQ(__kuzLeapfrogStream(stream, 0, 0x7FFFFFFF), StatusOk) << "another one skips a point";
            expect(140, 0, 70);
            std::swap(stream.handle, over.handle);
            ASSERT_EQ(__kuzLeapfrogStream(stream, 1, 0x7FFFFFFF), StatusOk);
            expect(3, 1, 33);
        }
}

TEST(Quasi, TheEndOfTheIndex) {
    const uint64_t last = 0xFFFFFFFF;
    for (const int32_t id : both) {
        OwnedStream stream(id, {3}), twin(id, {3});
        EXPECT_EQ(__kuzSkipAheadStream(stream, 3 * last), BrngStatusNoSkipAhead);
        EXPECT_EQ(__kuzSkipAheadStream(stream, 3 * (last - 1)), BrngStatusNoSkipAhead);
        EXPECT_EQ(__kuzSkipAheadStream(stream, ~uint64_t{0}), BrngStatusNoSkipAhead);
        EXPECT_EQ(drawn(stream, 7), drawn(twin, 7)) << "a refusal changes nothing";
        ASSERT_EQ(__kuzSkipAheadStream(stream, 3 * (last - 12) - 7), StatusOk);  // to index 2^32 - 12
        EXPECT_EQ(drawn(stream, 3), (numbers_of(id, {3}, 3).words(3 * (last - 12), 3)));
        Words none(20, 99);
        EXPECT_EQ(_kuziRngUniformBits(0, stream, 12, none.data()), BrngStatusQrngExhausted);
        EXPECT_EQ(none, Words(20, 99));
        EXPECT_EQ(_kuziRngUniformBits(0, stream, 10, none.data()), StatusOk);
        uint64_t zero = 0;
        const BrngProperties& generator = generator_of(stream);
        EXPECT_EQ(generator.initStream(InitMethodSkipAhead, stream, 0, &zero), BrngStatusNoSkipAhead);
        EXPECT_EQ(generator.initStream(InitMethodSkipAheadEx, stream, 1, &zero), BrngStatusNoSkipAheadEx);
        EXPECT_EQ(generator.initStream(4, stream, 1, &zero), StatusBadMethod);
        EXPECT_EQ(drawn(stream, 0), Words());
    }
}

// ---- Direction numbers -----------------------------------------------------------------------------------------------

// Sobol's recurrence on the numbers as fractions: v(k) = v(k-d) / 2^d + v(k-d) + the v(k-i) at the polynomial's terms.
Words sobol_numbers(uint32_t polynomial, const Words& initial) {
    const uint32_t degree = 31 - static_cast<uint32_t>(__builtin_clz(polynomial));
    Words v;
    for (uint32_t k = 0; k < 32; ++k) {
        if (k < degree) {
            v.push_back(initial[k] << (31 - k));
            continue;
        }
        uint32_t sum = v[k - degree] ^ v[k - degree] >> degree;
        for (uint32_t i = 1; i < degree; ++i)
            if (polynomial >> (degree - i) & 1) sum ^= v[k - i];
        v.push_back(sum);
    }
    return v;
}

struct Given {
    uint32_t polynomial;
    Words initial;
};
const Given dimension_2_to_5[] = {{3, {1}}, {7, {1, 1}}, {11, {1, 3, 7}}, {13, {1, 1, 5}}};

TEST(Sobol, NumbersFollowTheRecurrence) {
    const PlainSequence builtin = numbers_of(BrngSobol, {40}, 40);
    for (uint32_t k = 0; k < 32; ++k) EXPECT_EQ(builtin.numbers[0][k], uint32_t{0x80000000} >> k);
    for (size_t j = 0; j < 4; ++j)
        EXPECT_EQ(builtin.numbers[j + 1], sobol_numbers(dimension_2_to_5[j].polynomial, dimension_2_to_5[j].initial));
    EXPECT_EQ(builtin.numbers[39], sobol_numbers(299, {1, 3, 3, 9, 9, 25, 107, 39}));

    // User data: other polynomials with the built-in numbers, the other way round, both, and the first dimension too.
    const PlainSequence kind1 = numbers_of(BrngSobol, {3, 1, 1, 11, 13}, 3);
    EXPECT_EQ(kind1.numbers[1], sobol_numbers(11, {1, 3, 5})) << "dimension 2 goes on by its own polynomial";
    EXPECT_EQ(kind1.numbers[2], sobol_numbers(13, {1, 1, 7})) << "dimension 3 likewise";
    const PlainSequence kind2 = numbers_of(BrngSobol, {3, 1, 2, 2, 1, 77, 1, 3}, 3);
    EXPECT_EQ(kind2.numbers[1], sobol_numbers(3, {1}));
    EXPECT_EQ(kind2.numbers[2], sobol_numbers(7, {1, 3}));
    const PlainSequence kind3 = numbers_of(BrngSobol, {2, 1, 3, 37, 6, 1, 3, 3, 9, 5, 99}, 2);
    EXPECT_EQ(kind3.numbers[0], builtin.numbers[0]);
    EXPECT_EQ(kind3.numbers[1], sobol_numbers(37, {1, 3, 3, 9, 5}));
    const PlainSequence kind11 = numbers_of(BrngSobol, {2, 1, 11, 7, 11, 3, 1, 3, 0, 1, 3, 5}, 2);
    EXPECT_EQ(kind11.numbers[0], sobol_numbers(7, {1, 3}));
    EXPECT_EQ(kind11.numbers[1], sobol_numbers(11, {1, 3, 5}));
}

// The construction in the plain terms of its paper: a row of the matrix is a stretch of a sequence that obeys the linear
// recurrence of a power of the polynomial.
Words niederreiter_numbers(uint64_t polynomial) {
    const auto degree = [](uint64_t p) { return 63 - __builtin_clzll(p); };
    const int e = degree(polynomial);
    Words numbers(32);
    uint64_t b = 1;
    for (int row = 0; row < 32;) {
        const int m = degree(b);
        uint64_t next = 0;
        for (int i = 0; i <= e; ++i)
            if (polynomial >> i & 1) next ^= b << i;
        b = next;
        std::vector<bool> v(64);
        for (int k = m; k < 32 + e; ++k) {
            v[static_cast<size_t>(k)] = k < m + e;
            for (int t = 0; k >= m + e && t < m + e; ++t)
                if (b >> t & 1)
                    v[static_cast<size_t>(k)] = v[static_cast<size_t>(k)] != v[static_cast<size_t>(k - m - e + t)];
        }
        for (int u = 0; u < e && row < 32; ++u, ++row)
            for (int column = 0; column < 32; ++column)
                if (v[static_cast<size_t>(u + column)])
                    numbers[static_cast<size_t>(column)] |= uint32_t{1} << (31 - row);
    }
    return numbers;
}

bool divides(uint64_t a, uint64_t b) {
    for (int shift = __builtin_clzll(a) - __builtin_clzll(b); shift >= 0; --shift)
        if (b >> (63 - __builtin_clzll(a) + shift) & 1) b ^= a << shift;
    return b == 0;
}

TEST(Niederr, NumbersFollowTheConstruction) {
    const PlainSequence builtin = numbers_of(BrngNiederr, {318}, 318);
    uint64_t polynomial = 1;
    for (size_t j = 0; j < 318; ++j) {
        bool irreducible;
        do {
            ++polynomial;
            irreducible = true;
            for (uint64_t q = 2; irreducible && q * q < 4 * polynomial; ++q)
                irreducible = q >= polynomial || !divides(q, polynomial);
        } while (!irreducible);
        ASSERT_EQ(builtin.numbers[j], niederreiter_numbers(polynomial)) << "dimension " << j + 1;
    }
    EXPECT_EQ(polynomial, 3047u);
    const PlainSequence user = numbers_of(BrngNiederr, {4, 1, 1, 0xFFFFFFFF, 2, 0x80000001, 6}, 4);
    const uint64_t polynomials[] = {0xFFFFFFFF, 2, 0x80000001, 6};
    for (size_t j = 0; j < 4; ++j) EXPECT_EQ(user.numbers[j], niederreiter_numbers(polynomials[j])) << j;
}

// ---- Parameter blocks ------------------------------------------------------------------------------------------------

int32_t dimension_of(const Stream* stream) { return reinterpret_cast<const int32_t*>(stream + 1)[1]; }

TEST(Quasi, MalformedBlocksAreDropped) {
    const struct {
        int32_t id;
        Words block;
        int32_t dimension;  // of the built-in numbers that serve instead
    } cases[] = {
        {BrngSobol, {}, 1},
        {BrngSobol, {40}, 40},
        {BrngSobol, {41}, 1},
        {BrngSobol, {0}, 1},
        {BrngSobol, {0xFFFFFFFF}, 1},
        {BrngSobol, {5, 1}, 5},
        {BrngSobol, {41, 1}, 1},
        {BrngSobol, {0, 1, 4, 7, 7}, 1},
        {BrngSobol, {0x80000000, 1, 4, 7}, 1},
        {BrngSobol, {3, 1, 1, 7}, 3},      // a word too short
        {BrngSobol, {3, 2, 1, 7, 11}, 3},  // no user data
        {BrngSobol, {3, 1, 9, 7, 11}, 3},  // unknown kinds
        {BrngSobol, {3, 1, 0, 7, 11}, 3},
        {BrngSobol, {3, 1, 12, 7, 11}, 3},
        {BrngSobol, {3, 1, 1, 1, 11}, 3},  // a polynomial of degree 0
        {BrngSobol, {3, 1, 1, 11, 0}, 3},
        {BrngSobol, {3, 1, 1, 0, 512}, 3},               // ... beside one that is too long
        {BrngSobol, {4, 1, 2, 2, 1, 1, 1, 1, 1, 1}, 4},  // dimension 4 wants three numbers
        {BrngSobol, {3, 1, 2, 0, 1, 1}, 3},              // D outside 1 to 32
        {BrngSobol, {2, 1, 2, 33, 1, 1}, 2},
        {BrngSobol, {3, 1, 2, 0x80000000, 1, 1}, 3},  // 2 D is 2^32
        {BrngSobol, {0x10000, 1, 3, 7, 0x10000, 1, 1}, 1},
        {BrngSobol, {3, 1, 3, 7, 11}, 3},  // the length before D
        {BrngSobol, {3, 1, 3, 7, 11, 2, 1, 1, 1}, 3},
        {BrngSobol, {3, 1, 3, 7, 11, 2, 1, 1, 1, 1}, 3},  // degree 3 of two numbers
        {BrngSobol, {2, 1, 11, 7, 7, 2, 1, 1, 1}, 2},
        {BrngSobol, {1, 1, 11, 7, 2, 1}, 1},
        {BrngSobol, {0x08000000, 1, 4, 7, 7, 7}, 1},  // 32 times that is 2^32
        {BrngNiederr, {}, 1},
        {BrngNiederr, {318}, 318},
        {BrngNiederr, {319}, 1},
        {BrngNiederr, {0xFFFFFFFF, 1, 1, 2}, 1},
        {BrngNiederr, {3, 1, 1, 2, 3}, 3},
        {BrngNiederr, {3, 1, 1, 2, 3, 1}, 3},
        {BrngNiederr, {3, 1, 1, 2, 0, 7}, 3},
        {BrngNiederr, {3, 1, 2, 2, 3, 7}, 3},
        {BrngNiederr, {2, 0, 1, 2, 3}, 2},
        {BrngNiederr, {1, 1, 4, 2, 3}, 1},
        {BrngNiederr, {0x08000000, 1, 4, 7, 7, 7}, 1},
        {BrngNiederr, {0x7FFFFFFF, 1, 1, 7, 7, 7}, 1},
    };
    for (const auto& c : cases) {
        OwnedStream stream(c.id, c.block), builtin(c.id, {static_cast<uint32_t>(c.dimension)});
        const int32_t which = static_cast<int32_t>(&c - cases);
        EXPECT_EQ(dimension_of(stream), c.dimension) << which;
        EXPECT_EQ(__kuzGetNumChunks(stream), 0) << which;
        EXPECT_EQ(drawn(stream, 999), drawn(builtin, 999)) << which;
    }
}

TEST(Quasi, FailingSeedsLeaveADeletableStream) {
    const int32_t before = orv_serv_live_blocks();
    const Words sobol = block_of(random_numbers(3, 1)), niederr = block_of(random_numbers(319, 1));
    const struct {
        int32_t id;
        Words block;
        int32_t failing, status;  // the allocation after the record's that fails
    } cases[] = {
        {BrngSobol, {3, 1, 1, 512, 3}, 0, StatusBadAbstractArgs},
        {BrngSobol, sobol, 2, StatusNoMemory},
        {BrngSobol, sobol, 3, StatusNoMemory},
        {BrngSobol, sobol, 4, StatusNoMemory},
        {BrngSobol, sobol, 5, StatusNoMemory},
        {BrngNiederr, niederr, 2, StatusNoMemory},
        {BrngNiederr, niederr, 3, StatusNoMemory},
    };
    for (const auto& c : cases) {
        Stream* stream = nullptr;
        orv_serv_fail_allocation(c.failing);
        EXPECT_EQ(__kuzNewStreamEx(&stream, c.id, static_cast<int32_t>(c.block.size()), c.block.data()), c.status);
        orv_serv_fail_allocation(0);
        ASSERT_NE(stream, nullptr);
        __kuzDeleteStream(&stream);
        EXPECT_EQ(orv_serv_live_blocks(), before) << c.failing;
    }
}

// Words of every kind in every place, at the exact length: a stream comes out, or -3, and the sanitizers are silent.
TEST(Quasi, AnyWordsSeed) {
    std::mt19937 dice(11);
    const uint32_t likely[] = {0,  1,  2,  3,  4,   5,   7,          8,          11,        13,
                               32, 33, 40, 41, 318, 319, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (int trial = 0; trial < 3000; ++trial) {
        Words block(dice() % (trial % 16 == 0 ? 200 : 20));
        for (uint32_t& word : block)
            word = dice() % 4 == 0 ? dice() >> dice() % 32 : likely[dice() % std::size(likely)];
        if (block.size() > 2 && trial % 8 != 0) block[1] = 1;
        for (const int32_t id : both) {
            Stream* stream = nullptr;
            const int32_t status = __kuzNewStreamEx(&stream, id, static_cast<int32_t>(block.size()), block.data());
            ASSERT_TRUE(status == StatusOk || (id == BrngSobol && status == StatusBadAbstractArgs)) << status;
            if (status == StatusOk) drawn(stream, 33);
            __kuzDeleteStream(&stream);
        }
    }
}

// ---- Evenness --------------------------------------------------------------------------------------------------------

// The t-value of two coordinates' first 2^m points: with t, the first k and m - t - k rows of the two matrices (the leading
// bits of the numbers) are independent for every k.
int t_value(const Words& a, const Words& b, int m) {
    const auto independent = [&](int rows_a, int rows_b) {
        std::vector<uint32_t> basis;
        for (int i = 0; i < rows_a + rows_b; ++i) {
            const Words& numbers = i < rows_a ? a : b;
            uint32_t row = 0;
            for (int k = 0; k < m; ++k)
                row |= (numbers[static_cast<size_t>(k)] >> (31 - (i < rows_a ? i : i - rows_a)) & 1) << k;
            for (const uint32_t other : basis) row = std::min(row, row ^ other);
            if (row == 0) return false;
            basis.push_back(row);
        }
        return true;
    };
    for (int t = 0; t < m; ++t) {
        bool all = true;
        for (int k = 0; all && k <= m - t; ++k) all = independent(k, m - t - k);
        if (all) return t;
    }
    return m;
}

TEST(Evenness, EveryElementaryIntervalHoldsItsShare) {
    constexpr int m = 8, points = 1 << m, dimensions = 10, blocks = 4;
    for (const int32_t id : both) {
        const PlainSequence numbers = numbers_of(id, {dimensions}, dimensions);
        OwnedStream stream(id, {dimensions});
        Words all(dimensions);  // the point of zeros, and the others as they are drawn
        const Words rest = drawn(stream, dimensions * (blocks * points - 1));
        all.insert(all.end(), rest.begin(), rest.end());
        int worst = 0;
        for (size_t a = 0; a < dimensions; ++a)
            for (size_t b = a + 1; b < dimensions; ++b) {
                const int t = t_value(numbers.numbers[a], numbers.numbers[b], m);
                worst = std::max(worst, t);
                for (int block = 0; block < blocks; ++block)
                    for (int k = 0; k <= m - t; ++k) {
                        std::vector<int> count(static_cast<size_t>(1) << (m - t));
                        for (int i = block * points; i < (block + 1) * points; ++i) {
                            const uint32_t* point = &all[static_cast<size_t>(i) * dimensions];
                            const uint64_t cell_a = uint64_t{point[a]} >> (32 - k);
                            const uint64_t cell_b = uint64_t{point[b]} >> (32 - (m - t - k));
                            ++count[static_cast<size_t>(cell_a << (m - t - k) | cell_b)];
                        }
                        for (const int c : count) ASSERT_EQ(c, 1 << t) << id << " " << a << " " << b << " " << k;
                    }
            }
        EXPECT_LE(worst, 6) << "of 8: with numbers that say nothing the test would prove nothing";
    }
}

// An integral over ten dimensions: the error falls like 1 / n, to far below that of random points, which is 0.09 / sqrt(n)
// for the product of 1 + (x - 1/2) / 3.
TEST(Evenness, AnIntegralInTenDimensions) {
    for (const int32_t id : both) {
        OwnedStream stream(id, {10});
        double sum = 0;
        int32_t n = 0;
        for (int32_t goal = 1 << 10; goal <= 1 << 18; goal *= 4) {
            for (; n < goal; ++n) {
                double x[10], product = 1;
                ASSERT_EQ(_kuzdRngUniform(0, stream, 10, x, 0, 1), StatusOk);
                for (const double each : x) product *= 1 + (each - 0.5) / 3;
                sum += product;
            }
            EXPECT_LT(std::fabs(sum / n - 1), 5.0 / n) << id << " " << n;
        }
    }
}

}  // namespace
