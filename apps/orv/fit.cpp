// `orv fit`: a spline through two columns of a CSV file; its values, derivatives and integrals as CSV, and a picture.
#include "commands.h"
#include "failure.h"
#include "numbers.h"
#include "output.h"
#include "plot.h"
#include "table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <orv/fitting.h>

namespace orv::command {

namespace {

struct Request {
    std::string file = "-", x, y, internal, spline = "natural", boundary, sites = "101", output, plot;
    std::vector<std::string> intervals;
    int derivatives = 0;
    char type = 'd';
};

template <class T>
using Construct = int32_t (*)(const DFTask*, const void*, const void*, int64_t, const orv_services*);

// A spline as the command names it, with its codes, the fewest rows it takes and the ends it has unless told.
struct Spline {
    const char* name;
    Construct<double> construct_d;
    Construct<float> construct_s;
    int64_t order, type, boundary;
    size_t least_rows;
};

#define ORV_KERNELS(kind) orv_df_kernel_dDF##kind##Spline1D, orv_df_kernel_sDF##kind##Spline1D
const Spline splines[] = {
    {"linear", ORV_KERNELS(Linear), 2, ORV_DF_TYPE_DEFAULT, ORV_DF_FREE_END, 2},
    {"quadratic", ORV_KERNELS(Quadratic), 3, ORV_DF_TYPE_KNOTS, ORV_DF_FREE_END, 2},
    {"natural", ORV_KERNELS(NaturalCubic), 4, ORV_DF_TYPE_NATURAL, ORV_DF_FREE_END, 2},
    {"default", ORV_KERNELS(DefaultCubic), 4, ORV_DF_TYPE_DEFAULT, ORV_DF_FREE_END, 3},
    {"hermite", ORV_KERNELS(HermiteCubic), 4, ORV_DF_TYPE_HERMITE, ORV_DF_FREE_END, 3},
    {"bessel", ORV_KERNELS(BesselCubic), 4, ORV_DF_TYPE_BESSEL, ORV_DF_FREE_END, 4},
    {"akima", ORV_KERNELS(AkimaCubic), 4, ORV_DF_TYPE_AKIMA, ORV_DF_NO_CONDITION, 5},
    {"hyman", ORV_KERNELS(HymanCubic), 4, ORV_DF_TYPE_HYMAN, ORV_DF_FREE_END, 4},
};
#undef ORV_KERNELS

const struct {
    const char* name;
    int64_t code;
    bool takes_values;
} boundaries[] = {
    {"none", ORV_DF_NO_CONDITION, false},
    {"not-a-knot", ORV_DF_NOT_A_KNOT, false},
    {"free", ORV_DF_FREE_END, false},
    {"periodic", ORV_DF_PERIODIC, false},
    {"first", ORV_DF_FIRST_FIRST, true},
    {"first-second", ORV_DF_FIRST_SECOND, true},
    {"second-first", ORV_DF_SECOND_FIRST, true},
    {"second", ORV_DF_SECOND_SECOND, true},
};

// Two numbers with a comma between them.
template <class T>
std::vector<T> parse_pair(const std::string& text, const std::string& option) {
    const size_t comma = text.find(',');
    std::vector<T> pair(2);
    if (comma == std::string::npos ||
        parse_number(std::string_view(text).substr(0, comma), pair[0]) != Parsed::number ||
        parse_number(std::string_view(text).substr(comma + 1), pair[1]) != Parsed::number)
        fail(option + ": " + text + " is not two numbers with a comma between them");
    return pair;
}

template <class T>
struct Data {
    std::vector<T> x, y, internal;
};

template <class T>
Data<T> read_data(const Request& request) {
    const Table table = read_table(request.file);
    if (table.width == 0) fail(request.file + ": no rows");
    Data<T> data;
    append_column(table, find_column(table, request.x), data.x);
    append_column(table, find_column(table, request.y), data.y);
    if (!request.internal.empty()) append_column(table, find_column(table, request.internal), data.internal);
    for (size_t row = 0; row < data.x.size(); ++row) {
        if (!std::isfinite(data.x[row]) || !std::isfinite(data.y[row]))
            fail_at(table.source, table.lines[row], "a spline needs finite numbers");
        if (row == 0 || data.x[row - 1] < data.x[row]) continue;
        const bool repeated = data.x[row - 1] == data.x[row];
        std::string text = repeated ? "abscissa " : "abscissae must ascend, and ";
        append_number(text, data.x[row]);
        fail_at(table.source, table.lines[row],
                text + (repeated ? " is repeated" : " is below that of the row before"));
    }
    return data;
}

template <class T>
std::vector<T> sites_of(const Request& request, const Data<T>& data) {
    int64_t count;
    const char* const end = request.sites.data() + request.sites.size();
    const auto parsed = std::from_chars(request.sites.data(), end, count);
    std::vector<T> sites;
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        const Table table = read_table(request.sites);
        append_column(table, choose_columns(table, {}, 1)[0], sites);
        return sites;
    }
    if (count < 1 || count > 10000000) fail("--sites: a count from 1 to 10000000, or a file");
    const T first = data.x.front(), last = data.x.back();
    for (int64_t i = 0; i < count; ++i)
        sites.push_back(i + 1 == count && count > 1
                            ? last
                            : first + (last - first) * static_cast<T>(i) / static_cast<T>(count > 1 ? count - 1 : 1));
    return sites;
}

template <class T>
constexpr bool is_double = sizeof(T) == sizeof(double);

// The entry of the element type.
#define ORV_ENTRY(name)                    \
    [] {                                   \
        if constexpr (is_double<T>)        \
            return &orv_df_kernel_d##name; \
        else                               \
            return &orv_df_kernel_s##name; \
    }()

void expect_success(int32_t status, const char* what) {
    if (status == ORV_DF_OK) return;
    const char* meaning = status == ORV_DF_NO_MEMORY                ? "no memory"
                          : status == ORV_DF_BAD_BREAK_COUNT        ? "too few rows for these ends"
                          : status == ORV_DF_NULL_BOUNDARY_DATA     ? "these ends need two values, as in first:0,0"
                          : status == ORV_DF_BAD_BOUNDARY_CONDITION ? "this spline does not take these ends"
                          : status == ORV_DF_NOT_PERIODIC ? "periodic ends, but the first and the last value differ"
                          : status == ORV_DF_SINGULAR     ? "the system of equations is singular"
                                                          : "not possible";
    fail(std::string(what) + ": " + meaning + ", status " + std::to_string(status));
}

// A task and its end, also where what follows its making fails.
struct TaskOwner {
    DFTask* task = nullptr;

