#include "stats_boxes.h"

#include "failure.h"
#include "numbers.h"
#include "plot.h"

#include <algorithm>
#include <cmath>

namespace orv::command {

namespace {

constexpr size_t most_columns = 120, panels_across = 8;
constexpr int panel_width = 150, panel_height = 380;

std::string number(double value) {
    std::string text;
    append_number(text, value);
    return text;
}

std::string whisker(double order) {
    if (order == 0) return "minimum";
    return order == 1 ? "maximum" : "order " + number(order);
}

// A box, or the word nan where what it shows is not finite.
std::string panel(const std::string& name, const double* quantiles, double least, double greatest) {
    std::string script = "set title " + plot_quoted(name) + "\nunset label\n";
    const bool finite = std::all_of(quantiles, quantiles + 5, [](double q) { return std::isfinite(q); });
    std::vector<double> points;
    double low = quantiles[0], high = quantiles[4];
    for (const double extreme : {least, greatest}) {
        if (!std::isfinite(extreme)) continue;
        points.push_back(extreme);
        low = std::min(low, extreme);
        high = std::max(high, extreme);
    }
    // A scale has a length in which its tics differ, whatever the numbers.
    const double largest = std::max(std::fabs(low), std::fabs(high));
    const double least_margin = largest == 0 ? 1 : (high > low ? 1e-12 : 0.05) * largest;
    const double margin = std::max({0.05 * (high - low), least_margin, 1e-300});
    if (!finite || !std::isfinite(margin) || !std::isfinite(high + margin) || !std::isfinite(low - margin))
        return script +
               "unset ytics\nset yrange [0:1]\nset label 'nan' at graph 0.5,0.5 center\nplot 2 notitle\nset ytics "
               "nomirror\n";
    script += "set yrange [" + number(low - margin) + ":" + number(high + margin) + "]\n$box << EOD\n0";
    for (int k = 0; k < 5; ++k) script += ' ' + number(quantiles[k]);
    script += "\nEOD\n";
    if (!points.empty()) {
        script += "$extremes << EOD\n";
        for (const double point : points) script += "0 " + number(point) + '\n';
        script += "EOD\n";
    }
    script +=
        "plot $box using 1:3:2:6:5 with candlesticks lc rgb '#2166ac' fill solid 0.25 border notitle "
        "whiskerbars 0.5, "
        "$box using 1:4:4:4:4 with candlesticks lw 2 lc rgb '#b2182b' notitle";
    if (!points.empty()) script += ", $extremes with points pt 7 ps 0.4 lc rgb '#444444' notitle";
    return script + '\n';
}

}  // namespace

std::vector<double> box_orders(const std::vector<double>& asked) {
    std::vector<double> orders = {0, 0.25, 0.5, 0.75, 1};
    if (asked.empty()) return orders;
    const auto [least, greatest] = std::minmax_element(asked.begin(), asked.end());
    if (*least < 0.25) orders[0] = *least;
    if (*greatest > 0.75) orders[4] = *greatest;
    return orders;
}

void draw_boxes(const Boxes& boxes, Output& output) {
    const size_t p = boxes.names.size();
    if (p > most_columns) fail("--plot shows boxes of at most " + std::to_string(most_columns) + " columns");
    const size_t across = std::min(p, panels_across), down = (p + across - 1) / across;
    std::string script = "set xrange [-1:1]\nset boxwidth 0.9\nunset xtics\nset border 2\nset ytics nomirror\n";
    script += "set multiplot layout " + std::to_string(down) + "," + std::to_string(across) + " title " +
              plot_quoted(boxes.title) + " . \"\\n\" . " +
              plot_quoted("quartiles and median, whiskers from " + whisker(boxes.orders[0]) + " to " +
                          whisker(boxes.orders[4]) + ", points at the extremes") +
              " font ',11'\n";
    for (size_t j = 0; j < p; ++j)
        script += panel(boxes.names[j], &boxes.quantiles[j * 5], boxes.minimum[j], boxes.maximum[j]);
    script += "unset multiplot\n";
    const int width = std::max(600, panel_width * static_cast<int>(across));
    write_plot(output, width, 40 + panel_height * static_cast<int>(down), script);
}

}  // namespace orv::command
