// Poisson numbers as functions of a normal number: the distribution function that each map gives over all normal numbers,
// against the exact one. Uniforms with chosen values run through the range; where the result steps is where the map does.
#include "distrib/deviates.h"
#include "distrib/discrete_laws.h"

using namespace orv::test;

namespace {

// A generator that runs through an even grid of uniforms, over and over.
struct GridGenerator {
    static constexpr int32_t size = 1 << 17;
    static inline int32_t at = 0;

    template <class T>
    static int32_t fill(Stream*, int32_t n, T* r, T a, T b) {
        for (int32_t i = 0; i < n; ++i, at = (at + 1) % size)
            r[i] = static_cast<T>(a + (b - a) * static_cast<T>((at + 0.5) / size));
        return StatusOk;
    }
    static int32_t id() {
        static const BrngProperties row = {
            16, 1, 1, 4, 32, ConstantGenerator::init, fill<float>, fill<double>, ConstantGenerator::words};
        static const int32_t registered = __kuzRegisterBrng(&row);
        at = 0;
        return registered;
    }
};

struct Errors {
    double distribution, mean, variance;
};

// The results for the grid, in order, are the quantiles of the map; a result below one before it counts where it is.
Errors errors_of(const DiscreteLaw& law, double lambda) {
    OwnedStream stream(GridGenerator::id(), {});
    std::vector<int32_t> r(GridGenerator::size);
    EXPECT_EQ(law.draw(stream, GridGenerator::size, r.data()), StatusOk);
    const Probabilities exact = probabilities(law);
    std::sort(r.begin(), r.end());
    Errors e = {0, 0, 0};
    double cdf = 0, mean = 0, square = 0;
    for (size_t i = 0; i < exact.p.size(); ++i) {
        cdf += static_cast<double>(exact.p[i]);
        const auto above = std::upper_bound(r.begin(), r.end(), exact.first + static_cast<int64_t>(i));
        e.distribution =
            std::max(e.distribution, std::abs(static_cast<double>(above - r.begin()) / GridGenerator::size - cdf));
    }
    for (const int32_t k : r) mean += k - lambda;
    mean /= GridGenerator::size;
    for (const int32_t k : r) square += (k - lambda - mean) * (k - lambda - mean);
    e.mean = std::abs(mean) / lambda;
    e.variance = std::abs(square / GridGenerator::size / lambda - 1);
    return e;
}

DiscreteLaw poisson_v(double lambda) {
    DiscreteLaw law = poisson(PoissonNormal, lambda);
    law.draw = [=](Stream* s, int32_t n, int32_t* r) {
        const std::vector<double> means(static_cast<size_t>(n), lambda);
        return _kuziRngPoissonV(0, s, n, r, means.data());
    };
    return law;
}

// The grid itself is wrong by its spacing at most, 8e-6.
TEST(PoissonMap, OfOneMean) {
    for (int i = 0; i < 7 * 12; ++i) {
        const double lambda = std::exp2(i / 12.0);
        if (lambda >= 100) break;
        const Errors e = errors_of(poisson(PoissonNormal, lambda), lambda);
        EXPECT_LT(e.distribution, 1.06e-4) << lambda;
        EXPECT_LT(e.mean, 2e-4) << lambda;
        EXPECT_LT(e.variance, 1.5e-3) << lambda;
    }
    for (const double lambda : {1e-3, 0.1, 0.5, 0.999})
        EXPECT_LT(errors_of(poisson(PoissonNormal, lambda), lambda).distribution, 1e-5) << lambda;
    for (const double lambda : {100.0, 101.0, 150.0, 1000.0, 1e5})
        EXPECT_LT(errors_of(poisson(PoissonNormal, lambda), lambda).distribution, 1.1e-4) << lambda;
}

TEST(PoissonMap, OfMeansOfTheirOwn) {
    for (int i = 0; i < 17 * 4; ++i) {
        const double lambda = std::exp2(i / 4.0 - 4);
        EXPECT_LT(errors_of(poisson_v(lambda), lambda).distribution, 1.1e-4) << lambda;
    }
    for (const double lambda : {8192.0, 1e5, 1e6})
        EXPECT_LT(errors_of(poisson_v(lambda), lambda).distribution, 2.5e-4) << lambda;
    for (const double lambda : {1e-9, 0.01, 0.03, 0.0624})
        EXPECT_LT(errors_of(poisson_v(lambda), lambda).distribution, 1e-4) << lambda;
}

// Each element has the result of its own mean, whatever stands beside it, in any block.
TEST(PoissonMap, MeansDoNotMix) {
    constexpr int32_t n = 5003;
    std::vector<double> means(n);
    std::vector<int32_t> all(n);
    for (size_t i = 0; i < means.size(); ++i) means[i] = std::exp2(static_cast<double>(i * 7919 % 997) / 50 - 8);
    for (const int32_t count : {1, 2, 3, 5, 2047, 2048, 2049, n}) {
        OwnedStream stream(BrngMCG59, {9}), twin(BrngMCG59, {9});
        ASSERT_EQ(_kuziRngPoissonV(0, stream, count, all.data(), means.data()), StatusOk);
        for (int32_t i = 0; i < count; ++i) {
            int32_t one;
            ASSERT_EQ(_kuziRngPoissonV(0, twin, 1, &one, &means[static_cast<size_t>(i)]), StatusOk);
            ASSERT_EQ(all[static_cast<size_t>(i)], one) << i << " " << means[static_cast<size_t>(i)];
        }
        EXPECT_EQ(draw(stream, 2), draw(twin, 2));
    }
}

}  // namespace
