// Writes the measured accuracy of every kernel as a page: accuracy_report [--sweep] [RANDOM_COUNT [FUNCTION]].
//
// With --sweep the `s` functions are measured over all floats, which takes minutes a function; as many are measured side
// by side as there are processors.
#include "accuracy/measure.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>

namespace {

using namespace orv::accuracy;

struct Line {
    Kernel kernel;
    Worst worst;
};

void print(const Line& line) {
    const Worst& w = line.worst;
    std::printf("| %s | %c | %s | ", line.kernel.function, line.kernel.type, line.kernel.slots.c_str());
    if (w.ulp > 0)
        std::printf("%.4g | %a | 2^%.1f |", w.ulp, w.at, std::log2(w.relative));
    else
        std::printf("0 | | |");
    if (w.subnormal_ulp > 0)
        std::printf(" %.4g | %a |\n", w.subnormal_ulp, w.subnormal_at);
    else
        std::printf(" | |\n");
}

// The lines of one `s` function go into one sweep, every other line is a measurement of its own.
std::vector<std::function<void()>> jobs_of(std::vector<Line>& lines, int64_t random_count, bool sweep) {
    std::vector<std::function<void()>> jobs;
    for (size_t first = 0, last; first < lines.size(); first = last) {
        const Kernel& kernel = lines[first].kernel;
        last = first + 1;
        if (!sweep || kernel.type != 's') {
            jobs.push_back([&line = lines[first], random_count] { line.worst = measure(line.kernel, random_count); });
            continue;
        }
        while (last < lines.size() && lines[last].kernel.type == 's' &&
               !std::strcmp(lines[last].kernel.function, kernel.function))
            ++last;
        jobs.push_back([&lines, first, last] {
            std::vector<Kernel> of_function;
            for (size_t i = first; i < last; ++i) of_function.push_back(lines[i].kernel);
            const std::vector<Worst> worst = measure_all_floats(of_function);
            for (size_t i = first; i < last; ++i) lines[i].worst = worst[i - first];
        });
    }
    return jobs;
}

}  // namespace

int main(int argc, char** argv) {
    const bool sweep = argc > 1 && !std::strcmp(argv[1], "--sweep");
    const int rest = sweep ? 2 : 1;
    const long long count = argc > rest ? std::atoll(argv[rest]) : 1'000'000;
    const char* only = argc > rest + 1 ? argv[rest + 1] : nullptr;

    if (count <= 0) {
        std::fputs("accuracy_report: usage: accuracy_report [--sweep] [RANDOM_COUNT [FUNCTION]]\n", stderr);
        return 2;
    }

    std::vector<Line> lines;
    for (const Kernel& kernel : kernels())
        if (!only || !std::strcmp(only, kernel.function)) lines.push_back({kernel, {}});

    const auto jobs = jobs_of(lines, count, sweep);
    std::atomic<size_t> next = 0;
    std::vector<std::thread> threads(std::max(1u, std::thread::hardware_concurrency()));
    for (std::thread& thread : threads)
        thread = std::thread([&] {
            for (size_t i; (i = next++) < jobs.size();) jobs[i]();
        });
    for (std::thread& thread : threads) thread.join();

    std::printf(
        "# Measured accuracy\n\n"
        "Worst error seen of each kernel against the exact value, over %lld random arguments per kernel, every "
        "exponent "
        "and\n"
        "the neighbourhood of every boundary%s.\n"
        "Errors of normal results are in ulp and, as a power of two, relative; those of subnormal results in units of "
        "the\n"
        "smallest subnormal. Written by `accuracy_report`.\n\n"
        "| Function | Type | Accuracy | Worst, ulp | At | Relative | Worst subnormal | At |\n"
        "|---|---|---|---|---|---|---|---|\n",
        count, sweep ? "; in type s over all 2^32 floats" : "");
    for (const Line& line : lines) print(line);
}
