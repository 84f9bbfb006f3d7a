// Multinomial: sums, distributions of single counts, refused probabilities, and what is left without memory.
#include "distrib/deviates.h"
#include "distrib/discrete_laws.h"
#include "services/test_switches.h"

#include <orv/services.h>

#include <numeric>

using namespace orv::test;

namespace {

struct Case {
    int32_t ntrial;
    std::vector<double> p;
};

std::vector<double> even(size_t k) { return std::vector<double>(k, 1.0 / static_cast<double>(k)); }
std::vector<double> mostly_last(size_t k, double last) {
    std::vector<double> p(k, (1 - last) / static_cast<double>(k - 1));
    p.back() = last;
    return p;
}

// Each count of a row is binomial.
TEST(Multinomial, RowsSumToTheTrialsAndCountsAreBinomial) {
    const Case cases[] = {{100, {0.5, 0.2, 0.3}},
                          {1, {0.25, 0.75}},
                          {4, mostly_last(63, 0.99)},
                          {16, mostly_last(256, 0.5)},
                          {16, mostly_last(255, 0.5)},
                          {1000, mostly_last(30, 0.2)},
                          {3, {0.0, 0.5, 0.0, 0.5, 0.0}},
                          {20000, {0.0, 0.9, 0.1}},
                          {7, {1.0}},
                          {5, {0.0, 1.0}},
                          {50, mostly_last(1000, 0.3)}};
    for (const Case& c : cases) {
        const size_t k = c.p.size();
        const int32_t n = k > 100 ? 4000 : 20000;
        std::vector<int32_t> r(k * static_cast<size_t>(n));
        OwnedStream stream(BrngSFMT19937, {31});
        ASSERT_EQ(_kuziRngMultinomial(0, stream, n, r.data(), c.ntrial, static_cast<int32_t>(k), c.p.data()), StatusOk);
        const std::string name = std::to_string(c.ntrial) + " in " + std::to_string(k);
        for (size_t row = 0; row < r.size(); row += k) {
            ASSERT_EQ(std::accumulate(&r[row], &r[row] + k, 0), c.ntrial) << name;
            for (size_t j = 0; j < k; ++j) ASSERT_TRUE(r[row + j] >= 0 && (c.p[j] > 0 || r[row + j] == 0)) << name;
        }
        for (const size_t j : {size_t{0}, k / 2, k - 1}) {
            const Cells cells = cells_of(probabilities(binomial(c.ntrial, c.p[j])), 200, 1);
            std::vector<int64_t> counts(cells.p.size());
            for (size_t row = 0; row < r.size(); row += k) ++counts[cell_of(cells, r[row + j])];
            EXPECT_LT(chi_square(counts, cells), 4) << name << ", " << j;
        }
    }
}

TEST(Multinomial, RefusedProbabilitiesAndNoTrials) {
    const struct {
        int32_t k;
        double p[3];
        int32_t status;
    } cases[] = {{3, {0.5, 0.2, 0.2995}, StatusOk},
                 {3, {0.5, 0.2, 0.3005}, StatusOk},
                 {3, {0.5, 0.2, 0.298}, MultinomialStatusBadProbabilities},
                 {3, {0.5, 0.2, 0.302}, MultinomialStatusBadProbabilities},
                 {3, {0.5, -0.2, 0.7}, MultinomialStatusBadProbabilities},
                 {3, {0.5, NAN, 0.5}, MultinomialStatusBadProbabilities},
                 {0, {1, 0, 0}, MultinomialStatusBadProbabilities},
                 {-1, {1, 0, 0}, MultinomialStatusBadProbabilities},
                 {1, {0.9995, 0, 0}, StatusOk}};
    for (const auto& c : cases) {
        OwnedStream stream(BrngMCG59, {9}), twin(BrngMCG59, {9});
        int32_t r[6] = {7, 7, 7, 7, 7, 7};
        EXPECT_EQ(_kuziRngMultinomial(0, stream, 2, r, 10, c.k, c.p), c.status) << c.p[2];
        const bool drawn = c.status == StatusOk;
        EXPECT_EQ(std::accumulate(r, r + (drawn ? c.k : 6), 0), drawn ? 10 : 42) << c.p[2];
    }
    OwnedStream stream(BrngMCG59, {9}), twin(BrngMCG59, {9});
    int32_t r[4] = {7, 7, 7, 7};
    const double bad[2] = {3, 4};
    EXPECT_EQ(_kuziRngMultinomial(0, stream, 2, r, 0, 2, bad), StatusOk);
    EXPECT_EQ(std::accumulate(r, r + 4, 0), 0);
    EXPECT_EQ(draw(stream, 2), draw(twin, 2));
}

TEST(Multinomial, FailuresGiveBackTheMemory) {
    const std::vector<double> few = even(5), many = even(64);
    for (const auto& [ntrial, p] : {Case{1000, few}, Case{4, many}})
        for (int32_t nth = 1; nth <= 3; ++nth) {
            std::vector<int32_t> r(p.size() * 3);
            const int32_t k = static_cast<int32_t>(p.size()), before = orv_serv_live_blocks();
            OwnedStream stream(BrngMCG59, {9});
            const int32_t with_stream = orv_serv_live_blocks();
            orv_serv_fail_allocation(nth);
            EXPECT_EQ(_kuziRngMultinomial(0, stream, 3, r.data(), ntrial, k, p.data()), StatusNoMemory) << nth;
            orv_serv_fail_allocation(0);
            EXPECT_EQ(orv_serv_live_blocks(), with_stream) << before;
            OwnedStream failing(ConstantGenerator::id(0.5, nth - 1), {});
            const int32_t with_both = orv_serv_live_blocks();
            EXPECT_EQ(_kuziRngMultinomial(0, failing, 3, r.data(), ntrial, k, p.data()), BrngStatusQrngExhausted)
                << nth;
            EXPECT_EQ(orv_serv_live_blocks(), with_both);
        }
}

}  // namespace
