// What `orv stats` shows beside moments and matrices: tables of numbers with names at their sides.
#pragma once

#include "failure.h"

#include <orv/statistics.h>

#include <memory>
#include <string>
#include <vector>

namespace orv::command {

// Ends the command where a kernel did not return 0.
void check_statistics(int32_t status);

struct Section {
    std::string title;
    std::vector<std::string> rows, columns;
    std::vector<double> values;  // row by row
};

void append_section(std::string& text, const Section& section, bool csv);

// As one member more of an object: ,"title": {"row": {"column": value, ...}, ...}
void append_json_section(std::string& text, const Section& section);

// The columns of the file in memory, row after row.
struct HeldData {
    const std::vector<std::string>& names;
    std::vector<double> x, w;           // w is empty where each weight is 1
    std::vector<int32_t> group;         // of each row; empty without groups
    std::vector<std::string> groups{};  // their names
};

struct DeleteTask {
    void operator()(SSTask* task) const { __kuzSSDeleteTask(&task); }
};

// A task over the columns in memory. It refers to the members here.
struct HeldTask {
    int32_t p, n, form = StorageColumns, full = SSMatrixFull;
    std::unique_ptr<SSTask, DeleteTask> task;

    explicit HeldTask(const HeldData& data) : p(static_cast<int32_t>(data.names.size())) {
        const size_t rows = data.x.size() / data.names.size();
        if (rows > INT32_MAX) fail("too many rows to hold");
        n = static_cast<int32_t>(rows);
        SSTask* made = nullptr;
        check_statistics(
            __kuzdSSNewTask(&made, &p, &n, &form, data.x.data(), data.w.empty() ? nullptr : data.w.data(), nullptr, 0));
        task.reset(made);
    }
    HeldTask(const HeldTask&) = delete;
};

// The quantiles of each column; that of order 1/2 is called the median.
Section quantiles(const HeldData& data, const std::vector<double>& orders, const orv_services* services);

// Median, median absolute deviation and mean absolute deviation from the median of each column.
Section deviations(const HeldData& data, const orv_services* services);

// Count and means of each group, and the covariance about those.
std::vector<Section> pooled(const HeldData& data, const orv_services* services);

// The covariance and the correlation of some columns given others, from the covariance of all. `wanted` is A,B/C: A and B given C.
std::vector<Section> partial(const std::string& wanted, const std::vector<std::string>& names,
                             const std::vector<double>& covariance);

std::vector<std::string> order_names(const std::vector<double>& orders);

}  // namespace orv::command
