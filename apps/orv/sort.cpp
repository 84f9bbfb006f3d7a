// `orv sort`: one column of a CSV file in ascending order.
#include "commands.h"
#include "failure.h"
#include "numbers.h"
#include "options.h"
#include "output.h"
#include "stats_sections.h"
#include "table.h"

#include <climits>
#include <memory>

namespace orv::command {

namespace {

struct Request {
    std::string file = "-", column, output;
    Format format;
};

// The sorted numbers; nan stands last.
std::vector<double> sorted(const std::vector<double>& x) {
    if (x.size() > INT32_MAX) fail("too many rows to hold");
    const int32_t p = 1, n = static_cast<int32_t>(x.size()), form = StorageRows;
    std::vector<double> result(x.size());
    SSTask* task = nullptr;
    check_statistics(__kuzdSSNewTask(&task, &p, &n, &form, x.data(), nullptr, nullptr, 0));
    __kuzdSSEditTask(task, SSIdExtraData, result.data());
    __kuziSSEditTask(task, SSIdExtraInt, &form);
    const int32_t status = _kuzdSSSort(task, ORV_SS_SORT, 0, orv_serv_services());
    __kuzSSDeleteTask(&task);
    check_statistics(status);
    return result;
}

void run(const Request& request) {
    Output output(request.output);
    std::string text;
    std::vector<size_t> columns;
    std::vector<double> x, numbers;
    const auto begin = [&](const Head& head) {
        if (request.column.empty() && head.width > 1) fail_at(head.source, 1, "several columns: --column says which");
        columns = {request.column.empty() ? 0 : find_column(head, request.column)};
        if (!head.names.empty()) append_row(text, std::vector<std::string>{head.names[columns[0]]});
    };
    const auto take = [&](const Head& head, const Row& row) {
        if (!read_numbers(head, row, columns, numbers)) return false;
        x.push_back(numbers[0]);
        return true;
    };
    read_table(request.file, request.format, begin, take);
    if (x.empty()) fail(source_name(request.file) + ": no rows of numbers");
    for (const double value : sorted(x)) {
        append_number(text, value);
        text += '\n';
        if (text.size() > 1 << 16) {
            write(output, text);
            text.clear();
        }
    }
    write(output, text);
    finish(output);
}

}  // namespace

void add_sort(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* sort = app.add_subcommand("sort", "A column of a CSV file in ascending order");
    sort->add_option("file", request->file, "CSV file; standard input if none or -");
    sort->add_option("--column", request->column, "name or position from 1; the only one if not given");
    add_format(*sort, request->format);
    sort->add_option("--output", request->output, "the file to write; standard output if not given");
    sort->callback([request, &status] {
        run(*request);
        status = 0;
    });
}

}  // namespace orv::command
