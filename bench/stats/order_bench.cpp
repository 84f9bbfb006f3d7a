// Order statistics against the standard library's and GSL's, and streaming quantiles in orders that cost little and much.
#include "support/cycles.h"

#include <orv/statistics.h>

#ifdef ORV_BENCH_GSL
#include <gsl/gsl_sort_double.h>
#include <gsl/gsl_statistics_double.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int32_t numbers = 1000000;

std::vector<double> random_numbers(int32_t n, uint32_t seed) {
    std::vector<double> x(static_cast<size_t>(n));
    uint64_t state = seed;
    for (double& value : x) {
        state = state * 6364136223846793005 + 1442695040888963407;
        value = static_cast<double>(state >> 11) * 0x1p-53;
    }
    return x;
}

// One component with room for its sorted numbers and a quantile.
struct Task {
    int32_t p = 1, n = numbers, form = StorageRows, count = 1;
    double order = 0.5, quantile = 0, least = 0, greatest = 0;
    std::vector<double> x = random_numbers(numbers, 1), sorted = x;
    SSTask* task = nullptr;
    Task() {
        __kuzdSSNewTask(&task, &p, &n, &form, x.data(), nullptr, nullptr, 0);
        __kuzdSSEditQuantiles(task, &count, &order, &quantile, nullptr, nullptr);
        __kuzdSSEditTask(task, SSIdExtraData, sorted.data());
        __kuziSSEditTask(task, SSIdExtraInt, &form);
        __kuzdSSEditTask(task, SSIdMinimum, &least);
        __kuzdSSEditTask(task, SSIdMaximum, &greatest);
    }
    ~Task() { __kuzSSDeleteTask(&task); }
};

using Entry = int32_t (*)(SSTask*, uint64_t, uint64_t, const orv_services*);

void Order(benchmark::State& state, Entry entry, uint64_t estimates) {
    Task data;
    orv::bench::measure(state, numbers, 1, [&] {
        if (entry(data.task, estimates, 0, nullptr) != 0) std::abort();
    });
}
BENCHMARK_CAPTURE(Order, quantile, _kuzdSSQuantiles, ORV_SS_QUANTILES)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Order, sort, _kuzdSSSort, ORV_SS_SORT)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Order, minmax, _kuzdSSMinmax, ORV_SS_MINIMUM | ORV_SS_MAXIMUM)->Unit(benchmark::kMillisecond);

// Peers, and the plain sort, on a copy that is made anew each time.
template <class Call>
void on_copy(benchmark::State& state, Call call) {
    const std::vector<double> x = random_numbers(numbers, 1);
    std::vector<double> copy = x;
    orv::bench::measure(state, numbers, 1, [&] {
        std::copy(x.begin(), x.end(), copy.begin());
        call(copy);
    });
}
void QSort(benchmark::State& state) {
    on_copy(state, [](std::vector<double>& x) { __kuzdQSort(numbers, x.data()); });
}
BENCHMARK(QSort)->Unit(benchmark::kMillisecond);
void StdSort(benchmark::State& state) {
    on_copy(state, [](std::vector<double>& x) { std::sort(x.begin(), x.end()); });
}
BENCHMARK(StdSort)->Unit(benchmark::kMillisecond);
void StdNthElement(benchmark::State& state) {
    on_copy(state, [](std::vector<double>& x) { std::nth_element(x.begin(), x.begin() + numbers / 2, x.end()); });
}
BENCHMARK(StdNthElement)->Unit(benchmark::kMillisecond);
#ifdef ORV_BENCH_GSL
void GslSort(benchmark::State& state) {
    on_copy(state, [](std::vector<double>& x) { gsl_sort(x.data(), 1, numbers); });
}
BENCHMARK(GslSort)->Unit(benchmark::kMillisecond);
void GslMedian(benchmark::State& state) {
    on_copy(state, [](std::vector<double>& x) { gsl_stats_median(x.data(), 1, numbers); });
}
BENCHMARK(GslMedian)->Unit(benchmark::kMillisecond);
#endif

// Twenty million numbers with epsilon 0.001, a million at a call.
enum Arrival { arrival_random, arrival_up, arrival_down, arrival_both_ends, arrival_close, arrival_close_and_far };
void StreamQuantiles(benchmark::State& state, Arrival arrival) {
    constexpr int32_t blocks = 20;
    const std::vector<double> unit = random_numbers(numbers * blocks, 3);
    std::vector<double> x(unit.size());
    const int64_t n = static_cast<int64_t>(x.size());
    for (int64_t i = 0; i < n; ++i) {
        const double u = unit[static_cast<size_t>(i)];
        double& value = x[static_cast<size_t>(i)];
        if (arrival == arrival_random) value = u;
        if (arrival == arrival_up) value = static_cast<double>(i);
        if (arrival == arrival_down) value = static_cast<double>(n - i);
        if (arrival == arrival_both_ends) value = static_cast<double>(i % 2 ? n - i / 2 : i / 2);
        if (arrival >= arrival_close) value = 1 + u * 0x1p-28;
        if (arrival == arrival_close_and_far && i % 5000 == 0) value = (u - 0.5) * 1e300;
    }
    int32_t p = 1, block = numbers, form = StorageRows, count = 1, params = 1;
    double order = 0.5, quantile = 0, epsilon = 0.001;
    SSTask* task = nullptr;
    __kuzdSSNewTask(&task, &p, &block, &form, x.data(), nullptr, nullptr, 0);
    __kuzdSSEditStreamQuantiles(task, &count, &order, &quantile, &params, &epsilon);
    orv::bench::measure(state, n, 1, [&] {
        __kuzSQuantilesFreeBuffers(task);
        for (int32_t b = 0; b < blocks; ++b) {
            __kuzdSSEditTask(task, SSIdX, x.data() + size_t(b) * numbers);
            if (_kuzdSSStreamQuantiles(task, ORV_SS_STREAM_QUANTILES, 0, nullptr) != 0) std::abort();
        }
    });
    __kuzSSDeleteTask(&task);
}
BENCHMARK_CAPTURE(StreamQuantiles, random, arrival_random)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamQuantiles, up, arrival_up)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamQuantiles, down, arrival_down)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamQuantiles, both_ends, arrival_both_ends)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamQuantiles, close, arrival_close)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamQuantiles, close_and_far, arrival_close_and_far)->Unit(benchmark::kMillisecond);

}  // namespace
