// From accumulated sums to the estimates.
#pragma once

#include "stats/basic/accumulation.h"

namespace orv::stats {

// One component's averages: raw[k] the total of x^k, central[k] the average of (x - m)^k.
struct Component {
    double mean;
    double raw[5], central[5];
};

// `raw` holds four totals about 0; null where `sums` are about 0 themselves. e = A_1 / W leads from the shift to the mean,
// whatever the shift is; with `about_shift` the shift is the centre.
Component averages(const Powers& sums, const double* raw, double w, bool about_shift);
Component component_of(const Request& request, const Accumulation& from, int32_t j);

// Writes the estimates of request.arrays: those of each component that takes part, then the matrices. `roots` is room for
// p doubles.
template <class T>
void write_results(const Request& request, const Accumulation& from, double* roots);

// Whether those arrays and accumWeight hold what write_results would write. (The mean that the caller gave, and the variation
// that is formed with it, are not looked at.)
template <class T>
bool results_stand(const Request& request, const Accumulation& from, double* roots);

// cor, cov and cp alone, as far as they are asked for.
template <class T>
void write_matrices(const Request& request, const double* cross, Weights weights, double* roots);

// Kurtosis, skewness and variation from the moments in hand.
template <class T>
void write_shape(const Request& request, int32_t j, double mean, double c2, double c3, double c4);

// Data without weight has no moments: every array of them that the task has becomes 0, but for a mean that the caller gave.
template <class T>
void zero_moments(const Request& request);

}  // namespace orv::stats
