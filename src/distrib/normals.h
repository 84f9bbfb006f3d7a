// Normal numbers for distributions that are made of them.
#pragma once

#include <orv/random.h>

namespace orv::distrib {

// As _kuzsRngGaussian by GaussianInverseCdf, for a caller whose own frame masks exceptions and sends errors to a callback.
int32_t draw_normals(Stream* stream, int32_t n, float* r, float mean, float deviation);

}  // namespace orv::distrib
