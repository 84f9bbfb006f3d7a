// Uniform, raw bits and Bernoulli: which numbers they take from the generator and what they make of them.
#include "streams/streams.h"

#include <cmath>
#include <cstring>
#include <limits>

using namespace orv::test;

namespace {

// A generator of this test's own, with outputs just outside the interval, or a failure.
int32_t own_status = StatusOk;
int32_t own_init(int32_t, Stream*, int32_t, const void*) { return StatusOk; }
template <class Real>
int32_t own_real(Stream*, int32_t n, Real* r, Real a, Real b) {
    for (int32_t i = 0; i < n; ++i)
        r[i] = i % 3 == 0 ? std::nextafter(a, a - 1) : i % 3 == 1 ? std::nextafter(b, b + 1) : (a + b) / 2;
    return own_status;
}
int32_t own_words(Stream*, int32_t n, void* r) {
    for (int32_t i = 0; i < n; ++i) static_cast<uint32_t*>(r)[i] = static_cast<uint32_t>(i);
    return own_status;
}
int32_t own_generator() {
    static const BrngProperties row = {16, 1, 1, 4, 32, own_init, own_real<float>, own_real<double>, own_words};
    static const int32_t id = __kuzRegisterBrng(&row);
    return id;
}

template <class Real>
void check_clamping(int32_t (*uniform)(int32_t, Stream*, int32_t, Real*, Real, Real)) {
    OwnedStream stream(own_generator(), {});
    std::vector<Real> raw(10), clamped(10);
    const Real a = 2, b = 5;
    ASSERT_EQ(uniform(0x3FFFFFFF, stream, 10, raw.data(), a, b), StatusOk);
    ASSERT_EQ(uniform(UniformAccurate, stream, 10, clamped.data(), a, b), StatusOk);
    for (size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(raw[i], i % 3 == 0   ? std::nextafter(a, Real(0))
                          : i % 3 == 1 ? std::nextafter(b, Real(9))
                                       : Real(3.5));
        EXPECT_EQ(clamped[i], i % 3 == 0 ? a : i % 3 == 1 ? b : Real(3.5));
    }
    own_status = AbstractStatusNoNumbers;
    EXPECT_EQ(uniform(UniformAccurate, stream, 10, clamped.data(), a, b), AbstractStatusNoNumbers);
    EXPECT_EQ(clamped, raw) << "no clamping after a failure";
    own_status = 3;
    EXPECT_EQ(uniform(UniformAccurate, stream, 10, clamped.data(), a, b), 3)
        << "a positive status is success and passed up";
    EXPECT_EQ(clamped[0], a);
    own_status = StatusOk;
}

TEST(Uniform, AccurateClamps) {
    check_clamping<double>(_kuzdRngUniform);
    check_clamping<float>(_kuzsRngUniform);
}

TEST(Uniform, IntegersAreDoublesRoundedDown) {
    const struct { int32_t a, b; } cases[] = {{-3, 3}, {0, 1}, {-2147483647 - 1, 2147483647}, {7, 8}};
    for (const int32_t id : present)
        for (const auto& c : cases)
            for (const int32_t n : {0, 1, 3, 5, 1023, 1024, 1025, 5000}) {
                OwnedStream stream(id, {6}), twin(id, {6});
                std::vector<int32_t> r(static_cast<size_t>(n) + 1, 99);
                std::vector<double> u(static_cast<size_t>(n) + 1);
                ASSERT_EQ(_kuziRngUniform(0, stream, n, r.data(), c.a, c.b), StatusOk);
                if (n > 0) _kuzdRngUniform(0, twin, n, u.data(), c.a, c.b);
                for (size_t i = 0; i + 1 < r.size(); ++i) ASSERT_EQ(r[i], std::floor(u[i])) << i;
                ASSERT_EQ(r.back(), 99);
                EXPECT_EQ(draw(stream, 3), draw(twin, 3)) << "as many numbers are used up";
            }
}

// Every value from a to b - 1, equally often: chi-square of 6 cells, 99.9 % quantile 20.5.
TEST(Uniform, IntegersFillTheirRange) {
    for (const int32_t id : present) {
        OwnedStream stream(id, {31415});
        std::vector<int32_t> r(60000);
        ASSERT_EQ(_kuziRngUniform(0, stream, 60000, r.data(), -3, 3), StatusOk);
        int32_t count[6] = {};
        for (const int32_t x : r) {
            ASSERT_TRUE(x >= -3 && x <= 2) << x;
            ++count[x + 3];
        }
        double chi = 0;
        for (const int32_t c : count) chi += (c - 1e4) * (c - 1e4) / 1e4;
        EXPECT_LT(chi, 20.5) << id;
    }
}

TEST(Bits, OfTheGenerator) {
    OwnedStream stream(BrngMCG59, {5}), twin(BrngMCG59, {5});
    std::vector<uint64_t> words(7);
    ASSERT_EQ(_kuziRngUniformBits(0, stream, 7, words.data()), StatusOk);
    EXPECT_EQ(words, draw(twin, 7));
}

TEST(Bits, FullWidthFromMcg59) {
    for (const int32_t n : {0, 1, 5, 1023, 1025, 2048, 5000}) {
        OwnedStream stream(BrngMCG59, {5, 6}), wide(3, {5, 6}), twin(BrngMCG59, {5, 6});
        std::vector<uint32_t> bits32(static_cast<size_t>(2 * n) + 1, 77);
        std::vector<uint64_t> bits64(static_cast<size_t>(n) + 1, 77);
        ASSERT_EQ(_kuziRngUniformBits32(0, stream, 2 * n, bits32.data()), StatusOk);
        ASSERT_EQ(_kuziRngUniformBits64(0, wide, n, bits64.data()), StatusOk);
        const std::vector<uint64_t> raw = draw(twin, 2 * n);
        for (size_t i = 0; i < raw.size(); ++i) {
            ASSERT_EQ(bits32[i], raw[i] >> 27);
            ASSERT_EQ(bits64[i / 2] >> (i % 2 * 32) & 0xFFFFFFFF, raw[i] >> 27);
        }
        EXPECT_EQ(bits32.back(), 77u);
        EXPECT_EQ(bits64.back(), 77u);
    }
}

TEST(Bits, NoneOfACountBelowZero) {
    constexpr int32_t least = std::numeric_limits<int32_t>::min();
    for (const int32_t id : {BrngMCG59 + 0, BrngMT19937 + 0, BrngSFMT19937 + 0})
        for (const int32_t n : {-1, least / 2, least / 2 - 1, least + 1, least}) {
            OwnedStream stream(id, {5}), twin(id, {5});
            uint32_t narrow = 77;
            uint64_t wide = 77;
            EXPECT_EQ(_kuziRngUniformBits32(0, stream, n, &narrow), StatusOk);
            EXPECT_EQ(_kuziRngUniformBits64(0, stream, n, &wide), StatusOk);
            EXPECT_TRUE(narrow == 77 && wide == 77) << id << " " << n;
            EXPECT_EQ(draw(stream, 5), draw(twin, 5)) << id << " " << n;
        }
}

TEST(Bits, RefusedWithoutFullWidth) {
    uint32_t r[2] = {77, 77};
    uint64_t wide = 77;
    for (const int32_t id : {BrngMCG31M1 + 0, BrngMRG32K3A + 0, own_generator()}) {
        OwnedStream stream(id, {5});
        EXPECT_EQ(_kuziRngUniformBits32(0, stream, 2, r), BrngStatusNoFullWidth) << id;
        EXPECT_EQ(_kuziRngUniformBits64(0, stream, 1, &wide), BrngStatusNoFullWidth) << id;
    }
    // Rows are told by their number, also those whose generators are not in the build; a hand-made header is enough.
    for (const int32_t id : {BrngR250 + 0, BrngWH + 5, 200, BrngSobol + 0, 278, BrngSAbstract + 0}) {
        Stream header = {id, 1, 0, 0, 0};
        EXPECT_EQ(_kuziRngUniformBits32(0, &header, 2, r), BrngStatusNoFullWidth) << id;
        EXPECT_EQ(_kuziRngUniformBits64(0, &header, 1, &wide), BrngStatusNoFullWidth) << id;
    }
    EXPECT_TRUE(r[0] == 77 && wide == 77);
}

TEST(Bernoulli, ComparesFloats) {
    for (const double p : {0.0, 1e-3, 0.3, 0.5, 1.0}) {
        OwnedStream stream(BrngMRG32K3A, {271828}), twin(BrngMRG32K3A, {271828});
        std::vector<int32_t> r(10003);
        std::vector<float> u(10003);
        ASSERT_EQ(_kuziRngBernoulli(0, stream, 10003, r.data(), p), StatusOk);
        _kuzsRngUniform(0, twin, 10003, u.data(), 0.0f, 1.0f);
        int32_t ones = 0;
        for (size_t i = 0; i < r.size(); ++i) {
            ASSERT_EQ(r[i], static_cast<float>(p) > u[i]) << i;
            ones += r[i];
        }
        EXPECT_NEAR(ones, 10003 * p, 4 * std::sqrt(10003 * p * (1 - p)) + 1) << p;
        EXPECT_EQ(draw(stream, 3), draw(twin, 3));
    }
    OwnedStream stream(own_generator(), {});
    int32_t r[4];
    own_status = BrngStatusQrngExhausted;
    EXPECT_EQ(_kuziRngBernoulli(0, stream, 4, r, 0.5), BrngStatusQrngExhausted);
    EXPECT_EQ(_kuziRngUniform(0, stream, 4, r, 0, 9), BrngStatusQrngExhausted);
    own_status = StatusOk;
}

}  // namespace
