// A statistics problem with every result array, and its results by definition in extended arithmetic, two passes.
#pragma once

#include <orv/statistics.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

namespace stats_test {

using Quad = __float128;

inline double magnitude(Quad value) { return std::fabs(static_cast<double>(value)); }

// The estimates, vectors first: id of the field, bit of the request. Central ones are what a large mean costs BasicFast digits.
struct EstimateRow {
    int id;
    uint64_t bit;
    bool central;
};
constexpr EstimateRow estimate_rows[] = {{SSIdMean, ORV_SS_MEAN, false},
                                         {SSIdRawMoment2, ORV_SS_RAW_MOMENT2, false},
                                         {SSIdRawMoment3, ORV_SS_RAW_MOMENT3, false},
                                         {SSIdRawMoment4, ORV_SS_RAW_MOMENT4, false},
                                         {SSIdCentralMoment2, ORV_SS_CENTRAL_MOMENT2, true},
                                         {SSIdCentralMoment3, ORV_SS_CENTRAL_MOMENT3, true},
                                         {SSIdCentralMoment4, ORV_SS_CENTRAL_MOMENT4, true},
                                         {SSIdKurtosis, ORV_SS_KURTOSIS, true},
                                         {SSIdSkewness, ORV_SS_SKEWNESS, true},
                                         {SSIdVariation, ORV_SS_VARIATION, true},
                                         {SSIdSum, ORV_SS_SUM, false},
                                         {SSIdRawSum2, ORV_SS_RAW_SUM2, false},
                                         {SSIdRawSum3, ORV_SS_RAW_SUM3, false},
                                         {SSIdRawSum4, ORV_SS_RAW_SUM4, false},
                                         {SSIdCentralSum2, ORV_SS_CENTRAL_SUM2, true},
                                         {SSIdCentralSum3, ORV_SS_CENTRAL_SUM3, true},
                                         {SSIdCentralSum4, ORV_SS_CENTRAL_SUM4, true},
                                         {SSIdCov, ORV_SS_COV, false},
                                         {SSIdCor, ORV_SS_COR, false},
                                         {SSIdCP, ORV_SS_CP, false}};
constexpr int vector_count = 17, estimate_count = 20;

constexpr uint64_t bits_of(int first, int last) {
    uint64_t bits = 0;
    for (int row = first; row <= last; ++row) bits |= estimate_rows[row].bit;
    return bits;
}
constexpr uint64_t all_moments = bits_of(0, 6), all_matrices = bits_of(17, 19), everything = bits_of(0, 19);

template <class T>
struct Entries;
template <>
struct Entries<double> {
    static constexpr auto make = __kuzdSSNewTask;
    static constexpr auto edit = __kuzdSSEditTask;
    static constexpr auto basic = _kuzdSSBasic;
};
template <>
struct Entries<float> {
    static constexpr auto make = __kuzsSSNewTask;
    static constexpr auto edit = __kuzsSSEditTask;
    static constexpr auto basic = _kuzsSSBasic;
};

// Integers of a task, 32-bit or 64-bit.
struct Word {
    int64_t wide;
    int32_t narrow;
    const void* at(bool is_wide) const { return is_wide ? static_cast<const void*>(&wide) : &narrow; }
    void operator=(int64_t value) { wide = value, narrow = static_cast<int32_t>(value); }
};

// The ready threads with a limit of the test's own.
inline int32_t thread_limit = 1;
inline const orv_services* limited_services() {
    static const orv_services table = {orv_serv_services()->parallel_for, nullptr, orv_serv_services()->fan_out,
                                       nullptr, [] { return thread_limit; }};
    return &table;
}

template <class T>
struct Problem {
    int32_t p, n;
    bool by_rows, wide;
    int matrix_form;
    std::vector<T> x, w, mean_given, block;
    std::vector<int64_t> taking_part_wide;
    std::vector<int32_t> taking_part;

    std::vector<T> vectors[vector_count], cov, cor, cp, weights = {0, 0};
    Word p_word, n_word, form_word, matrix_word;
    SSTask* task = nullptr;

    static constexpr T untouched = -12345;

