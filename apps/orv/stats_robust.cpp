#include "stats_robust.h"

#include "failure.h"
#include "numbers.h"
#include "plot.h"

#include <cmath>

namespace orv::command {

namespace {

constexpr size_t most_drawn = 100000;

size_t row_count(const HeldData& data) { return data.x.size() / data.names.size(); }

// The chi-square quantile of the level 39/40, by halving: with y = x / 2 the upper tail is a finite sum.
double usual_limit(size_t freedom) {
    const auto upper_tail = [=](double y) {
        const bool odd = freedom % 2 != 0;
        double term = odd ? 2 * std::sqrt(y / std::acos(-1.0)) * std::exp(-y) : std::exp(-y);
        double sum = odd ? std::erfc(std::sqrt(y)) : 0;
        for (size_t twice = odd ? 3 : 2; twice <= freedom; twice += 2) {
            sum += term;
            term *= 2 * y / static_cast<double>(twice);
        }
        return sum;
    };
    double low = 0, high = 10 + 2 * static_cast<double>(freedom);
    for (int step = 0; step < 60; ++step) {
        const double y = 0.5 * (low + high);
        (upper_tail(y) > 0.025 ? low : high) = y;
    }
    return 2 * low;
}

void append_pair(std::string& text, double x, double y) {
    append_number(text, x);
    append_number(text += ' ', y);
    text += '\n';
}

// The curve x' C^-1 x = limit about the mean: C = L L', and the curve is L times a circle.
std::string ellipse(const std::vector<double>& mean, const std::vector<double>& c, double limit) {
    const double a = std::sqrt(c[0]), b = c[1] / a, d = std::sqrt(std::fmax(0, c[3] - b * b)),
                 radius = std::sqrt(limit);
    std::string text;
    for (int k = 0; k <= 200; ++k) {
        const double angle = k * std::acos(-1.0) / 100, x = radius * std::cos(angle), y = radius * std::sin(angle);
        append_pair(text, mean[0] + a * x, mean[1] + b * x + d * y);
    }
    return text;
}

}  // namespace

RobustFit robust_fit(const HeldData& data, const orv_services* services) {
    const HeldTask held(data);
    const size_t p = data.names.size();
    RobustFit fit{std::vector<double>(p), std::vector<double>(p * p)};
    const int32_t count = 4;
    const double params[] = {0.5, 0.001, 1e-8, 500};
    check_statistics(__kuzdSSEditRCov(held.task.get(), &held.full, &count, params, fit.mean.data(), fit.cov.data()));
    check_statistics(_kuzdSSRobustCovariance(held.task.get(), ORV_SS_ROBUST_COVARIANCE, RobustTBS, services));
    return fit;
}

std::vector<Section> robust_sections(const HeldData& data, const RobustFit& fit) {
    const size_t p = data.names.size();
    Section location{"robust", data.names, {"mean", "standard deviation"}, {}};
    for (size_t j = 0; j < p; ++j)
        location.values.insert(location.values.end(), {fit.mean[j], std::sqrt(fit.cov[j * p + j])});
    return {location, {"robust covariance", data.names, data.names, fit.cov}};
}

std::vector<double> distances_of(const HeldData& data, const RobustFit& fit, const orv_services* services) {
    const HeldTask held(data);
    std::vector<double> distances(row_count(data));
    SSTask* task = held.task.get();
    check_statistics(__kuzdSSEditCovCor(task, fit.mean.data(), fit.cov.data(), &held.full, nullptr, nullptr));
    check_statistics(__kuzdSSEditTask(task, SSIdOutlierWeights, distances.data()));
    check_statistics(_kuzdSSMahDistance(task, ORV_SS_MAHALANOBIS, 0, services));
    for (double& distance : distances) distance = std::sqrt(distance);
    return distances;
}

OutlyingRows outlying_rows(const HeldData& data, const orv_services* services) {
    const HeldTask held(data);
    const size_t p = data.names.size();
    OutlyingRows rows{std::vector<double>(row_count(data)), {}};
    const int32_t count = 3;
    const double params[] = {SubsetMedian, 0.05, 0};
    SSTask* task = held.task.get();
    check_statistics(__kuzdSSEditOutDetect(task, &count, params, rows.kept.data()));
    check_statistics(_kuzdSSOutliersDetection(task, ORV_SS_OUTLIERS, 0, services));
    HeldData kept{data.names, {}, {}, {}};
    for (size_t i = 0; i < rows.kept.size(); ++i)
        if (rows.kept[i] == 1) kept.x.insert(kept.x.end(), &data.x[i * p], &data.x[i * p] + p);
    const HeldTask of_kept(kept);
    RobustFit fit{std::vector<double>(p), std::vector<double>(p * p)};
    task = of_kept.task.get();
    check_statistics(__kuzdSSEditCovCor(task, fit.mean.data(), fit.cov.data(), &of_kept.full, nullptr, nullptr));
    check_statistics(_kuzdSSBasic(task, ORV_SS_MEAN | ORV_SS_COV, BasicOnePass, services));
    rows.distances = distances_of(data, fit, services);
    return rows;
}

Section outliers_section(const HeldData& data, const OutlyingRows& rows) {
    const size_t p = data.names.size();
    Section section{"outlier in row", {}, {"distance"}, {}};
    section.columns.insert(section.columns.end(), data.names.begin(), data.names.end());
    for (size_t i = 0; i < rows.kept.size(); ++i) {
        if (rows.kept[i] == 1) continue;
        section.rows.push_back(std::to_string(i + 1));
        section.values.push_back(rows.distances[i]);
        section.values.insert(section.values.end(), &data.x[i * p], &data.x[i * p] + p);
    }
    return section;
}

Section imputed_section(const HeldData& data, const orv_services* services) {
    const HeldTask held(data);
    const size_t p = data.names.size(), n = row_count(data);
    constexpr int32_t sets = 20;
    std::vector<size_t> gaps(p);
    int32_t missing = 0;
    for (size_t at = 0; at < data.x.size(); ++at)
        if (std::isnan(data.x[at])) ++gaps[at % p], ++missing;
    const int32_t param_count = 6, imputed_count = sets * missing;
    const double params[] = {1000, 50, 1e-8, sets, static_cast<double>(missing), 1};
    std::vector<double> imputed(static_cast<size_t>(imputed_count) + 1);
    SSTask* task = held.task.get();
    check_statistics(__kuzdSSEditMissingVals(task, &param_count, params, nullptr, nullptr, nullptr, nullptr,
                                             &imputed_count, imputed.data(), nullptr, nullptr));
    check_statistics(_kuzdSSMissingValues(task, ORV_SS_MISSING_VALUES, 0, services));

    std::vector<double> mean(p), between(p), within(p), value(p), square(p);
    const double* next = imputed.data();
    const double rows = static_cast<double>(n);
    for (int32_t set = 1; set <= sets; ++set) {
        value.assign(p, 0);
        square.assign(p, 0);
        for (size_t at = 0; at < data.x.size(); ++at) {
            const double x = std::isnan(data.x[at]) ? *next++ : data.x[at];
            const double off = x - value[at % p];
            const size_t row = at / p;
            value[at % p] += off / static_cast<double>(row + 1);
            square[at % p] += off * (x - value[at % p]);
        }
        for (size_t j = 0; j < p; ++j) {
            const double off = value[j] - mean[j];
            mean[j] += off / set;
            between[j] += off * (value[j] - mean[j]) / (sets - 1);
            within[j] += square[j] / (rows - 1) / sets;
        }
    }
    Section section{"imputed", data.names, {"missing", "mean", "standard error", "standard deviation"}, {}};
    for (size_t j = 0; j < p; ++j)
        section.values.insert(section.values.end(),
                              {static_cast<double>(gaps[j]), mean[j],
                               std::sqrt(within[j] / rows + (1 + 1.0 / sets) * between[j]), std::sqrt(within[j])});
    return section;
}

void draw_distances(const HeldData& data, const std::vector<double>& distances, const std::vector<double>& kept,
                    Output& output) {
    if (distances.size() > most_drawn) fail("--plot shows at most 100000 rows");
    const double limit = std::sqrt(usual_limit(data.names.size()));
    std::string inner = "$inner << EOD\n", outer = "$outer << EOD\n";
    size_t outliers = 0;
    for (size_t i = 0; i < distances.size(); ++i) {
        const bool out = kept.empty() ? !(distances[i] <= limit) : kept[i] != 1;
        if (!std::isfinite(distances[i])) continue;
        append_pair(out ? outer : inner, static_cast<double>(i + 1), distances[i]);
        outliers += out;
    }
    // An empty block is an error of gnuplot's; a point that is none is not drawn.
    std::string script = inner + "nan nan\nEOD\n" + outer + "nan nan\nEOD\n";
    script +=
        "set xlabel 'row'\nset ylabel 'distance'\nset yrange [0:*]\nset key top right\nset offsets 1,1,0,0\nplot ";
    append_number(script, limit);
    script +=
        " lc rgb '#888888' dt 2 title 'passed by one normal row in forty', $inner with points pt 7 ps 0.4 lc rgb "
        "'#2166ac' notitle, "
        "$outer with points pt 7 ps 0.6 lc rgb '#b2182b' title 'outliers'";
    constexpr size_t labels = 50;
    if (outliers <= labels) script += ", $outer using 1:2:1 with labels offset 0,0.8 font ',9' notitle";
    write_plot(output, 900, 480, script + "\n");
}

void draw_ellipses(const HeldData& data, const RobustFit& robust, const std::vector<double>& mean,
                   const std::vector<double>& cov, Output& output) {
    if (row_count(data) > most_drawn) fail("--plot shows at most 100000 rows");
    std::string script = "$rows << EOD\n";
    for (size_t at = 0; at + 1 < data.x.size(); at += 2)
        if (std::isfinite(data.x[at]) && std::isfinite(data.x[at + 1])) append_pair(script, data.x[at], data.x[at + 1]);
    script += "EOD\n$robust << EOD\n" + ellipse(robust.mean, robust.cov, usual_limit(2)) + "EOD\n$plain << EOD\n" +
              ellipse(mean, cov, usual_limit(2)) + "EOD\n";
    script += "set xlabel " + plot_quoted(data.names[0]) + "\nset ylabel " + plot_quoted(data.names[1]) +
              "\nset key outside top\nplot $rows with points pt 7 ps 0.4 lc rgb '#444444' notitle, "
              "$robust with lines lw 2 lc rgb '#2166ac' title 'robust', "
              "$plain with lines lw 2 dt 2 lc rgb '#b2182b' title 'mean and covariance'\n";
    write_plot(output, 720, 640, script);
}

}  // namespace orv::command
