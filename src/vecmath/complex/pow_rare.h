// Complex powers that the vector path does not serve, one at a time: zeros, infinities and NaNs, parts and results of extreme size.
#pragma once

#include <orv/vecmath.h>

#include <stdint.h>

namespace orv::vecmath {

// a^b; returns a status.
int32_t rare_pow(orv_complex_d a, orv_complex_d b, orv_complex_d* y);

}  // namespace orv::vecmath
