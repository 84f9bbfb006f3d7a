// A line on standard error that tells how far a long piece of work is.
#pragma once

#include <chrono>
#include <cstdint>

namespace orv::command {

struct Progress {
    using Clock = std::chrono::steady_clock;
    Clock::time_point next = Clock::now() + std::chrono::seconds(1);
    bool shown = false;
};

// Called now and then. Nothing is shown in the first second, and then two lines a second at most, each over the last.
void show_progress(Progress& progress, int64_t done, int64_t total);

}  // namespace orv::command
