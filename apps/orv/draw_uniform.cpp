// `orv draw uniform` and `orv draw bits`.
#include "draw.h"
#include "failure.h"

#include <cmath>
#include <memory>

namespace orv::command {

namespace {

struct Uniform {
    DrawRequest common;
    char type = 'd';
    double from = 0, to = 1;
    bool accurate = false;
};

void draw_uniform(const Uniform& request) {
    const double a = request.from, b = request.to;
    if (!(a < b) || !std::isfinite(b - a))
        fail("--from must be below --to, both finite and less than the largest number apart");
    const float from = static_cast<float>(a), to = static_cast<float>(b);
    if (request.type == 's' && (!(from < to) || !std::isfinite(to - from))) fail("--from and --to are no two floats");
    if (request.type == 'i' && (a != std::floor(a) || b != std::floor(b) || a < INT32_MIN || b > INT32_MAX))
        fail("--from and --to must be 32-bit integers for integers");
    const int32_t method = request.accurate ? UniformAccurate : UniformStandard;
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    Stream* const stream = handle.get();
    if (request.type == 'd')
        draw_all<double>(receiver, a, b,
                         [&](double* r, int32_t n) { return _kuzdRngUniform(method, stream, n, r, a, b); });
    else if (request.type == 's')
        draw_all<float>(receiver, a, b,
                        [&](float* r, int32_t n) { return _kuzsRngUniform(method, stream, n, r, from, to); });
    else
        draw_all<int32_t>(receiver, a, b, [&](int32_t* r, int32_t n) {
            return _kuziRngUniform(0, stream, n, r, static_cast<int32_t>(a), static_cast<int32_t>(b));
        });
    finish(receiver, stream, std::to_string(request.common.n) + " uniform numbers");
}

struct Bits {
    DrawRequest common;
    int width = 0;  // 0 asks for the generator's own words
};

void draw_bits(const Bits& request) {
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    Stream* const stream = handle.get();
    const BrngProperties& generator = generator_of(stream);
    if (request.width == 0 && generator.wordBytes == 16) fail("words of 16 bytes; choose with --width");
    const int bits = request.width != 0 ? request.width : generator.bitCount;
    const double end = std::ldexp(1.0, bits);
    if (request.width == 64 || (request.width == 0 && generator.wordBytes == 8))
        draw_all<uint64_t>(receiver, 0, end, [&](uint64_t* r, int32_t n) {
            return request.width == 64 ? _kuziRngUniformBits64(0, stream, n, r) : _kuziRngUniformBits(0, stream, n, r);
        });
    else
        draw_all<uint32_t>(receiver, 0, end, [&](uint32_t* r, int32_t n) {
            return request.width == 32 ? _kuziRngUniformBits32(0, stream, n, r) : _kuziRngUniformBits(0, stream, n, r);
        });
    finish(receiver, stream, std::to_string(request.common.n) + " words of " + std::to_string(bits) + " bits");
}

}  // namespace

void add_draw_uniform(CLI::App& draw) {
    const auto request = std::make_shared<Uniform>();
    CLI::App* uniform = draw.add_subcommand("uniform", "Numbers uniform on an interval, one a line");
    uniform->add_option("--from", request->from, "the lower bound")->capture_default_str();
    uniform->add_option("--to", request->to, "the upper bound; integers stay below it")->capture_default_str();
    uniform->add_option("--type", request->type, "s (float), d (double) or i (integer)")
        ->check(CLI::IsMember({"s", "d", "i"}))
        ->capture_default_str();
    uniform->add_flag("--accurate", request->accurate, "clamp to the interval what rounding takes out of it");
    add_draw_options(*uniform, request->common);
    uniform->callback([request] { draw_uniform(*request); });
}

void add_draw_bits(CLI::App& draw) {
    const auto request = std::make_shared<Bits>();
    CLI::App* bits = draw.add_subcommand("bits", "Words of the generator, one a line");
    bits->add_option("--width", request->width, "words of 32 or 64 random bits instead of the generator's own")
        ->check(CLI::IsMember({32, 64}));
    add_draw_options(*bits, request->common);
    bits->callback([request] { draw_bits(*request); });
}

}  // namespace orv::command
