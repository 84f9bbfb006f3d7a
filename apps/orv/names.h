// What to say about a name that there is nothing of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv::command {

// Letters of either case match.
bool same_letters(std::string_view a, std::string_view b);

// The one of `names` that takes the fewest changes of letters, if they are few; else empty.
std::string nearest(std::string_view wanted, const std::vector<std::string>& names);

// "no KIND WANTED; did you mean NEAREST? There are NAMES"
std::string no_such(const std::string& kind, std::string_view wanted, const std::vector<std::string>& names);

}  // namespace orv::command
