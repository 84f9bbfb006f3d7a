// The fitting interface over the element type, and tasks for tests.
#pragma once

#include <gtest/gtest.h>
#include <limits>
#include <orv/fitting.h>
#include <random>
#include <vector>

namespace orv::test {

#define ORV_BY_TYPE(method)                   \
    template <class... A>                     \
    int32_t method(double, A... a) {          \
        return orv_df_kernel_d##method(a...); \
    }                                         \
    template <class... A>                     \
    int32_t method(float, A... a) {           \
        return orv_df_kernel_s##method(a...); \
    }
ORV_BY_TYPE(NewTask1D)
ORV_BY_TYPE(EditPPSpline1D)
ORV_BY_TYPE(EditPtr)
ORV_BY_TYPE(EditIdxPtr)
ORV_BY_TYPE(QueryPtr)
ORV_BY_TYPE(QueryIdxPtr)
ORV_BY_TYPE(DFSearch1D)
ORV_BY_TYPE(DFInterpolate1D)
ORV_BY_TYPE(DFIntegrate1D)
#undef ORV_BY_TYPE

template <class T>
using Construct = int32_t (*)(const DFTask*, const void*, const void*, int64_t, const orv_services*);

enum Spline { linear, quadratic, natural, default_cubic, hermite, bessel, akima, hyman };

template <class T>
Construct<T> construct_of(Spline spline) {
    constexpr bool is_double = sizeof(T) == 8;
    switch (spline) {
#define ORV_KIND(name, kind) \
    case name:               \
        return is_double ? orv_df_kernel_dDF##kind##Spline1D : orv_df_kernel_sDF##kind##Spline1D;
        ORV_KIND(linear, Linear)
        ORV_KIND(quadratic, Quadratic)
        ORV_KIND(natural, NaturalCubic)
        ORV_KIND(default_cubic, DefaultCubic)
        ORV_KIND(hermite, HermiteCubic)
        ORV_KIND(bessel, BesselCubic)
        ORV_KIND(akima, AkimaCubic)
        ORV_KIND(hyman, HymanCubic)
#undef ORV_KIND
    }
    return nullptr;
}

// A call of interpolation. What is not named is null or 0; all callbacks share the parameter.
template <class T>
struct Evaluation {
    const DFTask* task;
    int64_t count;
    const T* sites;
    T* results = nullptr;
    int64_t type = ORV_DF_EVALUATE, hint = 0, derivative_count = 1;
    const void* derivatives = nullptr;
    const T* data = nullptr;
    int64_t layout = 0;
    void* cells = nullptr;
    orv_df_run_callback left = nullptr, right = nullptr, inside = nullptr;
    void* param = nullptr;
    orv_df_search_callback search = nullptr;

    int32_t operator()() const {
        return DFInterpolate1D(T{}, task, type, int64_t{0}, count, sites, hint, derivative_count, derivatives, data,
                               results, layout, cells, left, param, right, param, inside, param, search, param);
    }
};

// What a test asks of a spline; data are columns in memory order of `layout`.
template <class T>
struct Problem {
    std::vector<T> x, y, bc, ic;
    int64_t functions = 1, layout = ORV_DF_NO_HINT;
    int64_t order = 4, type = ORV_DF_TYPE_NATURAL, bc_type = ORV_DF_FREE_END, ic_type = 0;
    bool uniform = false;
    int32_t wide = 0;
};

// A task over a problem, its coefficients, and what the interface makes of them.
template <class T>
struct Fit {
    Problem<T> p;
    std::vector<T> ends, coeffs;
    DFTask* task = nullptr;

    explicit Fit(Problem<T> problem) : p(std::move(problem)), ends{p.x.front(), p.x.back()} {
        const auto n = static_cast<int64_t>(p.x.size());
        coeffs.assign(static_cast<size_t>(p.order * n * p.functions), T(-777));
        EXPECT_EQ(NewTask1D(T{}, &task, n, p.uniform ? ends.data() : p.x.data(),
                            int64_t{p.uniform ? ORV_DF_BREAKS_UNIFORM : ORV_DF_BREAKS_NO_HINT}, p.functions, p.y.data(),
                            p.layout, p.wide),
                  0);
        if (p.layout == ORV_DF_ROW_POINTERS)
            for (int64_t f = 1; f < p.functions; ++f) EditIdxPtr(T{}, task, int64_t{ORV_DF_FUNCTIONS}, f, &p.y[f * n]);
        EXPECT_EQ(EditPPSpline1D(T{}, task, p.order, p.type, p.bc_type, p.bc.empty() ? nullptr : p.bc.data(), p.ic_type,
                                 p.ic.empty() ? nullptr : p.ic.data(), coeffs.data(), int64_t{0}),
                  0);
    }
    ~Fit() { orv_df_kernel_DeleteTask(&task); }
    Fit(const Fit&) = delete;
    Fit& operator=(const Fit&) = delete;

    int32_t construct(Spline spline, const orv_services* services = nullptr) {
        return construct_of<T>(spline)(task, nullptr, nullptr, 0, services);
    }
    const T* cell(int64_t i, int64_t f = 0) const {
        const auto pieces = static_cast<int64_t>(p.x.size()) - (p.type == ORV_DF_TYPE_KNOTS ? 0 : 1);
        return &coeffs[static_cast<size_t>((f * pieces + i) * p.order)];
    }
    // The k-th derivative of cell i's polynomial at x.
    long double at(int64_t i, long double where, int k = 0, int64_t f = 0) const {
        const long double u = where - p.x[static_cast<size_t>(i)];
        long double sum = 0;
        for (int64_t j = p.order - 1; j >= k; --j) {
            long double factor = 1;
            for (int q = 0; q < k; ++q) factor *= static_cast<long double>(j - q);
            sum = sum * u + factor * cell(i, f)[j];
        }
        return sum;
    }
    // Values of function 0 at sites, through the interface.
    std::vector<T> values(const std::vector<T>& sites, int64_t derivative = 0) const {
        std::vector<T> out(sites.size());
        std::vector<int32_t> wanted(static_cast<size_t>(derivative) + 1);
        wanted.back() = 1;
        const Evaluation<T> evaluate = {.task = task,
                                        .count = static_cast<int64_t>(sites.size()),
                                        .sites = sites.data(),
                                        .results = out.data(),
                                        .derivative_count = derivative + 1,
                                        .derivatives = wanted.data()};
        EXPECT_EQ(evaluate(), 0);
        return out;
    }
};

// Ascending breaks from 0 with widths between 0.25 and 1.25; equal widths when `uniform`.
template <class T>
std::vector<T> breaks(int64_t count, bool uniform = false, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::vector<T> x;
    double at = -1;
    for (int64_t i = 0; i < count; ++i) {
        x.push_back(static_cast<T>(at));
        at += uniform ? 0.5 : 0.25 + static_cast<double>(random() % 1024) / 1024;
    }
    return x;
}

template <class T>
std::vector<T> noise(int64_t count, unsigned seed = 2) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::vector<T> y;
    for (int64_t i = 0; i < count; ++i) y.push_back(static_cast<T>(unit(random)));
    return y;
}

template <class T>
constexpr T epsilon = std::numeric_limits<T>::epsilon();

}  // namespace orv::test
