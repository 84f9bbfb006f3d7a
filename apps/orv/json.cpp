#include "json.h"

#include "numbers.h"

#include <cmath>
#include <cstdio>

namespace orv::command {

void append_json(std::string& text, std::string_view value) {
    text += '"';
    for (const char letter : value) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') {
            text += '\\';
            text += letter;
        } else if (code < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(code));
            text += escape;
        } else {
            text += letter;
        }
    }
    text += '"';
}

void append_json(std::string& text, double value) {
    if (std::isfinite(value))
        append_number(text, value);
    else
        text += "null";
}

void append_json_matrix(std::string& text, std::span<const double> matrix, size_t side) {
    for (size_t i = 0; i < matrix.size(); ++i) {
        text += i == 0 ? "[[" : i % side == 0 ? "], [" : ", ";
        append_json(text, matrix[i]);
    }
    text += matrix.empty() ? "[]" : "]]";
}

}  // namespace orv::command