    Problem(int32_t components, int32_t observations, bool rows = true, int form = SSMatrixFull,
            bool wide_integers = false)
        : p(components), n(observations), by_rows(rows), wide(wide_integers), matrix_form(form), x(size_t(p) * n) {}
    Problem(const Problem&) = delete;
    ~Problem() { __kuzSSDeleteTask(&task); }

    T& at(int32_t i, int32_t j) { return by_rows ? x[size_t(j) * n + i] : x[size_t(i) * p + j]; }
    bool takes_part(int32_t j) const { return taking_part.empty() || taking_part[j] != 0; }
    void leave_out(const std::vector<int32_t>& components) {
        taking_part.assign(p, 1);
        for (const int32_t j : components)
            if (j < p) taking_part[j] = 0;
        taking_part_wide.assign(taking_part.begin(), taking_part.end());
    }
    // A different mean and spread for each component, and neighbours that go together.
    void fill(unsigned seed, double offset = 1.5) {
        std::mt19937 generator(seed);
        std::normal_distribution<double> normal;
        for (int32_t i = 0; i < n; ++i) {
            const double shared = normal(generator);
            for (int32_t j = 0; j < p; ++j)
                at(i, j) =
                    static_cast<T>(offset + 0.25 * j + (1 + 0.1 * j) * (normal(generator) + 0.5 * shared * (j % 3)));
        }
    }
    void weigh(unsigned seed) {
        std::mt19937 generator(seed);
        std::uniform_real_distribution<double> uniform(0.1, 2);
        w.resize(n);
        for (T& weight : w) weight = static_cast<T>(uniform(generator));
        if (n > 4) w[2] = 0;
    }
    int32_t make() {
        p_word = p, n_word = n, form_word = by_rows ? StorageRows : StorageColumns, matrix_word = matrix_form;
        const void* indices = wide ? static_cast<const void*>(taking_part_wide.data()) : taking_part.data();
        const int32_t status =
            Entries<T>::make(&task, p_word.at(wide), n_word.at(wide), form_word.at(wide), x.data(),
                             w.empty() ? nullptr : w.data(), taking_part.empty() ? nullptr : indices, wide ? 1 : 0);
        if (status != 0) return status;
        for (int row = 0; row < vector_count; ++row) {
            vectors[row].assign(p, untouched);
            Entries<T>::edit(task, estimate_rows[row].id, vectors[row].data());
        }
        if (!mean_given.empty()) vectors[0] = mean_given, Entries<T>::edit(task, SSIdMean, vectors[0].data());
        const std::pair<std::vector<T>*, int> matrices[] = {{&cov, SSIdCov}, {&cor, SSIdCor}, {&cp, SSIdCP}};
        for (const auto& [matrix, id] : matrices) {
            matrix->assign(matrix_form == SSMatrixFull ? size_t(p) * p : size_t(p) * (p + 1) / 2, untouched);
            Entries<T>::edit(task, id, matrix->data());
        }
        for (const int id : {SSIdCovStorage, SSIdCorStorage, SSIdCPStorage})
            __kuziSSEditTask(task, id, matrix_word.at(wide));
        return Entries<T>::edit(task, SSIdAccumWeight, weights.data());
    }
    // Observations [first, last) as one call.
    int32_t run_block(uint64_t estimates, uint64_t method, int32_t first, int32_t last, int32_t threads = 1) {
        if (!task) make();
        n_word = last - first;
        block.resize(size_t(last - first) * p);
        for (int32_t i = first; i < last; ++i)
            for (int32_t j = 0; j < p; ++j)
                block[by_rows ? size_t(j) * (last - first) + i - first : size_t(i - first) * p + j] = at(i, j);
        Entries<T>::edit(task, SSIdX, block.data());
        if (!w.empty()) Entries<T>::edit(task, SSIdW, &w[first]);
        return run(estimates, method, threads);
    }
    int32_t run(uint64_t estimates, uint64_t method, int32_t threads = 1) {
        if (!task) {
            const int32_t status = make();
            if (status != 0) return status;
        }
        thread_limit = threads;
        return Entries<T>::basic(task, estimates, method, limited_services());
    }
    T element(const std::vector<T>& matrix, int32_t i, int32_t j) const {
        if (i > j && matrix_form != SSMatrixFull) std::swap(i, j);
        if (matrix_form == SSMatrixFull) return matrix[size_t(i) * p + j];
        if (matrix_form == SSMatrixPackedLower) return matrix[size_t(j) * (j + 1) / 2 + i];
        size_t before = 0;  // rows of the upper triangle above row i
        for (int32_t row = 0; row < i; ++row) before += p - row;
        return matrix[before + j - i];
    }
};

// By definition. `scale` is what rounding is measured against: the same sum over absolute values, or what cancels in it.
struct Value {
    Quad value;
    double scale;
};

template <class T>
struct Reference {
    Quad w = 0, w2 = 0, factor;
    std::vector<Value> vectors[vector_count];
    std::vector<Quad> centre, cross;
    Problem<T>& problem;

