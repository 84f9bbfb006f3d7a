// `orv accuracy`: the error of a function's kernels over a range, measured against 80-bit arithmetic, as figures and as a
// picture.
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "plot.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

namespace orv::command {

namespace {

// What a function is measured against, and a range that shows it.
struct Reference {
    std::string_view function;
    long double (*exact)(long double);
    double low, high;
};

long double ten_to_the(long double x) {
#ifdef _WIN32
    return powl(10.0L, x);
#else
    return exp10l(x);
#endif
}

constexpr Reference references[] = {
    {"Exp", expl, -80, 80},         {"Expm1", expm1l, -2, 2},    {"Exp2", exp2l, -100, 100},
    {"Exp10", ten_to_the, -30, 30}, {"Ln", logl, 0.25, 4},       {"Log10", log10l, 0.25, 4},
    {"Log2", log2l, 0.25, 4},       {"Log1p", log1pl, -0.75, 3}, {"Logb", logbl, 0.25, 100},
};

struct Request {
    std::string function;
    char type = 'd';
    std::vector<double> range;
    int64_t points = 200'000;
    std::string plot;
};

// Windows starts a process with the x87 unit at 53 bits.
struct ExtendedPrecision {
    unsigned short saved;
    ExtendedPrecision() {
        __asm__ volatile("fnstcw %0" : "=m"(saved));
        const unsigned short extended = saved | 0x0300;
        __asm__ volatile("fldcw %0" : : "m"(extended));
    }
    ~ExtendedPrecision() { __asm__ volatile("fldcw %0" : : "m"(saved)); }
    ExtendedPrecision(const ExtendedPrecision&) = delete;
    ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;
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
    const ExtendedPrecision extended;
    const double low = request.range.empty() ? reference.low : request.range[0];
    const double high = request.range.empty() ? reference.high : request.range[1];
    if (!(low < high)) fail("the range is empty");

    const size_t n = static_cast<size_t>(request.points);
    std::vector<T> x(n), y(n);
    for (size_t i = 0; i < n; ++i)
        x[i] = static_cast<T>(low + (high - low) * (static_cast<double>(i) + 0.5) / static_cast<double>(n));
    std::vector<long double> exact(n);
    for (size_t i = 0; i < n; ++i) exact[i] = reference.exact(x[i]);

    orv_arq_kernel_SetMode(ORV_MODE_ERRMODE_NOERR);
    std::printf("accuracy,worst_ulp,at\n");
    std::string data, plots;
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
        std::printf("%s,%.4g,%.17g\n", accuracies[accuracy], worst, static_cast<double>(at));
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
    if (!request.plot.empty())
        write_plot(request.plot, 900, 560,
                   data +
                       "set logscale y\nset xlabel 'argument'\nset ylabel 'error, ulp'\nset grid\nset key outside\nset "
                       "title " +
                       plot_quoted(std::string(function.name)) + "\n" + plots + "\n");
    return 0;
}

int run(const Request& request) {
    const Function* function = find_function(request.function, request.type);
    if (!function) fail("no function " + request.function + " of type " + request.type);
    for (const Reference& reference : references) {
        // Names carry the type before the function.
        if (function->name.substr(function->name.size() - std::min(function->name.size(), reference.function.size())) !=
                reference.function ||
            function->name.size() > reference.function.size() + 1)
            continue;
        return request.type == 's' ? run<float>(request, *function, reference)
                                   : run<double>(request, *function, reference);
    }
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
