// Poisson numbers from normal ones.
#pragma once

#include <orv/random.h>

namespace orv::distrib {

int32_t poisson_from_normal(Stream* stream, int32_t n, int32_t* r, double lambda);

}  // namespace orv::distrib
