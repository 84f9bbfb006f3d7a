// Vectors and matrices of third-order recurrences modulo a 32-bit number.
#pragma once

#include <stdint.h>

namespace orv::brng {

inline constexpr int32_t table_matrices = 193;

struct Vector3 {
    uint32_t at[3];
};

struct Matrix3 {
    uint32_t at[3][3];
};

inline Vector3 load(const uint32_t* words) { return {{words[0], words[1], words[2]}}; }

inline void store(uint32_t* words, const Vector3& v) {
    for (int i = 0; i < 3; ++i) words[i] = v.at[i];
}

// Every product and every sum is reduced, by reduce(uint64_t) -> uint32_t.
template <class Reduce>
constexpr Vector3 multiply(const Matrix3& a, const Vector3& v, Reduce reduce) {
    Vector3 result = {};
    for (int i = 0; i < 3; ++i) {
        uint64_t sum = 0;
        for (int k = 0; k < 3; ++k) sum += reduce(uint64_t{a.at[i][k]} * v.at[k]);
        result.at[i] = reduce(sum);
    }
    return result;
}

template <class Reduce>
constexpr Matrix3 multiply(const Matrix3& a, const Matrix3& b, Reduce reduce) {
    Matrix3 result = {};
    for (int j = 0; j < 3; ++j) {
        const Vector3 column = multiply(a, Vector3{{b.at[0][j], b.at[1][j], b.at[2][j]}}, reduce);
        for (int i = 0; i < 3; ++i) result.at[i][j] = column.at[i];
    }
    return result;
}

}  // namespace orv::brng
