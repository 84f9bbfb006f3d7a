// What `orv stats` shows: tables of text or CSV, and matrices as pictures.
#pragma once

#include "output.h"

#include <string>
#include <vector>

namespace orv::command {

// Rows of fields. The first row and the first column are names.
using Cells = std::vector<std::vector<std::string>>;

// A number: in full for CSV, else in ten digits.
std::string cell(double value, bool csv);

// A square matrix, stored whole, under a header of `title` and the names.
Cells matrix_table(const char* title, const std::vector<std::string>& names, const std::vector<double>& matrix,
                   bool csv);

// CSV, or columns aligned with spaces.
void append_table(std::string& text, const Cells& cells, bool csv);

// A matrix of correlations as coloured squares, with the numbers while they can be read.
void draw_matrix(const std::string& title, const std::vector<std::string>& names, const std::vector<double>& matrix,
                 Output& output);

}  // namespace orv::command
