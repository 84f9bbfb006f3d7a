// Cycles per coordinate of the quasi-random sequences, and of their creation.
#include "support/cycles.h"

#include <orv/random.h>

#include <omp.h>
#include <vector>

namespace {

constexpr int32_t working_run = 1000;
constexpr int32_t memory_run = 1000000;
constexpr int32_t threaded_run = 10000000;

// Sobol of more dimensions than are built in: direction numbers of the caller, the powers of two for every coordinate.
std::vector<uint32_t> block_of(int32_t id, int32_t dimension) {
    const int32_t built_in = id == BrngSobol ? 40 : 318;
    if (dimension <= built_in) return {static_cast<uint32_t>(dimension)};
    std::vector<uint32_t> block = {static_cast<uint32_t>(dimension), 1, 4};
    for (int32_t i = 0; i < 32 * dimension; ++i) block.push_back(uint32_t{0x80000000} >> i % 32);
    return block;
}

// A new stream for every so many numbers, since the index ends at 2^32 - 1.
struct Sequence {
    Sequence(int32_t id, int32_t dimension) : brng(id), block(block_of(id, dimension)) { create(); }
    ~Sequence() { __kuzDeleteStream(&handle); }
    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    void create() { __kuzNewStreamEx(&handle, brng, static_cast<int32_t>(block.size()), block.data()); }
    void renew() {
        __kuzDeleteStream(&handle);
        create();
    }

    int32_t brng;
    std::vector<uint32_t> block;
    Stream* handle = nullptr;
};

template <class Draw>
void measure(benchmark::State& state, int32_t id, int threads, Draw draw) {
    const int32_t dimension = static_cast<int32_t>(state.range(0)), n = static_cast<int32_t>(state.range(1));
    omp_set_num_threads(threads);
    Sequence sequence(id, dimension);
    std::vector<double> r(static_cast<size_t>(n) + 8);
    double* const aligned = reinterpret_cast<double*>((reinterpret_cast<uintptr_t>(r.data()) + 63) & ~uintptr_t{63});
    orv::bench::measure(state, n, 1, [&] {
        if (draw(sequence.handle, n, aligned) < 0) {
            sequence.renew();
            draw(sequence.handle, n, aligned);
        }
    });
    omp_set_num_threads(1);
}

void doubles(benchmark::State& state, int32_t id, int threads) {
    measure(state, id, threads,
            [](Stream* stream, int32_t n, double* r) { return _kuzdRngUniform(UniformStandard, stream, n, r, 0, 1); });
}
void floats(benchmark::State& state, int32_t id, int threads) {
    measure(state, id, threads, [](Stream* stream, int32_t n, double* r) {
        return _kuzsRngUniform(UniformStandard, stream, n, reinterpret_cast<float*>(r), 0, 1);
    });
}
void words(benchmark::State& state, int32_t id, int threads) {
    measure(state, id, threads,
            [](Stream* stream, int32_t n, double* r) { return _kuziRngUniformBits(0, stream, n, r); });
}

void dimensions(benchmark::internal::Benchmark* bench) {
    for (const int32_t dimension : {3, 40, 318})
        for (const int32_t n : {working_run, memory_run}) bench->Args({dimension, n});
}
void sobol_dimensions(benchmark::internal::Benchmark* bench) {
    for (const int32_t dimension : {3, 40, 1000})
        for (const int32_t n : {working_run, memory_run}) bench->Args({dimension, n});
}
void threaded_dimensions(benchmark::internal::Benchmark* bench) {
    for (const int32_t dimension : {40, 64, 128}) bench->Args({dimension, threaded_run});
}

#define ORV_SEQUENCE(kind)                                                                 \
    BENCHMARK_CAPTURE(kind, Sobol, BrngSobol, 1)->Apply(sobol_dimensions);                 \
    BENCHMARK_CAPTURE(kind, Niederr, BrngNiederr, 1)->Apply(dimensions);                   \
    BENCHMARK_CAPTURE(kind, Niederr_1_thread, BrngNiederr, 1)->Apply(threaded_dimensions); \
    BENCHMARK_CAPTURE(kind, Niederr_2_threads, BrngNiederr, 2)->Apply(threaded_dimensions)
ORV_SEQUENCE(doubles);
ORV_SEQUENCE(floats);
ORV_SEQUENCE(words);

void create_sequence(benchmark::State& state, int32_t id) {
    const uint32_t dimension = static_cast<uint32_t>(state.range(0));
    orv::bench::measure(state, 1, 1, [&] {
        Stream* stream;
        __kuzNewStreamEx(&stream, id, 1, &dimension);
        __kuzDeleteStream(&stream);
    });
}
BENCHMARK_CAPTURE(create_sequence, Sobol, BrngSobol)->Arg(40);
BENCHMARK_CAPTURE(create_sequence, Niederr, BrngNiederr)->Arg(40)->Arg(318);

}  // namespace
