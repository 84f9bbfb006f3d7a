// `orv draw`: numbers from a stream.
#include "commands.h"
#include "failure.h"
#include "generators.h"
#include "histogram.h"
#include "numbers.h"
#include "output.h"
#include "progress.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <optional>

namespace orv::command {

namespace {

constexpr int64_t block = 1 << 14;

struct Request {
    std::string generator = "MCG59";
    std::vector<uint32_t> seed = {1};
    int64_t n = 10;
    std::string skip;
    std::string leapfrog;
    std::string save, load;
    std::string output, plot;
    bool histogram = false;
    size_t bins = 20;
    // Of uniform:
    char type = 'd';
    double from = 0, to = 1;
    bool accurate = false;
    // Of bits: 0 asks for the generator's own words.
    int width = 0;
};

template <class Number>
bool parse_whole(std::string_view text, Number& value) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size();
}

void move_stream(Stream* stream, const Request& request) {
    if (!request.skip.empty()) {
        uint64_t count;
        if (!parse_whole(request.skip, count)) fail("--skip: '" + request.skip + "' is not a count");
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

// What becomes of the numbers: lines of text, bins of a histogram, or both.
struct Receiver {
    const Request& request;
    std::optional<Histogram> histogram;
    std::string text;
    bool to_file, as_lines;
};

Receiver make_receiver(const Request& request, double from, double to) {
    Receiver receiver = {request, std::nullopt, "", false, false};
    if (request.histogram || !request.plot.empty()) receiver.histogram = make_histogram(from, to, request.bins);
    receiver.to_file = !request.output.empty() && request.output != "-";
    receiver.as_lines = !receiver.histogram || !request.output.empty();
    return receiver;
}

void append(std::string& text, double value) { append_number(text, value); }
void append(std::string& text, float value) { append_number(text, value); }
template <class Word>
void append(std::string& text, Word value) {
    text += std::to_string(value);
}

template <class Number>
void receive(Receiver& receiver, const Number* numbers, int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
        if (receiver.histogram) count(*receiver.histogram, static_cast<double>(numbers[i]));
        if (receiver.as_lines) append(receiver.text, numbers[i]), receiver.text += '\n';
    }
    // A file is written whole; lines of standard output go out as they come.
    if (!receiver.to_file && receiver.as_lines) {
        write_output("", receiver.text);
        receiver.text.clear();
    }
}

void finish(Receiver& receiver, const std::string& title) {
    const Request& request = receiver.request;
    if (receiver.to_file) write_output(request.output, receiver.text);
    if (request.histogram) write_output("", as_text(*receiver.histogram));
    if (!request.plot.empty()) draw_plot(*receiver.histogram, title, request.plot);
}

// fill(numbers, n) -> status, block by block.
template <class Number, class Fill>
void draw_all(Receiver& receiver, Fill fill) {
    std::vector<Number> numbers(static_cast<size_t>(block));
    const int64_t n = receiver.request.n;
    Progress progress = start_progress(n);
    for (int64_t done = 0; done < n;) {
        const int64_t count = std::min(block, n - done);
        require(fill(numbers.data(), static_cast<int32_t>(count)), "draw");
        receive(receiver, numbers.data(), count);
        done += count;
        tell_progress(progress, done, std::to_string(done) + " of " + std::to_string(n) + " numbers");
    }
    end_progress(progress);
}

void draw_uniform(Stream* stream, const Request& request) {
    if (!(request.from < request.to) || !std::isfinite(request.to - request.from))
        fail("--from must be below --to, both finite and less than the largest number apart");
    const int32_t method = request.accurate ? UniformAccurate : UniformStandard;
    Receiver receiver = make_receiver(request, request.from, request.to);
    if (request.type == 'd') {
        draw_all<double>(receiver, [&](double* r, int32_t n) {
            return _kuzdRngUniform(method, stream, n, r, request.from, request.to);
        });
    } else if (request.type == 's') {
        const float from = static_cast<float>(request.from), to = static_cast<float>(request.to);
        if (!(from < to) || !std::isfinite(to - from)) fail("--from and --to are no two floats");
        draw_all<float>(receiver, [&](float* r, int32_t n) { return _kuzsRngUniform(method, stream, n, r, from, to); });
    } else {
        if (request.from != std::floor(request.from) || request.to != std::floor(request.to) ||
            request.from < INT32_MIN || request.to > INT32_MAX)
            fail("--from and --to must be 32-bit integers for integers");
        const int32_t from = static_cast<int32_t>(request.from), to = static_cast<int32_t>(request.to);
        draw_all<int32_t>(receiver, [&](int32_t* r, int32_t n) { return _kuziRngUniform(0, stream, n, r, from, to); });
    }
    finish(receiver, std::to_string(request.n) + " uniform numbers");
}

void draw_bits(Stream* stream, const Request& request) {
    const BrngProperties& generator = generator_of(stream);
    if (request.width == 0 && generator.wordBytes == 16) fail("words of 16 bytes; choose with --width");
    const int bits = request.width != 0 ? request.width : generator.bitCount;
    Receiver receiver = make_receiver(request, 0, std::ldexp(1.0, bits));
    if (request.width == 64)
        draw_all<uint64_t>(receiver, [&](uint64_t* r, int32_t n) { return _kuziRngUniformBits64(0, stream, n, r); });
    else if (request.width == 32)
        draw_all<uint32_t>(receiver, [&](uint32_t* r, int32_t n) { return _kuziRngUniformBits32(0, stream, n, r); });
    else if (generator.wordBytes == 8)
        draw_all<uint64_t>(receiver, [&](uint64_t* r, int32_t n) { return _kuziRngUniformBits(0, stream, n, r); });
    else
        draw_all<uint32_t>(receiver, [&](uint32_t* r, int32_t n) { return _kuziRngUniformBits(0, stream, n, r); });
    finish(receiver, std::to_string(request.n) + " words of " + std::to_string(bits) + " bits");
}

void run(const Request& request, void (*draw)(Stream*, const Request&)) {
    const StreamHandle stream =
        request.load.empty() ? make_stream(request.generator, request.seed) : load_stream(request.load);
    move_stream(stream.get(), request);
    draw(stream.get(), request);
    if (!request.save.empty()) require(__kuzSaveStreamF(stream.get(), request.save.c_str(), -1), request.save);
}

void add_common(CLI::App& draw, Request& request) {
    CLI::Option* brng =
        draw.add_option("--brng", request.generator, "the generator, or generator:member")->capture_default_str();
    CLI::Option* seed =
        draw.add_option("--seed", request.seed, "32-bit seed words")->delimiter(',')->capture_default_str();
    draw.add_option("--load", request.load, "go on with a saved stream")->excludes(brng)->excludes(seed);
    draw.add_option("--save", request.save, "save the stream as it is after the draw");
    draw.add_option("--skip", request.skip, "pass over so many elements first");
    draw.add_option("--leapfrog", request.leapfrog, "K/N: from there, every N-th element from the K-th on, from 0");
    draw.add_option("--n", request.n, "how many numbers")
        ->check(CLI::Range(int64_t{1}, int64_t{1} << 53))
        ->capture_default_str();
    draw.add_flag("--histogram", request.histogram,
                  "print a histogram; the numbers too only if --output says where to");
    draw.add_option("--plot", request.plot, "draw the histogram to this SVG file, with gnuplot");
    draw.add_option("--bins", request.bins, "of the histogram")->check(CLI::Range(1, 10000))->capture_default_str();
    draw.add_option("--output", request.output, "the file to write; standard output if not given");
}

}  // namespace

void add_draw(CLI::App& app, int&) {
    const auto request = std::make_shared<Request>();
    CLI::App* draw = app.add_subcommand("draw", "Draw random numbers");
    draw->require_subcommand(1);
    CLI::App* uniform = draw->add_subcommand("uniform", "Numbers uniform on an interval, one a line");
    uniform->add_option("--from", request->from, "the lower bound")->capture_default_str();
    uniform->add_option("--to", request->to, "the upper bound; integers stay below it")->capture_default_str();
    uniform->add_option("--type", request->type, "s (float), d (double) or i (integer)")
        ->check(CLI::IsMember({"s", "d", "i"}))
        ->capture_default_str();
    uniform->add_flag("--accurate", request->accurate, "clamp to the interval what rounding takes out of it");
    add_common(*uniform, *request);
    uniform->callback([request] { run(*request, draw_uniform); });

    CLI::App* bits = draw->add_subcommand("bits", "Words of the generator, one a line");
    bits->add_option("--width", request->width, "words of 32 or 64 random bits instead of the generator's own")
        ->check(CLI::IsMember({32, 64}));
    add_common(*bits, *request);
    bits->callback([request] { run(*request, draw_bits); });
}

}  // namespace orv::command
