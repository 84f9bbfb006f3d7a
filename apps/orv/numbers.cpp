#include "numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace orv::command {

namespace {

void convert(const char* text, float& value) { value = std::strtof(text, nullptr); }
void convert(const char* text, double& value) { value = std::strtod(text, nullptr); }

}  // namespace

template <class T>
Parsed parse_number(std::string_view text, T& value) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::invalid_argument || stop != end) return Parsed::not_a_number;
    if (error == std::errc::result_out_of_range) {
        // Too large and too small alike; the C library tells them apart.
        convert(std::string(text).c_str(), value);
        if (std::isinf(value)) return Parsed::too_large;
    }
    return Parsed::number;
}

bool parse_count(std::string_view text, int64_t& count) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, count);
    if (error == std::errc() && stop == end) return true;
    double value;
    constexpr double limit = 0x1p53;  // up to here a double is the number that was written
    if (parse_number(text, value) != Parsed::number || !(std::fabs(value) <= limit) || value != std::trunc(value))
        return false;
    count = static_cast<int64_t>(value);
    return true;
}

template <class T>
void append_number(std::string& text, T value) {
    // The fewest digits that give the number back; without an exponent where a person would write none.
    char digits[64];
    const T magnitude = std::fabs(value);
    const bool plain = magnitude == 0 || (magnitude >= T(1e-5) && magnitude < T(1e15));
    const auto end = plain ? std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed)
                           : std::to_chars(digits, digits + sizeof digits, value);
    text.append(digits, end.ptr);
}

template Parsed parse_number(std::string_view, float&);
template Parsed parse_number(std::string_view, double&);
template void append_number(std::string&, float);
template void append_number(std::string&, double);

}  // namespace orv::command
