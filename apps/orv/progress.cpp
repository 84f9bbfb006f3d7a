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

Progress start_progress(const std::string& file) {
    std::error_code error;
    const uintmax_t size = file == "-" ? 0 : std::filesystem::file_size(file, error);
    const auto now = std::chrono::steady_clock::now();
    return {error ? 0 : static_cast<int64_t>(size), errors_go_to_a_terminal(), 0, now, now};
}

void tell_progress(Progress& progress, int64_t bytes, int64_t rows) {
    const auto now = std::chrono::steady_clock::now();
    // Nobody waits for what takes under a second; a log wants fewer lines than an eye.
    if (seconds(now - progress.start) < 1) return;
    if (progress.told != 0 && seconds(now - progress.last) < (progress.terminal ? 0.2 : 5)) return;
    progress.last = now;
    ++progress.told;
    const double megabytes = static_cast<double>(bytes) * 1e-6;
    std::fprintf(stderr, "%sorv: %.0f MB, %lld rows, %.0f MB/s", progress.terminal ? "\r" : "", megabytes,
                 static_cast<long long>(rows), megabytes / seconds(now - progress.start));
    if (progress.total > 0)
        std::fprintf(stderr, ", %.0f %%", 100 * static_cast<double>(bytes) / static_cast<double>(progress.total));
    std::fputs(progress.terminal ? "   " : "\n", stderr);
    std::fflush(stderr);
}

void end_progress(Progress& progress) {
    if (progress.terminal && progress.told != 0) std::fputc('\n', stderr);
}

}  // namespace orv::command
