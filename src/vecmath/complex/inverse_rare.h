// The inverse functions of single complex numbers that the vector path does not serve: zeros, infinities, NaNs, and parts beyond 2^140
// or below 2^-140. Each returns a status.
#pragma once

#include <orv/vecmath.h>

#include <stdint.h>

namespace orv::vecmath {

int32_t rare_asin(orv_complex_d z, orv_complex_d* w);
int32_t rare_acos(orv_complex_d z, orv_complex_d* w);
int32_t rare_acosh(orv_complex_d z, orv_complex_d* w);
int32_t rare_atanh(orv_complex_d z, orv_complex_d* w);

}  // namespace orv::vecmath
