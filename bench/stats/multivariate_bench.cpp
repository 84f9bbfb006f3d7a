// Statistics of several components together, each beside the matrix calls that it cannot do without, and beside the basic
// covariance pass.
#include "stats/limited.h"
#include "support/cycles.h"

#include <orv/blas.h>
#include <orv/lapack.h>
#include <orv/statistics.h>

#include <cstdlib>
#include <vector>

namespace {

using orv::bench::limited_services;
using orv::bench::thread_limit;

// A task over p by n doubles, a covariance that is no unit matrix, and room for the results.
struct Data {
    int32_t p, n, form, full = SSMatrixFull, groups = 10;
    std::vector<double> x, mean, cov, results, matrix;
    std::vector<int32_t> group;
    SSTask* task = nullptr;

    Data(int32_t components, int32_t observations, int32_t storage)
        : p(components),
          n(observations),
          form(storage),
          x(size_t(p) * n),
          mean(size_t(p), 1.5),
          cov(size_t(p) * p, 0.25),
          results(size_t(n) + p),
          matrix(size_t(p) * p),
          group(size_t(n)) {
        uint32_t state = 1;
        for (double& value : x) {
            state = state * 1664525 + 1013904223;
            value = state * 0x1p-32 + 1;
        }
        for (int32_t& k : group) {
            state = state * 1664525 + 1013904223;
            k = static_cast<int32_t>(state >> 16) % groups;
        }
        for (int32_t j = 0; j < p; ++j) cov[size_t(j) * (p + 1)] = 1 + 0.01 * j;
        __kuzdSSNewTask(&task, &p, &n, &form, x.data(), nullptr, nullptr, 0);
        __kuzdSSEditCovCor(task, mean.data(), cov.data(), &full, nullptr, nullptr);
        __kuzdSSEditOutDetect(task, nullptr, nullptr, results.data());
        __kuzdSSEditTask(task, SSIdRobustEstimates2, results.data());
        __kuzdSSEditPooledCovariance(task, &groups, results.data(), matrix.data(), group.data(), nullptr, nullptr);
        __kuziSSEditTask(task, SSIdPooledResultCovStorage, &full);
    }
    ~Data() { __kuzSSDeleteTask(&task); }
};

void check(int32_t status) {
    if (status != 0) std::abort();
}

using Entry = int32_t (*)(SSTask*, uint64_t, uint64_t, const orv_services*);

// Cycles for each number of the data; the argument is the number of threads.
void Pass(benchmark::State& state, Entry entry, uint64_t estimate, uint64_t method, int32_t form) {
    Data data(20, 100000, form);
    thread_limit = static_cast<int32_t>(state.range(0));
    orv::bench::measure(state, int64_t{data.p} * data.n, 1,
                        [&] { check(entry(data.task, estimate, method, limited_services())); });
}
#define ORV_PASS(name, ...) \
    BENCHMARK_CAPTURE(Pass, name, __VA_ARGS__)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()
ORV_PASS(mad_rows, _kuzdSSMAD, ORV_SS_MAD, 0, StorageRows);
ORV_PASS(covariance_fast_rows, _kuzdSSBasic, ORV_SS_COV, BasicFast, StorageRows);
ORV_PASS(covariance_one_pass_rows, _kuzdSSBasic, ORV_SS_COV, BasicOnePass, StorageRows);
ORV_PASS(pooled_rows, _kuzdSSPooledCovariance, ORV_SS_POOLED_COVARIANCE, 0, StorageRows);
ORV_PASS(covariance_fast_columns, _kuzdSSBasic, ORV_SS_COV, BasicFast, StorageColumns);
ORV_PASS(pooled_columns, _kuzdSSPooledCovariance, ORV_SS_POOLED_COVARIANCE, 0, StorageColumns);
ORV_PASS(distance_rows, _kuzdSSMahDistance, ORV_SS_MAHALANOBIS, 0, StorageRows);
ORV_PASS(distance_columns, _kuzdSSMahDistance, ORV_SS_MAHALANOBIS, 0, StorageColumns);
#undef ORV_PASS

// The triangular product of the distances alone, in one call or in blocks that stay in the cache.
void DistanceProduct(benchmark::State& state) {
    Data data(20, 100000, StorageRows);
    const int32_t block = static_cast<int32_t>(state.range(0));
    const double one = 1;
    std::vector<double> b(size_t(data.n) * data.p, 0.5);
    orv::bench::measure(state, int64_t{data.p} * data.n, 1, [&] {
        for (int32_t first = 0; first < data.n; first += block) {
            const int32_t count = data.n - first < block ? data.n - first : block;
            orv_blas_xdtrmm("r", "u", "n", "n", &count, &data.p, &one, data.matrix.data(), &data.p,
                            b.data() + size_t(first) * data.p, &count);
        }
    });
}
BENCHMARK(DistanceProduct)->Arg(504)->Arg(100000)->Unit(benchmark::kMillisecond);

// Half of p variables given the other half, and the factor, the inverse and the products of that.
void Partial(benchmark::State& state) {
    Data data(static_cast<int32_t>(state.range(0)), 1, StorageRows);
    std::vector<int32_t> use(size_t(data.p));
    for (int32_t j = 0; j < data.p; ++j) use[size_t(j)] = j % 2 ? 1 : -1;
    __kuzdSSEditPartialCovCor(data.task, use.data(), nullptr, nullptr, nullptr, nullptr, data.matrix.data(), &data.full,
                              nullptr, nullptr);
    orv::bench::measure(state, int64_t{data.p} * data.p, 1,
                        [&] { check(_kuzdSSPartialCovariance(data.task, ORV_SS_PARTIAL_COVARIANCE, 0, nullptr)); });
}
BENCHMARK(Partial)->Arg(20)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

void PartialCalls(benchmark::State& state) {
    Data data(static_cast<int32_t>(state.range(0)), 1, StorageRows);
    const int32_t q = data.p / 2;
    const size_t size = size_t(q) * q;
    std::vector<double> c(size), y(size), a(size), b(size, 0.25);
    const double one = 1, minus_one = -1, none = 0;
    int32_t info;
    orv::bench::measure(state, int64_t{data.p} * data.p, 1, [&] {
        for (int32_t j = 0; j < q; ++j)
            for (int32_t i = 0; i < q; ++i) c[size_t(j) * q + i] = i == j ? 1 : i < j ? 0.25 : 0;
        orv_lapack_xdpotrf("u", &q, c.data(), &q, &info);
        orv_lapack_xdtrtri("u", "n", &q, c.data(), &q, &info);
        orv_blas_xdgemm("t", "n", &q, &q, &q, &one, c.data(), &q, b.data(), &q, &none, y.data(), &q);
        orv_blas_xdgemm("t", "n", &q, &q, &q, &minus_one, y.data(), &q, y.data(), &q, &one, a.data(), &q);
    });
}
BENCHMARK(PartialCalls)->Arg(20)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
