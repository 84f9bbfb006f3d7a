// Options whose values people write in ways of their own.
#pragma once

#include "table.h"

#include <CLI/CLI.hpp>

namespace orv::command {

// A whole number, which may be written as 1e6, from `least` to `most`. The value stands as the default in the help.
CLI::Option* add_count(CLI::App& app, const std::string& names, int64_t& value, int64_t least, int64_t most,
                       const std::string& help);
CLI::Option* add_count(CLI::App& app, const std::string& names, int32_t& value, int32_t least, int32_t most,
                       const std::string& help);

// How a table is written: --sep, --decimal, --header, --no-header, --comment, --na.
void add_format(CLI::App& app, Format& format);

}  // namespace orv::command
