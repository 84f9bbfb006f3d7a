// Box plots, which `orv stats` draws of quantiles.
#pragma once

#include "output.h"

#include <string>
#include <vector>

namespace orv::command {

// The orders of a box: whisker, quartile, median, quartile, whisker. Whiskers reach to the outermost orders that are asked for where
// those lie outside of the quartiles, else to the extremes.
std::vector<double> box_orders(const std::vector<double>& asked);

// `quantiles` are those of the orders, column by column.
struct Boxes {
    const std::vector<std::string>& names;
    const std::vector<double>&orders, &quantiles, &minimum, &maximum;
    std::string title;
};

// One panel a column, each with a scale of its own, and points at the extremes.
void draw_boxes(const Boxes& boxes, Output& output);

}  // namespace orv::command
