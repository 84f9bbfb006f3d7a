// A centre and a covariance matrix, the distances of a sample from the one under the other, and both from weights.
#pragma once

#include "stats/robust/sample.h"

namespace orv::stats {

// Matrices are q by q, by columns; `cov` has both triangles.
struct Fit {
    double* centre;
    double* cov;
    double* root;    // the inverse of the lower Cholesky factor of cov, zero above the diagonal
    double log_det;  // of cov
};

// What the sums over a sample are formed in.
struct Sums {
    double* parts;   // part_count matrices of q + 1 rows
    double* blocks;  // part_count blocks of observations
};

uint64_t fit_bytes(const Data& data);
Fit take_fit(const Sample& sample, Scratch& room);
void copy_fit(const Sample& sample, const Fit& from, Fit& to);
uint64_t sums_bytes(const Data& data);
Sums take_sums(const Sample& sample, Scratch& room);

// Fills in root and log_det. A matrix in which a component is a combination of others, to rounding, is
// SSStatusNotPositiveDefinite.
int32_t factor(const Sample& sample, Fit& fit);

// d[i] = (z_i - centre)' cov^-1 (z_i - centre).
void squared_distances(const Sample& sample, const Sums& sums, const Fit& fit, double* d);

// The upper triangle of sum w [z - centre, 1] [z - centre, 1]', of q + 1 rows, by columns; w null: each is 1. It stands in the sums.
const double* sums_about(const Sample& sample, const Sums& sums, const double* centre, const double* w);

// centre = sum w z / W, cov = sum w (z - centre)(z - centre)' / W, W = sum w, which is returned; 0 leaves the fit alone. The
// old centre should not be far from the new one: what it is off by is made good, at twice the cost.
double weigh(const Sample& sample, const Sums& sums, const double* w, Fit& fit);

// The largest change of a centre in units of the spread, or of a covariance in units of the two.
double change(const Sample& sample, const Fit& before, const Fit& after);

// The fit in the data's units, to the components that take part.
template <class T>
void write_fit(const Data& data, const Sample& sample, const Fit& fit, T* mean, Matrix<T> cov) {
    for (int32_t b = 0; b < sample.q; ++b) {
        const int32_t j = sample.component[b];
        mean[j] = static_cast<T>(sample.origin[b] + sample.unit[b] * fit.centre[b]);
        for (int32_t a = 0; a <= b; ++a) {
            const int32_t i = sample.component[a];
            const T value = static_cast<T>(sample.unit[a] * fit.cov[ptrdiff_t{b} * sample.q + a] * sample.unit[b]);
            cov.data[element_at(cov.form, i, j, data.p)] = value;
            if (cov.form == Form::full) cov.data[ptrdiff_t{i} * data.p + j] = value;
        }
    }
}

}  // namespace orv::stats
