// Joining two partial results.
#pragma once

#include "stats/power_shift.h"

#include <stddef.h>

namespace orv::stats {

// Adds b, of weight wb, to a, of weight wa. Sums about one fixed shift are added; others are first moved to the joint mean,
// which takes neither further than Chan's term f (ma - mb)^2 pays for. A side without weight contributes nothing.
inline void merge_powers(Powers& a, double wa, Powers b, double wb, bool fixed_shift, int32_t order) {
    if (wb == 0) return;
    if (wa == 0) {
        a = b;
        return;
    }
    if (!fixed_shift) {
        const double mean_a = a.shift + a.a1 / wa, mean_b = b.shift + b.a1 / wb;
        const double w = wa + wb;
        const double mean = w == 0 ? mean_a : mean_a + (mean_b - mean_a) * (wb / w);
        move_shift(a, wa, mean - a.shift, order);
        move_shift(b, wb, mean - b.shift, order);
        a.shift = mean;
    }
    a.a1 += b.a1;
    a.a2 += b.a2;
    a.a3 += b.a3;
    a.a4 += b.a4;
}

// C_ij += other_ij + f d_i d_j over the upper triangle, d the distance of the means, f = Wa Wb / (Wa + Wb); `other` may be
// null for a matrix that was accumulated in place. A dimension known at compile time lets five components, a common size,
// unroll.
template <int32_t known>
void merge_cross(double* c, const double* other, ptrdiff_t dimension, int32_t first, int32_t last, double f,
                 const double* d) {
    const ptrdiff_t p = known ? known : dimension;
    if (known) first = 0, last = known;
    for (int32_t j = first; j < last; ++j)
        for (int32_t i = first; i <= j; ++i) {
            double& sum = c[j * p + i];
            if (other) sum += other[j * p + i];
            sum += f * d[i] * d[j];
        }
}

}  // namespace orv::stats
