// Order statistics against plain sorting, over shapes, storage forms, threads and hostile data.
#include "services/test_switches.h"
#include "stats/reference.h"

#include <orv/services.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace {

template <class T>
struct Order;
template <>
struct Order<double> {
    static constexpr auto quantiles = _kuzdSSQuantiles, sort = _kuzdSSSort, minmax = _kuzdSSMinmax,
                          wmedian = _kuzdSSWMedian;
    static constexpr auto make = __kuzdSSNewTask;
    static constexpr auto edit = __kuzdSSEditTask;
    static constexpr auto quick_sort = __kuzdQSort;
    static constexpr auto step_sort = __kuzdQSortStep;
    static constexpr auto select = __kuzdQSortSelect;
};
template <>
struct Order<float> {
    static constexpr auto quantiles = _kuzsSSQuantiles, sort = _kuzsSSSort, minmax = _kuzsSSMinmax,
                          wmedian = _kuzsSSWMedian;
    static constexpr auto make = __kuzsSSNewTask;
    static constexpr auto edit = __kuzsSSEditTask;
    static constexpr auto quick_sort = __kuzsQSort;
    static constexpr auto step_sort = __kuzsQSortStep;
    static constexpr auto select = __kuzsQSortSelect;
};

template <class T>
bool before(T a, T b) {
    if (std::isnan(a) || std::isnan(b)) return !std::isnan(a) && std::isnan(b);
    return a < b || (a == b && std::signbit(a) && !std::signbit(b));
}
template <class T>
bool same(T a, T b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

enum class Kind { random, equal, sorted, reversed, organ_pipe, zeros, few, close, misleading, with_nans };
constexpr Kind kinds[] = {Kind::random, Kind::equal, Kind::sorted, Kind::reversed,   Kind::organ_pipe,
                          Kind::zeros,  Kind::few,   Kind::close,  Kind::misleading, Kind::with_nans};

template <class T>
std::vector<T> column(Kind kind, int n) {
    std::mt19937 random(n);
    std::vector<T> x(n);
    for (int i = 0; i < n; ++i) {
        const T value = static_cast<T>(static_cast<int>(random() % 100001) - 50000) / 8;
        switch (kind) {
            case Kind::random:
                x[i] = value;
                break;
            case Kind::equal:
                x[i] = 3;
                break;
            case Kind::sorted:
                x[i] = static_cast<T>(i);
                break;
            case Kind::reversed:
                x[i] = static_cast<T>(n - i);
                break;
            case Kind::organ_pipe:
                x[i] = static_cast<T>(std::min(i, n - i));
                break;
            case Kind::zeros:
                x[i] = random() % 3 ? (random() % 2 ? T{0} : -T{0}) : value;
                break;
            case Kind::few:  // and infinite ones
                x[i] = random() % 5 ? static_cast<T>(random() % 3) : value * std::numeric_limits<T>::infinity();
                break;
            case Kind::close:  // in the last bits alone, but for a few
                x[i] =
                    i % 50 ? 1 + static_cast<T>(random() % 100000) * std::numeric_limits<T>::epsilon() : value * 1000;
                break;
            case Kind::misleading:
                x[i] = value;
                break;
            case Kind::with_nans:
                x[i] = random() % 4 ? value
                                    : std::copysign(std::numeric_limits<T>::quiet_NaN(), random() % 2 ? T{1} : T{-1});
                break;
        }
    }
    // Where a sample is taken of a long column, the numbers are larger than elsewhere.
    uint64_t state = 1;
    for (int i = 0; kind == Kind::misleading && n > 0 && i < 1 << 10; ++i) {
        state = state * 6364136223846793005 + 1442695040888963407;
        x[(state >> 32) * n >> 32] = static_cast<T>(100000 + i);
    }
    return x;
}

template <class T>
struct OrderTask {
    SSTask* task = nullptr;
    int32_t p, n, form;
    std::vector<T> x;
    OrderTask(int32_t dimension, int32_t count, int32_t storage)
        : p(dimension), n(count), form(storage), x(size_t(p) * n) {}
    ~OrderTask() { __kuzSSDeleteTask(&task); }
    void put(int j, const std::vector<T>& values) {
        for (int i = 0; i < n; ++i) x[form == StorageRows ? size_t(j) * n + i : size_t(i) * p + j] = values[i];
    }
    void make(const int32_t* indices = nullptr) {
        ASSERT_EQ(Order<T>::make(&task, &p, &n, &form, x.data(), nullptr, indices, 0), 0);
    }
};

template <class T>
struct SSOrder : testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSOrder, Types);

