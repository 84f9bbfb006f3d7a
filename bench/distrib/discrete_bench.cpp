// Cycles per number of the discrete distributions, at the length of a working block, in memory and in single draws with the
// setup kept, beside those of the C++ standard library.
#include "support/cycles.h"

#include <orv/random.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int32_t working_run = 1000;
constexpr int32_t memory_run = 1000000;

template <class Draw>
void numbers(benchmark::State& state, Draw draw) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    const uint32_t seed = 777;
    Stream* stream;
    __kuzNewStreamEx(&stream, BrngSFMT19937, 1, &seed);
    std::vector<int32_t> r(static_cast<size_t>(n));
    orv::bench::measure(state, n, n >= 1000 ? 1 : 1000, [&] { draw(stream, n, r.data()); });
    __kuzDeleteStream(&stream);
}

#define ORV_DRAWN(name, call)                                                                    \
    BENCHMARK_CAPTURE(numbers, name, [](Stream* stream, int32_t n, int32_t* r) { return call; }) \
        ->Arg(1)                                                                                 \
        ->Arg(working_run)                                                                       \
        ->Arg(memory_run)

ORV_DRAWN(binomial_200_0_4, _kuziRngBinomial(0, stream, n, r, 200, 0.4));
ORV_DRAWN(binomial_10_0_3, _kuziRngBinomial(0, stream, n, r, 10, 0.3));
ORV_DRAWN(poisson_40, _kuziRngPoisson(PoissonRejection, stream, n, r, 40));
ORV_DRAWN(poisson_5, _kuziRngPoisson(PoissonRejection, stream, n, r, 5));
ORV_DRAWN(poisson_10000, _kuziRngPoisson(PoissonRejection, stream, n, r, 10000));
ORV_DRAWN(poisson_normal_0_5, _kuziRngPoisson(PoissonNormal, stream, n, r, 0.5));
ORV_DRAWN(poisson_normal_5, _kuziRngPoisson(PoissonNormal, stream, n, r, 5));
ORV_DRAWN(poisson_normal_1000, _kuziRngPoisson(PoissonNormal, stream, n, r, 1000));
ORV_DRAWN(hypergeometric_10000_1000_5000, _kuziRngHypergeometric(0, stream, n, r, 10000, 5000, 1000));
ORV_DRAWN(hypergeometric_50_10_20, _kuziRngHypergeometric(0, stream, n, r, 50, 20, 10));
ORV_DRAWN(negbinomial_5_0_3, _kuziRngNegbinomial(0, stream, n, r, 5, 0.3));
ORV_DRAWN(negbinomial_100_0_02, _kuziRngNegbinomial(0, stream, n, r, 100, 0.02));

// Means log-uniform from 0.01 to 1000, as they come and in rising order.
void means_of_their_own(benchmark::State& state, bool sorted) {
    std::vector<double> means(static_cast<size_t>(state.range(0)));
    std::mt19937 engine(777);
    std::uniform_real_distribution<double> logarithm(std::log(0.01), std::log(1000));
    for (double& mean : means) mean = std::exp(logarithm(engine));
    if (sorted) std::sort(means.begin(), means.end());
    numbers(state, [&](Stream* stream, int32_t n, int32_t* r) { _kuziRngPoissonV(0, stream, n, r, means.data()); });
}
BENCHMARK_CAPTURE(means_of_their_own, any_order, false)->Arg(working_run)->Arg(memory_run);
BENCHMARK_CAPTURE(means_of_their_own, sorted, true)->Arg(working_run)->Arg(memory_run);

template <class Distribution>
void standard(benchmark::State& state, Distribution distribution) {
    std::mt19937 engine(777);
    std::vector<int32_t> r(working_run);
    orv::bench::measure(state, working_run, 1, [&] {
        for (int32_t& x : r) x = distribution(engine);
    });
}
BENCHMARK_CAPTURE(standard, binomial_200_0_4, std::binomial_distribution<int32_t>(200, 0.4));
BENCHMARK_CAPTURE(standard, binomial_10_0_3, std::binomial_distribution<int32_t>(10, 0.3));
BENCHMARK_CAPTURE(standard, poisson_40, std::poisson_distribution<int32_t>(40));
BENCHMARK_CAPTURE(standard, poisson_5, std::poisson_distribution<int32_t>(5));
BENCHMARK_CAPTURE(standard, negbinomial_5_0_3, std::negative_binomial_distribution<int32_t>(5, 0.3));
BENCHMARK_CAPTURE(standard, negbinomial_100_0_02, std::negative_binomial_distribution<int32_t>(100, 0.02));

}  // namespace
