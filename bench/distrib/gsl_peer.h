// Cycles per number of a distribution of the GNU Scientific Library, on its Mersenne twister: ORV_GSL(name, call).
#pragma once

#include "support/cycles.h"

#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <vector>

namespace orv::bench {

template <class Draw>
void gsl(benchmark::State& state, Draw draw) {
    gsl_rng* generator = gsl_rng_alloc(gsl_rng_mt19937);
    std::vector<double> r(1000);
    measure(state, 1000, 1, [&] {
        for (double& x : r) x = draw(generator);
    });
    gsl_rng_free(generator);
}

}  // namespace orv::bench

using orv::bench::gsl;
#define ORV_GSL(name, call) BENCHMARK_CAPTURE(gsl, name, [](gsl_rng* g) { return static_cast<double>(call); })
