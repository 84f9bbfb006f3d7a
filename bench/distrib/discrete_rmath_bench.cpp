// Cycles per number of the discrete distributions of R's mathematics library, on its own generator.
#include "rmath_peer.h"

ORV_RMATH(binomial_200_0_4, rbinom(200, 0.4));
ORV_RMATH(binomial_10_0_3, rbinom(10, 0.3));
ORV_RMATH(poisson_40, rpois(40));
ORV_RMATH(poisson_5, rpois(5));
ORV_RMATH(hypergeometric_10000_1000_5000, rhyper(1000, 9000, 5000));
ORV_RMATH(hypergeometric_50_10_20, rhyper(10, 40, 20));
ORV_RMATH(negbinomial_5_0_3, rnbinom(5, 0.3));
ORV_RMATH(negbinomial_100_0_02, rnbinom(100, 0.02));
