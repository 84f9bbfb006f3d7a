// `orv fit`: a spline through two columns of a CSV file; its values, derivatives and integrals as CSV, and a picture.
#include "fit_spline.h"

#include "commands.h"
#include "failure.h"
#include "numbers.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "table.h"

#include <cmath>
#include <memory>
#include <optional>

namespace orv::command {

namespace {

template <class T>
Data<T> read_data(const FitRequest& request) {
    Data<T> data;
    std::vector<size_t> columns;
    std::vector<T> values;
    const auto begin = [&](const Head& head) {
        columns = {find_column(head, request.x), find_column(head, request.y)};
        data.x_name = column_name(head, columns[0]);
        data.y_name = column_name(head, columns[1]);
        if (!request.internal.empty()) columns.push_back(find_column(head, request.internal));
    };
    const auto take = [&](const Head& head, const Row& row) {
        if (!read_numbers(head, row, columns, values)) return false;
        data.x.push_back(values[0]);
        data.y.push_back(values[1]);
        if (!request.internal.empty()) data.internal.push_back(values[2]);
        if (!std::isfinite(data.x.back()) || !std::isfinite(data.y.back()))
            fail_at(head.source, row.line, "a spline needs finite numbers");
        if (data.x.size() < 2 || data.x[data.x.size() - 2] < data.x.back()) return true;
        const bool repeated = data.x[data.x.size() - 2] == data.x.back();
        std::string text = repeated ? "abscissa " : "abscissae must ascend, and ";
        append_number(text, data.x.back());
        fail_at(head.source, row.line, text + (repeated ? " is repeated" : " is below that of the row before"));
    };
    read_table(request.file, request.format, begin, take);
    if (data.x.empty()) fail(source_name(request.file) + ": no rows of numbers");
    return data;
}

template <class T>
std::vector<T> sites_of(const FitRequest& request, const Data<T>& data) {
    int64_t count;
    std::vector<T> sites;
    if (!parse_count(request.sites, count)) {
        std::vector<T> value;
        const auto begin = [](const Head& head) {
            if (head.width != 1)
                fail_at(head.source, 1, std::to_string(head.width) + " columns where one of sites is wanted");
        };
        const auto take = [&](const Head& head, const Row& row) {
            if (!read_numbers(head, row, {0}, value)) return false;
            sites.push_back(value[0]);
            return true;
        };
        read_table(request.sites, request.format, begin, take);
        return sites;
    }
    if (count < 1 || count > 10000000) fail("--sites: a whole number from 1 to 10,000,000, or a file");
    const T first = data.x.front(), last = data.x.back();
    for (int64_t i = 0; i < count; ++i)
        sites.push_back(i + 1 == count && count > 1
                            ? last
                            : first + (last - first) * static_cast<T>(i) / static_cast<T>(count > 1 ? count - 1 : 1));
    return sites;
}

template <class T>
std::string table_of_sites(const FitRequest& request, const Fit<T>& fit) {
    const std::vector<T> sites = sites_of(request, fit.data);
    const std::vector<T> results = fit.evaluate(sites, request.derivatives);
    std::vector<std::string> names = {fit.data.x_name, fit.data.y_name};
    for (int k = 1; k <= request.derivatives; ++k) (names.emplace_back(fit.data.y_name) += ".d") += std::to_string(k);
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
std::string table_of_integrals(const FitRequest& request, const Fit<T>& fit) {
    std::vector<T> from, to;
    for (const std::string& interval : request.intervals) {
        const std::vector<T> pair = parse_pair<T>(interval, "--integrate");
        from.push_back(pair[0]);
        to.push_back(pair[1]);
    }
    const std::vector<T> results = fit.integrate(from, to);
    std::string text = "from,to,integral\n";
    for (size_t i = 0; i < from.size(); ++i) {
        append_number(text, from[i]);
        append_number(text += ',', to[i]);
        append_number(text += ',', results[i]);
        text += '\n';
    }
    return text;
}

// Data and spline, and below them each derivative that was asked for in a panel of its own.
template <class T>
void draw(const FitRequest& request, const Fit<T>& fit, Output& picture) {
    static const char* const ordinals[] = {"", "first", "second", "third"};
    FitRequest dense = request;
    dense.sites = "1001";
    const std::vector<T> sites = sites_of(dense, fit.data);
    const std::vector<T> results = fit.evaluate(sites, request.derivatives);
    const size_t columns = static_cast<size_t>(request.derivatives) + 1;
    std::string script =
        "set key outside top right horizontal\nset tics out nomirror\nset grid\nset lmargin at screen 0.1\n"
        "set rmargin at screen 0.97\nset offsets graph 0.02, graph 0.02, graph 0.04, graph 0.04\nset autoscale fix\n"
        "set xlabel " +
        plot_quoted(fit.data.x_name) + "\n$data << EOD\n";
    const auto number = [&](T value) { append_number(script, value), script += ' '; };
    for (size_t i = 0; i < fit.data.x.size(); ++i) number(fit.data.x[i]), number(fit.data.y[i]), script += '\n';
    script += "EOD\n$spline << EOD\n";
    for (size_t i = 0; i < sites.size(); ++i) {
        number(sites[i]);
        for (size_t k = 0; k < columns; ++k) number(results[columns * i + k]);
        script += '\n';
    }
    script += "EOD\nset multiplot layout " + std::to_string(columns) + ",1\nset title " +
              plot_quoted(source_name(request.file) + ", " + std::to_string(fit.data.x.size()) + " rows") +
              "\nset ylabel " + plot_quoted(fit.data.y_name) +
              "\nplot $spline using 1:2 with lines lw 2 lc rgb '#1f6fb4' title " +
              plot_quoted(request.spline + " spline") +
              ", $data using 1:2 with points pt 7 ps 0.5 lc rgb '#d04030' title 'data'\nunset key\n";
    for (size_t k = 1; k < columns; ++k) {
        const std::string power = k == 1 ? "" : "^" + std::to_string(k);
        script += "set title '" + std::string(ordinals[k]) + " derivative'\nset ylabel " +
                  plot_quoted(fit.data.y_name + " / " + fit.data.x_name + power) +
                  "\nplot $spline using 1:" + std::to_string(k + 2) + " with lines lw 1.5 lc rgb '#606060'\n";
    }
    write_plot(picture, 900, 480 + 260 * request.derivatives, script + "unset multiplot\n");
}

template <class T>
int run(const FitRequest& request, const Spline& spline) {
    Output output(request.output);
    std::optional<Output> plot;
    if (!request.plot.empty()) plot.emplace(request.plot);
    const Data<T> data = read_data<T>(request);
    const Fit<T> fit(data, request, spline);
    const std::string text =
        request.intervals.empty() ? table_of_sites(request, fit) : table_of_integrals(request, fit);
    if (plot) draw(request, fit, *plot);
    write(output, text);
    finish(output);
    return 0;
}

int run(const FitRequest& request) {
    const Spline& spline = find_spline(request.spline);
    return request.type == 's' ? run<float>(request, spline) : run<double>(request, spline);
}

}  // namespace

void add_fit(CLI::App& app, int& status) {
    const auto request = std::make_shared<FitRequest>();
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
    add_count(*fit, "--derivatives", request->derivatives, 0, 3, "derivatives beside the value");
    fit->add_option("--integrate", request->intervals, "limits A,B of an integral; may be given again")
        ->allow_extra_args(false)
        ->excludes(sites);
    fit->add_option("--type", request->type, "s (float) or d (double)")
        ->check(CLI::IsMember({"s", "d"}))
        ->capture_default_str();
    add_format(*fit, request->format);
    fit->add_option("--output", request->output, "the file to write; standard output if not given");
    fit->add_option("--plot", request->plot,
                    "an SVG file for a picture of data and spline, and each of the derivatives below");
    fit->callback([request, &status] { status = run(*request); });
}

}  // namespace orv::command
