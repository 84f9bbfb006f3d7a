// The exponents of the characteristic polynomials of the generators that jump over GF(2), increasing: mt19937_terms for
// a step of one word, sfmt19937_terms for a step of 128 bits. tools/jumpgen computes them.
#pragma once

#include <stdint.h>

namespace orv::brng {

#include "brng/jump_terms.inc"

}  // namespace orv::brng
