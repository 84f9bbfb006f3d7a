#include "table.h"

#include "failure.h"
#include "numbers.h"

#include <algorithm>
#include <charconv>
#include <csv.h>

namespace orv::command {

void read_table(const std::string& file, const std::function<void(const Head&)>& begin,
                const std::function<void(const Head&, const Row&)>& take, const std::function<void(const Head&)>& end) {
    Head head;
    head.source = source_name(file);
    read_rows(file, [&](const Row& row) {
        if (head.width == 0) {
            head.width = row.fields.size();
            const bool names = is_header(row.fields);
            if (names) head.names.assign(row.fields.begin(), row.fields.end());
            begin(head);
            if (names) return;
        }
        take(head, row);
    });
    if (head.width != 0 && end) end(head);
}

size_t find_column(const Head& head, const std::string& name) {
    const auto found = std::find(head.names.begin(), head.names.end(), name);
    if (found != head.names.end()) return static_cast<size_t>(found - head.names.begin());
    size_t position = 0;
    const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), position);
    const bool numeric = error == std::errc() && stop == name.data() + name.size();
    if (numeric && position >= 1 && position <= head.width) return position - 1;
    fail_at(head.source, 1, "no column " + name);
}

std::string column_name(const Head& head, size_t column) {
    return head.names.empty() ? std::to_string(column + 1) : head.names[column];
}

template <class T>
T number(const Head& head, const Row& row, size_t column) {
    T value;
    const Parsed parsed = parse_number(row.fields[column], value);
    if (parsed == Parsed::number) return value;
    const std::string field(row.fields[column]);
    fail_at(head.source, row.line,
            "column " + column_name(head, column) + ": " +
                (field.empty()                    ? "missing value"
                 : parsed == Parsed::not_a_number ? "'" + field + "' is not a number"
                                                  : "'" + field + "' is too large for the type"));
}

template float number(const Head&, const Row&, size_t);
template double number(const Head&, const Row&, size_t);

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
