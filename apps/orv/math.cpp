// `orv math`: one vector function over columns of numbers.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "numbers.h"
#include "output.h"
#include "table.h"

#include <climits>
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
    std::string output;
    std::vector<std::string> files;
};

// Where an element came from.
struct Origin {
    uint32_t table;
    uint32_t row;
};

// What the error callback needs; it gets no pointer of ours.
struct Reports {
    const Function* function;
    const std::vector<Table>* tables;
    const std::vector<Origin>* origins;
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
    const Origin origin = (*reports.origins)[static_cast<size_t>(context->index)];
    const Table& table = (*reports.tables)[origin.table];
    std::string values;
    append_value(values, context->arg1);
    if (reports.function->shape == Shape::TWO) append_value(values += ", ", context->arg2);
    const std::string line = "orv: " + table.source + ":" + std::to_string(table.lines[origin.row]) + ": row " +
                             std::to_string(origin.row + 1) + ": " + std::string(reports.function->name) + "(" +
                             values + "): " + meaning(context->code) + ", status " + std::to_string(context->code) +
                             "\n";
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
void apply(orv_arq_kernel kernel, Shape shape, const std::vector<T> (&in)[2], std::vector<T> (&out)[2]) {
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
        default:
            reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel)(n, a, y);
    }
}

template <class T>
int run(const Request& request, const Function& function) {
    const size_t inputs = function.shape == Shape::TWO ? 2 : 1;
    const size_t outputs = function.shape == Shape::TWO_OUT ? 2 : 1;

    std::vector<Table> tables;
    std::vector<Origin> origins;
    std::vector<T> in[2], out[2];
    std::vector<std::string> names;
    for (const std::string& file : request.files) {
        tables.push_back(read_table(file));
        const Table& table = tables.back();
        const std::vector<size_t> columns = choose_columns(table, request.columns, inputs);
        if (table.width == 0) continue;
        for (size_t i = 0; i < inputs; ++i) append_column(table, columns[i], in[i]);
        for (size_t row = 0; row < table.rows(); ++row)
            origins.push_back({static_cast<uint32_t>(tables.size() - 1), static_cast<uint32_t>(row)});
        if (names.empty() && !table.names.empty())
            for (size_t i = 0; i < inputs; ++i) names.push_back(table.names[columns[i]]);
    }
    if (origins.size() > INT32_MAX) fail("too many rows");
    for (size_t i = 0; i < outputs; ++i) out[i].resize(origins.size());

    const orv_arq_kernel kernel = choose_kernel(request, function);
    reports = {&function, &tables, &origins, 0};
    apply(kernel, function.shape, in, out);

    std::string text;
    if (!names.empty()) {
        for (size_t i = 0; i < outputs; ++i)
            names.push_back(std::string(function.name) + (outputs == 1 ? "" : "." + std::to_string(i + 1)));
        append_row(text, names);
    }
    for (size_t row = 0; row < origins.size(); ++row) {
        for (size_t i = 0; i < inputs; ++i) append_number(text, in[i][row]), text += ',';
        for (size_t i = 0; i < outputs; ++i) append_number(text, out[i][row]), text += i + 1 < outputs ? ',' : '\n';
    }
    write_output(request.output, text);
    return reports.count == 0 ? 0 : 1;
}

int run(const Request& request) {
    const Function* function = find_function(request.function, request.type);
    if (!function)
        fail("no function " + request.function + " of type " + request.type + "; `orv info` lists what is here");
    if (function->shape != Shape::ONE && function->shape != Shape::TWO && function->shape != Shape::TWO_OUT)
        fail(std::string(function->name) + " takes more than columns of numbers");
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
    math->add_option("--output", request->output, "the file to write; standard output if not given");
    math->add_option("file", request->files, "CSV files; standard input if none or -");
    math->callback([request, &status] {
        if (request->files.empty()) request->files = {"-"};
        status = run(*request);
    });
}

}  // namespace orv::command
