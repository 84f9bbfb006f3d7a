// The sine over a half turn, for the kernels that reduce by pi and need no table.
#pragma once

#include "vecmath/trig/steps_d.h"

namespace orv::trig {

// r in [-pi/2, pi/2]; relative error below 2^-27.
inline D sine_26(D r) {
    const D z = r * r;
    const D q = splat(-0.16666658838437162) +
                z * (splat(0.0083330466452487071) + z * (splat(-0.00019808085361787081) + z * splat(2.6022725384193179e-06)));
    return r + r * z * q;
}

// The lowest bit of both 64-bit lanes, as a sign.
inline D odd_sign(D shifted) { return simd::as_doubles(simd::shift_left<63>(simd::as_bits(shifted))); }

}  // namespace orv::trig
