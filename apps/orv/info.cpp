// `orv info`: which kernels are here, and what the thread's mode word says.
#include "commands.h"
#include "functions.h"
#include "json.h"
#include "output.h"

#include <cstdio>
#include <map>
#include <memory>

namespace orv::command {

namespace {

struct Bit {
    uint32_t bit;
    const char* name;
};
constexpr Bit error_modes[] = {
    {ORV_MODE_ERRMODE_IGNORE, "ignore"}, {ORV_MODE_ERRMODE_ERRNO, "errno"},       {ORV_MODE_ERRMODE_STDERR, "stderr"},
    {ORV_MODE_ERRMODE_EXCEPT, "except"}, {ORV_MODE_ERRMODE_CALLBACK, "callback"}, {ORV_MODE_ERRMODE_NOERR, "noerr"},
};
constexpr Bit traps[] = {
    {ORV_MODE_TRAP_INVALID, "invalid"},
    {ORV_MODE_TRAP_DIVBYZERO, "divide by zero"},
    {ORV_MODE_TRAP_OVERFLOW, "overflow"},
    {ORV_MODE_TRAP_UNDERFLOW, "underflow"},
};

template <size_t N>
std::string names_of(const Bit (&bits)[N], uint32_t mode) {
    std::string names;
    for (const Bit& bit : bits)
        if (mode & bit.bit) names += (names.empty() ? "" : ", ") + std::string(bit.name);
    return names.empty() ? "none" : names;
}

std::string describe_mode(uint32_t mode) {
    static const char* const accuracies[] = {"not chosen", "LA", "HA", "EP"};
    static const char* const consistencies[] = {"not chosen", "float", "double", "restore"};
    const uint32_t accuracy = mode & 0xF, consistency = mode >> 4 & 0xF, denormals = mode & 0x3C0000;
    char word[16];
    std::snprintf(word, sizeof word, "0x%X", static_cast<unsigned>(mode));
    return "mode         " + std::string(word) + "\n" +                                             //
           "accuracy     " + (accuracy < 4 ? accuracies[accuracy] : "not valid") + "\n" +           //
           "consistency  " + (consistency < 4 ? consistencies[consistency] : "not valid") + "\n" +  //
           "errors       " + names_of(error_modes, mode) + "\n" +                                   //
           "denormals    " + (denormals == ORV_MODE_DENORMAL_FLUSH ? "flushed" : "kept") + "\n" +   //
           "traps        " + names_of(traps, mode) + "\n";
}

// The types of each function, by name.
std::map<std::string_view, std::string> types_by_name() {
    std::map<std::string_view, std::string> types;
    for (const Function& function : functions()) types[function.name] += function.type;
    return types;
}

size_t row_count() {
    size_t rows = 0;
    for (const Function& function : functions()) rows += function.has_strided ? 2 : 1;
    return rows;
}

std::string as_text() {
    std::string text =
        "version      " ORV_VERSION "\ntier         " + std::to_string(dll_cpu_version()) + " (SSE4.1)\n";
    text += describe_mode(orv_arq_kernel_GetMode());
    text += "rows         " + std::to_string(row_count()) + " of " + std::to_string(ORV_VECMATH_ROW_COUNT) + "\n\n";
    for (const auto& [name, types] : types_by_name()) {
        text += name;
        text.append(name.size() < 12 ? 12 - name.size() : 0, ' ');
        for (const char type : types) (text += ' ') += type;
        text += '\n';
    }
    return text;
}

std::string as_json() {
    std::string text = "{\"version\": \"" ORV_VERSION "\", \"tier\": " + std::to_string(dll_cpu_version()) +
                       ", \"mode\": " + std::to_string(orv_arq_kernel_GetMode()) +
                       ", \"rows\": " + std::to_string(row_count()) + ",\n \"functions\": {";
    bool first = true;
    for (const auto& [name, types] : types_by_name()) {
        append_json(text += first ? "\n  " : ",\n  ", name);
        append_json(text += ": ", types);
        first = false;
    }
    return text + "}}\n";
}

}  // namespace

void add_info(CLI::App& app, int&) {
    const auto json = std::make_shared<bool>(false);
    CLI::App* info = app.add_subcommand("info", "Tell the tier, the mode word and the functions that are here");
    info->add_flag("--json", *json, "write JSON");
    info->callback([json] { write_output("", *json ? as_json() : as_text()); });
}

}  // namespace orv::command
