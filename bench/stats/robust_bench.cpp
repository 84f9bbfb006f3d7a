// The robust estimators on ten components, a tenth of the observations being outliers, and imputation of a seventh of the values.
#include "stats/limited.h"
#include "support/cycles.h"

#include <orv/statistics.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using orv::bench::limited_services;
using orv::bench::thread_limit;

struct Contaminated {
    int32_t p = 10, n, form = StorageColumns, full = SSMatrixFull, four = 4, three = 3;
    std::vector<double> x, mean, cov, kept, params = {0.5, 0.001, 1e-6, 100}, rule = {SubsetMedian, 0.05, 0};
    SSTask* task = nullptr;

    explicit Contaminated(int32_t observations) : n(observations), x(size_t(p) * n), mean(p), cov(p * p), kept(n) {
        std::mt19937 generator(1);
        std::normal_distribution<double> normal;
        for (int32_t i = 0; i < n; ++i)
            for (int32_t j = 0; j < p; ++j) x[size_t(i) * p + j] = normal(generator) + (i % 10 == 0 ? 10 : 0);
        __kuzdSSNewTask(&task, &p, &n, &form, x.data(), nullptr, nullptr, 0);
        __kuzdSSEditRCov(task, &full, &four, params.data(), mean.data(), cov.data());
        __kuzdSSEditOutDetect(task, &three, rule.data(), kept.data());
    }
    ~Contaminated() { __kuzSSDeleteTask(&task); }
};

void RobustCovariance(benchmark::State& state, uint64_t method) {
    Contaminated data(10000);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, data.n, 1, [&] {
        if (_kuzdSSRobustCovariance(data.task, ORV_SS_ROBUST_COVARIANCE, method, limited_services()) != 0) std::abort();
    });
}
BENCHMARK_CAPTURE(RobustCovariance, tbs, RobustTBS)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(RobustCovariance, maronna, RobustMaronna)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void Outliers(benchmark::State& state) {
    Contaminated data(100000);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, data.n, 1, [&] {
        if (_kuzdSSOutliersDetection(data.task, ORV_SS_OUTLIERS, 0, limited_services()) != 0) std::abort();
    });
}
BENCHMARK(Outliers)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

// Ten iterations of the expectation-maximisation, and five sets of ten of the data augmentation.
void MissingValues(benchmark::State& state) {
    Contaminated data(10000);
    std::vector<double> params = {10, 10, 0, 5, 0, 1}, imputed;
    int32_t six = 6, count = 0;
    for (size_t at = 3; at < data.x.size(); at += 7, ++count) data.x[at] = NAN;
    params[4] = count;
    count *= 5;
    imputed.resize(count);
    __kuzdSSEditMissingVals(data.task, &six, params.data(), nullptr, nullptr, nullptr, nullptr, &count, imputed.data(),
                            nullptr, nullptr);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, data.n, 1, [&] {
        if (_kuzdSSMissingValues(data.task, ORV_SS_MISSING_VALUES, 0, limited_services()) != 0) std::abort();
    });
}
BENCHMARK(MissingValues)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
