// Sums of powers about a shift s, A_k = sum w (x - s)^k with A_0 = W, and their move to another shift. All accumulators of
// the basic pass are such sums: about 0, about the caller's mean, or about the running mean.
#pragma once

#include <stdint.h>

namespace orv::stats {

struct Powers {
    double shift, a1, a2, a3, a4;
};

// The binomial theorem on (x - s - e)^k. Exact in A_1 to A_k: nothing is taken to be the mean.
inline void move_shift(Powers& sums, double w, double e, int32_t order) {
    const double a1 = sums.a1, a2 = sums.a2, a3 = sums.a3;
    if (order >= 4) sums.a4 += e * (-4 * a3 + e * (6 * a2 + e * (-4 * a1 + e * w)));
    if (order >= 3) sums.a3 += e * (-3 * a2 + e * (3 * a1 - e * w));
    if (order >= 2) sums.a2 += e * (-2 * a1 + e * w);
    sums.a1 -= e * w;
}

// Moves the shift to the mean, as near as a double comes to it: A_1 keeps what rounding leaves. Returns the step.
inline double move_to_mean(Powers& sums, double w, int32_t order) {
    if (w == 0) return 0;
    const double mean = sums.shift + sums.a1 / w;
    const double e = mean - sums.shift;
    move_shift(sums, w, e, order);
    sums.shift = mean;
    return e;
}

}  // namespace orv::stats
