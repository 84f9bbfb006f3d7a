// `orv stats`: moments and matrices of the columns of a CSV file, which is read once, block by block.
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "options.h"
#include "output.h"
#include "stats_boxes.h"
#include "stats_robust.h"
#include "stats_sections.h"
#include "stats_tables.h"
#include "table.h"

#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <orv/statistics.h>

namespace orv::command {

namespace {

struct Request {
    std::string file = "-";
    std::vector<std::string> columns;
    std::string weights, groups, partial;
    std::vector<double> quantiles;
    double stream_epsilon = 0;
    bool mad = false, robust = false, outliers = false, impute = false;
    int32_t threads = 0;
    bool csv = false, json = false;
    Format format;
    std::string output, plot;
};

constexpr size_t block_values = 1 << 18;  // 2 MB of numbers between two calls

const std::vector<double> usual_orders = {0.05, 0.25, 0.5, 0.75, 0.95};

constexpr uint64_t estimates = ORV_SS_SKEWNESS | ORV_SS_KURTOSIS | ORV_SS_CENTRAL_MOMENT3 | ORV_SS_COV | ORV_SS_COR;

// The thread services with a limit of the user's.
int32_t asked_threads = 0;
int32_t thread_limit() {
    const int32_t most = orv_serv_services()->thread_limit();
    return asked_threads > 0 && asked_threads < most ? asked_threads : most;
}

const orv_services* services() {
    static const orv_services table = {orv_serv_services()->parallel_for, nullptr, orv_serv_services()->fan_out,
                                       nullptr, thread_limit};
    return &table;
}

// The data set so far: a block that fills up, and what the calls for the blocks before have left.
struct Accumulation {
    std::vector<std::string> names;
    std::vector<size_t> columns;
    size_t weight_column = SIZE_MAX, group_column = SIZE_MAX;
    int32_t p = 0, n = 0, form = StorageColumns, full = SSMatrixFull;
    int64_t rows = 0;
    std::vector<int64_t> nans;  // in each column
    std::vector<double> x, w, minimum, maximum, cov, cor;
    std::vector<double> moments[9];  // mean to skewness, in the order of their ids
    double weights[2] = {0, 0};
    std::unique_ptr<SSTask, DeleteTask> task;

    // For the streaming quantiles.
    int32_t order_count = 0, param_count = 1;
    std::vector<double> orders, stream;  // with those of a picture's boxes behind the ones that are shown
    size_t shown_orders = 0;
    double epsilon = 0;

    // All of it, where something is asked for that takes more than a look at each row.
    bool holds = false;
    HeldData held{names, {}, {}, {}};
    std::map<std::string, int32_t, std::less<>> group_numbers;
    std::optional<RobustFit> robust;
    std::optional<OutlyingRows> outliers;

