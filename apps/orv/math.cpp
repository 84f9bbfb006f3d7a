// `orv math`: one vector function over columns of numbers.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "numbers.h"
#include "options.h"
#include "output.h"
#include "table.h"

#include <algorithm>
#include <cmath>
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
    std::vector<std::string> complex;  // pairs of columns, such as "re,im"
    std::vector<double> constants;
    Format format;
    std::string output;
    std::vector<std::string> files;
};

// What a function takes of a row and gives for it: arrays, and numbers in an element of each, two where it is complex.
struct Arity {
    size_t inputs, input_parts, outputs, output_parts, constants;
};

Arity arity_of(const Function& function) {
    const bool complex = function.type == 'c' || function.type == 'z';
    const Shape shape = function.shape;
    const size_t input_parts = complex && shape != Shape::TO_COMPLEX ? 2 : 1;
    return {shape == Shape::TWO || shape == Shape::LINEAR ? size_t{2} : size_t{1}, input_parts,
            shape == Shape::TWO_OUT ? size_t{2} : size_t{1}, complex && shape != Shape::TO_REAL ? size_t{2} : size_t{1},
            shape == Shape::LINEAR   ? size_t{4}
            : shape == Shape::SCALAR ? input_parts
                                     : size_t{0}};
}

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
    if (reports.function->type == 's' || reports.function->type == 'c')
        append_number(text, static_cast<float>(value));
    else
        append_number(text, value);
}

void append_argument(std::string& text, double re, double im) {
    append_value(text, re);
    if (arity_of(*reports.function).input_parts == 1) return;
    text += std::signbit(im) ? "-" : "+";
    append_value(text, std::fabs(im));
    text += 'i';
}

int32_t report(ArqErrorContext* context) {
    std::string values;
    append_argument(values, context->arg1, context->arg1_im);
    if (arity_of(*reports.function).inputs + arity_of(*reports.function).constants > 1)
        append_argument(values += ", ", context->arg2, context->arg2_im);
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
    Arity arity;
    std::vector<T> constants;
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
    const auto [inputs, input_parts, outputs, output_parts, constants] = block.arity;
    for (size_t i = 0; i < outputs; ++i) block.out[i].resize(n * output_parts);
    call(block.function, block.kernel, static_cast<int32_t>(n), block.in[0].data(), block.in[1].data(),
         block.constants.data(), block.out[0].data(), block.out[1].data());
    for (size_t row = 0; row < n; ++row) {
        if (!block.kept.empty()) text += block.kept[row];
        for (size_t i = 0; i < inputs * input_parts && block.kept.empty(); ++i)
            append_number(text, block.in[i / input_parts][row * input_parts + i % input_parts], format.decimal),
                text += format.separator;
        for (size_t i = 0; i < outputs * output_parts; ++i) {
            append_number(text, block.out[i / output_parts][row * output_parts + i % output_parts], format.decimal);
            text += i + 1 < outputs * output_parts ? format.separator : '\n';
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
    columns.reserve(std::max(wanted.size(), head.width));
    for (const std::string& name : wanted) columns.push_back(find_column(head, name));
    if (wanted.empty())
        for (size_t column = 0; column < head.width; ++column) columns.push_back(column);
    if (columns.size() != count)
        fail_at(head.source, 1,
                std::to_string(columns.size()) + " columns where " + std::to_string(count) +
                    (count == 1 ? " is" : " are") + " wanted; choose with --column");
    return columns;
}

// The columns of the numbers that a row gives to the function, in their order.
std::vector<std::string> wanted_columns(const Request& request) {
    if (request.complex.empty()) return request.columns;
    std::vector<std::string> columns;
    columns.reserve(2 * request.complex.size());
    for (const std::string& pair : request.complex) {
        const size_t comma = pair.find(',');
        if (comma == std::string::npos || pair.find(',', comma + 1) != std::string::npos)
            fail("--complex takes two columns, such as re,im: not \"" + pair + "\"");
        columns.push_back(pair.substr(0, comma));
        columns.push_back(pair.substr(comma + 1));
    }
    return columns;
}

std::vector<std::string> result_names(const Function& function, const Arity& arity) {
    const std::string name(function.name);
    if (arity.output_parts == 2) return {name + ".re", name + ".im"};
    if (arity.outputs == 2) return {name + ".1", name + ".2"};
    return {name};
}

template <class T>
int run(const Request& request, const Function& function) {
    const Arity arity = arity_of(function);
    const size_t taken = arity.inputs * arity.input_parts;
    const std::vector<std::string> wanted = wanted_columns(request);
    Output output(request.output);
    Block<T> block = {function, choose_kernel(request, function), arity, {}, {}, {}, {}, {}};
    for (const double constant : request.constants) block.constants.push_back(static_cast<T>(constant));
    reports = {&function, nullptr, &block.lines, 0, 0};
    std::string text;
    bool first = true;
    for (const std::string& file : request.files) {
        std::vector<size_t> columns;
        std::vector<T> values;
        const auto begin = [&](const Head& head) {
            columns = choose_columns(head, wanted, taken);
            reports.head = &head;
            reports.rows_before = 0;
            // The first file says whether there is a header.
            if (first && !head.names.empty()) {
                std::vector<std::string> names;
                if (request.append) names = head.names;
                for (size_t i = 0; i < taken && !request.append; ++i) names.push_back(head.names[columns[i]]);
                for (const std::string& name : result_names(function, arity)) names.push_back(name);
                append_row(text, names, request.format.separator);
            }
            first = false;
        };
        const auto take = [&](const Head& head, const Row& row) {
            if (!read_numbers(head, row, columns, values)) return false;
            for (size_t i = 0; i < taken; ++i) block.in[i / arity.input_parts].push_back(values[i]);
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

// The function of the numbers that the request names: of complex ones, of real ones, or from real to complex.
const Function& choose_function(const Request& request) {
    const char complex_type = request.type == 's' ? 'c' : 'z';
    if (!request.complex.empty()) {
        const Function& function = find_function(request.function, complex_type);
        if (function.shape == Shape::TO_COMPLEX) fail(std::string(function.name) + " takes real numbers; use --column");
        return function;
    }
    if (!try_function(request.function, request.type))
        if (const Function* function = try_function(request.function, complex_type)) {
            if (function->shape == Shape::TO_COMPLEX) return *function;
            fail(std::string(function->name) + " takes complex numbers; name the columns with --complex re,im");
        }
    return find_function(request.function, request.type);
}

int run(const Request& request) {
    const Function& function = choose_function(request);
    if (function.shape >= Shape::PACK_STRIDE) fail(std::string(function.name) + " moves numbers and computes nothing");
    const size_t constants = arity_of(function).constants;
    if (request.constants.size() != constants)
        fail(std::string(function.name) + " takes " +
             (constants == 0   ? "no constants"
              : constants == 1 ? "a constant; give it with --constant"
                               : std::to_string(constants) + " constants; give them with --constants"));
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
    math->add_option("--complex", request->complex,
                     "an input of complex numbers: the columns of their parts, such as re,im; once for each input")
        ->allow_extra_args(false)
        ->excludes("--column");
    math->add_option(
            "--constant,--constants", request->constants,
            "arguments that are the same for all rows: the exponent of Powx (of complex numbers re,im), scale and "
            "shift of both inputs of LinearFrac")
        ->delimiter(',')
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
