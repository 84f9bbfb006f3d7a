// Operations on whole streams: jumps, and creation and deletion beside the allocator's own time.
#include "support/cycles.h"

#include <orv/random.h>
#include <orv/services.h>

namespace {

void skip_ahead(benchmark::State& state, int32_t id) {
    Stream* stream;
    const uint32_t seed = 777;
    __kuzNewStreamEx(&stream, id, 1, &seed);
    orv::bench::measure(state, 1, 10, [&] { __kuzSkipAheadStream(stream, uint64_t{1} << 60); });
    __kuzDeleteStream(&stream);
}
BENCHMARK_CAPTURE(skip_ahead, MCG31M1, BrngMCG31M1);
BENCHMARK_CAPTURE(skip_ahead, MCG59, BrngMCG59);
BENCHMARK_CAPTURE(skip_ahead, MRG32K3A, BrngMRG32K3A);
BENCHMARK_CAPTURE(skip_ahead, MT19937, BrngMT19937);
BENCHMARK_CAPTURE(skip_ahead, SFMT19937, BrngSFMT19937);
BENCHMARK_CAPTURE(skip_ahead, WH, BrngWH);

void skip_ahead_long(benchmark::State& state) {
    Stream* stream;
    const uint32_t seed = 777;
    __kuzNewStreamEx(&stream, BrngMRG32K3A, 1, &seed);
    const uint64_t count[] = {~uint64_t{0}, ~uint64_t{0}, ~uint64_t{0}};
    orv::bench::measure(state, 1, 10, [&] { __kuzSkipAheadStreamEx(stream, 3, count); });
    __kuzDeleteStream(&stream);
}
BENCHMARK(skip_ahead_long);

void create_and_delete(benchmark::State& state, int32_t id) {
    const uint32_t seed = 777;
    orv::bench::measure(state, 1, 100, [&] {
        Stream* stream;
        __kuzNewStreamEx(&stream, id, 1, &seed);
        __kuzDeleteStream(&stream);
    });
}
BENCHMARK_CAPTURE(create_and_delete, MCG31M1, BrngMCG31M1);
BENCHMARK_CAPTURE(create_and_delete, MRG32K3A, BrngMRG32K3A);

void allocator_alone(benchmark::State& state) {
    orv::bench::measure(state, 1, 100, [&] {
        void* block = orv_serv_allocate(40, 128);
        benchmark::DoNotOptimize(block);
        orv_serv_deallocate(block);
    });
}
BENCHMARK(allocator_alone);

}  // namespace
