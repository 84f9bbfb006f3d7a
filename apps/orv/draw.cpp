// `orv draw`: numbers from a stream.
#include "draw.h"

#include "commands.h"
#include "failure.h"
#include "options.h"

#include <charconv>
#include <cmath>

namespace orv::command {

namespace {

template <class Number>
bool parse_whole(std::string_view text, Number& value) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size();
}

void move_stream(Stream* stream, const DrawRequest& request) {
    if (!request.skip.empty()) {
        uint64_t count;
        int64_t written;
        if (!parse_whole(request.skip, count)) {
            if (!parse_count(request.skip, written) || written < 0)
                fail("--skip: '" + request.skip + "' is not a count");
            count = static_cast<uint64_t>(written);
        }
        require(__kuzSkipAheadStream(stream, count), "--skip");
    }
    if (!request.leapfrog.empty()) {
        const std::string& text = request.leapfrog;
        const size_t slash = text.find('/');
        int32_t k = -1, streams = 0;
        if (slash == std::string::npos || !parse_whole(std::string_view(text).substr(0, slash), k) ||
            !parse_whole(std::string_view(text).substr(slash + 1), streams) || k < 0 || k >= streams)
            fail("--leapfrog: '" + text + "' is not K/N with K from 0 to N - 1");
        require(__kuzLeapfrogStream(stream, k, streams), "--leapfrog");
    }
}

// Where the numbers come from, as a person would write it.
std::string source_of(const DrawRequest& request) {
    if (!request.load.empty()) return "the stream in " + request.load;
    std::string text = request.generator + ", seed ";
    for (const uint32_t& word : request.seed) text += (&word == request.seed.data() ? "" : ",") + std::to_string(word);
    return text;
}

const char* wrong_with(Range range, double x) {
    const bool whole = x == std::floor(x);
    switch (range) {
        case Range::any:
            return nullptr;
        case Range::positive:
            return x > 0 ? nullptr : " must be above 0";
        case Range::share:
            return x > 0 && x <= 1 ? nullptr : " must be above 0 and at most 1";
        case Range::probability:
            return x >= 0 && x <= 1 ? nullptr : " must be from 0 to 1";
        case Range::count:
            return whole && x >= 1 && x <= 1e9 ? nullptr : " must be a whole number from 1 to 1e9";
        case Range::natural:
            return whole && x >= 0 && x <= INT32_MAX ? nullptr : " must be a whole number from 0 to 2147483647";
    }
    return nullptr;
}

}  // namespace

CLI::App* add_distribution(CLI::App& draw, const std::string& name, const std::string& help,
                           const std::vector<Parameter>& parameters, std::vector<double>& values) {
    CLI::App* command = draw.add_subcommand(name, help + ", one a line");
    values.resize(parameters.size());
    for (size_t i = 0; i < parameters.size(); ++i) {
        values[i] = parameters[i].usual;
        command->add_option(parameters[i].name, values[i], parameters[i].help)->capture_default_str();
    }
    return command;
}

void add_method(CLI::App& command, const std::vector<std::string>& names, std::string& method) {
    method = names.front();
    command.add_option("--method", method, "how the numbers are made")
        ->check(CLI::IsMember(names))
        ->capture_default_str();
}

void check_parameters(const std::vector<Parameter>& parameters, const std::vector<double>& values) {
    for (size_t i = 0; i < parameters.size(); ++i) {
        const std::string name = parameters[i].name;
        if (!std::isfinite(values[i])) fail(name + " must be a finite number");
        if (const char* wrong = wrong_with(parameters[i].range, values[i])) fail(name + wrong);
    }
}

Receiver::Receiver(const DrawRequest& asked) : request(asked) {
    const bool bins_only = (asked.histogram || !asked.plot.empty()) && asked.output.empty();
    if (!bins_only) lines.emplace(asked.output);
    if (lines && asked.binary) keep_bytes(*lines);
    if (!asked.plot.empty()) plot.emplace(asked.plot);
    if (!asked.save.empty()) saved.emplace(asked.save);
}

StreamHandle stream_for(const DrawRequest& request) {
    StreamHandle stream =
        request.load.empty() ? make_stream(request.generator, request.seed) : load_stream(request.load);
    move_stream(stream.get(), request);
    return stream;
}

void finish(Receiver& receiver, const Stream* stream, const std::string& title) {
    if (receiver.lines) finish(*receiver.lines);
    if (receiver.request.histogram) write_output("", as_text(*receiver.histogram));
    if (receiver.plot) draw_plot(*receiver.histogram, title + " from " + source_of(receiver.request), *receiver.plot);
    if (receiver.saved) {
        std::string image(static_cast<size_t>(__kuzGetStreamSize(stream)), '\0');
        require(__kuzSaveStreamM(stream, image.data()), receiver.request.save);
        write(*receiver.saved, image);
        finish(*receiver.saved);
    }
}

void add_draw_options(CLI::App& draw, DrawRequest& request) {
    CLI::Option* brng =
        draw.add_option("--brng", request.generator, "the generator, or generator:member")->capture_default_str();
    CLI::Option* seed =
        draw.add_option("--seed", request.seed, "32-bit seed words")->delimiter(',')->capture_default_str();
    draw.add_option("--load", request.load, "go on with a saved stream")->excludes(brng)->excludes(seed);
    draw.add_option("--save", request.save, "save the stream as it is after the draw");
    draw.add_option("--skip", request.skip, "pass over so many elements first");
    draw.add_option("--leapfrog", request.leapfrog, "K/N: from there, every N-th element from the K-th on, from 0");
    add_count(draw, "--n", request.n, 1, int64_t{1} << 53, "how many numbers");
    draw.add_flag("--binary", request.binary, "write the numbers' bytes, lowest first, instead of lines");
    draw.add_flag("--histogram", request.histogram,
                  "print a histogram; the numbers too only if --output says where to");
    draw.add_option("--plot", request.plot, "draw the histogram to this SVG file, with gnuplot");
    add_count(draw, "--bins", request.bins, 1, 10000, "of the histogram");
    draw.add_option("--output", request.output, "the file to write; standard output if not given");
}

void add_draw(CLI::App& app, int&) {
    CLI::App* draw = app.add_subcommand("draw", "Draw random numbers");
    draw->require_subcommand(1);
    add_draw_uniform(*draw);
    add_draw_bits(*draw);
    add_draw_points(*draw);
    add_draw_continuous(*draw);
    add_draw_discrete(*draw);
    add_draw_vectors(*draw);
}

}  // namespace orv::command
