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
    Format format;
};

// Reads a file, or standard input for "-", and tells how far it is: calls `begin` when the columns are known, `take` for each row that is not the
// header, and `end`; none of them for an empty file. Without a word about it, the first row is the header if no field of it
// is a number. Rows that `take` cannot use since a field is missing return false, and are counted on standard error. A file that cannot be read, broken quoting and rows of different widths end the command.
void read_table(const std::string& file, const Format& format, const std::function<void(const Head&)>& begin,
                const std::function<bool(const Head&, const Row&)>& take,
                const std::function<void(const Head&)>& end = nullptr);

// The column of that name, or the column at that position (from 1) if no name matches. Ends the command if there is none.
size_t find_column(const Head& head, const std::string& name);

// What messages and tables call a column: its name, or else its position.
std::string column_name(const Head& head, size_t column);

// Fields as numbers. One that is none, or too large for the type, ends the command; so does a missing one, unless rows with
// such are to be skipped: then the result is false; or missing ones are nan.
template <class T>
bool read_numbers(const Head& head, const Row& row, const std::vector<size_t>& columns, std::vector<T>& values);

// Appends one row; fields are quoted where they must be.
template <class Fields>
void append_row(std::string& text, const Fields& fields, char separator = ',');

// A number with the decimal sign of a table.
template <class T>
void append_number(std::string& text, T value, char decimal);

}  // namespace orv::command
