// Data and tasks of the fitting benches.
#pragma once

#include <orv/fitting.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace orv::bench {

struct Series {
    std::vector<double> x, y;
};

// Breaks with widths between 0.5 and 1.5, or equal ones, and a noisy wave.
inline Series series(int64_t count, bool uniform) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    Series s;
    double x = 0;
    for (int64_t i = 0; i < count; ++i, x += uniform ? 1 : 0.5 + unit(random)) {
        s.x.push_back(x);
        s.y.push_back(std::sin(0.01 * x) + unit(random));
    }
    return s;
}

inline std::vector<double> sites(const Series& s, int64_t count, bool sorted) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> within(s.x.front(), s.x.back());
    std::vector<double> result(static_cast<size_t>(count));
    for (double& x : result) x = within(random);
    if (sorted) std::sort(result.begin(), result.end());
    return result;
}

// A task over a series, with room for coefficients of the given order.
struct Fit {
    Series data;
    double ends[2];
    std::vector<double> coeffs;
    DFTask* task = nullptr;

    Fit(int64_t count, bool uniform, int64_t order, int64_t type, int64_t bc) : data(series(count, uniform)) {
        ends[0] = data.x.front();
        ends[1] = data.x.back();
        coeffs.resize(static_cast<size_t>(order * count));
        orv_df_kernel_dNewTask1D(&task, count, uniform ? ends : data.x.data(),
                                 uniform ? ORV_DF_BREAKS_UNIFORM : ORV_DF_BREAKS_NON_UNIFORM, 1, data.y.data(), 0, 0);
        orv_df_kernel_dEditPPSpline1D(task, order, type, bc, nullptr, 0, nullptr, coeffs.data(), 0);
    }
    ~Fit() { orv_df_kernel_DeleteTask(&task); }
    Fit(const Fit&) = delete;
    Fit& operator=(const Fit&) = delete;
};

}  // namespace orv::bench
