// Cycles per number of the discrete distributions of the GNU Scientific Library, on its Mersenne twister.
#include "gsl_peer.h"

ORV_GSL(binomial_200_0_4, gsl_ran_binomial(g, 0.4, 200));
ORV_GSL(binomial_10_0_3, gsl_ran_binomial(g, 0.3, 10));
ORV_GSL(poisson_40, gsl_ran_poisson(g, 40));
ORV_GSL(poisson_5, gsl_ran_poisson(g, 5));
ORV_GSL(hypergeometric_10000_1000_5000, gsl_ran_hypergeometric(g, 1000, 9000, 5000));
ORV_GSL(hypergeometric_50_10_20, gsl_ran_hypergeometric(g, 10, 40, 20));
ORV_GSL(negbinomial_5_0_3, gsl_ran_negative_binomial(g, 0.3, 5));
ORV_GSL(negbinomial_100_0_02, gsl_ran_negative_binomial(g, 0.02, 100));
