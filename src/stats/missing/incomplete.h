// Data of which some values are missing, in groups that miss the same components, and the regression of what is missing on what
// is there.
#pragma once

#include "stats/robust/fit.h"

namespace orv::stats {

// Observations [first, last) of the sorted order miss the same components.
struct Group {
    int32_t first, last;
};

struct Incomplete {
    Sample sample;  // sorted by what is missing, with 0 for it; about the observed means, in units of the deviations
    const Group* groups = nullptr;
    int32_t group_count = 0;
    const uint8_t* gaps = nullptr;  // n by q in the task's order: 1 for a missing value
    const int32_t* first_gap =
        nullptr;  // of observation i of the sorted order: the number of missing values before it in the task's
    int32_t missing = 0;
};

uint64_t incomplete_bytes(const Data& data);

// A component without two different values is SSStatusNotPositiveDefinite.
template <class T>
int32_t take_incomplete(const Data& data, const orv_services* services, Scratch& room, Incomplete& incomplete);

// For a group: x_missing = mean + slope (x_seen - mean) + an error of the covariance `residual`.
struct Regression {
    int32_t seen, missing;
    int32_t* component;  // q: those seen, then those missing
    double* slope;       // missing by seen, as all by columns
    double* residual;    // missing by missing
    double* inverse;     // seen by seen
    double* cross;       // missing by seen
    double *from, *to;   // blocks of observations
};
inline constexpr int32_t regression_block = 64;

uint64_t regression_bytes(int32_t q);
Regression take_regression(int32_t q, Scratch& room);

// By the centre and covariance of a fit. SSStatusNotPositiveDefinite where what is seen has no inverse.
int32_t regress(const Incomplete& incomplete, const Group& group, const Fit& fit, Regression& regression);

// Adds to each of so many observations in `to` what is expected of it, from what was seen, in `from`.
void add_expectations(int32_t count, const Regression& regression);

// Puts the missing values of a group in their places in z: their expectations and, before those are added, what
// noise(count, to) has written to `to`, the errors of so many observations; it returns a status.
template <class Noise>
int32_t fill_in(const Incomplete& incomplete, const Group& group, const Fit& fit, const Regression& regression,
                double* z, Noise noise) {
    const int32_t q = incomplete.sample.q, seen = regression.seen, missing = regression.missing;
    const int32_t* component = regression.component;
    for (int32_t first = group.first; first < group.last; first += regression_block) {
        const int32_t count = group.last - first < regression_block ? group.last - first : regression_block;
        if (const int32_t status = noise(count, regression.to)) return status;
        for (int32_t i = 0; i < count; ++i) {
            const double* from = z + ptrdiff_t{first + i} * q;
            for (int32_t k = 0; k < seen; ++k)
                regression.from[ptrdiff_t{i} * seen + k] = from[component[k]] - fit.centre[component[k]];
        }
        add_expectations(count, regression);
        for (int32_t i = 0; i < count; ++i) {
            double* to = z + ptrdiff_t{first + i} * q;
            for (int32_t k = 0; k < missing; ++k)
                to[component[seen + k]] = fit.centre[component[seen + k]] + regression.to[ptrdiff_t{i} * missing + k];
        }
    }
    return SSStatusOk;
}

}  // namespace orv::stats
