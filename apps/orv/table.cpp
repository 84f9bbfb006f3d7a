#include "table.h"

#include "failure.h"
#include "numbers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <csv.h>

namespace orv::command {

namespace {

std::string read_all(const std::string& file) {
    FILE* const stream = file == "-" ? stdin : std::fopen(file.c_str(), "rb");
    if (!stream) fail(file + ": " + std::strerror(errno));
    std::string text;
    char block[1 << 16];
    while (const size_t got = std::fread(block, 1, sizeof block, stream)) text.append(block, got);
    const bool broken = std::ferror(stream) != 0;
    const int reason = errno;
    if (stream != stdin) std::fclose(stream);
    if (broken) fail(file + ": " + std::strerror(reason));
    return text;
}

bool is_number(const std::string& text) {
    double value;
    return parse_number(text, value) != Parsed::not_a_number;
}

// What the parser's callbacks work on: the row so far. Exceptions stay out of the C code between.
struct Reading {
    Table table;
    std::vector<std::string> row;
    int64_t line = 1;
    int64_t ragged_line = 0;
    size_t ragged_width = 0;
};

void take_field(void* bytes, size_t length, void* data) {
    static_cast<Reading*>(data)->row.emplace_back(static_cast<const char*>(bytes), length);
}

void take_row(int, void* data) {
    Reading& reading = *static_cast<Reading*>(data);
    Table& table = reading.table;
    std::vector<std::string>& row = reading.row;
    if (reading.ragged_line == 0) {
        const bool first = table.width == 0;
        if (first) table.width = row.size();
        if (row.size() != table.width) {
            reading.ragged_line = reading.line;
            reading.ragged_width = row.size();
        } else if (first && std::none_of(row.begin(), row.end(), is_number)) {
            table.names = row;
        } else {
            table.fields.insert(table.fields.end(), row.begin(), row.end());
            table.lines.push_back(reading.line);
        }
    }
    row.clear();
}

}  // namespace

Table read_table(const std::string& file) {
    const std::string text = read_all(file);
    Reading reading;
    reading.table.source = file == "-" ? "<stdin>" : file;
    const std::string& source = reading.table.source;

    csv_parser parser;
    if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) != 0) fail(source + ": no memory");
    // Line by line, so that the callbacks know where they are; a quoted field may still span lines. A byte order mark
    // is no part of the first name.
    size_t start = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    bool good = true;
    while (good && start < text.size() && reading.ragged_line == 0) {
        const size_t newline = text.find('\n', start);
        const size_t length = (newline == std::string::npos ? text.size() : newline + 1) - start;
        good = csv_parse(&parser, text.data() + start, length, take_field, take_row, &reading) == length;
        start += length;
        if (good && newline != std::string::npos) ++reading.line;
    }
    if (good && reading.ragged_line == 0) good = csv_fini(&parser, take_field, take_row, &reading) == 0;
    csv_free(&parser);
    if (!good) fail_at(source, reading.line, "broken quoting");
    if (reading.ragged_line != 0)
        fail_at(source, reading.ragged_line,
                std::to_string(reading.ragged_width) + " fields where the rows above have " +
                    std::to_string(reading.table.width));
    return std::move(reading.table);
}

size_t find_column(const Table& table, const std::string& name) {
    const auto found = std::find(table.names.begin(), table.names.end(), name);
    if (found != table.names.end()) return static_cast<size_t>(found - table.names.begin());
    size_t position = 0;
    const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), position);
    const bool numeric = error == std::errc() && stop == name.data() + name.size();
    if (numeric && position >= 1 && position <= table.width) return position - 1;
    fail_at(table.source, 1, "no column " + name);
}

std::vector<size_t> choose_columns(const Table& table, const std::vector<std::string>& wanted, size_t count) {
    std::vector<size_t> columns;
    columns.reserve(wanted.size());
    for (const std::string& name : wanted) columns.push_back(find_column(table, name));
    if (wanted.empty())
        for (size_t column = 0; column < table.width; ++column) columns.push_back(column);
    // An empty table has the columns that it is asked for.
    if (table.width != 0 && columns.size() != count)
        fail_at(table.source, 1,
                std::to_string(columns.size()) + " columns where " + std::to_string(count) +
                    (count == 1 ? " is" : " are") + " wanted; choose with --column");
    return columns;
}

template <class T>
void append_column(const Table& table, size_t column, std::vector<T>& values) {
    values.reserve(values.size() + table.rows());
    for (size_t row = 0; row < table.rows(); ++row) {
        const std::string& field = table.field(row, column);
        T value;
        switch (parse_number(field, value)) {
            case Parsed::number:
                values.push_back(value);
                break;
            case Parsed::not_a_number:
                fail_at(table.source, table.lines[row], "'" + field + "' is not a number");
            case Parsed::too_large:
                fail_at(table.source, table.lines[row], "'" + field + "' is too large for the type");
        }
    }
}

template void append_column(const Table&, size_t, std::vector<float>&);
template void append_column(const Table&, size_t, std::vector<double>&);

void append_row(std::string& text, const std::vector<std::string>& fields) {
    for (const std::string& field : fields) {
        if (&field != &fields.front()) text += ',';
        if (field.find_first_of(",\"\r\n") == std::string::npos) {
            text += field;
            continue;
        }
        const size_t start = text.size();
        text.resize(start + csv_write(nullptr, 0, field.data(), field.size()));
        csv_write(text.data() + start, text.size() - start, field.data(), field.size());
    }
    text += '\n';
}

}  // namespace orv::command
