// The subcommands. Each adds itself to the command line; when it is the one asked for, it runs and stores the exit
// status: 0, or 1 where the result stands but something in the input deserves a look. What cannot be done throws Failure.
#pragma once

#include <CLI/CLI.hpp>

namespace orv::command {

void add_accuracy(CLI::App& app, int& status);
void add_bench(CLI::App& app, int& status);
void add_fit(CLI::App& app, int& status);
void add_info(CLI::App& app, int& status);
void add_math(CLI::App& app, int& status);
void add_draw(CLI::App& app, int& status);
void add_sort(CLI::App& app, int& status);
void add_stats(CLI::App& app, int& status);

}  // namespace orv::command
