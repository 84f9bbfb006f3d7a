#include "options.h"

#include "failure.h"
#include "numbers.h"

#include <limits>

namespace orv::command {

namespace {

// Digits in groups of three, as people write large numbers.
std::string grouped(int64_t number) {
    std::string digits = std::to_string(number);
    for (size_t i = digits.size(); i > (number < 0 ? 4U : 3U);) digits.insert(i -= 3, ",");
    return digits;
}

template <class Count>
CLI::Option* add(CLI::App& app, const std::string& names, Count& value, Count least, Count most,
                 const std::string& help) {
    const auto take = [&value, least, most, names](const std::string& text) {
        int64_t count;
        if (!parse_count(text, count) || count < least || count > most)
            fail(names + ": '" + text + "' is not a whole number from " + grouped(least) +
                 (most == std::numeric_limits<Count>::max() ? " on" : " to " + grouped(most)));
        value = static_cast<Count>(count);
    };
    CLI::Option* option = app.add_option_function<std::string>(names, take, help);
    option->type_name("COUNT");
    // A value out of the range stands for a choice that the work makes.
    if (value >= least) option->default_str(std::to_string(value));
    return option;
}

// One letter, or the name of one that a shell makes hard to write.
char letter_of(const std::string& option, const std::string& text) {
    if (text == "tab" || text == "\\t") return '\t';
    if (text == "space") return ' ';
    if (text.size() != 1) fail(option + ": '" + text + "' is not one letter, nor tab nor space");
    return text[0];
}

}  // namespace

CLI::Option* add_count(CLI::App& app, const std::string& names, int64_t& value, int64_t least, int64_t most,
                       const std::string& help) {
    return add(app, names, value, least, most, help);
}

CLI::Option* add_count(CLI::App& app, const std::string& names, int32_t& value, int32_t least, int32_t most,
                       const std::string& help) {
    return add(app, names, value, least, most, help);
}

void add_format(CLI::App& app, Format& format) {
    constexpr const char* group = "How the table is written";
    app.add_option_function<std::string>(
           "--sep", [&](const std::string& text) { format.separator = letter_of("--sep", text); },
           "what stands between two fields; tab and space by these names")
        ->type_name("LETTER")
        ->default_str(",")
        ->group(group);
    app.add_option_function<std::string>(
           "--decimal", [&](const std::string& text) { format.decimal = letter_of("--decimal", text); },
           "the decimal sign, also of what is written in the table's form")
        ->type_name("LETTER")
        ->default_str(".")
        ->group(group);
    CLI::Option* header = app.add_flag_callback(
        "--header", [&] { format.header = Format::Header::YES; }, "the first row names the columns; else guessed");
    CLI::Option* none = app.add_flag_callback(
        "--no-header", [&] { format.header = Format::Header::NO; }, "the first row holds data");
    header->excludes(none)->group(group);
    none->group(group);
    app.add_option_function<std::string>(
           "--comment", [&](const std::string& text) { format.comment = letter_of("--comment", text); },
           "lines that begin with it are passed over")
        ->type_name("LETTER")
        ->group(group);
    app.add_option_function<std::string>(
           "--na",
           [&](const std::string& text) {
               if (text != "skip" && text != "refuse") fail("--na: '" + text + "' is neither skip nor refuse");
               format.skip_missing = text == "skip";
           },
           "rows where a wanted field is empty, NA, N/A or null: refuse, or skip and count them on standard error")
        ->type_name("WAY")
        ->default_str("refuse")
        ->group(group);
}

}  // namespace orv::command
