// What the basic pass knows of the data so far, in double: weights, sums of powers, cross-products.
#pragma once

#include "stats/basic/power_shift.h"
#include "stats/basic/request.h"

#include <float.h>

namespace orv::stats {

inline bool is_finite(double value) { return __builtin_fabs(value) <= DBL_MAX; }

// The distance to the next larger magnitude.
inline double ulp_of(double value) {
    uint64_t bits;
    __builtin_memcpy(&bits, &value, sizeof bits);
    ++bits;
    double next;
    __builtin_memcpy(&next, &bits, sizeof next);
    return __builtin_fabs(next - value);
}
inline double ulp_of(float value) {
    uint32_t bits;
    __builtin_memcpy(&bits, &value, sizeof bits);
    ++bits;
    float next;
    __builtin_memcpy(&next, &bits, sizeof next);
    return __builtin_fabs(static_cast<double>(next) - static_cast<double>(value));
}

struct Weights {
    double w, w2;
    bool from_floats;  // both were read from floats

    // W - W2 / W: n - 1 for n equal weights. Of one observation nothing should be left, and rounding leaves up to 4 ulp of W.
    double excess() const {
        const double left = w - w2 / w;
        const double ulp = from_floats ? ulp_of(static_cast<float>(w)) : ulp_of(w);
        return __builtin_fabs(left) <= 4 * ulp ? 0 : left;
    }
    // What makes a central sum an unbiased variance. There is none of a single observation: NaN.
    double variance_factor() const {
        if (!(w > 0)) return 1;
        const double left = excess();
        return left == 0 ? __builtin_nan("") : 1 / left;
    }
};

// Sums of powers of all components, p each. `sums` are about `shift`: 0 with BasicFast, the caller's mean with BasicUserMean,
// the running mean with BasicOnePass. `raw` are about 0, whatever the shift (not used by BasicFast, whose `sums` are that):
// neither follows from the other without loss when the shift is far from the data.
struct PowerRows {
    double* shift;
    double* sums[4];
    double* raw[4];

    Powers at(int32_t j) const { return {shift[j], sums[0][j], sums[1][j], sums[2][j], sums[3][j]}; }
    void set(int32_t j, const Powers& to) const {
        shift[j] = to.shift;
        sums[0][j] = to.a1;
        sums[1][j] = to.a2;
        sums[2][j] = to.a3;
        sums[3][j] = to.a4;
    }
};
inline constexpr int32_t power_row_count = 9;

struct Accumulation {
    Weights weights;
    PowerRows rows;
    double* cross;  // p by p, upper triangle by columns; null: no matrix is wanted
};

// Hands out a block's bytes one after another; pieces are multiples of 8.
struct Cursor {
    char* at;

    double* take(size_t bytes) {
        double* piece = reinterpret_cast<double*>(at);
        at += bytes;
        return piece;
    }
    PowerRows take_rows(int32_t p) {
        const size_t row = sizeof(double) * p;
        PowerRows rows;
        rows.shift = take(row);
        for (double*& sums : rows.sums) sums = take(row);
        for (double*& raw : rows.raw) raw = take(row);
        return rows;
    }
};

}  // namespace orv::stats
