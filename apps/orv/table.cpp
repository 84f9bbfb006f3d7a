#include "table.h"

#include "failure.h"
#include "numbers.h"
#include "rows.h"

#include <algorithm>
#include <charconv>
#include <csv.h>

namespace orv::command {

Table read_table(const std::string& file) {
    Table table;
    table.source = source_name(file);
    read_rows(file, [&table](const Row& row) {
        if (table.width == 0) {
            table.width = row.fields.size();
            if (is_header(row.fields)) {
                table.names.assign(row.fields.begin(), row.fields.end());
                return;
            }
        }
        table.fields.insert(table.fields.end(), row.fields.begin(), row.fields.end());
        table.lines.push_back(row.line);
    });
    return table;
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
