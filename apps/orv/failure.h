// What ends the command: one line on standard error, exit status 2.
#pragma once

#include <cstdint>
#include <string>

namespace orv::command {

struct Failure {
    std::string text;
};

[[noreturn]] inline void fail(std::string text) { throw Failure{std::move(text)}; }

// `line` counts from 1.
[[noreturn]] inline void fail_at(const std::string& source, int64_t line, const std::string& text) {
    fail(source + ":" + std::to_string(line) + ": " + text);
}

}  // namespace orv::command
