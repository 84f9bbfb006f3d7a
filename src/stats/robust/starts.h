// Robust fits to start from.
#pragma once

#include "stats/robust/fit.h"

namespace orv::stats {

// Maronna's M-estimator with Huber's weights: for location 1 up to a distance k and k / d from there, for covariance their
// squares, divided by what makes it consistent at the normal model; k is where the breakdown point is the largest that the
// class has, 1 / (q + 1). It ends with a step of at most `tolerance`, in units of the spread, or after so many. w and d have
// n elements each.
//
// Source: R. A. Maronna, Robust M-estimators of multivariate location and scatter, The Annals of Statistics 4 (1976).
struct Huber {
    double k;      // the distance from which weights fall
    double scale;  // E min(d^2, k^2) / q at the normal model
};
Huber huber_weights(int32_t q);
int32_t maronna(const Sample& sample, const Sums& sums, double tolerance, int32_t most_iterations, double* w, double* d,
                Fit& fit);

// Blocked adaptive outlier nomination: a small subset of observations is fitted and grows to all that its distances do not
// nominate as outliers. `w` becomes 1 for the observations of the last subset and 0 for the others, `fit` theirs.
//
// Source: N. Billor, A. S. Hadi, P. F. Velleman, BACON: blocked adaptive computationally efficient outlier nominators,
// Computational Statistics & Data Analysis 34 (2000).
struct BaconRule {
    bool from_medians;  // the first subset: the nearest to the medians, or to the mean by Mahalanobis distance
    double alpha;       // a clean sample loses an observation with this probability, or a little more
    double stop;        // a change of the subset's size, as a share of all, that ends the growth
};
int32_t bacon(const Sample& sample, const Sums& sums, const BaconRule& rule, double* w, double* d, Fit& fit);

// The orthogonalised pairwise estimate of Gnanadesikan and Kettenring: covariances from the spreads of sums and differences of pairs,
// made positive definite by taking the spreads along their matrix' eigenvectors. `fit` is that of the half of the
// observations that are nearest by it.
//
// Source: R. A. Maronna, R. H. Zamar, Robust estimates of location and dispersion for high-dimensional datasets,
// Technometrics 44 (2002).
int32_t pairwise(const Sample& sample, const Sums& sums, double* w, double* d, Fit& fit);

// The fit of the observations whose d is among the `count` least, whose w becomes 1 and that of the others 0. Returns their number,
// which is larger where distances are equal. `spare` has n elements.
int32_t fit_nearest(const Sample& sample, const Sums& sums, int32_t count, const double* d, double* spare, double* w,
                    Fit& fit);

}  // namespace orv::stats
