#include "histogram.h"

#include "failure.h"
#include "numbers.h"
#include "plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orv::command {

namespace {

double edge(const Histogram& histogram, size_t bin) {
    const double share = static_cast<double>(bin) / static_cast<double>(histogram.counts.size());
    return histogram.from + (histogram.to - histogram.from) * share;
}

// What the bins should count: of integers a step for each bin, otherwise the density in the units of the picture.
std::string curve(const Histogram& histogram, double shift) {
    int64_t all = histogram.outside;
    for (const int64_t bin : histogram.counts) all += bin;
    std::string points;
    const auto point = [&](double x, double expected) {
        append_number(points, x + shift);
        append_number(points += ' ', static_cast<double>(all) * expected);
        points += '\n';
    };
    if (histogram.whole) {
        for (size_t bin = 0; bin < histogram.counts.size(); ++bin) {
            double share = 0;
            // Of a wide bin a thousand integers speak for their neighbours.
            const double from = edge(histogram, bin), to = edge(histogram, bin + 1);
            const double step = std::max(1.0, std::floor((to - from) / 1000));
            for (double k = from; k < to - 0.5; k += step) share += step * histogram.density(k + std::floor(step / 2));
            point(from, share);
            point(to, share);
        }
        return points;
    }
    constexpr size_t places = 800;
    const double width = histogram.to - histogram.from,
                 bin_width = width / static_cast<double>(histogram.counts.size());
    for (size_t i = 0; i < places; ++i) {
        const double x = histogram.from + width * (static_cast<double>(i) + 0.5) / places;
        point(x, bin_width * histogram.density(x));
    }
    return points;
}

}  // namespace

Histogram make_histogram(double from, double to, size_t bins) {
    return {from, to, false, std::vector<int64_t>(bins), 0, nullptr};
}

Histogram make_whole_histogram(double from, double to, size_t bins) {
    const double range = to - from;
    double width = std::ceil(range / static_cast<double>(bins));
    // All bins alike where a width not twice as large allows it; of very wide ones the last may want a few integers.
    constexpr double widest = 1e6;
    for (double even = width; even < 2 * width && width < widest; ++even)
        if (std::fmod(range, even) == 0) {
            width = even;
            break;
        }
    const double count = std::ceil(range / width);
    return {from, from + count * width, true, std::vector<int64_t>(static_cast<size_t>(count)), 0, nullptr};
}

void count(Histogram& histogram, double value) {
    const double bins = static_cast<double>(histogram.counts.size());
    const double bin = (value - histogram.from) / (histogram.to - histogram.from) * bins;
    if (bin >= 0 && bin <= bins)
        ++histogram.counts[std::min(static_cast<size_t>(bin), histogram.counts.size() - 1)];
    else
        ++histogram.outside;
}

std::string as_text(const Histogram& histogram) {
    constexpr int64_t widest = 50;
    const int64_t most = std::max<int64_t>(1, *std::max_element(histogram.counts.begin(), histogram.counts.end()));
    std::string text;
    for (size_t bin = 0; bin < histogram.counts.size(); ++bin) {
        char line[64];
        std::snprintf(line, sizeof line, "%12.6g %12lld ", edge(histogram, bin),
                      static_cast<long long>(histogram.counts[bin]));
        const double share = static_cast<double>(histogram.counts[bin]) / static_cast<double>(most);
        text += line + std::string(static_cast<size_t>(std::lround(share * widest)), '#') + "\n";
    }
    if (histogram.outside > 0) text += "outside " + std::to_string(histogram.outside) + "\n";
    return text;
}

void draw_plot(const Histogram& histogram, const std::string& title, Output& output) {
    // The box of the integers from a to b - 1 is drawn around them.
    const double shift = histogram.whole ? -0.5 : 0;
    char setting[160];
    std::snprintf(setting, sizeof setting,
                  "\nset xrange [%.17g:%.17g]\nset boxwidth %.17g\nset ylabel 'count in a bin of width %.6g'\n",
                  histogram.from + shift, histogram.to + shift, edge(histogram, 1) - histogram.from,
                  edge(histogram, 1) - histogram.from);
    std::string script = "set title " + plot_quoted(title) + setting +
                         "set style fill solid 0.6\nset tics out nomirror\nset xlabel 'value'\nset yrange [0:*]\n" +
                         std::string(histogram.density ? "set key outside top right horizontal\n" : "unset key\n") +
                         "plot '-' using 1:2 with boxes lc rgb '#1f6fb4' title 'drawn'";
    script += histogram.density ? ", '-' using 1:2 with lines lc rgb '#d95f02' linewidth 2 title 'expected'\n" : "\n";
    for (size_t bin = 0; bin < histogram.counts.size(); ++bin) {
        append_number(script, (edge(histogram, bin) + edge(histogram, bin + 1)) / 2 + shift);
        script += " " + std::to_string(histogram.counts[bin]) + "\n";
    }
    script += "e\n";
    if (histogram.density) script += curve(histogram, shift) + "e\n";
    write_plot(output, 800, 500, script);
}

}  // namespace orv::command
