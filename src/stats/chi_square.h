// The chi-square distribution with a whole number of degrees of freedom, and its quantile.
//
// Sources: N. M. Temme, The asymptotic expansion of the incomplete gamma functions, SIAM Journal on Mathematical Analysis 10
// (1979), for the choice between series and continued fraction; C. Loader, Fast and accurate computation of binomial
// probabilities (2000), for the leading factor.
#pragma once

#include <stdint.h>

namespace orv::stats {

// P(X <= x) and P(X > x). Both are good to 3e-13 of themselves where they are above 1e-300.
struct Tails {
    double lower, upper;
};
Tails chi_square(int32_t freedom, double x);

// The x that P(X > x) = upper, for upper in (0, 1); good to 3e-13 of itself.
double chi_square_quantile(int32_t freedom, double upper);

}  // namespace orv::stats
