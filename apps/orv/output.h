// Where results go. A regular file stands under its name when it is complete and not before; a device, a pipe and standard
// output take the text as it comes. What cannot be written to is found when the output is opened, before the work.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace orv::command {

struct Output {
    std::string name;        // as messages tell it
    std::string place;       // the regular file to replace, links followed; empty where text goes out directly
    std::string unfinished;  // what is written meanwhile, beside it
    FILE* stream = nullptr;

    // "" and "-" stand for standard output.
    explicit Output(const std::string& file);
    ~Output();  // leaves no unfinished file
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
};

// What is written is bytes and no text, whose ends of lines a system may write in its own way.
void keep_bytes(Output& output);

// Both end the command where the text cannot be written.
void write(Output& output, std::string_view text);
void finish(Output& output);

// All of it at once.
void write_output(const std::string& file, std::string_view text);

}  // namespace orv::command
