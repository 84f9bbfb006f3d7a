#include "plot.h"

#include "failure.h"

#include <csignal>
#include <cstdio>
#include <filesystem>

namespace orv::command {

namespace {

#ifdef _WIN32
FILE* start_gnuplot() { return _popen("gnuplot", "w"); }
int end_gnuplot(FILE* pipe) { return _pclose(pipe); }
#else
FILE* start_gnuplot() { return popen("gnuplot", "w"); }
int end_gnuplot(FILE* pipe) { return pclose(pipe); }
#endif

}  // namespace

std::string plot_quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char letter : text) {
        // In single quotes only the quote itself means something, and is doubled.
        if (letter == '\'') quoted += '\'';
        quoted += letter == '\n' || letter == '\r' ? ' ' : letter;
    }
    return quoted + "'";
}

void write_plot(const std::string& file, int width, int height, const std::string& script) {
    const std::string unfinished = file + ".unfinished";
    const std::string text = "set terminal svg noenhanced size " + std::to_string(width) + "," +
                             std::to_string(height) + " font 'sans,12' background 'white'\nset output " +
                             plot_quoted(unfinished) + "\n" + script + "\nset output\n";
#ifndef _WIN32
    // A gnuplot that is not there closes the pipe; that shall be an error here, not the end.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    std::error_code error;
    std::filesystem::remove(unfinished, error);
    FILE* const pipe = start_gnuplot();
    if (!pipe) fail(file + ": gnuplot, which draws pictures, could not be started");
    const bool written = std::fwrite(text.data(), 1, text.size(), pipe) == text.size();
    const int ended = end_gnuplot(pipe);
    if (!written || ended != 0 || !std::filesystem::exists(unfinished, error)) {
        std::filesystem::remove(unfinished, error);
        fail(file + ": not drawn; is gnuplot installed and the place writable?");
    }
    std::filesystem::rename(unfinished, file, error);
    if (error) fail(file + ": " + error.message());
}

}  // namespace orv::command