    const std::vector<double>& moment(int id) const { return moments[id - SSIdMean]; }
};

void choose_columns_of(Accumulation& data, const Request& request, const Head& head) {
    if (!request.weights.empty()) data.weight_column = find_column(head, request.weights);
    if (!request.groups.empty()) data.group_column = find_column(head, request.groups);
    for (const std::string& name : request.columns) data.columns.push_back(find_column(head, name));
    if (request.columns.empty())
        for (size_t column = 0; column < head.width; ++column)
            if (column != data.weight_column && column != data.group_column) data.columns.push_back(column);
    if (data.columns.empty())
        fail_at(head.source, 1, request.groups.empty() ? "no column left beside the weights" : "no column left");
    for (const size_t column : data.columns) data.names.push_back(column_name(head, column));
}

void start(Accumulation& data, const Request& request) {
    const size_t p = data.columns.size();
    data.p = static_cast<int32_t>(p);
    data.x.reserve(block_values + p);
    data.nans.assign(p, 0);
    data.minimum.resize(p);
    data.maximum.resize(p);
    data.cov.resize(p * p);
    data.cor.resize(p * p);
    SSTask* task = nullptr;
    check_statistics(__kuzdSSNewTask(&task, &data.p, &data.n, &data.form, nullptr, nullptr, nullptr, 0));
    data.task.reset(task);
    for (int id = SSIdMean; id <= SSIdSkewness; ++id) {
        data.moments[id - SSIdMean].resize(p);
        check_statistics(__kuzdSSEditTask(task, id, data.moments[id - SSIdMean].data()));
    }
    check_statistics(__kuzdSSEditCovCor(task, nullptr, data.cov.data(), &data.full, data.cor.data(), &data.full));
    check_statistics(__kuzdSSEditTask(task, SSIdAccumWeight, data.weights));
    check_statistics(__kuzdSSEditTask(task, SSIdMinimum, data.minimum.data()));
    check_statistics(__kuzdSSEditTask(task, SSIdMaximum, data.maximum.data()));
    data.holds = request.mad || request.robust || request.outliers || request.impute || !request.groups.empty() ||
                 (!request.quantiles.empty() && request.stream_epsilon == 0);
    if (request.stream_epsilon == 0) return;
    data.epsilon = request.stream_epsilon;
    data.orders = request.quantiles.empty() ? usual_orders : request.quantiles;
    data.shown_orders = data.orders.size();
    if (!request.plot.empty()) {
        const std::vector<double> boxes = box_orders(data.orders);
        data.orders.insert(data.orders.end(), boxes.begin(), boxes.end());
    }
    data.order_count = static_cast<int32_t>(data.orders.size());
    data.stream.resize(p * data.orders.size());
    check_statistics(__kuzdSSEditStreamQuantiles(task, &data.order_count, data.orders.data(), data.stream.data(),
                                                 &data.param_count, &data.epsilon));
}

void flush(Accumulation& data) {
    if (data.x.empty()) return;
    data.n = static_cast<int32_t>(data.x.size() / static_cast<size_t>(data.p));
    check_statistics(__kuzdSSEditTask(data.task.get(), SSIdX, data.x.data()));
    if (!data.w.empty()) check_statistics(__kuzdSSEditTask(data.task.get(), SSIdW, data.w.data()));
    check_statistics(_kuzdSSBasic(data.task.get(), estimates, BasicOnePass, services()));
    // The extremes of the first block start them.
    const uint64_t join = data.rows > data.n ? ORV_SS_METHOD_JOIN : 0;
    check_statistics(_kuzdSSMinmax(data.task.get(), ORV_SS_MINIMUM | ORV_SS_MAXIMUM, join, services()));
    if (data.epsilon > 0)
        check_statistics(_kuzdSSStreamQuantiles(data.task.get(), ORV_SS_STREAM_QUANTILES, 0, services()));
    if (data.holds) {
        data.held.x.insert(data.held.x.end(), data.x.begin(), data.x.end());
        data.held.w.insert(data.held.w.end(), data.w.begin(), data.w.end());
    }
    data.x.clear();
    data.w.clear();
}

// Puts the row's numbers, the weight behind them if there is one, into the block.
void add_row(Accumulation& data, const Head& head, const Row& row, const std::vector<double>& numbers) {
    const size_t p = data.columns.size();
    for (size_t j = 0; j < p; ++j) {
        const double value = numbers[j];
        if (std::isnan(value)) ++data.nans[j];
        data.x.push_back(value);
    }
    if (data.weight_column != SIZE_MAX) {
        data.w.push_back(numbers[p]);
        if (!(numbers[p] >= 0)) fail_at(head.source, row.line, "a weight must be 0 or more");
    }
    if (data.group_column != SIZE_MAX) {
        const auto [at, fresh] = data.group_numbers.try_emplace(std::string(row.fields[data.group_column]),
                                                                static_cast<int32_t>(data.held.groups.size()));
        if (fresh) data.held.groups.push_back(at->first);
        data.held.group.push_back(at->second);
    }
    ++data.rows;
    if (data.x.size() >= block_values) flush(data);
}

void read(const Request& request, Accumulation& data) {
    std::vector<size_t> read_columns;
    std::vector<double> numbers;
    const auto begin = [&](const Head& head) {
        choose_columns_of(data, request, head);
        start(data, request);
        read_columns = data.columns;
        if (data.weight_column != SIZE_MAX) read_columns.push_back(data.weight_column);
    };
    const auto take = [&](const Head& head, const Row& row) {
        if (!read_numbers(head, row, read_columns, numbers)) return false;
        add_row(data, head, row, numbers);
        return true;
    };
    read_table(request.file, request.format, begin, take);
    if (data.rows == 0) fail(source_name(request.file) + ": no rows of numbers");
    flush(data);
    if (data.weights[0] == 0) fail(source_name(request.file) + ": the weights add up to 0");
}

// Some of the streaming quantiles: `count` orders from `first` on.
Section stream_section(const Accumulation& data, size_t first, size_t count) {
    const auto from = data.orders.begin() + static_cast<ptrdiff_t>(first);
    Section section{"stream quantile", data.names, order_names({from, from + static_cast<ptrdiff_t>(count)}), {}};
    for (size_t j = 0; j < data.names.size(); ++j)
        for (size_t k = first; k < first + count; ++k)
            section.values.push_back(data.stream[j * data.orders.size() + k]);
    return section;
}

// What was asked for beside moments and matrices.
std::vector<Section> sections_of(const Request& request, const Accumulation& data) {
    std::vector<Section> sections;
    const auto append = [&](const std::vector<Section>& more) {
        sections.insert(sections.end(), more.begin(), more.end());
    };
    if (data.epsilon > 0)
        append({stream_section(data, 0, data.shown_orders)});
    else if (!request.quantiles.empty())
        append({quantiles(data.held, request.quantiles, services())});
    if (request.mad) append({deviations(data.held, services())});
    if (!request.groups.empty()) append(pooled(data.held, services()));
    if (!request.partial.empty()) append(partial(request.partial, data.names, data.cov));
    if (data.robust) append(robust_sections(data.held, *data.robust));
    if (data.outliers) append({outliers_section(data.held, *data.outliers)});
    if (request.impute) append({imputed_section(data.held, services())});
    return sections;
}

Cells moments_table(const Accumulation& data, bool csv) {
    Cells cells = {{"column", "count", "mean", "standard deviation", "skewness", "kurtosis", "minimum", "maximum"}};
    for (size_t j = 0; j < data.names.size(); ++j)
        cells.push_back({data.names[j], std::to_string(data.rows), cell(data.moment(SSIdMean)[j], csv),
                         cell(std::sqrt(data.moment(SSIdCentralMoment2)[j]), csv),
                         cell(data.moment(SSIdSkewness)[j], csv), cell(data.moment(SSIdKurtosis)[j], csv),
                         cell(data.minimum[j], csv), cell(data.maximum[j], csv)});
    return cells;
}

std::string as_tables(const Accumulation& data, const std::vector<Section>& sections, bool csv) {
    std::string text;
    append_table(text, moments_table(data, csv), csv);
    append_table(text += '\n', matrix_table("covariance", data.names, data.cov, csv), csv);
    append_table(text += '\n', matrix_table("correlation", data.names, data.cor, csv), csv);
    for (const Section& section : sections) append_section(text, section, csv);
    return text;
}

std::string as_json(const Accumulation& data, const std::vector<Section>& sections) {
    std::string text = "{\"rows\": " + std::to_string(data.rows) + ",\n \"columns\": [";
    for (size_t j = 0; j < data.names.size(); ++j) {
        append_json(text += j == 0 ? "\n  {\"name\": " : ",\n  {\"name\": ", data.names[j]);
        text += ", \"nan\": " + std::to_string(data.nans[j]);
        append_json(text += ", \"mean\": ", data.moment(SSIdMean)[j]);
        append_json(text += ", \"standard deviation\": ", std::sqrt(data.moment(SSIdCentralMoment2)[j]));
        append_json(text += ", \"skewness\": ", data.moment(SSIdSkewness)[j]);
        append_json(text += ", \"kurtosis\": ", data.moment(SSIdKurtosis)[j]);
        append_json(text += ", \"minimum\": ", data.minimum[j]);
        append_json(text += ", \"maximum\": ", data.maximum[j]);
        text += '}';
    }
    append_json_matrix(text += "],\n \"covariance\": ", data.cov, data.names.size());
    append_json_matrix(text += ",\n \"correlation\": ", data.cor, data.names.size());
    for (const Section& section : sections) append_json_section(text, section);
    return text + "}\n";
}

// Where a result is nan because the data are.
void name_nans(const Accumulation& data) {
    for (size_t j = 0; j < data.names.size(); ++j)
        if (data.nans[j] > 0)
            std::fprintf(stderr, "orv: column %s: %lld of %lld values are nan, and so is what they enter\n",
                         data.names[j].c_str(), static_cast<long long>(data.nans[j]),
                         static_cast<long long>(data.rows));
}

std::string of_rows(const char* what, const Request& request, const Accumulation& data) {
    return what + (" of " + std::to_string(data.rows)) + " rows of " + source_name(request.file);
}

void draw_boxes_of(const Request& request, const Accumulation& data, Output& plot) {
    std::vector<double> orders = box_orders(request.quantiles), drawn;
    if (data.epsilon > 0) {
        orders.assign(data.orders.begin() + static_cast<ptrdiff_t>(data.shown_orders), data.orders.end());
        drawn = stream_section(data, data.shown_orders, orders.size()).values;
    } else {
        drawn = quantiles(data.held, orders, services()).values;
    }
    draw_boxes({data.names, orders, drawn, data.minimum, data.maximum, of_rows("Quantiles", request, data)}, plot);
}

void draw_picture(const Request& request, const Accumulation& data, Output& plot) {
    if (data.robust && data.names.size() == 2)
        draw_ellipses(data.held, *data.robust, data.moment(SSIdMean), data.cov, plot);
    else if (data.outliers)
        draw_distances(data.held, data.outliers->distances, data.outliers->kept, plot);
    else if (data.robust)
        draw_distances(data.held, distances_of(data.held, *data.robust, services()), {}, plot);
    else if (!request.quantiles.empty() || data.epsilon > 0)
        draw_boxes_of(request, data, plot);
    else
        draw_matrix(of_rows("Correlation", request, data), data.names, data.cor, plot);
}

void run(const Request& request) {
    asked_threads = request.threads;
    Output output(request.output);
    std::optional<Output> plot;
    if (!request.plot.empty()) plot.emplace(request.plot);
    Accumulation data;
    read(request, data);
    if (request.robust) data.robust = robust_fit(data.held, services());
    if (request.outliers) data.outliers = outlying_rows(data.held, services());
    const std::vector<Section> sections = sections_of(request, data);
    const std::string text = request.json ? as_json(data, sections) : as_tables(data, sections, request.csv);
    if (!request.json) name_nans(data);
    if (plot) draw_picture(request, data, *plot);
    write(output, text);
    finish(output);
}

// CLI's range, but NaN, of which no comparison holds, is outside.
CLI::Validator number_between(double least, double most) {
    const CLI::Range range(least, most);
    const auto check = [range](std::string& text) {
        double value;
        if (CLI::detail::lexical_cast(text, value) && value != value) return "'" + text + "' is not a number";
        return range(text);
    };
    return {check, range.get_description()};
}

}  // namespace

void add_stats(CLI::App& app, int& status) {
    const auto request = std::make_shared<Request>();
    CLI::App* stats = app.add_subcommand("stats", "Moments, covariance and correlation of the columns of a CSV file");
    stats->footer(
        "The file is read once and may be of any size, unless more than moments and matrices is asked for. "
        "The standard deviation is that of a sample (n - 1); skewness "
        "and\n"
        "kurtosis are m3 / s^3 and m4 / s^4 - 3 with that s, m3 and m4 being the mean third and fourth powers of the\n"
        "deviations.");
    stats->add_option("file", request->file, "CSV file; standard input if none or -");
    stats->add_option("--columns", request->columns, "names or positions from 1, with commas between; all if not given")
        ->delimiter(',')
        ->allow_extra_args(false);
    stats->add_option("--weights", request->weights, "the column that holds the weights of the rows");
    CLI::Option* orders = stats->add_option("--quantiles", request->quantiles,
                                            "orders from 0 to 1, with commas between: the quantiles of each column");
    orders->delimiter(',')->allow_extra_args(false)->check(number_between(0, 1));
    stats
        ->add_option("--stream-quantiles", request->stream_epsilon,
                     "quantiles of a file that does not fit into memory, with ranks right to this share of the rows; "
                     "of the orders 0.05, 0.25, 0.5, 0.75, 0.95 without --quantiles")
        ->check(number_between(1e-7, 0.5));
    stats->add_flag("--mad", request->mad,
                    "median, and median and mean of the absolute deviations from it; without weights");
    stats->add_option(
        "--groups", request->groups,
        "the column that says which group a row belongs to: means of the groups and the pooled covariance");
    stats->add_flag("--robust", request->robust,
                    "mean and covariance that up to half of the rows do not spoil (S-estimates with the translated "
                    "biweight)");
    stats->add_flag("--outliers", request->outliers,
                    "the rows that are outliers, with their distances from the others (BACON)");
    stats->add_flag("--impute", request->impute,
                    "fields that are empty, NA, N/A, null or nan are taken as missing: means and deviations from 20 "
                    "imputed sets (normal model)");
    stats->add_option("--partial", request->partial, "A,B/C: covariance and correlation of A and B given C");
    add_count(*stats, "--threads", request->threads, 1, INT32_MAX,
              "at most so many threads; all processors if not given");
    CLI::Option* csv = stats->add_flag("--csv", request->csv, "write CSV, each number in full");
    stats->add_flag("--json", request->json, "write JSON, each number in full; null stands for nan")->excludes(csv);
    add_format(*stats, request->format);
    stats->add_option("--output", request->output, "the file to write; standard output if not given");
    stats->add_option("--plot", request->plot,
                      "an SVG file for a picture: of the distances with --outliers or --robust, of two columns and "
                      "their ellipses with "
                      "--robust, of boxes with --quantiles or --stream-quantiles, else of the correlation matrix");
    stats->callback([request, &status] {
        request->format.missing_is_nan = request->impute;
        run(*request);
        status = 0;
    });
}

}  // namespace orv::command
