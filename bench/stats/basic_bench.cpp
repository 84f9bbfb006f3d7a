// The basic pass against a plain summing loop, GSL's calls for the same results, and one rank-k update of the same shape.
#include "stats/limited.h"
#include "support/cycles.h"

#include <orv/blas.h>
#include <orv/statistics.h>

#ifdef ORV_BENCH_GSL
#include <gsl/gsl_statistics_double.h>
#endif

#include <cmath>
#include <memory>
#include <vector>

namespace {

using orv::bench::limited_services;
using orv::bench::thread_limit;

// A task over p by n doubles with room for every result.
struct Data {
    int32_t p, n, form, full = SSMatrixFull;
    std::vector<double> x, moments, matrix, weights = {0, 0};
    SSTask* task = nullptr;

    Data(int32_t components, int32_t observations, int32_t storage)
        : p(components),
          n(observations),
          form(storage),
          x(size_t(p) * n),
          moments(size_t(10) * p),
          matrix(size_t(p) * p) {
        uint32_t state = 1;
        for (double& value : x) {
            state = state * 1664525 + 1013904223;
            value = state * 0x1p-32 + 1;
        }
        __kuzdSSNewTask(&task, &p, &n, &form, x.data(), nullptr, nullptr, 0);
        for (int id = SSIdMean; id <= SSIdSkewness; ++id)
            __kuzdSSEditTask(task, id, &moments[size_t(id - SSIdMean) * p]);
        __kuzdSSEditCovCor(task, nullptr, matrix.data(), &full, nullptr, nullptr);
        __kuzdSSEditTask(task, SSIdAccumWeight, weights.data());
    }
    ~Data() { __kuzSSDeleteTask(&task); }
    void run(uint64_t estimates, uint64_t method) {
        weights[0] = weights[1] = 0;
        if (_kuzdSSBasic(task, estimates, method, limited_services()) != 0) std::abort();
    }
};

constexpr uint64_t four_moments = ORV_SS_MEAN | ORV_SS_CENTRAL_MOMENT2 | ORV_SS_SKEWNESS | ORV_SS_KURTOSIS;

void SummingLoop(benchmark::State& state) {
    Data data(1, 10000000, StorageRows);
    double sum = 0;
    orv::bench::measure(state, data.n, 1, [&] {
        __m128d a = _mm_setzero_pd(), b = a, c = a, d = a;
        for (int32_t i = 0; i + 8 <= data.n; i += 8) {
            a = _mm_add_pd(a, _mm_loadu_pd(&data.x[i]));
            b = _mm_add_pd(b, _mm_loadu_pd(&data.x[i + 2]));
            c = _mm_add_pd(c, _mm_loadu_pd(&data.x[i + 4]));
            d = _mm_add_pd(d, _mm_loadu_pd(&data.x[i + 6]));
        }
        sum += _mm_cvtsd_f64(_mm_add_pd(_mm_add_pd(a, b), _mm_add_pd(c, d)));
    });
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(SummingLoop)->Unit(benchmark::kMillisecond);

void MeanAndVariance(benchmark::State& state, uint64_t method) {
    Data data(1, 10000000, StorageRows);
    thread_limit = 1;
    orv::bench::measure(state, data.n, 1, [&] { data.run(ORV_SS_MEAN | ORV_SS_CENTRAL_MOMENT2, method); });
}
BENCHMARK_CAPTURE(MeanAndVariance, fast, BasicFast)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MeanAndVariance, one_pass, BasicOnePass)->Unit(benchmark::kMillisecond);

void FourMoments(benchmark::State& state, uint64_t method, int32_t form) {
    Data data(10, 1000000, form);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, int64_t{data.p} * data.n, 1, [&] { data.run(four_moments, method); });
}
BENCHMARK_CAPTURE(FourMoments, fast_rows, BasicFast, StorageRows)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(FourMoments, fast_columns, BasicFast, StorageColumns)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(FourMoments, one_pass_rows, BasicOnePass, StorageRows)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(FourMoments, one_pass_columns, BasicOnePass, StorageColumns)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

#ifdef ORV_BENCH_GSL
void FourMomentsGsl(benchmark::State& state) {
    Data data(10, 1000000, StorageRows);
    double sink = 0;
    orv::bench::measure(state, int64_t{data.p} * data.n, 1, [&] {
        for (int32_t j = 0; j < data.p; ++j) {
            const double* x = &data.x[size_t(j) * data.n];
            const double mean = gsl_stats_mean(x, 1, data.n);
            const double variance = gsl_stats_variance_m(x, 1, data.n, mean);
            const double spread = std::sqrt(variance);
            sink += variance + gsl_stats_skew_m_sd(x, 1, data.n, mean, spread) +
                    gsl_stats_kurtosis_m_sd(x, 1, data.n, mean, spread);
        }
    });
    benchmark::DoNotOptimize(sink);
}
BENCHMARK(FourMomentsGsl)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

void Covariance(benchmark::State& state, uint64_t method, int32_t form, int32_t p, int32_t n) {
    Data data(p, n, form);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, int64_t{p} * (p + 1) / 2 * n, 1, [&] { data.run(ORV_SS_COV, method); });
}
BENCHMARK_CAPTURE(Covariance, fast_rows, BasicFast, StorageRows, 100, 100000)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(Covariance, fast_columns, BasicFast, StorageColumns, 100, 100000)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(Covariance, one_pass_rows, BasicOnePass, StorageRows, 100, 100000)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(Covariance, one_pass_rows_10, BasicOnePass, StorageRows, 10, 100000)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(Covariance, one_pass_columns_10, BasicOnePass, StorageColumns, 10, 100000)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(Covariance, fast_rows_10, BasicFast, StorageRows, 10, 100000)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// One update of the same shape, on one thread and on those of the thread service.
void RankUpdate(benchmark::State& state, const char* trans) {
    const bool by_rows = *trans == 't';
    Data data(100, 100000, by_rows ? StorageRows : StorageColumns);
    const double one = 1;
    const int32_t stride = by_rows ? data.n : data.p;
    const auto update = state.range(0) == 1 ? orv_blas_xdsyrk : orv_blas_dsyrk;
    orv::bench::measure(state, int64_t{data.p} * (data.p + 1) / 2 * data.n, 1, [&] {
        update("u", trans, &data.p, &data.n, &one, data.x.data(), &stride, &one, data.matrix.data(), &data.p);
    });
}
BENCHMARK_CAPTURE(RankUpdate, rows, "t")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(RankUpdate, columns, "n")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

// A call's fixed cost.
void SmallTask(benchmark::State& state, uint64_t method, uint64_t estimates) {
    Data data(3, 16, StorageRows);
    thread_limit = 1;
    orv::bench::measure(state, 1, 100, [&] { data.run(estimates, method); });
}
BENCHMARK_CAPTURE(SmallTask, moments_one_pass, BasicOnePass, four_moments);
BENCHMARK_CAPTURE(SmallTask, cov_one_pass, BasicOnePass, four_moments | ORV_SS_COV);
BENCHMARK_CAPTURE(SmallTask, cov_fast, BasicFast, four_moments | ORV_SS_COV);

}  // namespace
