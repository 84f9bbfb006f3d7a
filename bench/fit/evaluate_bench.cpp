// Evaluation of a cubic at a million sites in ten thousand breaks, in cycles per site, and integrals over short intervals.
#include "fit/data.h"
#include "support/cycles.h"

#ifdef ORV_BENCH_GSL
#include <gsl/gsl_spline.h>
#endif

#include <omp.h>

namespace {

using namespace orv::bench;
constexpr int64_t break_count = 10000, site_count = 1000000;

void evaluate(benchmark::State& state, bool uniform, bool sorted, int threads) {
    const Fit fit(break_count, uniform, 4, ORV_DF_TYPE_NATURAL, ORV_DF_FREE_END);
    orv_df_kernel_dDFNaturalCubicSpline1D(fit.task, nullptr, nullptr, 0, nullptr);
    const std::vector<double> x = sites(fit.data, site_count, sorted);
    std::vector<double> y(x.size());
    const int64_t hint = sorted ? ORV_DF_SITES_SORTED : ORV_DF_SITES_NO_HINT;
    const int before = omp_get_max_threads();
    omp_set_num_threads(threads);
    measure(state, site_count, 1, [&] {
        orv_df_kernel_dDFInterpolate1D(fit.task, ORV_DF_EVALUATE, 0, site_count, x.data(), hint, 1, nullptr, nullptr,
                                       y.data(), 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                       nullptr, nullptr);
    });
    omp_set_num_threads(before);
}
BENCHMARK_CAPTURE(evaluate, sorted, false, true, 1);
BENCHMARK_CAPTURE(evaluate, sorted_two_threads, false, true, 2)->UseRealTime();
BENCHMARK_CAPTURE(evaluate, uniform_random, true, false, 1);
BENCHMARK_CAPTURE(evaluate, uniform_random_two_threads, true, false, 2)->UseRealTime();
BENCHMARK_CAPTURE(evaluate, random, false, false, 1);
BENCHMARK_CAPTURE(evaluate, random_two_threads, false, false, 2)->UseRealTime();

// Short intervals, about one cell wide, at the same places.
constexpr int64_t interval_count = 100000;

std::vector<double> shifted(const std::vector<double>& x, double by, double last) {
    std::vector<double> result;
    for (const double at : x) result.push_back(std::min(at + by, last));
    return result;
}

void integrate(benchmark::State& state, bool uniform, bool sorted) {
    const Fit fit(break_count, uniform, 4, ORV_DF_TYPE_NATURAL, ORV_DF_FREE_END);
    orv_df_kernel_dDFNaturalCubicSpline1D(fit.task, nullptr, nullptr, 0, nullptr);
    const std::vector<double> from = sites(fit.data, interval_count, sorted), to = shifted(from, 1, fit.data.x.back());
    std::vector<double> areas(from.size());
    const int64_t hint = sorted ? ORV_DF_SITES_SORTED : ORV_DF_SITES_NO_HINT;
    measure(state, interval_count, 1, [&] {
        orv_df_kernel_dDFIntegrate1D(fit.task, 0, interval_count, from.data(), hint, to.data(), hint, nullptr,
                                     areas.data(), 0, nullptr);
    });
}
BENCHMARK_CAPTURE(integrate, sorted, false, true);
BENCHMARK_CAPTURE(integrate, uniform_random, true, false);
BENCHMARK_CAPTURE(integrate, random, false, false);

#ifdef ORV_BENCH_GSL
void evaluate_gsl(benchmark::State& state, bool uniform, bool sorted) {
    const Series data = series(break_count, uniform);
    const std::vector<double> x = sites(data, site_count, sorted);
    std::vector<double> y(x.size());
    gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, data.x.size());
    gsl_spline_init(spline, data.x.data(), data.y.data(), data.x.size());
    gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
    measure(state, site_count, 1, [&] {
        for (size_t i = 0; i < x.size(); ++i) y[i] = gsl_spline_eval(spline, x[i], accelerator);
    });
    gsl_interp_accel_free(accelerator);
    gsl_spline_free(spline);
}
BENCHMARK_CAPTURE(evaluate_gsl, sorted, false, true);
BENCHMARK_CAPTURE(evaluate_gsl, uniform_random, true, false);
BENCHMARK_CAPTURE(evaluate_gsl, random, false, false);

void integrate_gsl(benchmark::State& state, bool uniform, bool sorted) {
    const Series data = series(break_count, uniform);
    const std::vector<double> from = sites(data, interval_count, sorted), to = shifted(from, 1, data.x.back());
    std::vector<double> areas(from.size());
    gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, data.x.size());
    gsl_spline_init(spline, data.x.data(), data.y.data(), data.x.size());
    gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
    measure(state, interval_count, 1, [&] {
        for (size_t i = 0; i < from.size(); ++i) areas[i] = gsl_spline_eval_integ(spline, from[i], to[i], accelerator);
    });
    gsl_interp_accel_free(accelerator);
    gsl_spline_free(spline);
}
BENCHMARK_CAPTURE(integrate_gsl, sorted, false, true);
BENCHMARK_CAPTURE(integrate_gsl, uniform_random, true, false);
BENCHMARK_CAPTURE(integrate_gsl, random, false, false);
#endif

}  // namespace
