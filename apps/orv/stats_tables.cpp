#include "stats_tables.h"

#include "numbers.h"
#include "plot.h"
#include "table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orv::command {

std::string cell(double value, bool csv) {
    std::string text;
    if (csv) {
        append_number(text, value);
    } else {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.10g", value);
        text = std::isnan(value) ? "nan" : digits;
    }
    return text;
}

Cells matrix_table(const char* title, const std::vector<std::string>& names, const std::vector<double>& matrix,
                   bool csv) {
    Cells cells = {{title}};
    cells[0].insert(cells[0].end(), names.begin(), names.end());
    for (size_t j = 0; j < names.size(); ++j) {
        cells.push_back({names[j]});
        for (size_t k = 0; k < names.size(); ++k) cells.back().push_back(cell(matrix[j * names.size() + k], csv));
    }
    return cells;
}

void append_table(std::string& text, const Cells& cells, bool csv) {
    if (csv) {
        for (const auto& row : cells) append_row(text, row);
        return;
    }
    std::vector<size_t> widths(cells[0].size());
    for (const auto& row : cells)
        for (size_t k = 0; k < row.size(); ++k) widths[k] = std::max(widths[k], row[k].size());
    for (const auto& row : cells) {
        // Names to the left, numbers to the right.
        text += row[0] + std::string(widths[0] - row[0].size(), ' ');
        for (size_t k = 1; k < row.size(); ++k) text += "  " + std::string(widths[k] - row[k].size(), ' ') + row[k];
        text += '\n';
    }
}

void draw_matrix(const std::string& title, const std::vector<std::string>& names, const std::vector<double>& matrix,
                 Output& output) {
    const size_t p = names.size();
    // Numbers are read up to so many columns. Squares with edges are shapes of their own, and a picture of a million of
    // them is one that no viewer opens: beyond, a square is a few pixels wide, and pixels serve.
    constexpr size_t readable = 16, shapes = 200;
    std::string script =
        "set palette defined (-1 '#2166ac', 0 '#f7f7f7', 1 '#b2182b')\nset cbrange [-1:1]\nunset key\n"
        "set size ratio -1\nset tics scale 0\nset cblabel 'correlation'\nset title " +
        plot_quoted(title) + "\n";
    const std::string last = std::to_string(p) + "-0.5";
    script += "set xrange [-0.5:" + last + "]\nset yrange [" + last + ":-0.5]\n";
    for (const char* axis : {"set xtics rotate by 45 right (", "set ytics ("}) {
        script += axis;
        for (size_t j = 0; j < p; ++j) script += (j ? "," : "") + plot_tic(names[j]) + " " + std::to_string(j);
        script += ")\n";
    }
    // One line an element: in a matrix gnuplot would warn of nan, which is a square left out here.
    script += "$matrix << EOD\n";
    for (size_t j = 0; j < p; ++j)
        for (size_t k = 0; k < p; ++k) {
            script += std::to_string(k) + ' ' + std::to_string(j) + ' ';
            append_number(script, matrix[j * p + k]);
            script += '\n';
        }
    script += "EOD\nplot $matrix ";
    script += p <= shapes ? "using 1:2:(0.5):(0.5):3 with boxxyerror lc palette fillstyle solid border lc rgb 'white'"
                          : "using 1:2:3 with image";
    if (p <= readable)
        script +=
            ", $matrix using 1:2:($3 == $3 ? sprintf('%.2f', $3) : 'nan'):(abs($3) > 0.6 ? 0xFFFFFF : 0) with labels "
            "tc rgb "
            "variable";
    const int side = static_cast<int>(std::min<size_t>(1600, 240 + 60 * p));
    write_plot(output, side + 80, side, script);
}

}  // namespace orv::command
