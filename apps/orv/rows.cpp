#include "rows.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <csv.h>
#include <memory>
#include <vector>

namespace orv::command {

namespace {

// What the parser's callbacks fill: the fields of the rows that the last piece of text completed, and of one begun.
// Exceptions stay out of the C code between, so rows are handed on when it has returned.
struct Gathered {
    std::string text;
    std::vector<size_t> field_ends;  // in text
    std::vector<size_t> row_ends;    // in field_ends
};

void take_field(void* bytes, size_t length, void* data) {
    Gathered& gathered = *static_cast<Gathered*>(data);
    gathered.text.append(static_cast<const char*>(bytes), length);
    gathered.field_ends.push_back(gathered.text.size());
}

void take_row(int, void* data) {
    Gathered& gathered = *static_cast<Gathered*>(data);
    gathered.row_ends.push_back(gathered.field_ends.size());
}

struct Reading {
    const std::string& source;
    const std::function<void(const Row&)>& take;
    Gathered gathered;
    std::vector<std::string_view> fields;
    size_t width = 0;
    int64_t line = 1, bytes = 0;

    // Hands on the complete rows. Text is parsed line by line, so a row begun is all there is besides, and only when
    // there is no complete one.
    void hand_on() {
        if (gathered.row_ends.empty()) return;
        size_t field = 0, start = 0;
        for (const size_t end : gathered.row_ends) {
            fields.clear();
            for (; field < end; start = gathered.field_ends[field++])
                fields.emplace_back(gathered.text.data() + start, gathered.field_ends[field] - start);
            if (width == 0) width = fields.size();
            if (fields.size() != width)
                fail_at(source, line,
                        std::to_string(fields.size()) + " fields where the rows above have " + std::to_string(width));
            take({fields, line, bytes});
        }
        gathered.text.erase(0, start);
        gathered.field_ends.erase(gathered.field_ends.begin(), gathered.field_ends.begin() + static_cast<long>(field));
        for (size_t& end : gathered.field_ends) end -= start;
        gathered.row_ends.clear();
    }
};

// What may stand around a field beside its text: nothing.
int is_no_blank(unsigned char) { return 0; }

void close_stream(FILE* stream) {
    if (stream != stdin) std::fclose(stream);
}

}  // namespace

std::string source_name(const std::string& file) { return file == "-" ? "<stdin>" : file; }

void read_rows(const std::string& file, const Format& format, const std::function<void(const Row&)>& take) {
    const std::unique_ptr<FILE, void (*)(FILE*)> stream(file == "-" ? stdin : std::fopen(file.c_str(), "rb"),
                                                        close_stream);
    if (!stream) fail(file + ": " + std::strerror(errno));
    const std::string source = source_name(file);
    Reading reading{source, take, {}, {}};

    csv_parser parser;
    if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) != 0) fail(source + ": no memory");
    const std::unique_ptr<csv_parser, void (*)(csv_parser*)> release(&parser, csv_free);
    csv_set_delim(&parser, static_cast<unsigned char>(format.separator));
    // A tab between fields is no blank around one.
    if (format.separator == '\t' || format.separator == ' ') csv_set_space_func(&parser, is_no_blank);

    std::vector<char> block(1 << 18);
    bool line_begins = true, in_comment = false;
    while (const size_t got = std::fread(block.data(), 1, block.size(), stream.get())) {
        // A byte order mark is no part of the first name.
        size_t start = reading.bytes == 0 && std::string_view(block.data(), got).starts_with("\xEF\xBB\xBF") ? 3 : 0;
        reading.bytes += static_cast<int64_t>(got);
        // Line by line, so that rows know where they are; a quoted field may still span lines.
        while (start < got) {
            const void* const newline = std::memchr(block.data() + start, '\n', got - start);
            const size_t end =
                newline ? static_cast<size_t>(static_cast<const char*>(newline) - block.data()) + 1 : got;
            const size_t length = end - start;
            constexpr int between_rows = 0;
            if (line_begins)
                in_comment = format.comment != '\0' && block[start] == format.comment && parser.pstate == between_rows;
            if (!in_comment &&
                csv_parse(&parser, block.data() + start, length, take_field, take_row, &reading.gathered) != length)
                fail_at(source, reading.line, "broken quoting");
            reading.hand_on();
            line_begins = newline != nullptr;
            if (newline) ++reading.line;
            start = end;
        }
    }
    if (std::ferror(stream.get()) != 0) fail(file + ": " + std::strerror(errno));
    if (csv_fini(&parser, take_field, take_row, &reading.gathered) != 0)
        fail_at(source, reading.line, "broken quoting");
    reading.hand_on();
}

}  // namespace orv::command
