// What the draws of `orv draw` share: the stream that they draw from, and what becomes of the numbers.
#pragma once

#include "generators.h"
#include "histogram.h"
#include "numbers.h"
#include "output.h"
#include "progress.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <type_traits>

namespace orv::command {

// The generator's first numbers look like all others, whatever the seed: it has no state to warm up.
struct DrawRequest {
    std::string generator = "PHILOX4X32X10";
    std::vector<uint32_t> seed = {1};
    int64_t n = 10;
    std::string skip;
    std::string leapfrog;
    std::string save, load;
    std::string output, plot;
    bool binary = false;
    bool histogram = false;
    int32_t bins = 20;
};

// Adds the options that set a request.
void add_draw_options(CLI::App& draw, DrawRequest& request);

// A parameter of a distribution, and the numbers that it may be: a share is above 0 and at most 1, a probability may be 0 too,
// a count is at least 1.
enum class Range { any, positive, share, probability, count, natural };
struct Parameter {
    const char* name;
    double usual;
    Range range;
    const char* help;
};

// A command of `draw` that writes numbers of a distribution, with its parameters as options that set `values`; and the choice
// of a method, the first of which is the usual one.
CLI::App* add_distribution(CLI::App& draw, const std::string& name, const std::string& help,
                           const std::vector<Parameter>& parameters, std::vector<double>& values);
void add_method(CLI::App& command, const std::vector<std::string>& names, std::string& method);

// Fails where a value is out of its parameter's range.
void check_parameters(const std::vector<Parameter>& parameters, const std::vector<double>& values);

// Lines of text or the numbers' bytes, bins of a histogram, or both.
struct Receiver {
    const DrawRequest& request;
    std::optional<Histogram> histogram;
    std::optional<Output> lines, plot, saved;
    std::string text;

    explicit Receiver(const DrawRequest& asked);
};

// The stream that a request asks for, moved to where it shall start.
StreamHandle stream_for(const DrawRequest& request);

// Writes histogram and picture, whose title says besides where the numbers come from, and saves the stream where that was
// asked for.
void finish(Receiver& receiver, const Stream* stream, const std::string& title);

template <class Number>
void receive(Receiver& receiver, const Number* numbers, int64_t n) {
    const bool bytes_only = receiver.request.binary && !receiver.histogram;
    for (int64_t i = 0; i < n && !bytes_only; ++i) {
        if (receiver.histogram) count(*receiver.histogram, static_cast<double>(numbers[i]));
        if (!receiver.lines || receiver.request.binary) continue;
        if constexpr (std::is_integral_v<Number>)
            receiver.text += std::to_string(numbers[i]);
        else
            append_number(receiver.text, numbers[i]);
        receiver.text += '\n';
    }
    if (receiver.lines && receiver.request.binary)
        write(*receiver.lines, {reinterpret_cast<const char*>(numbers), static_cast<size_t>(n) * sizeof(Number)});
    else if (receiver.lines)
        write(*receiver.lines, receiver.text);
    receiver.text.clear();
}

// fill(numbers, n) -> status, block by block. The histogram, where there is one, goes from `from` to `to`.
template <class Number, class Fill>
void draw_all(Receiver& receiver, double from, double to, Fill fill) {
    constexpr int64_t block = 1 << 14;
    const int64_t n = receiver.request.n;
    if (receiver.request.histogram || receiver.plot)
        receiver.histogram = (std::is_integral_v<Number> ? make_whole_histogram : make_histogram)(
            from, to, static_cast<size_t>(receiver.request.bins));
    std::vector<Number> numbers(static_cast<size_t>(std::min(block, n)));
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

// The distributions, each of which adds itself to `orv draw`.
void add_draw_uniform(CLI::App& draw);
void add_draw_bits(CLI::App& draw);
void add_draw_points(CLI::App& draw);
void add_draw_continuous(CLI::App& draw);
void add_draw_discrete(CLI::App& draw);
void add_draw_vectors(CLI::App& draw);

}  // namespace orv::command
