// From accumulated sums to the estimates.
#pragma once

#include "stats/matrices.h"
#include "stats/power_shift.h"

namespace orv::stats {

struct Weights {
    double w, w2;
    // What makes a central sum an unbiased variance: 1 / (n - 1) for n equal weights.
    double variance_factor() const { return w > 0 ? 1 / (w - w2 / w) : 1; }
};

// One component's averages: raw[k] of x^k, central[k] of (x - m)^k; sums[k], the totals behind raw[k].
struct Component {
    double mean;
    double sums[5], central[5];
};

// Averages from sums about a shift. e = A_1 / W leads from the shift to the mean, whatever the shift is.
Component averages(const Powers& sums, double w, bool about_shift);

// Writes a component's moments, sums and derived estimates: those of request.arrays that are not matrices.
template <class T>
void write_component(const Request& request, int32_t j, const Component& values, Weights weights);

// Kurtosis, skewness and variation from the moments in hand.
template <class T>
void write_shape(const Request& request, int32_t j, double mean, double c2, double c3, double c4);

// Writes cor, cov and cp, as far as they are asked for, from the cross-product c (upper triangle by columns, p by p), which
// may be the buffer of one of them if that is a full matrix of doubles. `roots` is room for p doubles.
template <class T>
void write_matrices(const Request& request, const double* c, Weights weights, double* roots);

}  // namespace orv::stats
