// Construction of splines, in cycles per cell; Linear beside a plain copy of as many bytes.
#include "fit/data.h"
#include "support/cycles.h"

#include <cstring>

#ifdef ORV_BENCH_GSL
#include <gsl/gsl_spline.h>
#endif

namespace {

using namespace orv::bench;
using Kernel = int32_t (*)(const DFTask*, const void*, const void*, int64_t, const orv_services*);

void construct(benchmark::State& state, Kernel kernel, int64_t order, int64_t type, int64_t bc, bool uniform,
               bool threads) {
    const Fit fit(state.range(0), uniform, order, type, bc);
    const orv_services* services = threads ? orv_serv_services() : nullptr;
    if (kernel(fit.task, nullptr, nullptr, 0, services) != ORV_DF_OK) return state.SkipWithError("construction failed");
    measure(state, state.range(0) - 1, 1, [&] { kernel(fit.task, nullptr, nullptr, 0, services); });
}

// Bytes read and written by Linear: two arrays in (uniform: one), two elements a cell out.
void copy(benchmark::State& state, int64_t bytes_a_cell) {
    const auto bytes = static_cast<size_t>(state.range(0) * bytes_a_cell / 2);
    std::vector<char> from(bytes, 1), to(bytes);
    measure(state, state.range(0) - 1, 1, [&] { std::memcpy(to.data(), from.data(), bytes); });
}

#define CONSTRUCT(name, kind, order, type, bc)                                                                    \
    BENCHMARK_CAPTURE(construct, name, orv_df_kernel_dDF##kind##Spline1D, order, type, bc, false, false)          \
        ->Arg(1000)                                                                                               \
        ->Arg(100000);                                                                                            \
    BENCHMARK_CAPTURE(construct, name##_uniform, orv_df_kernel_dDF##kind##Spline1D, order, type, bc, true, false) \
        ->Arg(100000);                                                                                            \
    BENCHMARK_CAPTURE(construct, name##_threads, orv_df_kernel_dDF##kind##Spline1D, order, type, bc, false, true) \
        ->Arg(100000)

CONSTRUCT(natural, NaturalCubic, 4, ORV_DF_TYPE_NATURAL, ORV_DF_FREE_END);
CONSTRUCT(akima, AkimaCubic, 4, ORV_DF_TYPE_AKIMA, ORV_DF_NO_CONDITION);
CONSTRUCT(hyman, HymanCubic, 4, ORV_DF_TYPE_HYMAN, ORV_DF_FREE_END);
CONSTRUCT(linear, Linear, 2, 0, ORV_DF_FREE_END);
BENCHMARK_CAPTURE(construct, linear_long, orv_df_kernel_dDFLinearSpline1D, 2, 0, ORV_DF_FREE_END, false, false)
    ->Arg(4000000);
BENCHMARK_CAPTURE(copy, as_linear, 32)->Arg(100000)->Arg(4000000);
BENCHMARK_CAPTURE(copy, as_linear_uniform, 24)->Arg(100000)->Arg(4000000);

#ifdef ORV_BENCH_GSL
void construct_gsl(benchmark::State& state, const gsl_interp_type* type) {
    const Series data = series(state.range(0), false);
    gsl_spline* spline = gsl_spline_alloc(type, data.x.size());
    measure(state, state.range(0) - 1, 1,
            [&] { gsl_spline_init(spline, data.x.data(), data.y.data(), data.x.size()); });
    gsl_spline_free(spline);
}
BENCHMARK_CAPTURE(construct_gsl, natural, gsl_interp_cspline)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(construct_gsl, akima, gsl_interp_akima)->Arg(1000)->Arg(100000);
#endif

}  // namespace
