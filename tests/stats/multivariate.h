// What the tests of statistics of several components share: matrices in extended arithmetic and in the storage forms.
#pragma once

#include "stats/reference.h"

namespace stats_test {

using Wide = long double;

template <class T>
struct Multivariate;
template <>
struct Multivariate<double> {
    static constexpr auto mad = _kuzdSSMAD, distance = _kuzdSSMahDistance, pooled = _kuzdSSPooledCovariance,
                          partial = _kuzdSSPartialCovariance, parametrize = _kuzdSSCorParametrization;
    static constexpr double tolerance = 1e-12;
};
template <>
struct Multivariate<float> {
    static constexpr auto mad = _kuzsSSMAD, distance = _kuzsSSMahDistance, pooled = _kuzsSSPooledCovariance,
                          partial = _kuzsSSPartialCovariance, parametrize = _kuzsSSCorParametrization;
    static constexpr double tolerance = 3e-7;
};

// A square matrix, by rows.
struct Square {
    int32_t n;
    std::vector<Wide> at;
    explicit Square(int32_t size) : n(size), at(size_t(size) * size) {}
    Wide& operator()(int32_t i, int32_t j) { return at[size_t(i) * n + j]; }
    Wide operator()(int32_t i, int32_t j) const { return at[size_t(i) * n + j]; }
};

// Gauss and Jordan with pivots from the whole column.
inline Square inverse(Square a) {
    Square b(a.n);
    for (int32_t i = 0; i < a.n; ++i) b(i, i) = 1;
    for (int32_t k = 0; k < a.n; ++k) {
        int32_t pivot = k;
        for (int32_t i = k; i < a.n; ++i)
            if (std::fabs(a(i, k)) > std::fabs(a(pivot, k))) pivot = i;
        for (int32_t j = 0; j < a.n; ++j) std::swap(a(k, j), a(pivot, j)), std::swap(b(k, j), b(pivot, j));
        const Wide scale = 1 / a(k, k);
        for (int32_t j = 0; j < a.n; ++j) a(k, j) *= scale, b(k, j) *= scale;
        for (int32_t i = 0; i < a.n; ++i) {
            const Wide factor = i == k ? 0 : a(i, k);
            for (int32_t j = 0; j < a.n; ++j) a(i, j) -= factor * a(k, j), b(i, j) -= factor * b(k, j);
        }
    }
    return b;
}

inline constexpr int forms[] = {SSMatrixFull, SSMatrixPackedLower, SSMatrixPackedUpper};

template <class T>
std::vector<T> stored(const Square& m, int form) {
    std::vector<T> out;
    for (int32_t i = 0; i < m.n; ++i)
        for (int32_t j = 0; j < m.n; ++j)
            if (form == SSMatrixFull || (form == SSMatrixPackedLower ? j <= i : j >= i))
                out.push_back(static_cast<T>(m(i, j)));
    return out;
}
template <class T>
Square loaded(const T* from, int32_t n, int form) {
    Square m(n);
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < n; ++j) {
            if (form != SSMatrixFull && (form == SSMatrixPackedLower ? j > i : j < i)) continue;
            m(i, j) = *from++;
            if (form != SSMatrixFull) m(j, i) = m(i, j);
        }
    return m;
}

// A covariance that floats hold exactly, positive definite.
inline Square covariance(int32_t p, unsigned seed) {
    std::mt19937 random(seed);
    Square g(p), c(p);
    for (Wide& x : g.at) x = static_cast<int>(random() % 17) - 8;
    for (int32_t i = 0; i < p; ++i)
        for (int32_t j = 0; j < p; ++j) {
            for (int32_t k = 0; k < p; ++k) c(i, j) += g(i, k) * g(j, k) / 64;
            if (i == j) c(i, j) += 1 + i % 3;
        }
    return c;
}

}  // namespace stats_test
