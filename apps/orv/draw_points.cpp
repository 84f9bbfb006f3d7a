// `orv draw sobol`: points of a low-discrepancy sequence, and a picture of them beside pseudo-random ones.
#include "draw.h"
#include "failure.h"
#include "names.h"
#include "options.h"
#include "plot.h"

#include <memory>

namespace orv::command {

namespace {

constexpr size_t drawn_dimensions = 2;

struct Points {
    std::string generator = "Sobol";
    int32_t dimension = 2;
    int64_t n = 10;
    int64_t skip = 0;
    std::string output, plot;
};

void append_point(std::string& text, const double* point, size_t dimension, char separator) {
    for (size_t j = 0; j < dimension; ++j) {
        if (j > 0) text += separator;
        append_number(text, point[j]);
    }
    text += '\n';
}

// The first two coordinates of each point, and as many pseudo-random pairs, in two fields.
void draw_picture(const Points& request, const std::string& points, Output& output) {
    const StreamHandle random = make_stream("PHILOX4X32X10", {1});
    std::string pairs;
    for (int64_t i = 0; i < request.n; ++i) {
        double pair[drawn_dimensions];
        require(_kuzdRngUniform(UniformStandard, random.get(), drawn_dimensions, pair, 0, 1), "draw");
        append_point(pairs, pair, drawn_dimensions, ' ');
    }
    const std::string count = std::to_string(request.n) + " points";
    std::string script =
        "set multiplot layout 1,2\nset size square\nset xrange [0:1]\nset yrange [0:1]\nunset key\n"
        "set tics out nomirror\nset xlabel 'coordinate 1'\nset ylabel 'coordinate 2'\n";
    // Dots that still can be told from each other.
    const char* dots = request.n <= 5000 ? "pt 7 ps 0.3" : "pt 7 ps 0.12";
    const auto panel = [&](const std::string& title, const std::string& data) {
        script +=
            "set title " + plot_quoted(title) + "\nplot '-' with points " + dots + " lc rgb '#1f6fb4'\n" + data + "e\n";
    };
    panel(request.generator + ", " + count, points);
    panel("PHILOX4X32X10, seed 1, " + count, pairs);
    write_plot(output, 1000, 540, script + "unset multiplot\n");
}

void draw_points(const Points& request) {
    constexpr int64_t most_drawn = 100000;
    if (!request.plot.empty() && request.dimension < static_cast<int32_t>(drawn_dimensions))
        fail("--plot wants two dimensions or more");
    if (!request.plot.empty() && request.n > most_drawn) fail("--plot shows at most 100000 points");
    std::optional<Output> lines, plot;
    if (request.plot.empty() || !request.output.empty()) lines.emplace(request.output);
    if (!request.plot.empty()) plot.emplace(request.plot);
    const StreamHandle stream = make_stream(request.generator, {static_cast<uint32_t>(request.dimension)});
    const size_t dimension = static_cast<size_t>(request.dimension);
    if (request.skip > 0)
        require(__kuzSkipAheadStream(stream.get(), static_cast<uint64_t>(request.skip) * dimension), "--skip");
    std::vector<double> point(dimension);
    std::string text, pairs;
    Progress progress = start_progress(request.n);
    for (int64_t i = 0; i < request.n; ++i) {
        require(_kuzdRngUniform(UniformStandard, stream.get(), static_cast<int32_t>(dimension), point.data(), 0, 1),
                "draw");
        if (lines) {
            append_point(text, point.data(), dimension, ',');
            write(*lines, text);
            text.clear();
        }
        if (plot) append_point(pairs, point.data(), drawn_dimensions, ' ');
        tell_progress(progress, i + 1, std::to_string(i + 1) + " of " + std::to_string(request.n) + " points");
    }
    end_progress(progress);
    if (lines) finish(*lines);
    if (plot) draw_picture(request, pairs, *plot);
}

}  // namespace

void add_draw_points(CLI::App& draw) {
    constexpr int32_t most_dimensions = 318;
    constexpr int64_t most_points = 0xFFFFFFFF;
    const auto request = std::make_shared<Points>();
    CLI::App* sobol = draw.add_subcommand("sobol", "Points of a low-discrepancy sequence, one a line");
    add_count(*sobol, "--dimension", request->dimension, 1, most_dimensions,
              "coordinates a point: to 40, or 318 with Niederr");
    const auto choose = [request](const std::string& text) {
        const std::vector<std::string> sequences = {"Sobol", "Niederr"};
        const auto found = std::find_if(sequences.begin(), sequences.end(),
                                        [&](const std::string& name) { return same_letters(name, text); });
        if (found == sequences.end()) fail(no_such("sequence", text, sequences));
        request->generator = *found;
    };
    sobol->add_option_function<std::string>("--brng", choose, "the sequence, Sobol or Niederr")
        ->default_str(request->generator);
    add_count(*sobol, "--n", request->n, 1, most_points, "how many points");
    add_count(*sobol, "--skip", request->skip, 0, most_points, "pass over so many points first");
    sobol->add_option("--plot", request->plot,
                      "draw the first two coordinates, beside pseudo-random points, to this SVG file, with gnuplot");
    sobol->add_option("--output", request->output, "the file to write; standard output if not given");
    sobol->callback([request] {
        constexpr int32_t sobol_dimensions = 40;
        if (request->generator == "Sobol" && request->dimension > sobol_dimensions)
            fail("--dimension: Sobol has 40 here; --brng Niederr has 318");
        draw_points(*request);
    });
}

}  // namespace orv::command
