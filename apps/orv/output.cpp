#include "output.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace orv::command {

namespace {

bool write_all(FILE* stream, const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

}  // namespace

void write_output(const std::string& file, const std::string& text) {
    if (file.empty() || file == "-") {
        if (!write_all(stdout, text)) fail(std::string("standard output: ") + std::strerror(errno));
        return;
    }
    // "x": a file of that name that someone else keeps is not ours to overwrite.
    const std::string unfinished = file + ".unfinished";
    FILE* const stream = std::fopen(unfinished.c_str(), "wbx");
    if (!stream) fail(unfinished + ": " + std::strerror(errno));
    const bool written = write_all(stream, text);
    const int reason = errno;
    const bool closed = std::fclose(stream) == 0;
    std::error_code error;
    if (written && closed) std::filesystem::rename(unfinished, file, error);
    if (!written || !closed || error) {
        const std::string why = error ? error.message() : std::strerror(written ? errno : reason);
        std::filesystem::remove(unfinished, error);
        fail(file + ": " + why);
    }
}

}  // namespace orv::command