    explicit Reference(Problem<T>& of) : problem(of) {
        const int32_t p = of.p, n = of.n;
        for (int32_t i = 0; i < n; ++i) w += weight(i), w2 += weight(i) * weight(i);
        factor = 1 / (w - w2 / w);
        for (int32_t j = 0; j < p; ++j) component(j);
        cross_products();
    }
    Quad weight(int32_t i) const { return problem.w.empty() ? Quad(1) : Quad(problem.w[i]); }

    // The mean takes all of 113 bits where it is far from the spread; sums of powers, like the products below, are closer in 64
    // than any bound here, and much quicker.
    using Wide = long double;
    static void add_powers(Wide value, Wide w, Wide* sums, Wide* sizes) {
        Wide term = w;
        for (int k = 1; k <= 4; ++k) {
            term *= value;
            sums[k] += term;
            sizes[k] += std::fabs(term);
        }
    }

    void component(int32_t j) {
        Quad total = 0;
        Wide raw[5] = {}, absolute[5] = {}, central[5] = {}, spread[5] = {};
        for (int32_t i = 0; i < problem.n; ++i) {
            total += weight(i) * Quad(problem.at(i, j));
            add_powers(problem.at(i, j), static_cast<Wide>(weight(i)), raw, absolute);
        }
        const Quad m = problem.mean_given.empty() ? total / w : Quad(problem.mean_given[j]);
        centre.push_back(m);
        for (int32_t i = 0; i < problem.n; ++i)
            add_powers(static_cast<Wide>(Quad(problem.at(i, j)) - m), static_cast<Wide>(weight(i)), central, spread);
        const double weights = static_cast<double>(w);
        const auto set = [&](int row, Quad value, double scale) { vectors[row].push_back({value, scale}); };
        const Quad c2 = Quad(central[2]) * factor, c3 = Quad(central[3]) / w, c4 = Quad(central[4]) / w;
        const double c2d = static_cast<double>(c2), root = std::sqrt(c2d);
        set(0, m, magnitude(absolute[1]) / weights);
        for (int k = 2; k <= 4; ++k) set(k - 1, Quad(raw[k]) / w, magnitude(absolute[k]) / weights);
        set(4, c2, c2d);
        set(5, c3, magnitude(spread[3]) / weights);
        set(6, c4, static_cast<double>(c4));
        set(7, c4 / (c2 * c2) - 3, static_cast<double>(c4 / (c2 * c2)) + 3);
        set(8, c3 / (c2 * Quad(root)), magnitude(spread[3]) / weights / (c2d * root));
        set(9, Quad(root) / m, std::fabs(root / static_cast<double>(m)));
        for (int k = 1; k <= 4; ++k) set(9 + k, raw[k], magnitude(absolute[k]));
        for (int k = 2; k <= 4; ++k) set(12 + k, central[k], magnitude(spread[k]));
    }
    void cross_products() {
        const int32_t p = problem.p;
        std::vector<Wide> d(p), sums(size_t(p) * p);
        for (int32_t i = 0; i < problem.n; ++i) {
            const Wide wi = static_cast<Wide>(weight(i));
            for (int32_t j = 0; j < p; ++j) d[j] = static_cast<Wide>(Quad(problem.at(i, j)) - centre[j]);
            for (int32_t j = 0; j < p; ++j)
                for (int32_t k = 0; k < p; ++k) sums[size_t(j) * p + k] += wi * d[j] * d[k];
        }
        cross.assign(sums.begin(), sums.end());
    }
};

}  // namespace stats_test
