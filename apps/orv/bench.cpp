// `orv bench`: how long the kernels of functions take on this machine.
#include "accuracy/functions.h"
#include "commands.h"
#include "failure.h"
#include "functions.h"
#include "options.h"
#include "output.h"
#include "progress.h"
#include "stats_tables.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

namespace orv::command {

namespace {

struct Request {
    std::vector<std::string> functions = {"Exp", "Ln", "Sin", "Cos", "Tan", "Exp2", "Log2", "Expm1", "Log1p", "Mul"};
    std::vector<std::string> types;  // none: those that a function has
    int32_t n = 1000;
    bool csv = false;
};

// Numbers evenly spread over a range, complex ones in both parts.
template <class T>
std::vector<T> spread(const accuracy::Range& range, size_t count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> even(range.low, range.high);
    std::vector<T> x(count);
    for (T& value : x) value = static_cast<T>(even(random));
    return x;
}

double seconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Nanoseconds per element: the median of pieces that are too short for other programs to come between, most of them.
template <class T>
double nanoseconds(const Function& function, orv_arq_kernel kernel, int32_t n) {
    const accuracy::Function* known = accuracy::find_function(function.name, function.type);
    const accuracy::Range first = known ? known->ranges[0] : accuracy::Range{0.1, 0.9};
    const accuracy::Range second = known && !known->second.empty() ? known->second[0] : first;
    const size_t components = 2 * static_cast<size_t>(n);
    const std::vector<T> a = spread<T>(first, components), b = spread<T>(second, components);
    std::vector<T> y(components), z(components);
    const auto run = [&](int64_t calls) {
        const auto start = std::chrono::steady_clock::now();
        for (int64_t i = 0; i < calls; ++i) call(function, kernel, n, a.data(), b.data(), b.data(), y.data(), z.data());
        return seconds_since(start);
    };
    constexpr double piece = 1e-4;
    int64_t calls = 1;
    for (double taken = run(calls); taken < piece; taken = run(calls))
        calls = taken < piece / 8 ? 8 * calls : 2 * calls;
    std::vector<double> pieces(401);
    for (double& taken : pieces) taken = run(calls);
    std::nth_element(pieces.begin(), pieces.begin() + 200, pieces.end());
    return 1e9 * pieces[200] / (static_cast<double>(calls) * n);
}

void run(const Request& request) {
    Cells cells = {{"function", "type", "LA", "HA", "EP"}};
    orv_arq_kernel_SetMode(ORV_MODE_ERRMODE_NOERR);
    std::vector<const Function*> wanted;
    for (const std::string& name : request.functions) {
        for (const std::string& type : request.types) wanted.push_back(&find_function(name, type[0]));
        if (!request.types.empty()) continue;
        const size_t before = wanted.size();
        for (const char type : {'s', 'd', 'c', 'z'})
            if (const Function* function = try_function(name, type)) wanted.push_back(function);
        if (wanted.size() == before) find_function(name, 'd');
    }
    Progress progress = start_progress(static_cast<int64_t>(wanted.size()));
    for (const Function* chosen : wanted) {
        const Function& function = *chosen;
        const std::string name(function.name), type(1, function.type);
        if (function.shape > Shape::TWO_OUT) fail(std::string(function.name) + " is not called on arrays alone");
        std::string doing = "measuring ";
        doing.append(name).append(" of type ").append(type);
        tell_progress(progress, static_cast<int64_t>(cells.size()) - 1, doing);
        cells.push_back({std::string(function.name), type});
        for (const orv_arq_kernel kernel : function.entries) {
            const bool single = type == "s" || type == "c";
            const double taken = single ? nanoseconds<float>(function, kernel, request.n)
                                        : nanoseconds<double>(function, kernel, request.n);
            char figure[32];
            std::snprintf(figure, sizeof figure, "%.3g", taken);
            cells.back().emplace_back(figure);
        }
    }
    end_progress(progress);
    std::string text = request.csv ? "" : "Nanoseconds per element, " + std::to_string(request.n) + " to a call\n\n";
    append_table(text, cells, request.csv);
    write_output("", text);
}

}  // namespace

void add_bench(CLI::App& app, int&) {
    const auto request = std::make_shared<Request>();
    CLI::App* bench = app.add_subcommand("bench", "Measure the speed of vector functions on this machine");
    bench->footer("Writes nanoseconds per element of each accuracy, for ordinary arguments.");
    bench->add_option("function", request->functions, "such as Exp or Pow; some common ones if none");
    bench
        ->add_option("--type", request->types,
                     "s (float), d (double), c or z (complex), with commas between; those that there are if none")
        ->delimiter(',')
        ->check(CLI::IsMember({"s", "d", "c", "z"}))
        ->allow_extra_args(false);
    add_count(*bench, "--n", request->n, 1, 10'000'000, "elements of a call");
    bench->add_flag("--csv", request->csv, "write CSV");
    bench->callback([request] { run(*request); });
}

}  // namespace orv::command