TYPED_TEST(SSOrder, SortRoutines) {
    using T = TypeParam;
    for (const Kind kind : kinds) {
        if (kind == Kind::with_nans) continue;
        for (const int n : {0, 1, 2, 3, 6, 7, 8, 9, 50, 1000, 20000}) {
            std::vector<T> expected = column<T>(kind, n), plain = expected, spaced(3 * size_t(n), T{-7});
            for (int i = 0; i < n; ++i) spaced[3 * size_t(i)] = expected[i];
            std::sort(expected.begin(), expected.end());
            for (const int k : {0, n / 3, n - 1}) {
                if (k < 0 || k >= n) continue;
                std::vector<T> parted = plain;
                EXPECT_EQ(Order<T>::select(n, parted.data(), k), expected[k]) << n << " " << k;
                for (int i = 0; i < n; ++i) ASSERT_TRUE(i < k ? parted[i] <= parted[k] : parted[i] >= parted[k]);
            }
            Order<T>::quick_sort(n, plain.data());
            EXPECT_EQ(plain, expected) << n;
            Order<T>::step_sort(n, spaced.data(), 3);
            for (int i = 0; i < n; ++i) ASSERT_EQ(spaced[3 * size_t(i)], expected[i]);
            for (size_t i = 0; i < spaced.size(); ++i) ASSERT_TRUE(i % 3 == 0 || spaced[i] == -7) << i;
        }
    }
}

TYPED_TEST(SSOrder, AgainstSorting) {
    using T = TypeParam;
    for (const int32_t form : {StorageRows, StorageColumns})
        for (const Kind kind : kinds)
            for (const int n : {1, 2, 3, 9, 100, 1499, 1500, 5000, 16384, 33001})
                for (const int threads : {0, 2, 3, 4}) {
                    // Beyond two they work within a long component, in either form alike.
                    if (threads > 2 && (n < 16384 || (threads == 3 && form == StorageColumns))) continue;
                    SCOPED_TRACE(testing::Message()
                                 << "form " << form << " kind " << int(kind) << " n " << n << " threads " << threads);
                    stats_test::thread_limit = threads;
                    const orv_services* services = threads > 0 ? stats_test::limited_services() : nullptr;
                    const int32_t p = 3, indices[] = {1, 0, 1};
                    OrderTask<T> problem(p, n, form);
                    std::vector<std::vector<T>> sorted;
                    for (int j = 0; j < p; ++j) {
                        sorted.push_back(column<T>(j == 2 ? Kind::random : kind, n));
                        problem.put(j, sorted[j]);
                        std::sort(sorted[j].begin(), sorted[j].end(), before<T>);
                    }
                    problem.make(indices);
                    const T orders[] = {T(0.5), T(1), T(0), T(0.25), T(0.25), T(0.9)};
                    const int32_t count = 6, columns = StorageColumns;
                    std::vector<T> quantiles(size_t(p) * count, T{-1}), stats(size_t(p) * n, T{-1}), least(p, T{-1}),
                        greatest(p, T{-1});
                    __kuziSSEditTask(problem.task, SSIdQuantOrderCount, const_cast<int32_t*>(&count));
                    Order<T>::edit(problem.task, SSIdQuantOrders, const_cast<T*>(orders));
                    Order<T>::edit(problem.task, SSIdQuantiles, quantiles.data());
                    Order<T>::edit(problem.task, SSIdMinimum, least.data());
                    Order<T>::edit(problem.task, SSIdMaximum, greatest.data());
                    Order<T>::edit(problem.task, SSIdExtraData, stats.data());
                    __kuziSSEditTask(problem.task, SSIdExtraInt, const_cast<int32_t*>(&columns));
                    ASSERT_EQ(Order<T>::quantiles(problem.task, ORV_SS_QUANTILES | ORV_SS_MEAN, 0, services), 0);
                    ASSERT_EQ(Order<T>::sort(problem.task, ORV_SS_SORT, 1, services), 0);
                    ASSERT_EQ(Order<T>::minmax(problem.task, ORV_SS_MINIMUM | ORV_SS_MAXIMUM, 0, services), 0);
                    for (int j = 0; j < p; ++j)
                        for (int k = 0; k < count; ++k) {
                            const T got = quantiles[size_t(j) * count + k];
                            if (!indices[j]) {
                                ASSERT_EQ(got, -1);
                                continue;
                            }
                            const double position = double(orders[k]) * (n - 1);
                            const int i = static_cast<int>(position);
                            const double d = position - i, a = sorted[j][i], b = sorted[j][std::min(i + 1, n - 1)];
                            ASSERT_TRUE(same(got, static_cast<T>(a * (1 - d) + b * d))) << j << " " << k << " " << got;
                        }
                    for (int j = 0; j < p; ++j) {
                        for (int i = 0; i < n; ++i)
                            ASSERT_TRUE(same(stats[size_t(i) * p + j], indices[j] ? sorted[j][i] : T{-1}))
                                << j << " " << i;
                        const bool nan = std::isnan(sorted[j][n - 1]);
                        EXPECT_EQ(std::isnan(least[j]), indices[j] && nan);
                        EXPECT_EQ(std::isnan(greatest[j]), indices[j] && nan);
                        if (nan) continue;
                        EXPECT_TRUE(same(least[j], indices[j] ? sorted[j][0] : T{-1})) << least[j];
                        EXPECT_TRUE(same(greatest[j], indices[j] ? sorted[j][n - 1] : T{-1})) << greatest[j];
                    }
                    // The sorted observations as a by-product give the same quantiles.
                    const std::vector<T> first = quantiles;
                    std::fill(stats.begin(), stats.end(), T{-1});
                    Order<T>::edit(problem.task, SSIdOrderStats, stats.data());
                    ASSERT_EQ(Order<T>::quantiles(problem.task, ORV_SS_QUANTILES, 1, services), 0);
                    for (size_t k = 0; k < first.size(); ++k) ASSERT_TRUE(same(first[k], quantiles[k])) << k;
                    for (int i = 0; i < n; ++i)
                        ASSERT_TRUE(same(stats[form == StorageRows ? size_t(i) : size_t(i) * p], sorted[0][i]));
                }
}

