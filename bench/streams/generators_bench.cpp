// Cycles per output of the congruential generators, at the length of a working block and at single draws, beside the
// generators of the C++ standard library.
#include "support/cycles.h"

#include <orv/random.h>

#include <immintrin.h>
#include <random>
#include <vector>

namespace {

constexpr int32_t long_run = 10000;
constexpr int32_t working_run = 1000;
constexpr int32_t memory_run = 1000000;

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

#define ORV_BLOCK_GENERATOR(name)                                                                      \
    BENCHMARK_CAPTURE(doubles, name, Brng##name)->Arg(1)->Arg(100)->Arg(working_run)->Arg(memory_run); \
    BENCHMARK_CAPTURE(floats, name, Brng##name)->Arg(1)->Arg(100)->Arg(working_run)->Arg(memory_run);  \
    BENCHMARK_CAPTURE(words, name, Brng##name)->Arg(1)->Arg(100)->Arg(working_run)->Arg(memory_run)

ORV_BLOCK_GENERATOR(PHILOX4X32X10);
ORV_BLOCK_GENERATOR(ARS5);
ORV_BLOCK_GENERATOR(TRNG);
ORV_BLOCK_GENERATOR(MT19937);
ORV_BLOCK_GENERATOR(MT2203);
ORV_BLOCK_GENERATOR(SFMT19937);
ORV_BLOCK_GENERATOR(R250);
ORV_BLOCK_GENERATOR(WH);

// The loop that TRNG is measured against: one word after the other, asked again until it is ready.
__attribute__((target("rdrnd"))) void bare_rdrand(benchmark::State& state) {
    if (!__kuzCPUisRDRAND()) return state.SkipWithError("this processor has no RDRAND");
    std::vector<uint32_t> r(working_run);
    orv::bench::measure(
        state, working_run, 1, [&]() __attribute__((target("rdrnd"))) {
            for (uint32_t& x : r)
                while (!_rdrand32_step(&x)) {
                }
        });
}
BENCHMARK(bare_rdrand);

// PHILOX4X32X10 as a textbook would write it, a block after the other.
void plain_philox(benchmark::State& state) {
    std::vector<uint32_t> r(working_run);
    uint32_t counter = 0;
    orv::bench::measure(state, working_run, 1, [&] {
        for (size_t i = 0; i < r.size(); i += 4) {
            uint32_t c[4] = {counter++, 0, 0, 0}, k0 = 777, k1 = 0;
            for (int round = 0; round < 10; ++round) {
                const uint64_t p0 = uint64_t{0xD2511F53} * c[0], p1 = uint64_t{0xCD9E8D57} * c[2];
                c[0] = static_cast<uint32_t>(p1 >> 32) ^ c[1] ^ k0;
                c[1] = static_cast<uint32_t>(p1);
                c[2] = static_cast<uint32_t>(p0 >> 32) ^ c[3] ^ k1;
                c[3] = static_cast<uint32_t>(p0);
                k0 += 0x9E3779B9;
                k1 += 0xBB67AE85;
            }
            for (size_t k = 0; k < 4; ++k) r[i + k] = c[k];
        }
    });
}
BENCHMARK(plain_philox);

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
