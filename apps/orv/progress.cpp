#include "progress.h"

#include <cstdio>
#include <filesystem>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace orv::command {

namespace {

bool errors_go_to_a_terminal() {
#ifdef _WIN32
    return _isatty(2) != 0;
#else
    return isatty(2) != 0;
#endif
}

double seconds(std::chrono::steady_clock::duration span) { return std::chrono::duration<double>(span).count(); }

}  // namespace

Progress start_progress(int64_t total) {
    const auto now = std::chrono::steady_clock::now();
    return {total, errors_go_to_a_terminal(), 0, now, now};
}

void tell_progress(Progress& progress, int64_t done, const std::string& what) {
    const auto now = std::chrono::steady_clock::now();
    // Nobody waits for what takes under a second, and nobody watches a file.
    if (!progress.terminal || seconds(now - progress.start) < 1) return;
    if (progress.told != 0 && seconds(now - progress.last) < 0.2) return;
    progress.last = now;
    ++progress.told;
    std::fprintf(stderr, "\rorv: %s", what.c_str());
    if (progress.total > 0)
        std::fprintf(stderr, ", %.0f %%", 100 * static_cast<double>(done) / static_cast<double>(progress.total));
    std::fputs("   ", stderr);
    std::fflush(stderr);
}

void end_progress(Progress& progress) {
    if (progress.told != 0) std::fputc('\n', stderr);
}

int64_t size_of_file(const std::string& file) {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(file, error);
    return error ? 0 : static_cast<int64_t>(size);
}

}  // namespace orv::command
