// Values as JSON, which has no infinities and NaNs: those become null.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace orv::command {

void append_json(std::string& text, std::string_view value);
void append_json(std::string& text, double value);

// Square, row by row.
void append_json_matrix(std::string& text, std::span<const double> matrix, size_t side);

}  // namespace orv::command
