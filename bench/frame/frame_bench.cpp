// The simplest kernels: their own speed, the cost of a call, and bandwidth against the C library's memcpy.
#include "support/cycles.h"

#include <orv/vecmath.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using orv::bench::measure;

// Storage of n elements at a 64-byte boundary, filled with ordinary numbers. The arrays of a call start at different
// places of a page: a load that follows a store to the same place of another page waits for it on most processors, and
// what is measured would be the allocator's luck.
template <class T>
struct Array {
    char* block;
    T* data;
    explicit Array(int64_t n)
        : block(static_cast<char*>(
              std::aligned_alloc(4096, (static_cast<size_t>(n) * sizeof(T) + 2 * 4096) / 4096 * 4096))) {
        static size_t arrays = 0;
        data = reinterpret_cast<T*>(block + arrays++ % 3 * 1344);
        for (int64_t i = 0; i < n; ++i) data[i] = static_cast<T>(1 + (i * 37 % 1000) / 7.0);
    }
    ~Array() { std::free(block); }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
};

int repeats(int64_t n) { return n < 100 ? 1000 : n < 10000 ? 20 : 1; }

template <class T>
void one_input(benchmark::State& state, void (*kernel)(int32_t, const T*, T*)) {
    const int64_t n = state.range(0);
    Array<T> a(n), y(n);
    measure(state, n, repeats(n), [&] { kernel(static_cast<int32_t>(n), a.data, y.data); });
    state.counters["GB/s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * n * repeats(n)) * 2 * sizeof(T) / 1e9, benchmark::Counter::kIsRate);
}

template <class T>
void two_inputs(benchmark::State& state, void (*kernel)(int32_t, const T*, const T*, T*)) {
    const int64_t n = state.range(0);
    Array<T> a(n), b(n), y(n);
    measure(state, n, repeats(n), [&] { kernel(static_cast<int32_t>(n), a.data, b.data, y.data); });
    state.counters["GB/s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * n * repeats(n)) * 3 * sizeof(T) / 1e9, benchmark::Counter::kIsRate);
}

// memcpy in the shape of a two-input kernel: three arrays of n elements go through the processor. Half of 3 n elements
// are read and half written, in one copy.
template <class T>
void copy_two_inputs(benchmark::State& state) {
    const int64_t n = state.range(0);
    Array<T> from(3 * n / 2), to(3 * n / 2);
    const size_t bytes = static_cast<size_t>(3 * n / 2) * sizeof(T);
    measure(state, n, repeats(n), [&] { std::memcpy(to.data, from.data, bytes); });
    state.counters["GB/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * static_cast<double>(repeats(n)) * 2 *
                               static_cast<double>(bytes) / 1e9,
                           benchmark::Counter::kIsRate);
}

template <class T>
void copy_one_input(benchmark::State& state) {
    const int64_t n = state.range(0);
    Array<T> from(n), to(n);
    measure(state, n, repeats(n), [&] { std::memcpy(to.data, from.data, static_cast<size_t>(n) * sizeof(T)); });
    state.counters["GB/s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * n * repeats(n)) * 2 * sizeof(T) / 1e9, benchmark::Counter::kIsRate);
}

[[gnu::noipa]] void nothing(int32_t, const double*, double*) {}

void over_sizes(benchmark::internal::Benchmark* bench) { bench->Arg(1)->Arg(16)->Arg(1000)->Arg(1000000); }

#define ONE(T, name)                    \
    [[maybe_unused]] const auto* name = \
        benchmark::RegisterBenchmark(#name, one_input<T>, _arq##name)->Apply(over_sizes);
#define TWO(T, name)                    \
    [[maybe_unused]] const auto* name = \
        benchmark::RegisterBenchmark(#name, two_inputs<T>, _arq##name)->Apply(over_sizes);

[[maybe_unused]] const auto* empty =
    benchmark::RegisterBenchmark("empty_function", one_input<double>, nothing) -> Arg(1);
TWO(float, sAdd)
TWO(float, sMul)
TWO(double, dAdd)
TWO(double, dMul)
BENCHMARK(copy_two_inputs<float>)->Arg(1000)->Arg(1000000);
BENCHMARK(copy_two_inputs<double>)->Arg(1000)->Arg(1000000);
BENCHMARK(copy_one_input<double>)->Arg(1000)->Arg(1000000);
ONE(double, dCeil)
ONE(double, dFloor)
ONE(double, dTrunc)
ONE(double, dRint)
ONE(double, dNearbyInt)
ONE(double, dRound)
ONE(double, dFrac)
ONE(double, dAbs)
ONE(double, dSqr)
ONE(float, sCeil)
ONE(float, sFloor)
ONE(float, sTrunc)
ONE(float, sRint)
ONE(float, sNearbyInt)
ONE(float, sRound)
ONE(float, sFrac)
ONE(float, sAbs)
ONE(float, sSqr)

}  // namespace
