// Bench of a family of vector functions at n of 1000: the three accuracies of a row, a scalar function of the C library, and
// a peer that works a register at a time, all in the same kind of loop.
#pragma once

#include "support/cycles.h"

#include <orv/vecmath.h>

#include <immintrin.h>

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace orv::bench {

inline constexpr int32_t n = 1000;

template <class T>
inline std::vector<T> arguments(double low, double high) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> even(low, high);
    std::vector<T> x(n);
    for (T& v : x) v = static_cast<T>(even(random));
    return x;
}

template <class T, class Call>
void add(const std::string& name, std::vector<T> x, Call call) {
    benchmark::RegisterBenchmark(name.c_str(), [x, call](benchmark::State& state) mutable {
        std::vector<T> y(n);
        measure(state, n, 1, [&] { call(n, x.data(), y.data()); });
    })->MinTime(0.05);
}

template <class T>
using Entry = void (*)(int32_t, const T*, T*);

// The three accuracies, and "LA" with one special element among the thousand.
template <class T>
void add_entries(const std::string& name, const orv_arq_kernel* row, double low, double high, T special) {
    const char* accuracies[] = {"LA", "HA", "EP"};
    for (int i = 0; i < 3; ++i) {
        const auto entry = reinterpret_cast<Entry<T>>(row[i]);
        add(name + "/" + accuracies[i], arguments<T>(low, high), entry);
        std::vector<T> with_special = arguments<T>(low, high);
        with_special[500] = special;
        add(name + "/" + accuracies[i] + "/one_special", with_special, entry);
    }
}

template <class T, T (*F)(T)>
void add_scalar(const std::string& name, double low, double high) {
    add(name, arguments<T>(low, high), [](int32_t count, const T* x, T* y) {
        for (int32_t i = 0; i < count; ++i) y[i] = F(x[i]);
    });
}

template <const __m128d (*F)(__m128d)>
void add_lanes(const std::string& name, double low, double high) {
    add(name, arguments<double>(low, high), [](int32_t count, const double* x, double* y) {
        for (int32_t i = 0; i < count; i += 2) _mm_storeu_pd(y + i, F(_mm_loadu_pd(x + i)));
    });
}
template <const __m128 (*F)(__m128)>
void add_lanes(const std::string& name, double low, double high) {
    add(name, arguments<float>(low, high), [](int32_t count, const float* x, float* y) {
        for (int32_t i = 0; i < count; i += 4) _mm_storeu_ps(y + i, F(_mm_loadu_ps(x + i)));
    });
}

}  // namespace orv::bench

#ifdef ORV_BENCH_SLEEF
#define SLEEF(name, function, low, high) orv::bench::add_lanes<function>(name "/" #function, low, high);
#else
#define SLEEF(name, function, low, high)
#endif
