// Cycles per output of the nearest relatives in the GNU Scientific Library.
#include "support/cycles.h"

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

}  // namespace
