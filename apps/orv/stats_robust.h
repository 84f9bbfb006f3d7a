// Robust estimates, outliers and imputation, for `orv stats`.
#pragma once

#include "output.h"
#include "stats_sections.h"

namespace orv::command {

// Robust mean, standard deviation and covariance of the columns.
struct RobustFit {
    std::vector<double> mean, cov;
};
RobustFit robust_fit(const HeldData& data, const orv_services* services);
std::vector<Section> robust_sections(const HeldData& data, const RobustFit& fit);

// The rows that are outliers, from 1, with their distances from the mean of the others under their covariance.
struct OutlyingRows {
    std::vector<double> kept;  // of each row, 1 or 0
    std::vector<double> distances;
};
OutlyingRows outlying_rows(const HeldData& data, const orv_services* services);
Section outliers_section(const HeldData& data, const OutlyingRows& rows);

// Mean and standard deviation of each column from sets of imputed values, and the mean's standard error, by the rules for their
// combination (D. B. Rubin, Multiple imputation for nonresponse in surveys, 1987).
Section imputed_section(const HeldData& data, const orv_services* services);

// The rows' distances in order, with the one that a normal row passes once in forty.
void draw_distances(const HeldData& data, const std::vector<double>& distances, const std::vector<double>& kept,
                    Output& output);

// Two columns, and the ellipses that hold 39 of 40 normal rows: by the robust fit, and by plain mean and covariance.
void draw_ellipses(const HeldData& data, const RobustFit& robust, const std::vector<double>& mean,
                   const std::vector<double>& cov, Output& output);

// Distances of the rows under a fit.
std::vector<double> distances_of(const HeldData& data, const RobustFit& fit, const orv_services* services);

}  // namespace orv::command
