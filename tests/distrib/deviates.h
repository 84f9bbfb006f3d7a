// What the tests of the distributions share: functions of one number through the kernels that distributions use, a test
// of the distribution function, generators with chosen outputs.
#pragma once

#include "streams/streams.h"

#include <orv/vecmath.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orv::test {

#define ORV_ONE_NUMBER(name, function)   \
    inline double name(double x) {       \
        double y;                        \
        _arqd##function##_26(1, &x, &y); \
        return y;                        \
    }                                    \
    inline float name(float x) {         \
        float y;                         \
        _arqs##function##_21(1, &x, &y); \
        return y;                        \
    }
ORV_ONE_NUMBER(ln, Ln)
ORV_ONE_NUMBER(tangent, Tan)
ORV_ONE_NUMBER(root, Sqrt)
ORV_ONE_NUMBER(sine, Sin)
ORV_ONE_NUMBER(exponential, Exp)
ORV_ONE_NUMBER(inverse_erf, ErfInv)
#undef ORV_ONE_NUMBER
inline double power(double x, double y) {
    double z;
    _arqdPowx_26(1, &x, y, &z);
    return z;
}
inline float power(float x, float y) {
    float z;
    _arqsPowx_21(1, &x, y, &z);
    return z;
}

// Sine and cosine.
inline std::array<double, 2> on_circle(double x) {
    std::array<double, 2> y;
    _arqdSinCos_26(1, &x, &y[0], &y[1]);
    return y;
}
inline std::array<float, 2> on_circle(float x) {
    std::array<float, 2> y;
    _arqsSinCos_21(1, &x, &y[0], &y[1]);
    return y;
}

inline std::vector<double> uniforms(Stream* stream, int32_t n, double a, double b) {
    std::vector<double> u(static_cast<size_t>(n));
    EXPECT_EQ(_kuzdRngUniform(0, stream, n, u.data(), a, b), StatusOk);
    return u;
}
inline std::vector<float> uniforms(Stream* stream, int32_t n, float a, float b) {
    std::vector<float> u(static_cast<size_t>(n));
    EXPECT_EQ(_kuzsRngUniform(0, stream, n, u.data(), a, b), StatusOk);
    return u;
}

// The largest distance of the empirical from the true distribution function, in units of 1/sqrt(n): above 2.23 for one
// sample in 10^4.
template <class T, class Cdf>
double kolmogorov(std::vector<T> sample, Cdf cdf) {
    std::sort(sample.begin(), sample.end());
    const double n = static_cast<double>(sample.size());
    double distance = 0;
    for (size_t i = 0; i < sample.size(); ++i) {
        const double p = cdf(static_cast<double>(sample[i])), below = static_cast<double>(i) / n;
        distance = std::max({distance, p - below, below + 1 / n - p});
    }
    return distance * std::sqrt(n);
}

// How far a sample is from its distribution function: Kolmogorov's distance in units of 1/sqrt(n), above 2.23 for one
// sample in 10^4, and the integral of Anderson and Darling, which weighs the tails, above 8.1 for as many. Numbers are
// rounded, and stand for all that rounds to them: the function is taken half a spacing above each where a double can say so.
// At most some 4000 points of the sample are looked at, the outermost among them.
struct Distance {
    double kolmogorov, anderson_darling;
};
template <class T, class Cdf>
Distance distance(std::vector<T> sample, Cdf cdf) {
    std::sort(sample.begin(), sample.end());
    const size_t n = sample.size(), step = n / 3000 + 1;
    Distance result = {0, 0};
    double last_p = 0;
    for (size_t i = 0; i < n;) {
        size_t next = i + 1;
        while (next < n && sample[next] == sample[i]) ++next;
        const bool outer = i < 500 || n - i < 500;
        if (outer || next - i > 1 || i / step != next / step) {
            const T x = sample[i], above = std::nextafter(x, std::numeric_limits<T>::infinity());
            const double middle = static_cast<double>(x) + (static_cast<double>(above) - x) / 2;
            const double edge = middle < above ? middle : static_cast<double>(x);
            const double p = cdf(edge), reached = static_cast<double>(next) / static_cast<double>(n);
            result.kolmogorov = std::max(result.kolmogorov, std::fabs(p - reached));
            if (p > 0 && p < 1) result.anderson_darling += (p - reached) * (p - reached) / (p * (1 - p)) * (p - last_p);
            last_p = p;
        }
        i = next;
    }
    result.kolmogorov *= std::sqrt(static_cast<double>(n));
    result.anderson_darling *= static_cast<double>(n);
    return result;
}

// Mean, variance, and fourth central moment over the square of the variance, less 3.
struct Moments {
    double mean, variance, excess;
};
// The larger of the deviations of the sample's mean and variance, in standard errors.
template <class T>
double deviation(const std::vector<T>& sample, const Moments& true_moments) {
    const double n = static_cast<double>(sample.size()), root = std::sqrt(true_moments.variance);
    double first = 0, second = 0;
    for (const T x : sample) {
        const double z = (static_cast<double>(x) - true_moments.mean) / root;
        first += z;
        second += z * z - 1;
    }
    return std::max(std::fabs(first) / std::sqrt(n), std::fabs(second) / std::sqrt(n * (true_moments.excess + 2)));
}

// A generator of constant numbers, whose call number `failing_call` (from 0) fails; words and floats are not drawn.
struct ConstantGenerator {
    static inline double value = 0;
    static inline int32_t calls = 0, failing_call = -1;

    template <class T>
    static int32_t fill(Stream*, int32_t n, T* r, T, T) {
        if (calls++ == failing_call) return BrngStatusQrngExhausted;
        for (int32_t i = 0; i < n; ++i) r[i] = static_cast<T>(value);
        return StatusOk;
    }
    static int32_t init(int32_t, Stream*, int32_t, const void*) { return StatusOk; }
    static int32_t words(Stream*, int32_t, void*) { return StatusOk; }
    // Ready to give `x`, failing at the given call.
    static int32_t id(double x, int32_t failing = -1) {
        static const BrngProperties row = {16, 1, 1, 4, 32, init, fill<float>, fill<double>, words};
        static const int32_t registered = __kuzRegisterBrng(&row);
        value = x;
        calls = 0;
        failing_call = failing;
        return registered;
    }
};

}  // namespace orv::test
