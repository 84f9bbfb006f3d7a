// Reduction of one double of magnitude 2^23 or more to an eighth of a turn, for the kernels whose large arguments are rare
// enough to be taken one at a time.
#pragma once

#include <stdint.h>

namespace orv::trig {

// x = quadrant * pi/2 + high + low modulo whole turns, |high| up to pi/4 and a trifle more.
struct Quadrant {
    int32_t quadrant;  // 0 to 3
    double high, low;
};

Quadrant reduce_to_quadrant(double x);

// sin(x + quarters * pi/2) of one finite double, to 2^-49; with quarters 0 a tiny or zero x comes back.
double sine_of_one(double x, int32_t quarters);

}  // namespace orv::trig
