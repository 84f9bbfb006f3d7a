// `orv accuracy`: the error of a function's kernels over a range or a part of the plane, as figures and as a picture.
#include "accuracy/bounds.h"
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "json.h"
#include "options.h"
#include "plot.h"
#include "progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace orv::command {

namespace {

struct Request {
    std::string function;
    char type = 'd';
    std::vector<double> range, second;
    int64_t points = 200'000;
    std::string plot;
    bool json = false;
};

constexpr const char* accuracies[] = {"la", "ha", "ep"};

// The worst error in each of these many parts of the range is what the picture of a line shows, and in each of the cells
// of so many rows and columns that of a plane.
constexpr size_t line_parts = 600, plane_side = 64;

accuracy::Range range_of(const std::vector<double>& ends) {
    if (!(ends[0] < ends[1])) fail("the range is empty");
    return {ends[0], ends[1]};
}

const char* name_of(char type) {
    return type == 's' ? "float" : type == 'd' ? "double" : type == 'c' ? "complex float" : "complex double";
}

std::string capitals(const char* accuracy) {
    std::string text;
    for (; *accuracy; ++accuracy) text += static_cast<char>(*accuracy - 'a' + 'A');
    return text;
}

// The worst error of an accuracy, and the argument of one component or two where it was met.
struct Worst {
    const char* accuracy;
    double ulp, at, and_at;
};

// The errors of the three accuracies against the argument, or three maps of them. `cell` is the width and height of a cell of
// the maps.
void draw(const std::string& title, const std::string& data, const std::vector<Worst>& table, const std::string& cell,
          char type, Output& output) {
    std::string script = data;
    const auto legend = [&](size_t i) {
        char text[32];
        std::snprintf(text, sizeof text, ": %.3g ulp", table[i].ulp);
        return plot_quoted(capitals(table[i].accuracy) + text);
    };
    // Where all errors are 0 there is no range to be found.
    const auto range = [&](size_t i) { return table[i].ulp > 0 ? "[*:*]\n" : "[0.01:1]\n"; };
    if (!cell.empty()) {
        // Errors are seen by their powers of two.
        const bool parts = type == 'c' || type == 'z';
        script +=
            "set multiplot layout 1,3 title " + plot_quoted(title + " in each cell") +
            "\nset logscale cb 2\nset palette defined (0 '#30123b', 1 '#28bbec', 2 '#a2fc3c', "
            "3 '#fb8022', 4 "
            "'#7a0403')\nset cblabel 'error, ulp'\nunset key\nset tics out nomirror\nset autoscale fix\nset xlabel " +
            (parts ? "'real part'\nset ylabel 'imaginary part'\n" : "'first argument'\nset ylabel 'second argument'\n");
        for (size_t i = 0; i < 3; ++i)
            script += "set title " + legend(i) + "\nset cbrange " + range(i) + "plot $e" + std::to_string(i) +
                      " using 1:2:" + cell + ":3 with boxxyerror lc palette fillstyle solid noborder\n";
        return write_plot(output, 1500, 480, script + "unset multiplot\n");
    }
    const bool exact = std::all_of(table.begin(), table.end(), [](const Worst& worst) { return worst.ulp == 0; });
    script += "set logscale y\nset yrange " + std::string(exact ? "[0.01:1]" : "[*:*]") +
              "\nset xlabel 'argument'\nset ylabel 'error, ulp'\nset grid\nset tics out nomirror\n"
              "set autoscale xfix\nset key outside right top Left reverse samplen 1\nset title " +
              plot_quoted(title + " in each part of the range") + "\n";
    static const char* const colours[] = {"#1f6fb4", "#2a8a3a", "#d04030"};
    for (size_t i = 0; i < 3; ++i)
        script += (i ? ", " : "plot ") + ("$e" + std::to_string(i)) + " using 1:2 with points pt 7 ps 0.3 lc rgb '" +
                  colours[i] + "' title " + legend(i);
    write_plot(output, 960, 560, script + "\n");
}

// Where the errors of an accuracy were met, for the picture: the worst in each part or cell. An error of 0 has no place on
// a logarithmic axis, and is drawn as one too small to matter.
template <class T>
void add_errors(std::string& data, int accuracy, const std::vector<T>& x, const std::vector<double>& errors,
                size_t side) {
    const size_t n = errors.size(), inputs = x.size() / n;
    const bool plane = inputs == 2;
    const size_t across = std::min(plane_side, side);
    const size_t parts = plane ? across * across : std::min(line_parts, n);
    std::vector<size_t> worst(parts, n);
    for (size_t i = 0; i < n; ++i) {
        const size_t part = plane ? (i / side) * across / side * across + (i % side) * across / side : i * parts / n;
        size_t& of_part = worst[part];
        if (of_part == n || errors[i] > errors[of_part]) of_part = i;
    }
    data += "$e" + std::to_string(accuracy) + " << EOD\n";
    constexpr double least = 1.0 / 64;
    for (size_t part = 0; part < parts; ++part) {
        const size_t i = worst[part];
        const double error = std::max(errors[i], least);
        char line[96];
        if (plane) {
            // The middle of the cell: its points are evenly spread.
            const auto middle = [&](size_t place, size_t component) {
                const double low = static_cast<double>(x[component]),
                             high = static_cast<double>(x[inputs * (n - 1) + component]);
                return low + (high - low) * (static_cast<double>(place) + 0.5) / static_cast<double>(across);
            };
            std::snprintf(line, sizeof line, "%.9g %.9g %.6g\n", middle(part / across, 0), middle(part % across, 1),
                          error);
        } else {
            std::snprintf(line, sizeof line, "%.9g %.6g\n", static_cast<double>(x[i]), error);
        }
        data += line;
    }
    data += "EOD\n";
}

std::string as_csv(const std::vector<Worst>& table, bool plane) {
    std::string text = plane ? "accuracy,worst_ulp,at,and\n" : "accuracy,worst_ulp,at\n";
    for (const Worst& worst : table) {
        char figures[128];
        std::snprintf(figures, sizeof figures, "%s,%.4g,%.17g", worst.accuracy, worst.ulp, worst.at);
        text += figures;
        std::snprintf(figures, sizeof figures, ",%.17g", worst.and_at);
        text += plane ? figures + std::string("\n") : "\n";
    }
    return text;
}

std::string as_json(std::string_view function, char type, const std::vector<Worst>& table, bool plane) {
    std::string text = "{\"function\": ";
    append_json(text, function);
    text += std::string(", \"type\": \"") + type + "\", \"accuracies\": [";
    for (const Worst& worst : table) {
        append_json(text += &worst == &table.front() ? "\n  {\"accuracy\": " : ",\n  {\"accuracy\": ", worst.accuracy);
        append_json(text += ", \"worst_ulp\": ", worst.ulp);
        append_json(text += ", \"at\": ", worst.at);
        if (plane) append_json(text += ", \"and\": ", worst.and_at);
        text += '}';
    }
    return text + "]}\n";
}

template <class T>
int run(const Request& request, const std::vector<const accuracy::Kernel*>& kernels) {
    std::optional<Output> plot;
    if (!request.plot.empty()) plot.emplace(request.plot);
    const accuracy::Function& function = *kernels[0]->function;
    const accuracy::SilentErrors silent;
    const size_t inputs = static_cast<size_t>(kernels[0]->inputs), outputs = static_cast<size_t>(kernels[0]->outputs);
    const bool plane = inputs == 2;
    if (inputs > 2) fail("the function has more than two arguments");
    const accuracy::Range first = request.range.empty() ? function.ranges[0] : range_of(request.range);
    const accuracy::Range second = !request.range.empty() ? request.second.empty() ? first : range_of(request.second)
                                   : !function.second.empty() ? function.second[0]
                                                              : first;

    // Evenly spread, in a plane as a square grid.
    const size_t side = plane ? static_cast<size_t>(std::sqrt(static_cast<double>(request.points))) : 1;
    const size_t n = plane ? side * side : static_cast<size_t>(request.points);
    const auto spread = [](const accuracy::Range& range, size_t i, size_t count) {
        return static_cast<T>(range.low +
                              (range.high - range.low) * (static_cast<double>(i) + 0.5) / static_cast<double>(count));
    };
    std::vector<T> x;
    for (size_t i = 0; i < n; ++i) {
        x.push_back(spread(first, plane ? i / side : i, plane ? side : n));
        if (plane) x.push_back(spread(second, i % side, side));
    }

    std::string data;
    std::vector<Worst> table;
    Progress progress = start_progress(3 * static_cast<int64_t>(n));
    for (int index = 0; index < 3; ++index) {
        const accuracy::Kernel* kernel = nullptr;
        for (const accuracy::Kernel* k : kernels)
            if (k->serves(static_cast<accuracy::Accuracy>(index))) kernel = k;
        const accuracy::Judge judge(*kernel, accuracy::measure_of(*kernel));
        std::vector<T> y(n * outputs);
        evaluate(*kernel, x.data(), y.data(), n);
        std::vector<double> errors(n);
        size_t worst = 0;
        for (size_t i = 0; i < n; ++i) {
            if (!judge.can(&x[inputs * i])) fail("the range goes beyond what there is to measure against");
            accuracy::Error parts[accuracy::most_outputs];
            judge.fast(&x[inputs * i], &y[outputs * i], parts);
            for (const accuracy::Error& part : parts) errors[i] = std::max(errors[i], part.ulp);
            if (errors[i] > errors[worst]) worst = i;
            constexpr size_t now_and_then = 1 << 12;
            if (i % now_and_then == 0)
                tell_progress(progress, index * static_cast<int64_t>(n) + static_cast<int64_t>(i),
                              std::string("measuring ") + accuracies[index]);
        }
        table.push_back({accuracies[index], errors[worst], static_cast<double>(x[inputs * worst]),
                         static_cast<double>(x[inputs * worst + 1 % inputs])});
        add_errors(data, index, x, errors, side);
    }
    end_progress(progress);
    write_output("", request.json ? as_json(function.name, kernels[0]->type, table, plane) : as_csv(table, plane));
    if (plot) {
        char cell[96] = "";
        const double across = static_cast<double>(2 * std::min(plane_side, side));
        if (plane)
            std::snprintf(cell, sizeof cell, "(%.9g):(%.9g)", (first.high - first.low) / across,
                          (second.high - second.low) / across);
        draw(std::string(function.name) + " in " + name_of(kernels[0]->type) + ": worst error", data, table, cell,
             kernels[0]->type, *plot);
    }
    return 0;
}

int run(const Request& request) {
    const Function& found = find_function(request.function, request.type);
    std::vector<const accuracy::Kernel*> kernels;
    for (const accuracy::Kernel& kernel : accuracy::kernels())
        if (kernel.type == found.type && kernel.name == found.name) kernels.push_back(&kernel);
    if (kernels.empty()) fail("nothing to measure " + request.function + " against");
    return kernels[0]->single() ? run<float>(request, kernels) : run<double>(request, kernels);
}

}  // namespace

void add_accuracy(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* command = app.add_subcommand("accuracy", "Measure the error of a vector function over a range");
    command->footer("Writes the worst error of each accuracy in ulp, and where it was met, as CSV.");
    command->add_option("function", request->function, "such as Exp or Log1p")->required();
    command->add_option("--type", request->type, "s (float), d (double), c or z (complex of these)")
        ->check(CLI::IsMember({"s", "d", "c", "z"}))
        ->capture_default_str();
    command->add_option("--range", request->range, "the first and the last argument")->expected(2);
    command->add_option("--second", request->second, "the same for the second argument, or the imaginary part")
        ->expected(2);
    add_count(*command, "--points", request->points, 1, 50'000'000, "how many arguments, evenly spread");
    command->add_flag("--json", request->json, "write JSON");
    command->add_option("--plot", request->plot, "an SVG file for a picture of the error against the argument");
    command->callback([request, &status] { status = run(*request); });
}

}  // namespace orv::command
