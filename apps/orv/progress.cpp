#include "progress.h"

#include <cstdio>

namespace orv::command {

void show_progress(Progress& progress, int64_t done, int64_t total) {
    const bool last = done == total;
    if (last ? !progress.shown : Progress::Clock::now() < progress.next) return;
    std::fprintf(stderr, "\rorv: %3d %% of %lld%s", static_cast<int>(100.0 * static_cast<double>(done) / total),
                 static_cast<long long>(total), last ? "\n" : "");
    std::fflush(stderr);
    progress.shown = true;
    progress.next = Progress::Clock::now() + std::chrono::milliseconds(500);
}

}  // namespace orv::command
