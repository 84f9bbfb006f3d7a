// `orv draw binomial` and its like: integers, with their exact probabilities over the histogram.
#include "draw.h"
#include "failure.h"
#include "options.h"

#include <cmath>
#include <limits>
#include <memory>

namespace orv::command {

namespace {

struct Moments {
    double mean, deviation;
};

// Parameters are handed on in the order of their rows; what(p) tells what is wrong with them together, or null.
struct Distribution {
    const char* name;
    const char* help;
    std::vector<Parameter> parameters;
    int32_t (*draw)(int32_t method, Stream* stream, int32_t n, int32_t* r, const double* p);
    double (*log_probability)(double k, const double* p);
    Moments (*moments)(const double* p);
    double (*most)(const double* p);  // of the support
    const char* (*what)(const double* p);
};

double log_binomial(double n, double k) { return std::lgamma(n + 1) - std::lgamma(k + 1) - std::lgamma(n - k + 1); }
// a ln x, also where both are 0.
double power_log(double a, double x) { return a == 0 ? 0 : a * std::log(x); }
int32_t whole(double x) { return static_cast<int32_t>(x); }
const char* nothing(const double*) { return nullptr; }

const std::vector<Distribution>& distributions() {
    using P = const double*;
    constexpr double no_end = 2147483647;
    static const std::vector<Distribution> table = {
        {"binomial",
         "Successes in independent trials",
         {{"--ntrial", 20, Range::natural, "how many trials"},
          {"--p", 0.4, Range::probability, "the probability of a success"}},
         [](int32_t, Stream* s, int32_t n, int32_t* r, P p) { return _kuziRngBinomial(0, s, n, r, whole(p[0]), p[1]); },
         [](double k, P p) { return log_binomial(p[0], k) + power_log(k, p[1]) + power_log(p[0] - k, 1 - p[1]); },
         [](P p) {
             return Moments{p[0] * p[1], std::sqrt(p[0] * p[1] * (1 - p[1]))};
         },
         [](P p) { return p[0]; },
         nothing},
        {"poisson",
         "Poisson",
         {{"--lambda", 10, Range::positive, "the mean"}},
         [](int32_t method, Stream* s, int32_t n, int32_t* r, P p) { return _kuziRngPoisson(method, s, n, r, p[0]); },
         [](double k, P p) { return k * std::log(p[0]) - p[0] - std::lgamma(k + 1); },
         [](P p) {
             return Moments{p[0], std::sqrt(p[0])};
         },
         [](P) { return no_end; },
         [](P p) { return p[0] > 2e9 ? "--lambda must be at most 2e9" : nullptr; }},
        {"hypergeometric",
         "Marked ones in a sample without replacement",
         {{"--lot", 100, Range::natural, "the size of the lot"},
          {"--sample", 30, Range::natural, "the size of the sample"},
          {"--marked", 40, Range::natural, "how many of the lot are marked"}},
         [](int32_t, Stream* s, int32_t n, int32_t* r, P p) {
             return _kuziRngHypergeometric(0, s, n, r, whole(p[0]), whole(p[1]), whole(p[2]));
         },
         [](double k, P p) {
             if (p[1] - k > p[0] - p[2]) return -std::numeric_limits<double>::infinity();
             return log_binomial(p[2], k) + log_binomial(p[0] - p[2], p[1] - k) - log_binomial(p[0], p[1]);
         },
         [](P p) {
             const double share = p[2] / p[0], left = p[0] > 1 ? (p[0] - p[1]) / (p[0] - 1) : 0;
             return Moments{p[1] * share, std::sqrt(p[1] * share * (1 - share) * left)};
         },
         [](P p) { return std::min(p[1], p[2]); },
         [](P p) {
             return p[0] < 1 || p[1] > p[0] || p[2] > p[0] ? "--sample and --marked must be at most --lot" : nullptr;
         }},
        {"negbinomial",
         "Failures before the a-th success",
         {{"--a", 5, Range::positive, "how many successes, also a fraction"},
          {"--p", 0.3, Range::probability, "the probability of a success"}},
         [](int32_t, Stream* s, int32_t n, int32_t* r, P p) { return _kuziRngNegbinomial(0, s, n, r, p[0], p[1]); },
         [](double k, P p) {
             return std::lgamma(k + p[0]) - std::lgamma(p[0]) - std::lgamma(k + 1) + p[0] * std::log(p[1]) +
                    power_log(k, 1 - p[1]);
         },
         [](P p) {
             return Moments{p[0] * (1 - p[1]) / p[1], std::sqrt(p[0] * (1 - p[1])) / p[1]};
         },
         [](P) { return no_end; },
         [](P p) {
             if (p[1] <= 0) return "--p must be above 0";
             return p[0] * (1 - p[1]) / p[1] > 1e8 ? "a (1 - p) / p, the mean, must be at most 1e8" : nullptr;
         }}};
    return table;
}

struct Request {
    DrawRequest common;
    std::string method;
    std::vector<double> parameters;
};

// Where the range of six deviations has no more integers than a picture has room for, each has a bin of its own.
void draw(const Distribution& distribution, Request request, bool bins_chosen) {
    constexpr double most_bins = 400;
    check_parameters(distribution.parameters, request.parameters);
    const double* const p = request.parameters.data();
    if (const char* wrong = distribution.what(p)) fail(wrong);
    const auto [mean, deviation] = distribution.moments(p);
    const double from = std::max(0.0, std::floor(mean - 6 * deviation));
    const double to = std::min(distribution.most(p), std::ceil(mean + 6 * deviation) + 1) + 1;
    if (!bins_chosen && to - from <= most_bins) request.common.bins = static_cast<int32_t>(to - from);
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    const int32_t method = request.method == "normal" ? PoissonNormal + 0 : PoissonRejection + 0;
    draw_all<int32_t>(receiver, from, to,
                      [&](int32_t* r, int32_t n) { return distribution.draw(method, handle.get(), n, r, p); });
    if (receiver.histogram)
        receiver.histogram->density = [&](double x) {
            const double k = std::floor(x);
            return k > distribution.most(p) ? 0 : std::exp(distribution.log_probability(k, p));
        };
    finish(receiver, handle.get(), std::to_string(request.common.n) + " numbers, " + distribution.name);
}

// ---- Numbers with a mean each, and rows of counts --------------------------------------------------------------------

struct Lists {
    DrawRequest common;
    std::vector<double> values;
    int32_t ntrial = 10;
};

void draw_means(const Lists& request) {
    const std::vector<double>& means = request.values;
    for (const double mean : means)
        if (!(mean >= 0 && mean <= 2e9)) fail("--lambda: means are from 0 to 2e9");
    const double greatest = *std::max_element(means.begin(), means.end());
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    size_t next = 0;
    std::vector<double> lambda;
    draw_all<int32_t>(receiver, 0, std::ceil(greatest + 6 * std::sqrt(greatest)) + 2, [&](int32_t* r, int32_t n) {
        lambda.clear();
        for (int32_t i = 0; i < n; ++i, next = (next + 1) % means.size()) lambda.push_back(means[next]);
        return _kuziRngPoissonV(0, handle.get(), n, r, lambda.data());
    });
    finish(receiver, handle.get(), std::to_string(request.common.n) + " numbers, poisson-v");
}

void draw_counts(const Lists& request) {
    if (request.common.histogram || !request.common.plot.empty()) fail("rows of counts have no histogram");
    Receiver receiver(request.common);
    const StreamHandle handle = stream_for(request.common);
    const int32_t k = static_cast<int32_t>(request.values.size());
    std::vector<int32_t> row(request.values.size());
    for (int64_t i = 0; i < request.common.n; ++i) {
        const int32_t status =
            _kuziRngMultinomial(0, handle.get(), 1, row.data(), request.ntrial, k, request.values.data());
        if (status == MultinomialStatusBadProbabilities) fail("--p: probabilities are not below 0 and sum to 1");
        require(status, "draw");
        if (request.common.binary) {
            receive(receiver, row.data(), k);
            continue;
        }
        for (size_t j = 0; j < row.size(); ++j) receiver.text += (j > 0 ? "," : "") + std::to_string(row[j]);
        receiver.text += '\n';
        write(*receiver.lines, receiver.text);
        receiver.text.clear();
    }
    finish(receiver, handle.get(), "");
}

}  // namespace

void add_draw_discrete(CLI::App& draw_command) {
    for (const Distribution& distribution : distributions()) {
        const auto request = std::make_shared<Request>();
        CLI::App* command = add_distribution(draw_command, distribution.name, distribution.help,
                                             distribution.parameters, request->parameters);
        if (std::string_view(distribution.name) == "poisson")
            add_method(*command, {"rejection", "normal"}, request->method);
        add_draw_options(*command, request->common);
        command->callback(
            [&distribution, request, command] { draw(distribution, *request, command->count("--bins") > 0); });
    }
    const auto means = std::make_shared<Lists>(), counts = std::make_shared<Lists>();
    CLI::App* poisson =
        draw_command.add_subcommand("poisson-v", "Poisson numbers with means that take turns, one a line");
    poisson->add_option("--lambda", means->values, "the means")->delimiter(',')->required();
    add_draw_options(*poisson, means->common);
    poisson->callback([means] { draw_means(*means); });
    CLI::App* multinomial =
        draw_command.add_subcommand("multinomial", "How often each outcome comes in some trials, a row a line");
    multinomial->add_option("--p", counts->values, "the probabilities")->delimiter(',')->required();
    add_count(*multinomial, "--ntrial", counts->ntrial, 0, INT32_MAX, "how many trials a row");
    add_draw_options(*multinomial, counts->common);
    multinomial->callback([counts] { draw_counts(*counts); });
}

}  // namespace orv::command