    TaskOwner() = default;
    ~TaskOwner() {
        if (task) orv_df_kernel_DeleteTask(&task);
    }
    TaskOwner(const TaskOwner&) = delete;
    TaskOwner& operator=(const TaskOwner&) = delete;
};

// The spline of one run: the task refers to the arrays beside it.
template <class T>
struct Fit : TaskOwner {
    const Data<T>& data;
    std::vector<T> ends, internal, coeffs;

    Fit(const Data<T>& d, const Request& request, const Spline& spline) : data(d) {
        const size_t rows = data.x.size();
        if (rows < spline.least_rows)
            fail(request.file + ": the " + spline.name + " spline takes at least " + std::to_string(spline.least_rows) +
                 " rows");
        int64_t boundary = spline.boundary;
        if (!request.boundary.empty()) boundary = parse_boundary(request.boundary);
        int64_t internal_type = 0;
        if (spline.type == ORV_DF_TYPE_KNOTS) {
            internal_type = ORV_DF_INTERNAL_KNOTS;
            for (size_t i = 0; i + 1 < rows; ++i) internal.push_back(data.x[i] + (data.x[i + 1] - data.x[i]) / 2);
        } else if (spline.type == ORV_DF_TYPE_HERMITE || spline.type == ORV_DF_TYPE_DEFAULT) {
            if (!data.internal.empty()) {
                internal_type = 1;
                internal.assign(data.internal.begin() + 1, data.internal.end() - 1);
            } else if (spline.order == 4) {
                fail(std::string("the ") + spline.name + " spline takes its interior " +
                     (spline.type == ORV_DF_TYPE_HERMITE ? "first" : "second") + " derivatives from --internal");
            }
        }
        coeffs.resize(rows * static_cast<size_t>(spline.order));
        expect_success(ORV_ENTRY(NewTask1D)(&task, static_cast<int64_t>(rows), data.x.data(), ORV_DF_BREAKS_NO_HINT, 1,
                                            data.y.data(), ORV_DF_ROWS, 0),
                       "task");
        expect_success(
            ORV_ENTRY(EditPPSpline1D)(task, spline.order, spline.type, boundary, ends.empty() ? nullptr : ends.data(),
                                      internal_type, internal_type == 0 ? nullptr : internal.data(), coeffs.data(), 0),
            "spline");
        int32_t status;
        if constexpr (is_double<T>)
            status = spline.construct_d(task, nullptr, nullptr, 0, orv_serv_services());
        else
            status = spline.construct_s(task, nullptr, nullptr, 0, orv_serv_services());
        expect_success(status, spline.name);
    }

