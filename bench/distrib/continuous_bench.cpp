// Cycles per number of the continuous distributions, and of Geometric, at the length of a working block, in memory and in
// single draws, beside those of the C++ standard library.
#include "support/cycles.h"

#include <orv/random.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr int32_t working_run = 1000;
constexpr int32_t memory_run = 1000000;

template <class T, class Draw>
void numbers(benchmark::State& state, Draw draw) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    const uint32_t seed = 777;
    Stream* stream;
    __kuzNewStreamEx(&stream, BrngSFMT19937, 1, &seed);
    std::vector<T> r(static_cast<size_t>(n));
    orv::bench::measure(state, n, n >= working_run ? 1 : 1000, [&] { draw(stream, n, r.data()); });
    __kuzDeleteStream(&stream);
}

template <class Draw>
void doubles(benchmark::State& state, Draw draw) {
    numbers<double>(state, draw);
}
template <class Draw>
void floats(benchmark::State& state, Draw draw) {
    numbers<float>(state, draw);
}
template <class Draw>
void integers(benchmark::State& state, Draw draw) {
    numbers<int32_t>(state, draw);
}

#define ORV_DRAWN_AS(kind, T, name, call)                                               \
    BENCHMARK_CAPTURE(kind, name, [](Stream* stream, int32_t n, T* r) { return call; }) \
        ->Arg(1)                                                                        \
        ->Arg(working_run)                                                              \
        ->Arg(memory_run)
#define ORV_DRAWN(name, Entry, method, ...)                                                  \
    ORV_DRAWN_AS(doubles, double, name, _kuzdRng##Entry(method, stream, n, r, __VA_ARGS__)); \
    ORV_DRAWN_AS(floats, float, name, _kuzsRng##Entry(method, stream, n, r, __VA_ARGS__))

ORV_DRAWN(exponential, Exponential, 0, 0, 1);
ORV_DRAWN(laplace, Laplace, 0, 0, 1);
ORV_DRAWN(weibull, Weibull, 0, 2.7f, 0, 1);
ORV_DRAWN(cauchy, Cauchy, 0, 0, 1);
ORV_DRAWN(rayleigh, Rayleigh, 0, 0, 1);
ORV_DRAWN(gumbel, Gumbel, 0, 0, 1);
ORV_DRAWN(gaussian_box_muller, Gaussian, GaussianBoxMuller, 0, 1);
ORV_DRAWN(gaussian_paired, Gaussian, GaussianBoxMullerPaired, 0, 1);
ORV_DRAWN(gaussian_inverse, Gaussian, GaussianInverseCdf, 0, 1);
ORV_DRAWN(lognormal, Lognormal, LognormalInverseCdf, 0, 1, 0, 1);
ORV_DRAWN(gamma_2_5, Gamma, 0, 2.5f, 0, 1);
ORV_DRAWN(gamma_0_8, Gamma, 0, 0.8f, 0, 1);
ORV_DRAWN(gamma_0_3, Gamma, 0, 0.3f, 0, 1);
ORV_DRAWN(beta_2_3, Beta, 0, 2, 3, 0, 1);
ORV_DRAWN(beta_0_5_0_5, Beta, 0, 0.5f, 0.5f, 0, 1);
ORV_DRAWN(beta_0_5_2, Beta, 0, 0.5f, 2, 0, 1);
ORV_DRAWN(chi_square_10, ChiSquare, 0, 10);
ORV_DRAWN_AS(integers, int32_t, geometric_0_2, _kuziRngGeometric(0, stream, n, r, 0.2));

// Vectors of dimension 10, by the component.
template <class T>
void vectors(benchmark::State& state,
             int32_t (*entry)(int32_t, Stream*, int32_t, T*, int32_t, int32_t, const T*, const T*)) {
    constexpr int32_t dimen = 10;
    const int32_t n = static_cast<int32_t>(state.range(0)) / dimen;
    const int32_t storage = static_cast<int32_t>(state.range(1));
    const uint32_t seed = 777;
    Stream* stream;
    __kuzNewStreamEx(&stream, BrngSFMT19937, 1, &seed);
    std::vector<T> r(static_cast<size_t>(n * dimen)), a(dimen, 1), t(dimen * dimen, T(0.5));
    orv::bench::measure(state, n * dimen, 1,
                        [&] { entry(GaussianInverseCdf, stream, n, r.data(), dimen, storage, a.data(), t.data()); });
    __kuzDeleteStream(&stream);
}
#define ORV_VECTORS(name, entry)            \
    BENCHMARK_CAPTURE(vectors, name, entry) \
        ->ArgsProduct({{working_run, memory_run}, {MatrixStorageFull, MatrixStoragePacked, MatrixStorageDiagonal}})
ORV_VECTORS(doubles, _kuzdRngGaussianMV);
ORV_VECTORS(floats, _kuzsRngGaussianMV);

template <class Distribution>
void standard(benchmark::State& state, Distribution distribution) {
    std::mt19937 engine(777);
    std::vector<typename Distribution::result_type> r(working_run);
    orv::bench::measure(state, working_run, 1, [&] {
        for (auto& x : r) x = distribution(engine);
    });
}
#define ORV_STANDARD(name, distribution, ...)                                                 \
    BENCHMARK_CAPTURE(standard, name, std::distribution##_distribution<double>(__VA_ARGS__)); \
    BENCHMARK_CAPTURE(standard, name##_float, std::distribution##_distribution<float>(__VA_ARGS__))
ORV_STANDARD(exponential, exponential, 1);
ORV_STANDARD(weibull, weibull, 2.7f, 1);
ORV_STANDARD(cauchy, cauchy, 0, 1);
ORV_STANDARD(gumbel, extreme_value, 0, 1);
ORV_STANDARD(gaussian, normal, 0, 1);
ORV_STANDARD(lognormal, lognormal, 0, 1);
ORV_STANDARD(gamma_2_5, gamma, 2.5f, 1);
ORV_STANDARD(gamma_0_8, gamma, 0.8f, 1);
ORV_STANDARD(gamma_0_3, gamma, 0.3f, 1);
ORV_STANDARD(chi_square_10, chi_squared, 10);
BENCHMARK_CAPTURE(standard, geometric_0_2, std::geometric_distribution<int32_t>(0.2));

}  // namespace
