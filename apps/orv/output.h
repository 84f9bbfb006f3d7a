// Results leave the command whole or not at all.
#pragma once

#include <string>

namespace orv::command {

// Writes `text` to `file`, or to standard output for "" and "-". A file is written under another name beside its place and
// renamed when it is complete. Ends the command where that fails.
void write_output(const std::string& file, const std::string& text);

}  // namespace orv::command
