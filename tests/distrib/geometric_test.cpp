// Geometric: its formula to the bit, its distribution, and the ends of p.
#include "distrib/deviates.h"

using namespace orv::test;

namespace {

TEST(Geometric, EqualsItsFormula) {
    for (const double p : {0.5, 0.01, 0.9})
        for (const int32_t n : {0, -4, 1, 3, 1023, 1024, 1025, 2500}) {
            OwnedStream stream(BrngPHILOX4X32X10, {6}), twin(BrngPHILOX4X32X10, {6});
            const int32_t count = std::max(n, 0);
            std::vector<int32_t> r(static_cast<size_t>(count) + 1, 99);
            ASSERT_EQ(_kuziRngGeometric(0, stream, n, r.data(), p), StatusOk);
            const auto u = uniforms(twin, count, 0.0f, 1.0f);
            const float factor = static_cast<float>(1 / __kuzdLn(1 - p));
            for (size_t i = 0; i < u.size(); ++i) ASSERT_EQ(r[i], static_cast<int32_t>(ln(u[i]) * factor)) << p;
            EXPECT_EQ(r.back(), 99);
            EXPECT_EQ(draw(stream, 4), draw(twin, 4));
        }
}

TEST(Geometric, HasItsProbabilities) {
    for (const double p : {0.5, 0.2, 0.03}) {
        OwnedStream stream(BrngSFMT19937, {271828});
        constexpr int32_t n = 200000, cells = 24;
        std::vector<int32_t> r(n), counts(cells);
        ASSERT_EQ(_kuziRngGeometric(0, stream, n, r.data(), p), StatusOk);
        for (const int32_t k : r) {
            ASSERT_GE(k, 0);
            ++counts[static_cast<size_t>(std::min(k, cells - 1))];
        }
        double chi = 0, rest = 1;
        int freedom = -1;
        for (int k = 0; k < cells; ++k) {
            const double probability = k + 1 < cells ? rest * p : rest, expected = n * probability;
            const double count = counts[static_cast<size_t>(k)];
            rest -= probability;
            if (expected < 5) continue;
            chi += (count - expected) * (count - expected) / expected;
            ++freedom;
        }
        EXPECT_LT(chi, freedom + 3.8 * std::sqrt(2.0 * freedom) + 5) << p;
    }
}

TEST(Geometric, AtTheEndsOfItsParameter) {
    constexpr int32_t most = 2147483647;
    const struct {
        double p, u;
        int32_t result;
    } cases[] = {{1, 0.3, 0},   {1.5, 0.3, 0}, {1, 0, 0},          {0, 0.5, most}, {1e-17, 0.5, most},
                 {1e-17, 1, 0}, {0.5, 1, 0},   {1e-12, 0.5, most}, {0.5, 0, 149},  {1e-3, 0, 103227}};
    for (const auto& [p, u, result] : cases) {
        OwnedStream stream(ConstantGenerator::id(u), {});
        int32_t r[7];
        ASSERT_EQ(_kuziRngGeometric(0, stream, 7, r, p), StatusOk);
        for (const int32_t x : r) EXPECT_EQ(x, result) << p << " " << u;
    }
    const uint32_t mode = _arqGetMode();
    OwnedStream failing(ConstantGenerator::id(0.5, 1), {});
    std::vector<int32_t> r(2000);
    EXPECT_EQ(_kuziRngGeometric(0, failing, 2000, r.data(), 0.5), BrngStatusQrngExhausted);
    EXPECT_EQ(_arqGetMode(), mode);
    EXPECT_EQ(_arqGetErrorCallBack(), nullptr);
}

}  // namespace