TYPED_TEST(SSOrder, WeightedMedian) {
    using T = TypeParam;
    constexpr T largest = std::numeric_limits<T>::max();
    const struct {
        std::vector<T> x, w;
        T median;
    } cases[] = {
        {{3, 1, 2}, {1, 1, 1}, 2},
        {{4, 1, 3, 2}, {1, 1, 1, 1}, T(2.5)},
        {{5, 1, 9}, {0, 0, 2}, 9},
        {{1, 2, 3, 1000}, {1, 0, 1, 0}, 2},
        {{1, 2, 3}, {T(0.5), T(0.25), T(0.25)}, T(1.5)},
        {{7}, {3}, 7},
        // Half of it is met exactly, however sums of weights are rounded.
        {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, std::vector<T>(10, T(0.1)), T(5.5)},
        {{0, largest, largest, largest}, {1, 1, 1, 1}, largest},
    };
    for (const auto& c : cases) {
        OrderTask<T> problem(1, static_cast<int32_t>(c.x.size()), StorageRows);
        problem.put(0, c.x);
        problem.make();
        T median = -1;
        Order<T>::edit(problem.task, SSIdQuantiles, &median);
        Order<T>::edit(problem.task, SSIdW, const_cast<T*>(c.w.data()));
        EXPECT_EQ(Order<T>::wmedian(problem.task, ORV_SS_WEIGHTED_MEDIAN, 0, nullptr), 0);
        EXPECT_EQ(median, c.median);
        std::vector<T> none(c.x.size(), T{0});
        Order<T>::edit(problem.task, SSIdW, none.data());
        EXPECT_EQ(Order<T>::wmedian(problem.task, ORV_SS_WEIGHTED_MEDIAN, 0, nullptr), SSStatusW);
    }
}

