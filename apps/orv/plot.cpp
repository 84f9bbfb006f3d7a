#include "plot.h"

#include "failure.h"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace orv::command {

namespace {

#ifdef _WIN32
FILE* start_gnuplot() { return _popen("gnuplot", "w"); }
int end_gnuplot(FILE* pipe) { return _pclose(pipe); }
#else
FILE* start_gnuplot() { return popen("gnuplot", "w"); }
int end_gnuplot(FILE* pipe) { return pclose(pipe); }
#endif

// Where gnuplot draws: a file of its own, since it writes where it likes and not into our streams.
struct Picture {
    std::string file =
        (std::filesystem::temp_directory_path() / ("orv-" + std::to_string(std::random_device{}()) + ".svg")).string();

    Picture() = default;
    ~Picture() {
        std::error_code error;
        std::filesystem::remove(file, error);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
};

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

std::string plot_tic(const std::string& text) {
    std::string format;
    for (const char letter : text) format += letter == '%' ? std::string("%%") : std::string(1, letter);
    return plot_quoted(format);
}

void write_plot(Output& output, int width, int height, const std::string& script) {
    const Picture picture;
    const std::string text = "set encoding utf8\nset terminal svg noenhanced size " + std::to_string(width) + "," +
                             std::to_string(height) + " font 'sans,12' background 'white'\nset output " +
                             plot_quoted(picture.file) + "\n" + script + "\nset output\n";
#ifndef _WIN32
    // A gnuplot that is not there closes the pipe; that shall be an error here, not the end.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    FILE* const pipe = start_gnuplot();
    if (!pipe) fail(output.name + ": gnuplot, which draws pictures, could not be started");
    const bool written = std::fwrite(text.data(), 1, text.size(), pipe) == text.size();
    const int ended = end_gnuplot(pipe);
    std::ifstream drawn(picture.file, std::ios::binary);
    const std::string svg(std::istreambuf_iterator<char>(drawn), {});
    if (!written || ended != 0 || svg.empty()) fail(output.name + ": not drawn; is gnuplot installed?");
    write(output, svg);
    finish(output);
}

}  // namespace orv::command
