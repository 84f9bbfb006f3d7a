// Cycles per element by the time stamp counter. Each iteration of a benchmark times one call; the counter reported is
// the median over the iterations, which neither a page fault nor a preempted slice can move.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>
#include <x86intrin.h>

namespace orv::bench {

inline uint64_t ticks() {
    unsigned processor;
    _mm_lfence();
    const uint64_t now = __rdtscp(&processor);
    _mm_lfence();
    return now;
}

// What ticks() to ticks() takes with nothing in between: subtracted from every sample.
inline uint64_t tick_overhead() {
    static const uint64_t overhead = [] {
        uint64_t least = ~uint64_t{0};
        for (int i = 0; i < 1000; ++i) {
            const uint64_t start = ticks();
            least = std::min(least, ticks() - start);
        }
        return least;
    }();
    return overhead;
}

// Runs call() `repeat` times per sample (short calls need more than one) and reports "cycles": the median per element.
template <class Call>
void measure(benchmark::State& state, int64_t elements, int repeat, Call call) {
    std::vector<uint64_t> samples;
    samples.reserve(1 << 16);
    const uint64_t overhead = tick_overhead();
    call();
    for (auto _ : state) {
        const uint64_t start = ticks();
        for (int i = 0; i < repeat; ++i) {
            call();
            benchmark::ClobberMemory();
        }
        const uint64_t taken = ticks() - start;
        samples.push_back(taken > overhead ? taken - overhead : 0);
    }
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    state.counters["cycles"] = static_cast<double>(*middle) / static_cast<double>(elements) / repeat;
    state.SetItemsProcessed(state.iterations() * elements * repeat);
}

}  // namespace orv::bench
