// A spline through columns of numbers, as `orv fit` asks for it: the kinds and the ends by name, the task, and its values.
#pragma once

#include "rows.h"

#include <orv/fitting.h>

#include <string>
#include <vector>

namespace orv::command {

struct FitRequest {
    std::string file = "-", x, y, internal, spline = "natural", boundary, sites = "101", output, plot;
    std::vector<std::string> intervals;
    int derivatives = 0;
    char type = 'd';
    Format format;
};

template <class T>
using Construct = int32_t (*)(const DFTask*, const void*, const void*, int64_t, const orv_services*);

// A spline as the command names it, with its codes, the fewest rows it takes and the ends it has unless told.
struct Spline {
    const char* name;
    Construct<double> construct_d;
    Construct<float> construct_s;
    int64_t order, type, boundary;
    size_t least_rows;
};

// Ends the command if there is none of that name.
const Spline& find_spline(const std::string& name);

// Two numbers with a comma between them, as `option` takes them.
template <class T>
std::vector<T> parse_pair(const std::string& text, const std::string& option);

template <class T>
struct Data {
    std::string x_name, y_name;
    std::vector<T> x, y, internal;
};

// A task and its end, also where what follows its making fails.
struct TaskOwner {
    DFTask* task = nullptr;

    TaskOwner() = default;
    ~TaskOwner() {
        if (task) orv_df_kernel_DeleteTask(&task);
    }
    TaskOwner(const TaskOwner&) = delete;
    TaskOwner& operator=(const TaskOwner&) = delete;
};

// The spline of one run: the task refers to the arrays beside it.
template <class T>
struct Fit : TaskOwner {
    const Data<T>& data;
    std::vector<T> ends, internal, coeffs;

    Fit(const Data<T>& d, const FitRequest& request, const Spline& spline);

    // Rows of value and derivatives up to `highest`.
    std::vector<T> evaluate(const std::vector<T>& sites, int highest) const;

    std::vector<T> integrate(const std::vector<T>& from, const std::vector<T>& to) const;
};

}  // namespace orv::command
