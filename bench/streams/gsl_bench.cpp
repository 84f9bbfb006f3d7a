// Cycles per output of the nearest relatives in the GNU Scientific Library.
#include "support/cycles.h"

#include <gsl/gsl_qrng.h>
#include <gsl/gsl_rng.h>

#include <vector>

namespace {

constexpr int64_t long_run = 10000;

void gsl(benchmark::State& state, const gsl_rng_type* type) {
    gsl_rng* generator = gsl_rng_alloc(type);
    std::vector<double> r(long_run);
    orv::bench::measure(state, long_run, 1, [&] {
        for (double& x : r) x = gsl_rng_uniform(generator);
    });
    gsl_rng_free(generator);
}
BENCHMARK_CAPTURE(gsl, fishman20, gsl_rng_fishman20);
BENCHMARK_CAPTURE(gsl, cmrg, gsl_rng_cmrg);
BENCHMARK_CAPTURE(gsl, mt19937, gsl_rng_mt19937);

// Points of a sequence, per coordinate.
void gsl_sequence(benchmark::State& state, const gsl_qrng_type* type) {
    const unsigned dimension = static_cast<unsigned>(state.range(0));
    gsl_qrng* sequence = gsl_qrng_alloc(type, dimension);
    const int64_t points = long_run / dimension;
    std::vector<double> r(static_cast<size_t>(points) * dimension);
    orv::bench::measure(state, points * dimension, 1, [&] {
        for (int64_t i = 0; i < points; ++i) gsl_qrng_get(sequence, r.data() + i * dimension);
    });
    gsl_qrng_free(sequence);
}
BENCHMARK_CAPTURE(gsl_sequence, sobol, gsl_qrng_sobol)->Arg(3)->Arg(40);
BENCHMARK_CAPTURE(gsl_sequence, niederreiter_2, gsl_qrng_niederreiter_2)->Arg(3)->Arg(12);

}  // namespace
