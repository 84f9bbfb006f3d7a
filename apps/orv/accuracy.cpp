// `orv accuracy`: the error of a function's kernels over a range, measured against 80-bit arithmetic, as figures and as a
// picture.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "plot.h"
#include "reference.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace orv::command {

namespace {

struct Request {
    std::string function;
    char type = 'd';
    std::vector<double> range;
    int64_t points = 200'000;
    std::string plot;
};

// (y - exact) in ulp of the type at the exact value; NaN where there is none.
template <class T>
double error_in_ulp(long double exact, T y) {
    if (!std::isfinite(exact) || !std::isfinite(y)) return std::numeric_limits<double>::quiet_NaN();
    int exponent = 0;
    frexpl(exact, &exponent);
    exponent = std::max(exponent, std::numeric_limits<T>::min_exponent) - std::numeric_limits<T>::digits;
    return static_cast<double>(ldexpl(y - exact, -exponent));
}

constexpr const char* accuracies[] = {"la", "ha", "ep"};

// The worst error in each of these many parts of the range is what the picture shows.
constexpr size_t parts = 1200;

template <class T>
int run(const Request& request, const Function& function, const Reference& reference) {
    std::optional<Output> plot;
    if (!request.plot.empty()) plot.emplace(request.plot);
    const ExtendedPrecision extended;
    const double low = request.range.empty() ? reference.low : request.range[0];
    const double high = request.range.empty() ? reference.high : request.range[1];
    if (!(low < high)) fail("the range is empty");
    if (std::max(-low, high) >= reference.limit) fail("the range goes beyond what there is to measure against");

    const size_t n = static_cast<size_t>(request.points);
    std::vector<T> x(n), y(n);
    for (size_t i = 0; i < n; ++i)
        x[i] = static_cast<T>(low + (high - low) * (static_cast<double>(i) + 0.5) / static_cast<double>(n));
    std::vector<long double> exact(n);
    for (size_t i = 0; i < n; ++i) exact[i] = reference.value(x[i]);

    orv_arq_kernel_SetMode(ORV_MODE_ERRMODE_NOERR);
    std::string table = "accuracy,worst_ulp,at\n", data, plots;
    for (int accuracy = 0; accuracy < 3; ++accuracy) {
        reinterpret_cast<void (*)(int32_t, const T*, T*)>(function.entries[accuracy])(static_cast<int32_t>(n), x.data(),
                                                                                      y.data());
        double worst = 0;
        T at = x[0];
        std::vector<double> shown(parts), place(parts);
        for (size_t i = 0; i < n; ++i) {
            const double error = std::fabs(error_in_ulp(exact[i], y[i]));
            if (error > worst) worst = error, at = x[i];
            const size_t part = i * parts / n;
            if (error > shown[part] || place[part] == 0) shown[part] = error, place[part] = x[i];
        }
        char figures[96];
        std::snprintf(figures, sizeof figures, "%s,%.4g,%.17g\n", accuracies[accuracy], worst, static_cast<double>(at));
        table += figures;
        data += "$e" + std::to_string(accuracy) + " << EOD\n";
        for (size_t part = 0; part < std::min(parts, n); ++part) {
            char line[64];
            std::snprintf(line, sizeof line, "%.9g %.6g\n", place[part], shown[part]);
            data += line;
        }
        data += "EOD\n";
        plots += (accuracy ? ", " : "plot ") + ("$e" + std::to_string(accuracy)) +
                 " using 1:2 with points pt 7 ps 0.25 title '" + accuracies[accuracy] + "'";
    }
    write_output("", table);
    if (plot)
        write_plot(*plot, 900, 560,
                   data +
                       "set logscale y\nset xlabel 'argument'\nset ylabel 'error, ulp'\nset grid\nset key outside\nset "
                       "title " +
                       plot_quoted(std::string(function.name)) + "\n" + plots + "\n");
    return 0;
}

int run(const Request& request) {
    const Function* function = find_function(request.function, request.type);
    if (!function) fail("no function " + request.function + " of type " + request.type);
    // The function's name carries the type, or does not.
    const std::string_view name = function->name;
    const Reference* reference = find_reference(name);
    if (!reference) reference = find_reference(name.substr(1));
    if (reference)
        return request.type == 's' ? run<float>(request, *function, *reference)
                                   : run<double>(request, *function, *reference);
    fail("nothing to measure " + request.function + " against");
}

}  // namespace

void add_accuracy(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* accuracy = app.add_subcommand("accuracy", "Measure the error of a vector function over a range");
    accuracy->footer("Writes the worst error of each accuracy in ulp, and where it was met, as CSV.");
    accuracy->add_option("function", request->function, "such as Exp or Log1p")->required();
    accuracy->add_option("--type", request->type, "s (float) or d (double)")
        ->check(CLI::IsMember({"s", "d"}))
        ->capture_default_str();
    accuracy->add_option("--range", request->range, "the first and the last argument")->expected(2);
    accuracy->add_option("--points", request->points, "how many arguments, evenly spread")
        ->check(CLI::Range(int64_t{1}, int64_t{50'000'000}))
        ->capture_default_str();
    accuracy->add_option("--plot", request->plot, "an SVG file for a picture of the error against the argument");
    accuracy->callback([request, &status] { status = run(*request); });
}

}  // namespace orv::command
