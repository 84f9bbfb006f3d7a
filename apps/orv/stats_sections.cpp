#include "stats_sections.h"

#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "stats_tables.h"

#include <algorithm>
#include <memory>

namespace orv::command {

namespace {

// The columns called so in a list with commas between.
std::vector<size_t> columns_of(std::string_view list, const std::vector<std::string>& names) {
    std::vector<size_t> columns;
    while (!list.empty()) {
        const std::string_view name = list.substr(0, list.find(','));
        list.remove_prefix(std::min(list.size(), name.size() + 1));
        const auto found = std::find(names.begin(), names.end(), name);
        if (found == names.end()) fail("--partial: no column " + std::string(name));
        columns.push_back(static_cast<size_t>(found - names.begin()));
    }
    return columns;
}

}  // namespace

void check_statistics(int32_t status) {
    if (status == SSStatusAllocation) fail("no memory");
    if (status == SSStatusNotPositiveDefinite)
        fail(
            "the covariance is not positive definite: too few rows, a column without spread, or columns that are "
            "combinations of others");
    if (status != SSStatusOk) fail("the statistics kernel returned status " + std::to_string(status));
}

void append_section(std::string& text, const Section& section, bool csv) {
    Cells cells = {{section.title}};
    cells[0].insert(cells[0].end(), section.columns.begin(), section.columns.end());
    const size_t width = section.columns.size();
    for (size_t i = 0; i < section.rows.size(); ++i) {
        cells.push_back({section.rows[i]});
        for (size_t k = 0; k < width; ++k) cells.back().push_back(cell(section.values[i * width + k], csv));
    }
    append_table(text += '\n', cells, csv);
}

void append_json_section(std::string& text, const Section& section) {
    append_json(text += ",\n ", section.title);
    const size_t width = section.columns.size();
    for (size_t i = 0; i < section.rows.size(); ++i) {
        append_json(text += i == 0 ? ": {\n  " : ",\n  ", section.rows[i]);
        for (size_t k = 0; k < width; ++k) {
            append_json(text += k == 0 ? ": {" : ", ", section.columns[k]);
            append_json(text += ": ", section.values[i * width + k]);
        }
        text += '}';
    }
    text += '}';
}

std::vector<std::string> order_names(const std::vector<double>& orders) {
    std::vector<std::string> names;
    for (const double order : orders) {
        names.emplace_back();
        if (order == 0.5)
            names.back() = "median";
        else
            append_number(names.back(), order);
    }
    return names;
}

Section quantiles(const HeldData& data, const std::vector<double>& orders, const orv_services* services) {
    HeldTask held(data);
    Section section{"quantile", data.names, order_names(orders), {}};
    section.values.resize(data.names.size() * orders.size());
    const int32_t count = static_cast<int32_t>(orders.size());
    SSTask* task = held.task.get();
    check_statistics(__kuzdSSEditQuantiles(task, &count, orders.data(), section.values.data(), nullptr, nullptr));
    check_statistics(_kuzdSSQuantiles(task, ORV_SS_QUANTILES, 0, services));
    return section;
}

Section deviations(const HeldData& data, const orv_services* services) {
    HeldTask held(data);
    const size_t p = data.names.size();
    const std::vector<double> medians = quantiles(data, {0.5}, services).values;
    std::vector<double> median_deviations(p), mean_deviations(p);
    check_statistics(__kuzdSSEditTask(held.task.get(), SSIdRobustEstimates2, median_deviations.data()));
    check_statistics(__kuzdSSEditTask(held.task.get(), SSIdRobustEstimates1, mean_deviations.data()));
    check_statistics(_kuzdSSMAD(held.task.get(), ORV_SS_MAD, 0, services));
    Section section{"deviation", data.names, {"median", "median absolute deviation", "mean absolute deviation"}, {}};
    for (size_t j = 0; j < p; ++j)
        section.values.insert(section.values.end(), {medians[j], median_deviations[j], mean_deviations[j]});
    return section;
}

std::vector<Section> pooled(const HeldData& data, const orv_services* services) {
    HeldTask held(data);
    const size_t p = data.names.size(), g = data.groups.size();
    const int32_t groups = static_cast<int32_t>(g);
    std::vector<double> mean(p), means(g * p), covariance(p * p);
    SSTask* task = held.task.get();
    check_statistics(__kuzdSSEditPooledCovariance(task, &groups, mean.data(), covariance.data(), data.group.data(),
                                                  means.data(), nullptr));
    check_statistics(__kuziSSEditTask(task, SSIdPooledResultCovStorage, &held.full));
    check_statistics(_kuzdSSPooledCovariance(task, ORV_SS_POOLED_COVARIANCE, 0, services));
    Section of_groups{"group", data.groups, {"count"}, {}};
    for (const std::string& name : data.names) of_groups.columns.push_back("mean of " + name);
    std::vector<double> counts(g);
    for (const int32_t k : data.group) ++counts[static_cast<size_t>(k)];
    for (size_t k = 0; k < g; ++k) {
        of_groups.values.push_back(counts[k]);
        for (size_t j = 0; j < p; ++j) of_groups.values.push_back(means[k * p + j]);
    }
    return {of_groups, {"pooled covariance", data.names, data.names, covariance}};
}

std::vector<Section> partial(const std::string& wanted, const std::vector<std::string>& names,
                             const std::vector<double>& covariance) {
    const size_t slash = wanted.find('/');
    if (slash == std::string::npos) fail("--partial: '" + wanted + "' is not A,B/C");
    const std::vector<size_t> kept = columns_of(wanted.substr(0, slash), names);
    const std::vector<size_t> given = columns_of(wanted.substr(slash + 1), names);
    if (kept.empty() || given.empty()) fail("--partial: '" + wanted + "' is not A,B/C");
    std::vector<int32_t> use(names.size());
    for (const size_t j : kept) use[j] = 1;
    for (const size_t j : given) {
        if (use[j] == 1) fail("--partial: column " + names[j] + " stands on both sides");
        use[j] = -1;
    }
    Section cov{"partial covariance", {}, {}, {}};
    for (size_t j = 0; j < names.size(); ++j)
        if (use[j] == 1) cov.rows.push_back(names[j]);
    cov.columns = cov.rows;
    cov.values.resize(cov.rows.size() * cov.rows.size());
    Section cor = cov;
    cor.title = "partial correlation";
    const int32_t p = static_cast<int32_t>(names.size()), full = SSMatrixFull;
    SSTask* made = nullptr;
    check_statistics(__kuzdSSNewTask(&made, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 0));
    const std::unique_ptr<SSTask, DeleteTask> task(made);
    check_statistics(__kuzdSSEditPartialCovCor(made, use.data(), covariance.data(), &full, nullptr, nullptr,
                                               cov.values.data(), &full, cor.values.data(), &full));
    check_statistics(_kuzdSSPartialCovariance(made, ORV_SS_PARTIAL_COVARIANCE, 0, nullptr));
    return {cov, cor};
}

}  // namespace orv::command
