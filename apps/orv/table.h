// A CSV table in memory: fields as text, with the line that each row ends on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orv::command {

struct Table {
    std::string source;               // the file's name as given, "<stdin>" for standard input
    std::vector<std::string> names;   // of the columns; empty when there is no header
    size_t width = 0;                 // fields in every row
    std::vector<std::string> fields;  // row by row
    std::vector<int64_t> lines;       // one for each row, counted from 1

    size_t rows() const { return lines.size(); }
    const std::string& field(size_t row, size_t column) const { return fields[row * width + column]; }
};

// Reads a file, or standard input for "-". The first row is a header if no field of it is a number. A file that cannot be
// read, broken quoting and rows of different widths end the command.
Table read_table(const std::string& file);

// The column of that name, or the column at that position (from 1) if no name matches. Ends the command if there is none.
size_t find_column(const Table& table, const std::string& name);

// The columns that `wanted` names. Where it is empty, all columns, if there are just `count` of them.
std::vector<size_t> choose_columns(const Table& table, const std::vector<std::string>& wanted, size_t count);

// A column as numbers, put behind those in `values`. A field that is not a number ends the command.
template <class T>
void append_column(const Table& table, size_t column, std::vector<T>& values);

// Appends one row; fields are quoted where they must be.
void append_row(std::string& text, const std::vector<std::string>& fields);

}  // namespace orv::command
