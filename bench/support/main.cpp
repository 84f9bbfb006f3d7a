// The programs' common start: what was measured on and with goes into the report, and a measurement takes a twentieth of a second
// unless the caller says otherwise.
#include "support/cycles.h"

#ifdef ORV_BENCH_SLEEF
#include <sleef.h>
#endif
#ifdef ORV_BENCH_GSL
#include <gsl/gsl_errno.h>
#include <gsl/gsl_version.h>
#endif
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

#include <string>

namespace {

// Core cycles per tick of the time stamp counter: additions that wait for each other take a cycle each.
double core_cycles_per_tick() {
    constexpr int additions = 1 << 20;
    uint64_t least = ~uint64_t{0};
    for (int round = 0; round < 50; ++round) {
        const uint64_t start = orv::bench::ticks();
        unsigned x = 0;
        for (int i = 0; i < additions; i += 16)
            __asm__ volatile(
                ".rept 16\n\t"
                "add $1, %0\n\t"
                ".endr"
                : "+r"(x));
        least = std::min(least, orv::bench::ticks() - start);
    }
    return additions / static_cast<double>(least);
}

std::string compiler() {
#ifdef __clang__
    return "clang " __clang_version__;
#else
    return "gcc " __VERSION__;
#endif
}

}  // namespace

int main(int argc, char** argv) {
    // Before the caller's arguments, so that his stand.
    std::vector<char*> arguments = {argv[0]};
    char min_time[] = "--benchmark_min_time=0.05";
    arguments.push_back(min_time);
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;

    benchmark::AddCustomContext("core cycles per tick", std::to_string(core_cycles_per_tick()));
    benchmark::AddCustomContext("compiler", compiler());
#ifdef ORV_BENCH_SLEEF
    benchmark::AddCustomContext("SLEEF", std::to_string(SLEEF_VERSION_MAJOR) + "." +
                                             std::to_string(SLEEF_VERSION_MINOR) + "." +
                                             std::to_string(SLEEF_VERSION_PATCHLEVEL));
#endif
#ifdef ORV_BENCH_GSL
    benchmark::AddCustomContext("GSL", GSL_VERSION);
    gsl_set_error_handler_off();  // which would end the program at the first argument outside a domain
#endif
#ifdef __GLIBC__
    benchmark::AddCustomContext("C library", std::string("glibc ") + gnu_get_libc_version());
#endif
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
