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

}  // namespace

Histogram make_histogram(double from, double to, size_t bins) { return {from, to, std::vector<int64_t>(bins), 0}; }

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
    script += "plot '-' using 1:2 with boxes\n";
    for (size_t bin = 0; bin < histogram.counts.size(); ++bin) {
        append_number(script, (edge(histogram, bin) + edge(histogram, bin + 1)) / 2);
        script += " " + std::to_string(histogram.counts[bin]) + "\n";
    }
    write_plot(output, 800, 500, script + "e\n");
}

}  // namespace orv::command
