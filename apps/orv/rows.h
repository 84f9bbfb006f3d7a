// The rows of a CSV file one after another, in memory that does not grow with the file.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace orv::command {

struct Row {
    std::span<const std::string_view> fields;  // valid during the call
    int64_t line;                              // that the row ends on, counted from 1
    int64_t bytes;                             // read so far
};

// How the rows are written.
struct Format {
    enum class Header { GUESS, YES, NO };

    char separator = ',', decimal = '.', comment = '\0';  // no comments where it is 0
    Header header = Header::GUESS;
    bool skip_missing = false;
    bool missing_is_nan = false;
};

// "<stdin>" for "-", which stands for standard input.
std::string source_name(const std::string& file);

// Calls `take` for each row. A file that cannot be read, broken quoting and rows of different widths end the command.
void read_rows(const std::string& file, const Format& format, const std::function<void(const Row&)>& take);

}  // namespace orv::command
