// What is written from the options and descriptions that --help shows: manual pages and the completion of bash.
#pragma once

#include <CLI/CLI.hpp>

namespace orv::command {

// Writes orv.1, a page for each subcommand, and the file `orv` for bash into the directory.
void write_pages(const CLI::App& app, const std::string& directory);

}  // namespace orv::command
