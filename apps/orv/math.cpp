// `orv math`: one vector function over columns of numbers.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "numbers.h"
#include "output.h"
#include "progress.h"
#include "table.h"

#include <cstdio>
#include <memory>

namespace orv::command {

namespace {

struct Request {
    std::string function;
    char type = 'd';
    std::string accuracy;  // "la", "ha" or "ep"; empty leaves the choice to the entry or the mode
    bool by_mode = false;
    std::vector<std::string> columns;
    std::vector<double> constants;
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
    if (inputs_of(reports.function->shape) == 2) append_value(values += ", ", context->arg2);
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

// What a function takes besides arrays: one scalar, or scalea, shifta, scaleb and shiftb.
constexpr size_t most_constants = 4;
size_t constants_of(Shape shape) { return shape == Shape::LINEAR ? 4 : shape == Shape::SCALAR ? 1 : 0; }

size_t inputs_of(Shape shape) { return shape == Shape::TWO || shape == Shape::LINEAR ? 2 : 1; }

template <class T>
void apply(orv_arq_kernel kernel, Shape shape, const std::vector<T> (&in)[2], const T (&c)[most_constants],
           std::vector<T> (&out)[2]) {
    const int32_t n = static_cast<int32_t>(in[0].size());
    const T *const a = in[0].data(), *const b = in[1].data();
    T *const y = out[0].data(), *const z = out[1].data();
    switch (shape) {
        case Shape::TWO:
            reinterpret_cast<void (*)(int32_t, const T*, const T*, T*)>(kernel)(n, a, b, y);
            break;
        case Shape::TWO_OUT:
            reinterpret_cast<void (*)(int32_t, const T*, T*, T*)>(kernel)(n, a, y, z);
            break;
        case Shape::SCALAR:
            reinterpret_cast<void (*)(int32_t, const T*, T, T*)>(kernel)(n, a, c[0], y);
            break;
        case Shape::LINEAR:
            reinterpret_cast<void (*)(int32_t, const T*, const T*, T, T, T, T, T*)>(kernel)(n, a, b, c[0], c[1], c[2],
                                                                                            c[3], y);
            break;
        default:
            reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel)(n, a, y);
    }
}

template <class T>
struct Block {
    const Function& function;
    orv_arq_kernel kernel;
    size_t inputs, outputs;
    T constants[most_constants];
    std::vector<T> in[2], out[2];
    std::vector<int64_t> lines;
};

// Computes the block, hands its rows on and empties it. Text is held back until there is a good piece of it, so that a
// small table comes whole or not at all on standard output too.
template <class T>
void flush(Block<T>& block, std::string& text, Output& output) {
    constexpr size_t piece = 1 << 18;
    const size_t n = block.lines.size();
    for (size_t i = 0; i < block.outputs; ++i) block.out[i].resize(n);
    apply(block.kernel, block.function.shape, block.in, block.constants, block.out);
    for (size_t row = 0; row < n; ++row) {
        for (size_t i = 0; i < block.inputs; ++i) append_number(text, block.in[i][row]), text += ',';
        for (size_t i = 0; i < block.outputs; ++i)
            append_number(text, block.out[i][row]), text += i + 1 < block.outputs ? ',' : '\n';
    }
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
    const size_t inputs = inputs_of(function.shape);
    const size_t outputs = function.shape == Shape::TWO_OUT ? 2 : 1;
    Output output(request.output);
    Block<T> block = {function, choose_kernel(request, function), inputs, outputs, {}, {}, {}, {}};
    for (size_t i = 0; i < request.constants.size(); ++i) block.constants[i] = static_cast<T>(request.constants[i]);
    reports = {&function, nullptr, &block.lines, 0, 0};
    Progress progress = start_progress(size_of_files(request.files));
    int64_t bytes_before = 0, rows = 0;
    std::string text;
    bool first = true;
    for (const std::string& file : request.files) {
        std::vector<size_t> columns;
        int64_t bytes = 0;
        const auto begin = [&](const Head& head) {
            columns = choose_columns(head, request.columns, inputs);
            reports.head = &head;
            reports.rows_before = 0;
            // The first file says whether there is a header.
            if (first && !head.names.empty()) {
                std::vector<std::string> names;
                for (const size_t column : columns) names.push_back(head.names[column]);
                for (size_t i = 0; i < outputs; ++i)
                    names.push_back(std::string(function.name) + (outputs == 1 ? "" : "." + std::to_string(i + 1)));
                append_row(text, names);
            }
            first = false;
        };
        const auto take = [&](const Head& head, const Row& row) {
            for (size_t i = 0; i < inputs; ++i) block.in[i].push_back(number<T>(head, row, columns[i]));
            block.lines.push_back(row.line);
            bytes = row.bytes;
            ++rows;
            if (block.lines.size() < block_rows) return;
            flush(block, text, output);
            tell_progress(progress, bytes_before + bytes, megabytes_and_rows(bytes_before + bytes, rows));
        };
        const auto end = [&](const Head&) { flush(block, text, output); };
        read_table(file, begin, take, end);
        bytes_before += bytes;
    }
    end_progress(progress);
    write(output, text);
    finish(output);
    return reports.count == 0 ? 0 : 1;
}

int run(const Request& request) {
    const Function* function = find_function(request.function, request.type);
    if (!function)
        fail("no function " + request.function + " of type " + request.type + "; `orv info` lists what is here");
    const Shape shape = function->shape;
    if (shape != Shape::ONE && shape != Shape::TWO && shape != Shape::TWO_OUT && constants_of(shape) == 0)
        fail(std::string(function->name) + " takes more than columns of numbers");
    if (request.constants.size() != constants_of(shape))
        fail(std::string(function->name) + " takes " + std::to_string(constants_of(shape)) + " --constants, not " +
             std::to_string(request.constants.size()));
    return request.type == 's' ? run<float>(request, *function) : run<double>(request, *function);
}

}  // namespace

void add_math(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* math = app.add_subcommand("math", "Apply a vector function to columns of CSV files");
    math->footer(
        "Writes the input columns and the result as CSV. Numbers are rounded to the type as they are read. Elements "
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
    math->add_option("--constants", request->constants,
                     "what the function takes besides columns: scalea,shifta,scaleb,shiftb of LinearFrac, b of Powx")
        ->delimiter(',')
        ->allow_extra_args(false);
    math->add_option("--output", request->output, "the file to write; standard output if not given");
    math->add_option("file", request->files, "CSV files; standard input if none or -");
    math->callback([request, &status] {
        if (request->files.empty()) request->files = {"-"};
        status = run(*request);
    });
}

}  // namespace orv::command
