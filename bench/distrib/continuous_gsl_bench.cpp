// Cycles per number of the continuous distributions of the GNU Scientific Library, on its Mersenne twister.
#include "gsl_peer.h"

ORV_GSL(exponential, gsl_ran_exponential(g, 1));
ORV_GSL(laplace, gsl_ran_laplace(g, 1));
ORV_GSL(weibull, gsl_ran_weibull(g, 1, 2.7));
ORV_GSL(cauchy, gsl_ran_cauchy(g, 1));
ORV_GSL(rayleigh, gsl_ran_rayleigh(g, 1));
ORV_GSL(gumbel, gsl_ran_gumbel1(g, 1, 1));
ORV_GSL(gaussian_polar, gsl_ran_gaussian(g, 1));
ORV_GSL(gaussian_ziggurat, gsl_ran_gaussian_ziggurat(g, 1));
ORV_GSL(lognormal, gsl_ran_lognormal(g, 0, 1));
ORV_GSL(gamma_2_5, gsl_ran_gamma(g, 2.5, 1));
ORV_GSL(gamma_0_8, gsl_ran_gamma(g, 0.8, 1));
ORV_GSL(gamma_0_3, gsl_ran_gamma(g, 0.3, 1));
ORV_GSL(beta_2_3, gsl_ran_beta(g, 2, 3));
ORV_GSL(beta_0_5_0_5, gsl_ran_beta(g, 0.5, 0.5));
ORV_GSL(beta_0_5_2, gsl_ran_beta(g, 0.5, 2));
ORV_GSL(chi_square_10, gsl_ran_chisq(g, 10));
ORV_GSL(geometric_0_2, gsl_ran_geometric(g, 0.2));
