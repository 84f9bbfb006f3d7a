#include "accuracy/page.h"

#include "accuracy/bounds.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <fstream>

#ifndef _WIN32
#include <gnu/libc-version.h>
#endif

namespace orv::accuracy {

namespace {

[[gnu::format(printf, 1, 2)]] std::string text(const char* format, ...) {
    char buffer[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return buffer;
}

// Columns as wide as their widest cell.
struct Table {
    std::vector<std::vector<std::string>> rows;

    void print() const {
        std::vector<size_t> widths(rows[0].size());
        for (const auto& row : rows)
            for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
        for (size_t r = 0; r < rows.size(); ++r) {
            for (size_t i = 0; i < widths.size(); ++i)
                std::printf("| %-*s ", static_cast<int>(widths[i]), rows[r][i].c_str());
            std::printf("|\n");
            if (r > 0) continue;
            for (const size_t width : widths) std::printf("|%s", std::string(width + 2, '-').c_str());
            std::printf("|\n");
        }
        std::printf("\n");
    }
};

// In ulp, as far as these are few; relative beyond.
constexpr double many = 100;
std::string error_text(const Worst& worst) {
    if (worst.ulp == 0) return "exact";
    return worst.ulp < many ? text("%.3f", worst.ulp) : text("%.2e relative", worst.relative);
}

std::string place(const Kernel& kernel, const double* at) {
    std::string list;
    for (int i = 0; i < kernel.inputs; ++i) list += (i ? ", " : "") + text("%.*g", kernel.single() ? 9 : 17, at[i]);
    return list;
}

std::string processor() {
    std::ifstream processors("/proc/cpuinfo");
    for (std::string line; std::getline(processors, line);)
        if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
    return "an x86 processor";
}

std::string references() {
#ifdef _WIN32
    return "against 80-bit arithmetic";
#else
    return text("exact values by MPFR %s, 80-bit ones by C library %s", mpfr_get_version(), gnu_get_libc_version());
#endif
}

// What stands behind an accuracy of a type: all kernels that serve it.
void add_summary(Table& table, const std::vector<Line>& lines, Accuracy accuracy, char type) {
    std::vector<const Line*> of_slot;
    for (const Line& line : lines)
        if (line.kernel->type == type && line.kernel->serves(accuracy)) of_slot.push_back(&line);
    if (of_slot.empty()) return;
    std::sort(of_slot.begin(), of_slot.end(), [](const Line* a, const Line* b) { return a->worst.ulp < b->worst.ulp; });
    const Line &median = *of_slot[of_slot.size() / 2], &last = *of_slot.back();
    const auto within = [&](double ulp) {
        return std::count_if(of_slot.begin(), of_slot.end(), [&](const Line* line) { return line->worst.ulp <= ulp; });
    };
    table.rows.push_back({accuracy_names[accuracy], std::string(1, type), std::to_string(of_slot.size()),
                          std::to_string(within(0.5)), std::to_string(within(1)), error_text(median.worst),
                          error_text(last.worst), last.kernel->name});
}

}  // namespace

void write_page(const std::vector<Line>& lines) {
    double count = 0;
    bool swept = false;
    for (const Line& line : lines) count += static_cast<double>(line.worst.count), swept |= line.swept;
    std::printf(
        "# Measured accuracy\n\n"
        "The worst error of each kernel against the exact value, found by a search of %.2g arguments: every exponent, "
        "the\n"
        "cells of tables and reductions, the neighbourhood of every boundary, and a climb from the worst of these%s.\n"
        "Errors are in ulp: the distance of neighbouring numbers at the exact value. A correctly rounded result is off "
        "by\n"
        "at most 0.5. Errors of more than %.0f ulp are given relative to the result. Written by `accuracy_report`.\n\n",
        count, swept ? ";\nfunctions of type s with one argument over all 2^32 floats" : "", many);
    std::printf("On %s, compiled by GCC %s; %s.\n\n", processor().c_str(), __VERSION__, references().c_str());

    std::printf(
        "## Summary\n\n"
        "\"HA\" is meant to be within about half an ulp. \"LA\" gives up the last bit or two for speed: most functions "
        "stay\n"
        "within 1 ulp, those whose table or polynomial is short go up to 4. \"EP\" has about half the digits of the "
        "type; a\n"
        "few logarithms have less next to 1, where their results vanish. One kernel may serve more than one "
        "accuracy.\n\n");
    Table summary{{{"Accuracy", "Type", "Functions", "Exact or rounded correctly", "Within 1 ulp", "Median of worst",
                    "Worst", "Of"}}};
    for (const Accuracy accuracy : {ha, la, ep})
        for (const char type : {'d', 's', 'z', 'c'}) add_summary(summary, lines, accuracy, type);
    summary.print();

    for (const Family& family : families()) {
        Table table{{{"Function", "Type", "Accuracy", "Worst", "At", "Bound, ulp", "Worst subnormal", "At"}}};
        for (const Line& line : lines) {
            const Kernel& kernel = *line.kernel;
            const auto& own = family.functions;
            if (kernel.function < own.data() || kernel.function >= own.data() + own.size()) continue;
            const Worst& worst = line.worst;
            const Bound* bound = bound_of(kernel);
            table.rows.push_back({kernel.name, std::string(1, kernel.type), kernel.slots, error_text(worst),
                                  worst.ulp > 0 ? place(kernel, worst.at) : "", bound ? text("%.3g", bound->ulp) : "",
                                  worst.subnormal_ulp > 0 ? text("%.3g", worst.subnormal_ulp) : "",
                                  worst.subnormal_ulp > 0 ? place(kernel, worst.subnormal_at) : ""});
        }
        if (table.rows.size() == 1) continue;
        std::printf("## %.*s\n\n", static_cast<int>(family.title.size()), family.title.data());
        table.print();
    }
}

}  // namespace orv::accuracy
