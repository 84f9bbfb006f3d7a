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

// The density as counts of a bin, at so many places.
std::string curve(const Histogram& histogram) {
    constexpr size_t places = 800;
    int64_t all = histogram.outside;
    for (const int64_t bin : histogram.counts) all += bin;
    const double width = histogram.to - histogram.from;
    const double bin_count = static_cast<double>(all) * width / static_cast<double>(histogram.counts.size());
    std::string points;
    for (size_t i = 0; i < places; ++i) {
        const double x = histogram.from + width * (static_cast<double>(i) + 0.5) / places;
        append_number(points, x);
        points += ' ';
        append_number(points, bin_count * histogram.density(x));
        points += '\n';
    }
    return points;
}

}  // namespace

Histogram make_histogram(double from, double to, size_t bins) {
    return {from, to, std::vector<int64_t>(bins), 0, nullptr};
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
    std::string script = "set title " + plot_quoted(title) +
                         "\nset style fill solid 0.6\nset ylabel 'count'\nset yrange [0:*]\nunset key\n";
    script += "plot '-' using 1:2 with boxes";
    script += histogram.density ? ", '-' using 1:2 with lines linewidth 2\n" : "\n";
    for (size_t bin = 0; bin < histogram.counts.size(); ++bin) {
        append_number(script, (edge(histogram, bin) + edge(histogram, bin + 1)) / 2);
        script += " " + std::to_string(histogram.counts[bin]) + "\n";
    }
    script += "e\n";
    if (histogram.density) script += curve(histogram) + "e\n";
    write_plot(output, 800, 500, script);
}

}  // namespace orv::command
