// The generated tables of the trigonometric kernels; tools/tablegen/trig.cpp has their rules.
#pragma once

#include <stdint.h>

namespace orv::vecmath {

// One row for each value of the exponent field: the bits of 1/(2 pi) that matter for numbers of that exponent.
inline constexpr uint64_t inv_two_pi_192[2047][3] = {
#include "vecmath/tables/inv_two_pi_192.inc"
};

// The same for the exponent field of a float, and a last row that lets four words be loaded from any of them.
inline constexpr uint32_t inv_two_pi_96[257][3] = {
#include "vecmath/tables/inv_two_pi_96.inc"
};

// For theta = 2 pi j/512: cos theta - lead, lead (a power of two), sin theta to nearest and the rest of it.
alignas(32) inline constexpr double sin_cos_512[512][4] = {
#include "vecmath/tables/sin_cos_512.inc"
};

// For theta = 2 pi j/128: cos theta - lead, sin theta to nearest and the rest of it, lead (a power of two).
alignas(32) inline constexpr double sin_128[128][4] = {
#include "vecmath/tables/sin_128.inc"
};

}  // namespace orv::vecmath
