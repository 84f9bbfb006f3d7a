// Numbers as text, both ways, for float and double.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orv::command {

enum class Parsed { number, not_a_number, too_large };

// The whole of `text` as a decimal number, "inf" or "nan", rounded once to the nearest T. Too small a number becomes zero
// or denormal; too large a one is refused, since an infinity that was meant can be written as such.
template <class T>
Parsed parse_number(std::string_view text, T& value);

// The whole of `text` as a whole number, which may be written as 1e6 or 2.5e3.
bool parse_count(std::string_view text, int64_t& count);

// The shortest text that reads back as the same value.
template <class T>
void append_number(std::string& text, T value);

}  // namespace orv::command
