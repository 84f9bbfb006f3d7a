// Rocke's translated biweight: a weight of 1 up to a distance M, from there down to 0 at M + c, smooth at both ends,
//
//     w(d) = 1  (d < M),   (1 - ((d - M) / c)^2)^2  (M <= d <= M + c),   0  (d > M + c);
//
// psi(d) = d w(d), and rho is its integral from 0, which is constant from M + c on.
//
// Source: D. M. Rocke, Robustness properties of S-estimators of multivariate location and shape in high dimension, The Annals
// of Statistics 24 (1996).
#pragma once

#include <stdint.h>

namespace orv::stats {

struct TranslatedBiweight {
    double m, c;
    double most;      // rho from M + c on
    double expected;  // the mean of rho(d) at the normal model, d^2 being chi-square

    double reach() const { return m + c; }
    double weight(double d) const {
        if (d <= m) return 1;
        const double u = (d - m) / c, v = 1 - u * u;
        return u < 1 ? v * v : 0;
    }
    double rho(double d) const {
        if (d <= m) return 0.5 * d * d;
        if (!(d < m + c)) return most;
        return middle((d - m) / c);
    }
    // At M + c u, 0 <= u <= 1: the integral of (M + c u) (1 - u^2)^2 c from M.
    double middle(double u) const {
        const double s = u * u;
        return 0.5 * m * m +
               c * (m * u * (1 - s * (2.0 / 3 - s * (1.0 / 5))) + c * s * (0.5 - s * (0.5 - s * (1.0 / 6))));
    }
};

// The one in q dimensions of the breakdown point asked for, expected / most, in (0, 1/2], whose weight an observation from the
// normal model loses altogether with the probability `rejection`. Where there is none, the breakdown point is kept: in few
// dimensions the weight falls from the centre on (M = 0) and more is rejected; in many it falls over the last fifth of its
// reach, and less is.
TranslatedBiweight translated_biweight(int32_t q, double breakdown, double rejection);

}  // namespace orv::stats
