#include "output.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace orv::command {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail_with(const std::string& name, int reason) { fail(name + ": " + std::strerror(reason)); }

// Where a link leads, also one that leads to nothing yet.
fs::path end_of_links(fs::path path) {
    constexpr int most_links = 40;
    std::error_code error;
    for (int i = 0; i < most_links && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = path.parent_path() / target;  // an absolute target stands alone
    }
    return path;
}

// A new file beside `place`. A name that another run has left behind is passed over.
void open_beside(Output& output) {
    for (int attempt = 0; attempt < 16 && !output.stream; ++attempt) {
        output.unfinished = output.place + ".unfinished-" + std::to_string(std::random_device{}());
        output.stream = std::fopen(output.unfinished.c_str(), "wbx");
        if (!output.stream && errno != EEXIST) break;
    }
    if (!output.stream) fail_with(output.name, errno);
}

}  // namespace

Output::Output(const std::string& file) : name(file) {
    if (file.empty() || file == "-" || file == "/dev/stdout") {
        name = "standard output";
        stream = stdout;
        return;
    }
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::is_directory(status)) fail_with(name, EISDIR);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        stream = std::fopen(file.c_str(), "wb");
        if (!stream) fail_with(name, errno);
        return;
    }
    place = end_of_links(file).string();
    if (fs::exists(status)) {
        // Renaming asks for rights to the directory alone; a file that is not to be written to stays as it is.
        FILE* const writable = std::fopen(place.c_str(), "r+b");
        if (!writable) fail_with(name, errno);
        std::fclose(writable);
    }
    open_beside(*this);
    if (fs::exists(status)) fs::permissions(unfinished, status.permissions(), error);
}

Output::~Output() {
    if (stream && stream != stdout) std::fclose(stream);
    std::error_code error;
    if (!unfinished.empty()) fs::remove(unfinished, error);
}

void keep_bytes([[maybe_unused]] Output& output) {
#ifdef _WIN32
    _setmode(_fileno(output.stream), _O_BINARY);
#endif
}

void write(Output& output, std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), output.stream) != text.size()) fail_with(output.name, errno);
}

void finish(Output& output) {
    if (std::fflush(output.stream) != 0) fail_with(output.name, errno);
    if (output.stream == stdout) return;
    FILE* const stream = output.stream;
    output.stream = nullptr;
    if (std::fclose(stream) != 0) fail_with(output.name, errno);
    if (output.place.empty()) return;
    std::error_code error;
    fs::rename(output.unfinished, output.place, error);
    if (error) fail(output.name + ": " + error.message());
    output.unfinished.clear();
}

void write_output(const std::string& file, std::string_view text) {
    Output output(file);
    write(output, text);
    finish(output);
}

}  // namespace orv::command
