// Cycles per output of the congruential generators, at the length of a working block and at single draws, beside the
// generators of the C++ standard library.
#include "support/cycles.h"

#include <orv/random.h>

#include <random>
#include <vector>

namespace {

constexpr int32_t long_run = 10000;

struct OpenStream {
    explicit OpenStream(int32_t id) {
        const uint32_t seed = 777;
        __kuzNewStreamEx(&handle, id, 1, &seed);
    }
    ~OpenStream() { __kuzDeleteStream(&handle); }
    OpenStream(const OpenStream&) = delete;
    OpenStream& operator=(const OpenStream&) = delete;
    Stream* handle;
};

int repeats(int32_t n) { return n >= 1000 ? 1 : 1000; }

void doubles(benchmark::State& state, int32_t id) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    OpenStream stream(id);
    std::vector<double> r(static_cast<size_t>(n));
    orv::bench::measure(state, n, repeats(n),
                        [&] { _kuzdRngUniform(UniformStandard, stream.handle, n, r.data(), 0.0, 1.0); });
}

void floats(benchmark::State& state, int32_t id) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    OpenStream stream(id);
    std::vector<float> r(static_cast<size_t>(n));
    orv::bench::measure(state, n, repeats(n),
                        [&] { _kuzsRngUniform(UniformStandard, stream.handle, n, r.data(), 0.0f, 1.0f); });
}

void words(benchmark::State& state, int32_t id) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    OpenStream stream(id);
    BrngProperties generator;
    __kuzGetBrngProperties(id, &generator);
    std::vector<char> r(static_cast<size_t>(n) * static_cast<size_t>(generator.wordBytes));
    orv::bench::measure(state, n, repeats(n), [&] { _kuziRngUniformBits(0, stream.handle, n, r.data()); });
}

#define ORV_GENERATOR(name)                                                        \
    BENCHMARK_CAPTURE(doubles, name, Brng##name)->Arg(1)->Arg(100)->Arg(long_run); \
    BENCHMARK_CAPTURE(floats, name, Brng##name)->Arg(1)->Arg(100)->Arg(long_run);  \
    BENCHMARK_CAPTURE(words, name, Brng##name)->Arg(1)->Arg(100)->Arg(long_run)

ORV_GENERATOR(MCG31M1);
ORV_GENERATOR(MCG59);
ORV_GENERATOR(MRG32K3A);

template <class Engine>
void standard(benchmark::State& state) {
    Engine engine(777);
    std::uniform_real_distribution<double> uniform;
    std::vector<double> r(long_run);
    orv::bench::measure(state, long_run, 1, [&] {
        for (double& x : r) x = uniform(engine);
    });
}
BENCHMARK(standard<std::minstd_rand>);
BENCHMARK(standard<std::mt19937>);

template <class Engine>
void standard_words(benchmark::State& state) {
    Engine engine(777);
    std::vector<uint32_t> r(long_run);
    orv::bench::measure(state, long_run, 1, [&] {
        for (uint32_t& x : r) x = static_cast<uint32_t>(engine());
    });
}
BENCHMARK(standard_words<std::minstd_rand>);
BENCHMARK(standard_words<std::mt19937>);

}  // namespace
