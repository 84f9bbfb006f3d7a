#include "stats/missing/incomplete.h"

#include "stats/dense.h"

#include <string.h>

#include <algorithm>

namespace orv::stats {
namespace {

// Mean and standard deviation of the values that are there, about the first of them.
template <class T>
int32_t place_component(Strided<T> x, int32_t n, double& origin, double& unit) {
    double first = 0, mean = 0, squares = 0;
    int32_t count = 0;
    for (int32_t i = 0; i < n; ++i) {
        if (x[i] != x[i]) continue;
        if (count++ == 0) first = x[i];
        const double d = x[i] - first, off = d - mean;
        mean += off / count;
        squares += off * (d - mean);
    }
    origin = first + mean;
    unit = count > 0 ? __builtin_sqrt(squares / count) : 0;
    return unit > 0 && unit - unit == 0 ? int32_t{SSStatusOk} : int32_t{SSStatusNotPositiveDefinite};
}

}  // namespace

uint64_t incomplete_bytes(const Data& data) {
    const uint64_t p = static_cast<uint64_t>(data.p), n = static_cast<uint64_t>(data.n);
    return room_for(p * n) + 2 * room_for(p) + room_for(p, sizeof(int32_t)) + room_for(p * n, 1) +
           3 * room_for(n, sizeof(int32_t)) + room_for(n, sizeof(Group));
}

template <class T>
int32_t take_incomplete(const Data& data, const orv_services* services, Scratch& room, Incomplete& incomplete) {
    int32_t* component = room.take<int32_t>(data.p);
    int32_t q = 0;
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j)) component[q++] = j;
    const int32_t n = data.n;
    double* origin = room.take(q);
    double* unit = room.take(q);
    double* z = room.take(uint64_t(q) * n);
    uint8_t* gaps = room.take<uint8_t>(uint64_t(q) * n);
    int32_t* order = room.take<int32_t>(n);
    int32_t* before = room.take<int32_t>(n);
    int32_t* first_gap = room.take<int32_t>(n);
    Group* groups = room.take<Group>(n);

    int32_t missing = 0;
    for (int32_t i = 0; i < n; ++i) {
        const Strided<T> x = data.observation<T>(i);
        before[i] = missing;
        order[i] = i;
        for (int32_t j = 0; j < q; ++j) {
            const bool gap = x[component[j]] != x[component[j]];
            gaps[ptrdiff_t{i} * q + j] = gap;
            missing += gap;
        }
    }
    for (int32_t j = 0; j < q; ++j)
        if (const int32_t status = place_component(data.component<T>(component[j]), n, origin[j], unit[j]))
            return status;

    const auto compare = [=](int32_t a, int32_t b) {
        return memcmp(gaps + ptrdiff_t{a} * q, gaps + ptrdiff_t{b} * q, static_cast<size_t>(q));
    };
    std::sort(order, order + n, [=](int32_t a, int32_t b) {
        const int by_gaps = compare(a, b);
        return by_gaps != 0 ? by_gaps < 0 : a < b;
    });
    int32_t group_count = 0;
    for (int32_t i = 0; i < n; ++i) {
        if (i == 0 || compare(order[i - 1], order[i]) != 0) groups[group_count++] = {i, i};
        groups[group_count - 1].last = i + 1;
        first_gap[i] = before[order[i]];
        const Strided<T> x = data.observation<T>(order[i]);
        for (int32_t j = 0; j < q; ++j)
            z[ptrdiff_t{i} * q + j] = gaps[ptrdiff_t{order[i]} * q + j] ? 0 : (x[component[j]] - origin[j]) / unit[j];
    }
    incomplete.sample = {q, n, 0, z, origin, unit, component, order, services};
    incomplete.groups = groups;
    incomplete.group_count = group_count;
    incomplete.gaps = gaps;
    incomplete.first_gap = first_gap;
    incomplete.missing = missing;
    return SSStatusOk;
}

template int32_t take_incomplete<float>(const Data&, const orv_services*, Scratch&, Incomplete&);
template int32_t take_incomplete<double>(const Data&, const orv_services*, Scratch&, Incomplete&);

uint64_t regression_bytes(int32_t q) {
    const uint64_t size = static_cast<uint64_t>(q);
    return room_for(size, sizeof(int32_t)) + 4 * room_for(size * size) + 2 * room_for(size * regression_block);
}

Regression take_regression(int32_t q, Scratch& room) {
    const uint64_t size = static_cast<uint64_t>(q);
    Regression regression = {};
    regression.component = room.take<int32_t>(size);
    for (double** matrix : {&regression.slope, &regression.residual, &regression.inverse, &regression.cross})
        *matrix = room.take(size * size);
    regression.from = room.take(size * regression_block);
    regression.to = room.take(size * regression_block);
    return regression;
}

int32_t regress(const Incomplete& incomplete, const Group& group, const Fit& fit, Regression& regression) {
    const int32_t q = incomplete.sample.q;
    const uint8_t* gaps = incomplete.gaps + ptrdiff_t{incomplete.sample.observation[group.first]} * q;
    int32_t* component = regression.component;
    int32_t seen = 0, missing = 0;
    for (int32_t j = 0; j < q; ++j)
        if (!gaps[j]) component[seen++] = j;
    for (int32_t j = 0; j < q; ++j)
        if (gaps[j]) component[seen + missing++] = j;
    regression.seen = seen;
    regression.missing = missing;
    if (missing == 0) return SSStatusOk;

    const auto block = [&](int32_t row, int32_t rows, int32_t column, int32_t columns, double* to) {
        for (int32_t k = 0; k < columns; ++k)
            for (int32_t i = 0; i < rows; ++i)
                *to++ = fit.cov[ptrdiff_t{component[column + k]} * q + component[row + i]];
    };
    block(seen, missing, seen, missing, regression.residual);
    if (seen == 0) return SSStatusOk;
    block(0, seen, 0, seen, regression.inverse);
    block(seen, missing, 0, seen, regression.cross);
    int32_t info = 0;
    if (!cholesky(seen, regression.inverse)) return SSStatusNotPositiveDefinite;
    Dense<double>::potri("u", &seen, regression.inverse, &seen, &info);
    if (info != 0) return SSStatusNotPositiveDefinite;
    const double one = 1, minus_one = -1, zero = 0;
    Dense<double>::symm("r", "u", &missing, &seen, &one, regression.inverse, &seen, regression.cross, &missing, &zero,
                        regression.slope, &missing);
    Dense<double>::gemm("n", "t", &missing, &missing, &seen, &minus_one, regression.slope, &missing, regression.cross,
                        &missing, &one, regression.residual, &missing);
    return SSStatusOk;
}

void add_expectations(int32_t count, const Regression& regression) {
    if (regression.seen == 0) return;
    const double one = 1;
    Dense<double>::gemm("n", "n", &regression.missing, &count, &regression.seen, &one, regression.slope,
                        &regression.missing, regression.from, &regression.seen, &one, regression.to,
                        &regression.missing);
}

}  // namespace orv::stats
