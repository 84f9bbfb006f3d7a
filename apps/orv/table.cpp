#include "table.h"

#include "failure.h"
#include "names.h"
#include "numbers.h"
#include "progress.h"

#include <algorithm>
#include <charconv>
#include <csv.h>
#include <limits>

namespace orv::command {

namespace {

// A number as it stands in a table.
template <class T>
Parsed parse_field(std::string_view field, const Format& format, T& value) {
    if (format.decimal == '.') return parse_number(field, value);
    // The point then is no decimal sign.
    std::string plain(field);
    if (plain.find('.') != std::string::npos) return Parsed::not_a_number;
    std::replace(plain.begin(), plain.end(), format.decimal, '.');
    return parse_number(plain, value);
}

bool is_missing(std::string_view field) {
    return field.empty() || field == "NA" || field == "N/A" || field == "n/a" || field == "null" || field == "NULL";
}

bool names_columns(const Row& row, const Format& format) {
    if (format.header != Format::Header::GUESS) return format.header == Format::Header::YES;
    return std::none_of(row.fields.begin(), row.fields.end(), [&](std::string_view field) {
        double value;
        return parse_field(field, format, value) != Parsed::not_a_number;
    });
}

}  // namespace

void read_table(const std::string& file, const Format& format, const std::function<void(const Head&)>& begin,
                const std::function<bool(const Head&, const Row&)>& take, const std::function<void(const Head&)>& end) {
    if (format.separator == format.decimal) fail("--decimal: the sign stands between fields too; choose another --sep");
    Head head;
    head.source = source_name(file);
    head.format = format;
    Progress progress = start_progress(size_of_file(file));
    int64_t rows = 0, skipped = 0;
    read_rows(file, format, [&](const Row& row) {
        if (head.width == 0) {
            head.width = row.fields.size();
            const bool names = names_columns(row, format);
            if (names) head.names.assign(row.fields.begin(), row.fields.end());
            begin(head);
            if (names) return;
        }
        ++rows;
        if (!take(head, row)) ++skipped;
        constexpr int64_t now_and_then = 1 << 12;
        if (rows % now_and_then == 0)
            tell_progress(progress, row.bytes,
                          std::to_string(row.bytes / 1000000) + " MB, " + std::to_string(rows) + " rows");
    });
    end_progress(progress);
    if (head.width != 0 && end) end(head);
    if (skipped > 0)
        std::fprintf(stderr, "orv: %s: %lld of %lld rows skipped for missing values\n", head.source.c_str(),
                     static_cast<long long>(skipped), static_cast<long long>(rows));
}

size_t find_column(const Head& head, const std::string& name) {
    const auto found = std::find(head.names.begin(), head.names.end(), name);
    if (found != head.names.end()) return static_cast<size_t>(found - head.names.begin());
    size_t position = 0;
    const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), position);
    const bool numeric = error == std::errc() && stop == name.data() + name.size();
    if (numeric && position >= 1 && position <= head.width) return position - 1;
    if (numeric || head.names.empty())
        fail_at(head.source, 1, "no column " + name + "; there are columns 1 to " + std::to_string(head.width));
    fail_at(head.source, 1, no_such("column", name, head.names));
}

std::string column_name(const Head& head, size_t column) {
    return head.names.empty() ? std::to_string(column + 1) : head.names[column];
}

template <class T>
bool read_numbers(const Head& head, const Row& row, const std::vector<size_t>& columns, std::vector<T>& values) {
    values.clear();
    for (const size_t column : columns) {
        const std::string_view field = row.fields[column];
        T value;
        const Parsed parsed = parse_field(field, head.format, value);
        if (parsed == Parsed::number) {
            values.push_back(value);
            continue;
        }
        if (is_missing(field) && head.format.missing_is_nan) {
            values.push_back(std::numeric_limits<T>::quiet_NaN());
            continue;
        }
        if (is_missing(field) && head.format.skip_missing) return false;
        const std::string quoted = "'" + std::string(field) + "'";
        fail_at(head.source, row.line,
                "column " + column_name(head, column) + ": " +
                    (field.empty()                    ? "missing value"
                     : parsed == Parsed::not_a_number ? quoted + " is not a number"
                                                      : quoted + " is too large for the type"));
    }
    return true;
}

template bool read_numbers(const Head&, const Row&, const std::vector<size_t>&, std::vector<float>&);
template bool read_numbers(const Head&, const Row&, const std::vector<size_t>&, std::vector<double>&);

template <class Fields>
void append_row(std::string& text, const Fields& fields, char separator) {
    const char special[] = {separator, '"', '\r', '\n', '\0'};
    bool first = true;
    for (const auto& field : fields) {
        if (!first) text += separator;
        first = false;
        if (field.find_first_of(special) == std::string::npos) {
            text += field;
            continue;
        }
        const size_t start = text.size();
        text.resize(start + csv_write(nullptr, 0, field.data(), field.size()));
        csv_write(text.data() + start, text.size() - start, field.data(), field.size());
    }
    text += '\n';
}

template void append_row(std::string&, const std::vector<std::string>&, char);
template void append_row(std::string&, const std::span<const std::string_view>&, char);

template <class T>
void append_number(std::string& text, T value, char decimal) {
    const size_t start = text.size();
    append_number(text, value);
    if (decimal != '.') std::replace(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), '.', decimal);
}

template void append_number(std::string&, float, char);
template void append_number(std::string&, double, char);

}  // namespace orv::command
