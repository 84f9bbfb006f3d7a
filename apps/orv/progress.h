// How far a long run has come, in one line of the terminal that is written over.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace orv::command {

struct Progress {
    int64_t total;     // of what `done` counts; 0 when not known
    bool terminal;     // standard error is one; nothing is told otherwise
    int32_t told = 0;  // how often so far
    std::chrono::steady_clock::time_point start, last;
};

Progress start_progress(int64_t total);

// Called now and then. Nothing is told in the first second. `what` says in words what has been done.
void tell_progress(Progress& progress, int64_t done, const std::string& what);
void end_progress(Progress& progress);

// For what reads a file: its bytes, or 0 where one cannot tell.
int64_t size_of_file(const std::string& file);

}  // namespace orv::command
