// Pictures, by gnuplot as a program of its own.
#pragma once

#include "output.h"

#include <string>

namespace orv::command {

// `text` as a string of gnuplot's language.
std::string plot_quoted(const std::string& text);

// `text` as the label of a tic, which gnuplot takes for a format.
std::string plot_tic(const std::string& text);

// Runs `script` (without terminal and output) for an SVG picture of the given size in points, and finishes `output` with it.
// Ends the command where that fails.
void write_plot(Output& output, int width, int height, const std::string& script);

}  // namespace orv::command
