// S-estimation: the centre and covariance matrix of the least determinant under which the distances have the mean rho that the
// normal model gives them.
//
// Sources: P. L. Davies, Asymptotic behaviour of S-estimates of multivariate location parameters and dispersion matrices, The
// Annals of Statistics 15 (1987); D. M. Rocke (1996), as in translated_biweight.h.
#pragma once

#include "stats/robust/fit.h"
#include "stats/robust/translated_biweight.h"

namespace orv::stats {

// From the fit that stands there, which must have its factor, by reweighting, which lowers the determinant step by step, until a step
// is at most `tolerance`, in units of the spread, or after so many. w and d have n elements each.
int32_t s_estimate(const Sample& sample, const Sums& sums, const TranslatedBiweight& biweight, double tolerance,
                   int32_t most_iterations, double* w, double* d, Fit& fit);

}  // namespace orv::stats
