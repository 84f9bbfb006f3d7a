// Medians and spreads of numbers, none of them a NaN.
#pragma once

#include "stats/order/quick_sort.h"

namespace orv::stats {

// Puts the values in another order. The mean of the middle two for an even n; 0 for none.
inline double median(double* values, int32_t n) {
    if (n == 0) return 0;
    const double upper = select(values, 0, n - 1, n / 2);
    if (n % 2 != 0) return upper;
    double lower = values[0];
    for (int32_t i = 1; i < n / 2; ++i)
        if (values[i] > lower) lower = values[i];
    return 0.5 * lower + 0.5 * upper;
}

// Of the distances from a centre, which take the values' place: their median, and their mean.
inline double median_deviation(double* values, int32_t n, double centre) {
    for (int32_t i = 0; i < n; ++i) values[i] = __builtin_fabs(values[i] - centre);
    return median(values, n);
}
inline double mean_of(const double* values, int32_t n) {
    double mean = 0;
    for (int32_t i = 0; i < n; ++i) mean += (values[i] - mean) / (i + 1);
    return mean;
}

}  // namespace orv::stats
