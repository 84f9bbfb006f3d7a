// `orv draw gaussian` and its like: a row of a table for each distribution.
#include "draw.h"
#include "failure.h"

#include <cmath>
#include <memory>
#include <numbers>

namespace orv::command {

namespace {

struct Method {
    const char* name;
    int32_t number;
};

struct Span {
    double from, to;
};

// Parameters are handed on in the order of their rows.
struct Distribution {
    const char* name;
    const char* help;
    std::vector<Method> methods;  // the first is the usual one; none where there is no choice
    std::vector<Parameter> parameters;
    int32_t (*doubles)(int32_t method, Stream* stream, int32_t n, double* r, const double* p);
    int32_t (*floats)(int32_t method, Stream* stream, int32_t n, float* r, const float* p);
    int32_t (*integers)(Stream* stream, int32_t n, int32_t* r, const double* p);
    double (*density)(double x, const double* p);
    Span (*span)(const double* p);  // of the histogram
};

// ---- Densities of a displacement of 0 and a scale of 1 -----------------------------------------------------------------

double exponential(double x) { return x < 0 ? 0 : std::exp(-x); }
double laplace(double x) { return std::exp(-std::fabs(x)) / 2; }
double weibull(double x, double alpha) {
    return x < 0 ? 0 : alpha * std::pow(x, alpha - 1) * std::exp(-std::pow(x, alpha));
}
double cauchy(double x) { return std::numbers::inv_pi / (1 + x * x); }
double rayleigh(double x) { return x < 0 ? 0 : 2 * x * std::exp(-x * x); }
double gumbel(double x) { return std::exp(x - std::exp(x)); }
double gaussian(double x) { return std::exp(-x * x / 2) * std::numbers::inv_sqrtpi / std::numbers::sqrt2; }
double gamma(double x, double alpha) {
    return x < 0 ? 0 : std::exp((alpha - 1) * std::log(x) - x - std::lgamma(alpha));
}
double beta(double x, double p, double q) {
    if (x < 0 || x > 1) return 0;
    const double scale = std::lgamma(p + q) - std::lgamma(p) - std::lgamma(q);
    return std::exp((p - 1) * std::log(x) + (q - 1) * std::log1p(-x) + scale);
}
double lognormal(double x, double a, double sigma) {
    return x <= 0 ? 0 : gaussian((std::log(x) - a) / sigma) / (x * sigma);
}

// f of a displaced and scaled number, by its two parameters.
template <class Density>
double scaled(double x, const double* shift_and_scale, Density f) {
    return f((x - shift_and_scale[0]) / shift_and_scale[1]) / shift_and_scale[1];
}
Span scaled(const double* shift_and_scale, double from, double to) {
    return {shift_and_scale[0] + from * shift_and_scale[1], shift_and_scale[0] + to * shift_and_scale[1]};
}

// Where nearly all of a gamma number is.
double end_of_gamma(double alpha) { return alpha + 6 * std::sqrt(alpha) + 6; }
double start_of_gamma(double alpha) { return std::max(0.0, alpha - 6 * std::sqrt(alpha)); }

// ---- The table -----------------------------------------------------------------------------------------------------

#define ORV_ENTRIES(Entry, ...)                                                   \
    [](int32_t method, Stream* stream, int32_t n, double* r, const double* p) {   \
        return _kuzdRng##Entry(method, stream, n, r, __VA_ARGS__);                \
    },                                                                            \
        [](int32_t method, Stream* stream, int32_t n, float* r, const float* p) { \
            return _kuzsRng##Entry(method, stream, n, r, __VA_ARGS__);            \
        },                                                                        \
        nullptr

const Parameter displacement = {"--a", 0, Range::any, "the displacement"};
const Parameter scale = {"--beta", 1, Range::positive, "the scale"};

const std::vector<Distribution>& distributions() {
    using P = const double*;
    static const std::vector<Distribution> table = {
        {"exponential",
         "a - beta ln u",
         {},
         {displacement, scale},
         ORV_ENTRIES(Exponential, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, exponential); },
         [](P p) { return scaled(p, 0, 8); }},
        {"laplace",
         "Exponential on both sides of a",
         {},
         {displacement, scale},
         ORV_ENTRIES(Laplace, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, laplace); },
         [](P p) { return scaled(p, -7, 7); }},
        {"weibull",
         "a + beta (-ln u)^(1/alpha)",
         {},
         {displacement, scale, {"--alpha", 2, Range::positive, "the shape"}},
         ORV_ENTRIES(Weibull, p[2], p[0], p[1]),
         [](double x, P p) { return scaled(x, p, [=](double y) { return weibull(y, p[2]); }); },
         [](P p) { return scaled(p, 0, std::pow(8, 1 / p[2])); }},
        {"cauchy",
         "a + beta tan u",
         {},
         {displacement, scale},
         ORV_ENTRIES(Cauchy, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, cauchy); },
         [](P p) { return scaled(p, -10, 10); }},
        {"rayleigh",
         "a + beta sqrt(-ln u)",
         {},
         {displacement, scale},
         ORV_ENTRIES(Rayleigh, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, rayleigh); },
         [](P p) { return scaled(p, 0, 3); }},
        {"gumbel",
         "a + beta ln e with e exponential",
         {},
         {displacement, scale},
         ORV_ENTRIES(Gumbel, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, gumbel); },
         [](P p) { return scaled(p, -7, 2.5); }},
        {"gaussian",
         "Normal numbers",
         {{"box-muller", GaussianBoxMuller}, {"paired", GaussianBoxMullerPaired}, {"inverse", GaussianInverseCdf}},
         {{"--mean", 0, Range::any, "the mean"}, {"--sigma", 1, Range::positive, "the standard deviation"}},
         ORV_ENTRIES(Gaussian, p[0], p[1]),
         [](double x, P p) { return scaled(x, p, gaussian); },
         [](P p) { return scaled(p, -4, 4); }},
        {"lognormal",
         "b + beta e^g with g normal",
         {{"paired", LognormalBoxMullerPaired}, {"inverse", LognormalInverseCdf}},
         {{"--b", 0, Range::any, "the displacement"},
          scale,
          {"--mean", 0, Range::any, "the mean of g"},
          {"--sigma", 0.5, Range::positive, "the standard deviation of g"}},
         ORV_ENTRIES(Lognormal, p[2], p[3], p[0], p[1]),
         [](double x, P p) { return scaled(x, p, [=](double y) { return lognormal(y, p[2], p[3]); }); },
         [](P p) { return scaled(p, 0, std::exp(p[2] + 3 * p[3])); }},
        {"gamma",
         "Gamma",
         {},
         {displacement, scale, {"--alpha", 2.5, Range::positive, "the shape"}},
         ORV_ENTRIES(Gamma, p[2], p[0], p[1]),
         [](double x, P p) { return scaled(x, p, [=](double y) { return gamma(y, p[2]); }); },
         [](P p) { return scaled(p, start_of_gamma(p[2]), end_of_gamma(p[2])); }},
        {"beta",
         "Beta",
         {{"standard", UniformStandard}, {"accurate", UniformAccurate}},
         {displacement,
          scale,
          {"--p", 2, Range::positive, "the shape at a"},
          {"--q", 3, Range::positive, "the shape at a + beta"}},
         ORV_ENTRIES(Beta, p[2], p[3], p[0], p[1]),
         [](double x, P p) { return scaled(x, p, [=](double y) { return beta(y, p[2], p[3]); }); },
         [](P p) { return scaled(p, 0, 1); }},
        {"chi-square",
         "The sum of squared normal numbers",
         {},
         {{"--v", 5, Range::count, "how many: the degrees of freedom"}},
         ORV_ENTRIES(ChiSquare, static_cast<int32_t>(p[0])),
         [](double x, P p) { return gamma(x / 2, p[0] / 2) / 2; },
         [](P p) {
             return Span{2 * start_of_gamma(p[0] / 2), 2 * end_of_gamma(p[0] / 2)};
         }},
        {"geometric",
         "Failures before the first success",
         {},
         {{"--p", 0.2, Range::share, "the probability of a success"}},
         nullptr,
         nullptr,
         [](Stream* stream, int32_t n, int32_t* r, P p) { return _kuziRngGeometric(0, stream, n, r, p[0]); },
         [](double x, P p) { return p[0] * std::pow(1 - p[0], std::floor(x)); },
         [](P p) {
             return Span{0, std::ceil(5 / p[0])};
         }},
    };
    return table;
}

