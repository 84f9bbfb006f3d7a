// Cycles per number of the continuous distributions of R's mathematics library, on its own generator.
#include "rmath_peer.h"

ORV_RMATH(exponential, rexp(1));
ORV_RMATH(weibull, rweibull(2.7, 1));
ORV_RMATH(cauchy, rcauchy(0, 1));
ORV_RMATH(gaussian, rnorm(0, 1));
ORV_RMATH(lognormal, rlnorm(0, 1));
ORV_RMATH(gamma_2_5, rgamma(2.5, 1));
ORV_RMATH(gamma_0_8, rgamma(0.8, 1));
ORV_RMATH(gamma_0_3, rgamma(0.3, 1));
ORV_RMATH(beta_2_3, rbeta(2, 3));
ORV_RMATH(beta_0_5_0_5, rbeta(0.5, 0.5));
ORV_RMATH(beta_0_5_2, rbeta(0.5, 2));
ORV_RMATH(chi_square_10, rchisq(10));
ORV_RMATH(geometric_0_2, rgeom(0.2));