    int64_t parse_boundary(const std::string& text) {
        const size_t colon = text.find(':');
        const auto* boundary = std::find_if(std::begin(boundaries), std::end(boundaries),
                                            [&](const auto& known) { return text.substr(0, colon) == known.name; });
        if (boundary == std::end(boundaries)) fail("--bc: " + text + " is none of the ends; see orv fit --help");
        if (colon != std::string::npos) ends = parse_pair<T>(text.substr(colon + 1), "--bc");
        if (boundary->takes_values && ends.empty()) fail("--bc: " + text + " takes two values, as in " + text + ":0,0");
        return boundary->code;
    }

    // Rows of value and derivatives up to `highest`.
    std::vector<T> evaluate(const std::vector<T>& sites, int highest) const {
        const std::vector<int32_t> wanted(static_cast<size_t>(highest) + 1, 1);
        std::vector<T> results(sites.size() * wanted.size());
        expect_success(ORV_ENTRY(DFInterpolate1D)(task, ORV_DF_EVALUATE, 0, static_cast<int64_t>(sites.size()),
                                                  sites.data(), ORV_DF_SITES_NO_HINT, highest + 1, wanted.data(),
                                                  nullptr, results.data(), ORV_DF_ROWS, nullptr, nullptr, nullptr,
                                                  nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
                       "evaluation");
        return results;
    }
};

template <class T>
std::string table_of_sites(const Request& request, const Fit<T>& fit) {
    const std::vector<T> sites = sites_of(request, fit.data);
    const std::vector<T> results = fit.evaluate(sites, request.derivatives);
    std::vector<std::string> names = {request.x, request.y};
    for (int k = 1; k <= request.derivatives; ++k) (names.emplace_back(request.y) += ".d") += std::to_string(k);
    std::string text;
    append_row(text, names);
    const size_t wanted = static_cast<size_t>(request.derivatives) + 1;
    for (size_t i = 0; i < sites.size(); ++i) {
        append_number(text, sites[i]);
        for (size_t k = 0; k < wanted; ++k) append_number(text += ',', results[i * wanted + k]);
        text += '\n';
    }
    return text;
}

template <class T>
std::string table_of_integrals(const Request& request, const Fit<T>& fit) {
    std::vector<T> from, to;
    for (const std::string& interval : request.intervals) {
        const std::vector<T> pair = parse_pair<T>(interval, "--integrate");
        from.push_back(pair[0]);
        to.push_back(pair[1]);
    }
    std::vector<T> results(from.size());
    expect_success(ORV_ENTRY(DFIntegrate1D)(fit.task, 0, static_cast<int64_t>(from.size()), from.data(), 0, to.data(),
                                            0, nullptr, results.data(), ORV_DF_ROWS, nullptr),
                   "integration");
    std::string text = "from,to,integral\n";
    for (size_t i = 0; i < from.size(); ++i) {
        append_number(text, from[i]);
        append_number(text += ',', to[i]);
        append_number(text += ',', results[i]);
        text += '\n';
    }
    return text;
}

// Data, spline and first derivative, this one against the axis at the right.
template <class T>
void draw(const Request& request, const Fit<T>& fit) {
    Request dense = request;
    dense.sites = "1001";
    const std::vector<T> sites = sites_of(dense, fit.data);
    const std::vector<T> results = fit.evaluate(sites, 1);
    std::string script =
        "set key outside bottom center horizontal\nset ytics nomirror\nset y2tics\nset grid\nset xlabel " +
        plot_quoted(request.x) + "\nset ylabel " + plot_quoted(request.y) +
        "\nset y2label 'first derivative'\n$data << EOD\n";
    const auto row = [&](std::initializer_list<T> numbers) {
        for (const T number : numbers) {
            append_number(script, number);
            script += ' ';
        }
        script += '\n';
    };
    for (size_t i = 0; i < fit.data.x.size(); ++i) row({fit.data.x[i], fit.data.y[i]});
    script += "EOD\n$spline << EOD\n";
    for (size_t i = 0; i < sites.size(); ++i) row({sites[i], results[2 * i], results[2 * i + 1]});
    script +=
        "EOD\nplot $spline using 1:3 axes x1y2 with lines lc rgb '#c0c0c0' title 'derivative', "
        "$spline using 1:2 with lines lw 2 lc rgb '#1f6fb4' title " +
        plot_quoted(request.spline + " spline") +
        ", $data using 1:2 with points pt 7 ps 0.5 lc rgb '#d04030' title 'data'\n";
    write_plot(request.plot, 900, 560, script);
}

template <class T>
int run(const Request& request, const Spline& spline) {
    const Data<T> data = read_data<T>(request);
    const Fit<T> fit(data, request, spline);
    const std::string text =
        request.intervals.empty() ? table_of_sites(request, fit) : table_of_integrals(request, fit);
    if (!request.plot.empty()) draw(request, fit);
    write_output(request.output, text);
    return 0;
}

int run(const Request& request) {
    for (const Spline& spline : splines)
        if (request.spline == spline.name)
            return request.type == 's' ? run<float>(request, spline) : run<double>(request, spline);
    fail("--spline: no spline " + request.spline + "; see orv fit --help");
}

}  // namespace

void add_fit(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* fit = app.add_subcommand("fit", "Fit a spline to two columns of a CSV file");
    fit->footer(
        "Splines: linear, quadratic (knots in the middle of the cells), natural, default, hermite, bessel, akima, "
        "hyman.\n"
        "Ends: none (akima), not-a-knot, free, periodic, first:A,B, first-second:A,B, second-first:A,B, second:A,B; "
        "the\n"
        "values are derivatives at the left and the right end. Sites outside the data extend the outer cells.\n"
        "Writes the abscissae, the values and derivatives as CSV, or with --integrate the integrals.");
    fit->add_option("file", request->file, "the CSV file; standard input if none or -");
    fit->add_option("--x", request->x, "the column of ascending abscissae, by name or position")->required();
    fit->add_option("--y", request->y, "the column of values")->required();
    fit->add_option("--spline", request->spline, "the kind of spline")->capture_default_str();
    fit->add_option("--bc", request->boundary, "the ends; free (akima: none) if not given");
    fit->add_option(
        "--internal", request->internal,
        "the column of first (hermite) or second (default) derivatives; those of the end rows are not read");
    CLI::Option* sites = fit->add_option("--sites", request->sites,
                                         "how many sites, evenly from end to end, or a CSV file with a column of them")
                             ->capture_default_str();
    fit->add_option("--derivatives", request->derivatives, "derivatives beside the value")
        ->check(CLI::Range(0, 3))
        ->capture_default_str();
    fit->add_option("--integrate", request->intervals, "limits A,B of an integral; may be given again")
        ->allow_extra_args(false)
        ->excludes(sites);
    fit->add_option("--type", request->type, "s (float) or d (double)")
        ->check(CLI::IsMember({"s", "d"}))
        ->capture_default_str();
    fit->add_option("--output", request->output, "the file to write; standard output if not given");
    fit->add_option("--plot", request->plot, "an SVG file for a picture of data, spline and derivative");
    fit->callback([request, &status] { status = run(*request); });
}

}  // namespace orv::command
