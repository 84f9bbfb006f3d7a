// Writes the measured accuracy of every kernel as a page: accuracy_report [RANDOM_COUNT [FUNCTION]].
#include "accuracy/measure.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    using namespace orv::accuracy;
    const long long count = argc > 1 ? std::atoll(argv[1]) : 1'000'000;
    std::printf(
        "# Measured accuracy\n\n"
        "Worst error seen of each kernel against the exact value, over %lld random arguments per kernel, every exponent and\n"
        "the neighbourhood of every boundary. Errors of normal results are in ulp and, as a power of two, relative; those\n"
        "of subnormal results in units of the smallest subnormal. Written by `accuracy_report`.\n\n"
        "| Function | Type | Accuracy | Worst, ulp | At | Relative | Worst subnormal | At |\n"
        "|---|---|---|---|---|---|---|---|\n",
        count);
    for (const Kernel& kernel : kernels()) {
        if (argc > 2 && std::strcmp(argv[2], kernel.function)) continue;
        const Worst w = measure(kernel, count);
        std::printf("| %s | %c | %s | %.4g | %a | 2^%.1f |", kernel.function, kernel.type, kernel.slots.c_str(), w.ulp, w.at,
                    w.relative > 0 ? std::log2(w.relative) : -99.0);
        if (w.subnormal_at != 0)
            std::printf(" %.4g | %a |\n", w.subnormal_ulp, w.subnormal_at);
        else
            std::printf(" | |\n");
        std::fflush(stdout);
    }
}