// ---- The draw ------------------------------------------------------------------------------------------------------

struct Request {
    DrawRequest common;
    char type = 'd';
    std::string method;
    std::vector<double> parameters;
};

int32_t method_number(const Distribution& distribution, const std::string& name) {
    for (const Method& method : distribution.methods)
        if (name == method.name) return method.number;
    return 0;
}

void draw(const Distribution& distribution, const Request& request) {
    check_parameters(distribution.parameters, request.parameters);
    const double* const p = request.parameters.data();
    const std::vector<float> narrow(request.parameters.begin(), request.parameters.end());
    for (const float value : narrow)
        if (request.type == 's' && !std::isfinite(value)) fail("a parameter is too large for a float");
    const int32_t method = method_number(distribution, request.method);
    const auto [from, to] = distribution.span(p);
    const bool pictured = request.common.histogram || !request.common.plot.empty();
    if (pictured && !(from < to && std::isfinite(to - from))) fail("no histogram: its range is empty or not finite");
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    Stream* const stream = handle.get();
    if (distribution.integers)
        draw_all<int32_t>(receiver, from, to,
                          [&](int32_t* r, int32_t n) { return distribution.integers(stream, n, r, p); });
    else if (request.type == 'd')
        draw_all<double>(receiver, from, to,
                         [&](double* r, int32_t n) { return distribution.doubles(method, stream, n, r, p); });
    else
        draw_all<float>(receiver, from, to,
                        [&](float* r, int32_t n) { return distribution.floats(method, stream, n, r, narrow.data()); });
    if (receiver.histogram) receiver.histogram->density = [&](double x) { return distribution.density(x, p); };
    finish(receiver, stream, std::to_string(request.common.n) + " numbers, " + distribution.name);
}

}  // namespace

void add_draw_continuous(CLI::App& draw_command) {
    for (const Distribution& distribution : distributions()) {
        const auto request = std::make_shared<Request>();
        CLI::App* command = add_distribution(draw_command, distribution.name, distribution.help,
                                             distribution.parameters, request->parameters);
        if (!distribution.methods.empty()) {
            std::vector<std::string> names;
            for (const Method& method : distribution.methods) names.push_back(method.name);
            add_method(*command, names, request->method);
        }
        if (!distribution.integers)
            command->add_option("--type", request->type, "s (float) or d (double)")
                ->check(CLI::IsMember({"s", "d"}))
                ->capture_default_str();
        add_draw_options(*command, request->common);
        command->callback([&distribution, request] { draw(distribution, *request); });
    }
}

}  // namespace orv::command
