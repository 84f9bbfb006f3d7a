// The multivariate normal model of incomplete data: expectation-maximisation, and data augmentation from where it leads.
//
// Sources: A. P. Dempster, N. M. Laird, D. B. Rubin, Maximum likelihood from incomplete data via the EM algorithm, Journal of the
// Royal Statistical Society B 39 (1977); M. A. Tanner, W. H. Wong, The calculation of posterior distributions by data
// augmentation, Journal of the American Statistical Association 82 (1987); J. L. Schafer, Analysis of incomplete multivariate data
// (1997), chapter 5.
#pragma once

#include "stats/missing/incomplete.h"

#include <orv/streams.h>

namespace orv::stats {

// The covariance is inverse Wishart with so many degrees of freedom and the scale matrix S, of density |C|^(-(freedom + q + 1) / 2)
// exp(-tr(S C^-1) / 2), and given it the mean is normal about `mean` with the covariance C / tau. Without a prior of the
// caller's, tau, S and mean are 0 and the degrees of freedom -1: Jeffreys' prior.
struct Prior {
    bool given;
    double tau, freedom;
    double* mean;
    double* scale;  // q by q, in the sample's units
};

// From the fit that stands there to that of the greatest likelihood, or with a prior of the caller's the greatest posterior
// density, until a step is at most `tolerance`, in units of the spread, or after so many. z is filled with expectations.
int32_t maximise(const Incomplete& incomplete, const Sums& sums, const Prior& prior, int32_t most_iterations,
                 double tolerance, double* z, Fit& fit);

// One iteration of data augmentation: z is filled with numbers from the normal model of the fit, and the fit is then drawn
// from the distribution that all of z leaves it.
int32_t augment(const Incomplete& incomplete, const Sums& sums, const Prior& prior, Stream* stream, double* z,
                Fit& fit);

}  // namespace orv::stats
