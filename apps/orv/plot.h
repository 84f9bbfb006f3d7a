// Pictures, by gnuplot as a program of its own.
#pragma once

#include <string>

namespace orv::command {

// `text` as a string of gnuplot's language.
std::string plot_quoted(const std::string& text);

// Runs `script` (without terminal and output) for an SVG file of the given size in points. The file is complete or not there.
// Ends the command where that fails.
void write_plot(const std::string& file, int width, int height, const std::string& script);

}  // namespace orv::command
