// The working memory of one call of the basic pass: one block, cut up.
#pragma once

#include "stats/request.h"
#include "stats/workers.h"

namespace orv::stats {

// Each thread's (W, W2) has 32 bytes to itself.
inline constexpr size_t weight_stride = 32;

// Sums of powers of all components, about one shift each.
struct PowerRows {
    double* shift;
    double* sums[4];
};

struct Layout {
    int32_t threads;
    bool crosses;        // some matrix is wanted
    bool home_is_extra;  // the first part's matrix is not one of the caller's
    size_t rows_bytes, matrix_bytes, scratch_bytes;
    uint64_t total;

    size_t part_bytes() const { return rows_bytes + scratch_bytes; }
};

template <class T>
Layout plan(const Request& request, int32_t threads, bool home_is_extra) {
    const uint64_t p = static_cast<uint64_t>(request.p);
    Layout layout{};
    layout.threads = threads;
    layout.crosses = request.matrices();
    layout.home_is_extra = layout.crosses && home_is_extra;
    const int32_t most = request.n / threads + request.n % threads;
    const uint64_t matrix = layout.crosses ? 8 * p * p : 0;
    const uint64_t scratch =
        layout.crosses ? cross_scratch_bytes<T>(request.method, request.p, most, request.task->w != nullptr) : 0;
    const uint64_t rows = 8 * 5 * p;
    const uint64_t matrices = static_cast<uint64_t>(threads) - (layout.home_is_extra ? 0 : 1);
    // Rows of the earlier calls' sums and two spare ones beside those of the parts.
    layout.total = weight_stride * threads + (rows + scratch) * threads + rows + 16 * p + matrix * matrices + 64;
    layout.rows_bytes = static_cast<size_t>(rows);
    layout.matrix_bytes = static_cast<size_t>(matrix);
    layout.scratch_bytes = static_cast<size_t>((scratch + 15) & ~uint64_t{15});
    layout.total += 16 * threads;
    return layout;
}

// Hands out a block's bytes one after another; pieces are multiples of 8.
struct Cursor {
    char* at;

    double* take(size_t bytes) {
        double* piece = reinterpret_cast<double*>(at);
        at += bytes;
        return piece;
    }
    PowerRows take_rows(int32_t p) {
        PowerRows rows;
        rows.shift = take(sizeof(double) * p);
        for (double*& row : rows.sums) row = take(sizeof(double) * p);
        return rows;
    }
};

}  // namespace orv::stats
