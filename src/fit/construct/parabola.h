// The derivative at a break of the parabola through it and its two neighbours.
#pragma once

#include "fit/construct/local.h"

namespace orv::fit {

template <bool uniform, class V>
V parabola_derivative(V s_left, V s_right, V h_left, V h_right, V half) {
    return uniform ? (s_left + s_right) * half : (h_left * s_right + h_right * s_left) / (h_left + h_right);
}

}  // namespace orv::fit