TYPED_TEST(SSOrder, RefusesAndJoins) {
    using T = TypeParam;
    OrderTask<T> problem(1, 4, StorageRows);
    problem.put(0, {2, 8, 4, 6});
    problem.make();
    const auto run = [&](auto entry, uint64_t bits, uint64_t method = 0) {
        return entry(problem.task, bits, method, nullptr);
    };
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantOrderCount);
    T order = T(1.5), result = -1, least = -9, greatest = 3;
    int32_t count = 0;
    __kuziSSEditTask(problem.task, SSIdQuantOrderCount, &count);
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantOrders);
    Order<T>::edit(problem.task, SSIdQuantOrders, &order);
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantiles);
    Order<T>::edit(problem.task, SSIdQuantiles, &result);
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantOrderCount);
    count = 1;
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantOrders);
    order = std::numeric_limits<T>::quiet_NaN();
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES), SSStatusQuantOrders);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_QUANTILES, 8), SSStatusMethod);
    EXPECT_EQ(run(Order<T>::quantiles, ORV_SS_MEAN), 0);
    EXPECT_EQ(run(Order<T>::sort, ORV_SS_SORT), SSStatusExtraData);
    EXPECT_EQ(run(Order<T>::minmax, ORV_SS_MINIMUM), SSStatusMinimum);
    Order<T>::edit(problem.task, SSIdMinimum, &least);
    EXPECT_EQ(run(Order<T>::minmax, ORV_SS_MINIMUM | ORV_SS_MAXIMUM), SSStatusMaximum);
    Order<T>::edit(problem.task, SSIdMaximum, &greatest);
    EXPECT_EQ(run(Order<T>::minmax, ORV_SS_MINIMUM | ORV_SS_MAXIMUM, ORV_SS_METHOD_JOIN), 0);
    EXPECT_EQ(least, -9);
    EXPECT_EQ(greatest, 8);
    EXPECT_EQ(run(Order<T>::minmax, ORV_SS_MINIMUM | ORV_SS_MAXIMUM), 0);
    EXPECT_EQ(least, 2);
    least = std::numeric_limits<T>::infinity();  // what joining may start from
    greatest = -least;
    EXPECT_EQ(run(Order<T>::minmax, ORV_SS_MINIMUM | ORV_SS_MAXIMUM, ORV_SS_METHOD_JOIN), 0);
    EXPECT_EQ(least, 2);
    EXPECT_EQ(greatest, 8);
}

// A column that the sample misleads is sorted after all, for which there may be no memory when others are done.
TYPED_TEST(SSOrder, WritesNothingWithoutMemory) {
    using T = TypeParam;
    OrderTask<T> problem(2, 1 << 14, StorageRows);
    problem.put(0, column<T>(Kind::random, problem.n));
    problem.put(1, column<T>(Kind::misleading, problem.n));
    problem.make();
    std::vector<T> orders(9, T(0.5)), results(18, T{-1});
    int32_t count = 0;
    __kuziSSEditTask(problem.task, SSIdQuantOrderCount, &count);
    Order<T>::edit(problem.task, SSIdQuantOrders, orders.data());
    Order<T>::edit(problem.task, SSIdQuantiles, results.data());
    const int32_t live = orv_serv_live_blocks();
    for (const int32_t by_windows_or_sorted : {1, 9}) {
        count = by_windows_or_sorted;
        for (int32_t nth = 1;; ++nth) {
            orv_serv_fail_allocation(nth);
            const int32_t status = Order<T>::quantiles(problem.task, ORV_SS_QUANTILES, 0, nullptr);
            orv_serv_fail_allocation(0);
            EXPECT_EQ(orv_serv_live_blocks(), live);
            if (status == 0) break;
            EXPECT_EQ(status, SSStatusAllocation);
            for (const T result : results) ASSERT_EQ(result, -1);
        }
        std::fill(results.begin(), results.end(), T{-1});
    }
}

// A NaN is the same one whichever thread met it, and how.
TYPED_TEST(SSOrder, ExtremesOfNaNs) {
    using T = TypeParam;
    OrderTask<T> problem(1, 16391, StorageRows);
    problem.x[8194] = -std::numeric_limits<T>::quiet_NaN();
    problem.make();
    T least[2], greatest;
    Order<T>::edit(problem.task, SSIdMaximum, &greatest);
    for (const int32_t threads : {1, 2}) {
        stats_test::thread_limit = threads;
        Order<T>::edit(problem.task, SSIdMinimum, &least[threads - 1]);
        EXPECT_EQ(Order<T>::minmax(problem.task, ORV_SS_MINIMUM | ORV_SS_MAXIMUM, 0, stats_test::limited_services()),
                  0);
    }
    EXPECT_EQ(std::memcmp(&least[0], &least[1], sizeof(T)), 0);
}

}  // namespace
