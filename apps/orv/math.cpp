// `orv math`: one vector function over columns of numbers.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "numbers.h"
#include "options.h"
#include "output.h"
#include "table.h"

#include <cstdio>
#include <memory>

namespace orv::command {

namespace {

struct Request {
    std::string function;
    char type = 'd';
    std::string accuracy;  // "la", "ha" or "ep"; empty leaves the choice to the entry or the mode
    bool by_mode = false, append = false;
    std::vector<std::string> columns;
    Format format;
    std::string output;
    std::vector<std::string> files;
};

// The rows that wait for the kernel, and where they came from: a block is all of a file that is held at a time.
constexpr size_t block_rows = 1 << 13;

// What the error callback needs; it gets no pointer of ours.
struct Reports {
    const Function* function;
    const Head* head;
    const std::vector<int64_t>* lines;  // of the block
    int64_t rows_before;                // of the file, in blocks before
    int count;
};
Reports reports;

const char* meaning(int32_t status) {
    switch (status) {
        case ORV_STATUS_DOMAIN:
            return "outside the domain";
        case ORV_STATUS_SINGULARITY:
            return "at a singularity";
        case ORV_STATUS_OVERFLOW:
            return "the result overflows";
        case ORV_STATUS_UNDERFLOW:
            return "the result underflows";
        default:
            return "not computed";
    }
}

// The values are those of the function's type widened, so floats are printed as the short text that they came from.
void append_value(std::string& text, double value) {
    if (reports.function->type == 's')
        append_number(text, static_cast<float>(value));
    else
        append_number(text, value);
}

int32_t report(ArqErrorContext* context) {
    std::string values;
    append_value(values, context->arg1);
    if (reports.function->shape == Shape::TWO) append_value(values += ", ", context->arg2);
    const std::string line = "orv: " + reports.head->source + ":" +
                             std::to_string((*reports.lines)[static_cast<size_t>(context->index)]) + ": row " +
                             std::to_string(reports.rows_before + context->index + 1) + ": " +
                             std::string(reports.function->name) + "(" + values + "): " + meaning(context->code) +
                             ", status " + std::to_string(context->code) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    ++reports.count;
    return 0;
}

// The kernel that the request asks for. The mode is set either way: error reports go to the callback alone.
orv_arq_kernel choose_kernel(const Request& request, const Function& function) {
    // The tables' order, and one less than the value of the mode word's field.
    int32_t index = -1;
    if (!request.accuracy.empty()) index = request.accuracy == "la" ? 0 : request.accuracy == "ha" ? 1 : 2;
    orv_arq_kernel_SetMode(static_cast<uint32_t>(index + 1) | ORV_MODE_ERRMODE_CALLBACK);
    _arqSetErrorCallBack(report);
    if (request.by_mode) return function.table_row[orv_arq_kernel_GetTTableIndex()];
    constexpr int32_t ha = 1;
    return function.entries[index < 0 ? ha : index];
}

template <class T>
struct Block {
    const Function& function;
    orv_arq_kernel kernel;
    size_t inputs, outputs;
    std::vector<T> in[2], out[2];
    std::vector<int64_t> lines;
    std::vector<std::string> kept;  // what of each row stands before the results, where that is all of it
};

// Computes the block, hands its rows on and empties it. Text is held back until there is a good piece of it, so that a
// small table comes whole or not at all on standard output too.
template <class T>
void flush(Block<T>& block, const Format& format, std::string& text, Output& output) {
    constexpr size_t piece = 1 << 18;
    const size_t n = block.lines.size();
    for (size_t i = 0; i < block.outputs; ++i) block.out[i].resize(n);
    call(block.function, block.kernel, static_cast<int32_t>(n), block.in[0].data(), block.in[1].data(),
         block.out[0].data(), block.out[1].data());
    for (size_t row = 0; row < n; ++row) {
        if (!block.kept.empty()) text += block.kept[row];
        for (size_t i = 0; i < block.inputs && block.kept.empty(); ++i)
            append_number(text, block.in[i][row], format.decimal), text += format.separator;
        for (size_t i = 0; i < block.outputs; ++i) {
            append_number(text, block.out[i][row], format.decimal);
            text += i + 1 < block.outputs ? format.separator : '\n';
        }
    }
    block.kept.clear();
    if (text.size() >= piece) write(output, text), text.clear();
    for (std::vector<T>& in : block.in) in.clear();
    block.lines.clear();
    reports.rows_before += static_cast<int64_t>(n);
}

std::vector<size_t> choose_columns(const Head& head, const std::vector<std::string>& wanted, size_t count) {
    std::vector<size_t> columns;
    for (const std::string& name : wanted) columns.push_back(find_column(head, name));
    if (wanted.empty())
        for (size_t column = 0; column < head.width; ++column) columns.push_back(column);
    if (columns.size() != count)
        fail_at(head.source, 1,
                std::to_string(columns.size()) + " columns where " + std::to_string(count) +
                    (count == 1 ? " is" : " are") + " wanted; choose with --column");
    return columns;
}

template <class T>
int run(const Request& request, const Function& function) {
    const size_t inputs = function.shape == Shape::TWO ? 2 : 1;
    const size_t outputs = function.shape == Shape::TWO_OUT ? 2 : 1;
    Output output(request.output);
    Block<T> block = {function, choose_kernel(request, function), inputs, outputs, {}, {}, {}, {}};
    reports = {&function, nullptr, &block.lines, 0, 0};
    std::string text;
    bool first = true;
    for (const std::string& file : request.files) {
        std::vector<size_t> columns;
        std::vector<T> values;
        const auto begin = [&](const Head& head) {
            columns = choose_columns(head, request.columns, inputs);
            reports.head = &head;
            reports.rows_before = 0;
            // The first file says whether there is a header.
            if (first && !head.names.empty()) {
                std::vector<std::string> names;
                if (request.append) names = head.names;
                for (size_t i = 0; i < inputs && !request.append; ++i) names.push_back(head.names[columns[i]]);
                for (size_t i = 0; i < outputs; ++i)
                    names.push_back(std::string(function.name) + (outputs == 1 ? "" : "." + std::to_string(i + 1)));
                append_row(text, names, request.format.separator);
            }
            first = false;
        };
        const auto take = [&](const Head& head, const Row& row) {
            if (!read_numbers(head, row, columns, values)) return false;
            for (size_t i = 0; i < inputs; ++i) block.in[i].push_back(values[i]);
            block.lines.push_back(row.line);
            if (request.append) {
                append_row(block.kept.emplace_back(), row.fields, request.format.separator);
                block.kept.back().back() = request.format.separator;
            }
            if (block.lines.size() == block_rows) flush(block, request.format, text, output);
            return true;
        };
        const auto end = [&](const Head&) { flush(block, request.format, text, output); };
        read_table(file, request.format, begin, take, end);
    }
    write(output, text);
    finish(output);
    return reports.count == 0 ? 0 : 1;
}

int run(const Request& request) {
    const Function& function = find_function(request.function, request.type);
    if (function.shape != Shape::ONE && function.shape != Shape::TWO && function.shape != Shape::TWO_OUT)
        fail(std::string(function.name) + " takes more than columns of numbers");
    return request.type == 's' ? run<float>(request, function) : run<double>(request, function);
}

}  // namespace

void add_math(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* math = app.add_subcommand("math", "Apply a vector function to columns of CSV files");
    math->footer(
        "Writes the input columns and the result in the form of the table. Numbers are rounded to the type as they are "
        "read. Elements "
        "without\n"
        "a proper result are listed on standard error, and the exit status is 1; it is 2 where nothing was done.");
    math->add_option("function", request->function, "such as Ceil or Add")->required();
    math->add_option("--type", request->type, "s (float) or d (double)")
        ->check(CLI::IsMember({"s", "d"}))
        ->capture_default_str();
    math->add_option("--accuracy", request->accuracy,
                     "la, ha or ep; if not given ha, or the mode word's with --by-mode")
        ->transform(CLI::IsMember({"la", "ha", "ep"}, CLI::ignore_case));
    math->add_flag("--by-mode", request->by_mode, "take the kernel from the table by the thread's mode word");
    math->add_option("--column", request->columns,
                     "an input column, by name or by position from 1; once for each input")
        ->allow_extra_args(false);
    math->add_flag("--append", request->append, "keep all columns of the table, with the results behind them");
    add_format(*math, request->format);
    math->add_option("--output", request->output, "the file to write; standard output if not given");
    math->add_option("file", request->files, "CSV files; standard input if none or -");
    math->callback([request, &status] {
        if (request->files.empty()) request->files = {"-"};
        status = run(*request);
    });
}

}  // namespace orv::command
