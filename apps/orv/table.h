// A CSV file as a table: columns with names, rows of numbers, and how tables are written.
#pragma once

#include "rows.h"

#include <string>
#include <vector>

namespace orv::command {

struct Head {
    std::string source;              // the file's name as given, "<stdin>" for standard input
    std::vector<std::string> names;  // of the columns; empty when there is no header
    size_t width = 0;                // fields in every row; 0 for an empty file
};

// Reads a file, or standard input for "-": calls `begin` when the columns are known, `take` for each row that is not the
// header, and `end`; none of them for an empty file. A file that cannot be read, broken quoting and rows of different widths end the command.
void read_table(const std::string& file, const std::function<void(const Head&)>& begin,
                const std::function<void(const Head&, const Row&)>& take,
                const std::function<void(const Head&)>& end = nullptr);

// The column of that name, or the column at that position (from 1) if no name matches. Ends the command if there is none.
size_t find_column(const Head& head, const std::string& name);

// What messages and tables call a column: its name, or else its position.
std::string column_name(const Head& head, size_t column);

// A field as a number. One that is none, or too large for the type, ends the command.
template <class T>
T number(const Head& head, const Row& row, size_t column);

// Appends one row; fields are quoted where they must be.
void append_row(std::string& text, const std::vector<std::string>& fields);

}  // namespace orv::command
