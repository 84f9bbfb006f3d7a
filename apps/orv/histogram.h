// Counts of numbers in equal bins, as text and as a picture.
#pragma once

#include "output.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orv::command {

struct Histogram {
    double from, to;
    bool whole;  // of integers: bins are as many of them wide each, as far as they go into the range
    std::vector<int64_t> counts;
    int64_t outside;
    std::function<double(double)> density = nullptr;  // what the numbers should have, where it is known
};

Histogram make_histogram(double from, double to, size_t bins);
// For integers from `from` on and below `to`, with at most so many bins.
Histogram make_whole_histogram(double from, double to, size_t bins);
void count(Histogram& histogram, double value);

// A line for each bin: its lower edge, its count, and a bar.
std::string as_text(const Histogram& histogram);

// Writes an SVG picture with gnuplot, which must be installed, the density over the bins where it is known. Ends the command
// where that fails.
void draw_plot(const Histogram& histogram, const std::string& title, Output& output);

}  // namespace orv::command
