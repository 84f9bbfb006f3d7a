// Cycles per number of a distribution of R's mathematics library, on its own generator: ORV_RMATH(name, call).
#pragma once

#include "support/cycles.h"

#define MATHLIB_STANDALONE
#include <Rmath.h>

#include <vector>

namespace orv::bench {

template <class Draw>
void rmath(benchmark::State& state, Draw draw) {
    set_seed(777, 778);
    std::vector<double> r(1000);
    measure(state, 1000, 1, [&] {
        for (double& x : r) x = draw();
    });
}

}  // namespace orv::bench

using orv::bench::rmath;
#define ORV_RMATH(name, call) BENCHMARK_CAPTURE(rmath, name, [] { return call; })
