// Quantiles of streams: the rank error against the whole data, at every moment, in orders chosen against the summary.
#include "services/test_switches.h"
#include "stats/reference.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace {

template <class T>
struct Entry;
template <>
struct Entry<double> {
    static constexpr auto stream = _kuzdSSStreamQuantiles;
};
template <>
struct Entry<float> {
    static constexpr auto stream = _kuzsSSStreamQuantiles;
};

// A task over blocks of one or more components.
template <class T>
struct Stream {
    int32_t p, n = 1, form = StorageColumns, orders_count, params = 1;
    T epsilon;
    std::vector<T> orders, results;
    SSTask* task = nullptr;

    Stream(T error, int32_t components, std::vector<T> positions)
        : p(components),
          orders_count(static_cast<int32_t>(positions.size())),
          epsilon(error),
          orders(std::move(positions)),
          results(size_t(p) * orders.size(), T{-1}) {
        EXPECT_EQ(stats_test::Entries<T>::make(&task, &p, &n, &form, nullptr, nullptr, nullptr, 0), 0);
        __kuziSSEditTask(task, SSIdN, &n);
        __kuziSSEditTask(task, SSIdXStorage, &form);
        __kuzdSSEditStreamQuantiles(task, &orders_count, orders.data(), results.data(), &params, &epsilon);
    }
    Stream(const Stream&) = delete;
    ~Stream() { __kuzSSDeleteTask(&task); }
    int32_t add(const T* x, int32_t count, uint64_t method = 0, const orv_services* services = nullptr) {
        n = count;
        stats_test::Entries<T>::edit(task, SSIdX, x);
        return Entry<T>::stream(task, ORV_SS_STREAM_QUANTILES, method, services);
    }
};

template <class T>
std::vector<T> grid(int count) {
    std::vector<T> orders;
    for (int k = 0; k <= count; ++k) orders.push_back(static_cast<T>(k) / static_cast<T>(count));
    return orders;
}

// Number i of n in an order that someone may have chosen; a permutation of 0 to n - 1 unless said.
enum class Order { random, up, down, zigzag, sawtooth, halves, few, blocks };
constexpr Order all_orders[] = {Order::random,   Order::up,     Order::down, Order::zigzag,
                                Order::sawtooth, Order::halves, Order::few,  Order::blocks};
int64_t number(Order order, int64_t i, int64_t n, const std::vector<int32_t>& shuffled) {
    switch (order) {
        case Order::random:
            return shuffled[i % shuffled.size()];
        case Order::up:
            return i;
        case Order::down:
            return n - 1 - i;
        case Order::zigzag:
            return i % 2 ? n - 1 - i / 2 : i / 2;
        case Order::sawtooth: {
            const int64_t teeth = 1000, length = n / teeth;
            return i % length * teeth + i / length % teeth;
        }
        case Order::halves:  // the middle comes last
            return i < n / 2 ? (i % 2 ? n - 1 - i / 2 : i / 2) : n / 4 + (i - n / 2) * 7919 % (n / 2);
        case Order::few:  // many equal numbers
            return shuffled[i % shuffled.size()] % 5;
        case Order::blocks:  // runs of 4096, shuffled by runs
            return (i / 4096 * 17 % (n / 4096 + 1)) * 4096 + i % 4096;
    }
    return 0;
}

// The least distance from a quantile's position to the ranks that its value has.
double rank_error(int64_t below, int64_t up_to, int64_t n, double order) {
    const double position = order * static_cast<double>(n - 1);
    if (up_to == below) return 1e300;  // no such number
    return std::max({0.0, static_cast<double>(below) - position, position - static_cast<double>(up_to - 1)});
}

template <class T>
struct SSStream : testing::Test {};
using Types = testing::Types<double, float>;
TYPED_TEST_SUITE(SSStream, Types);

// At every moment of a row of them: after every block of odd lengths.
TYPED_TEST(SSStream, RankErrorAtEveryMoment) {
    using T = TypeParam;
    for (const double epsilon : {0.9, 0.3, 0.05, 0.01, 0.001})
        for (const Order order : all_orders)
            for (const bool threads : {false, true}) {
                const int32_t n = threads ? 30000 : 100000;
                std::vector<int32_t> shuffled(n);
                std::iota(shuffled.begin(), shuffled.end(), 0);
                std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(5));
                std::vector<T> x(n), sorted;
                for (int32_t i = 0; i < n; ++i) x[i] = static_cast<T>(number(order, i, n, shuffled));
                Stream<T> stream(static_cast<T>(epsilon), 1, grid<T>(32));
                int32_t block = threads ? 997 : 1, done = 0;
                while (done < n) {
                    const int32_t count = std::min(block, n - done);
                    ASSERT_EQ(stream.add(&x[done], count, threads, threads ? orv_serv_services() : nullptr), 0);
                    done += count;
                    if (!threads) block = block * 3 + 1;
                    if (threads && done % 7 != 0 && done < n) continue;
                    sorted.assign(x.begin(), x.begin() + done);
                    std::sort(sorted.begin(), sorted.end());
                    for (size_t k = 0; k < stream.orders.size(); ++k) {
                        const auto range = std::equal_range(sorted.begin(), sorted.end(), stream.results[k]);
                        const double error = rank_error(range.first - sorted.begin(), range.second - sorted.begin(),
                                                        done, stream.orders[k]);
                        ASSERT_LE(error, std::max(0.5, epsilon * done))
                            << epsilon << " order " << int(order) << " n " << done << " at " << stream.orders[k];
                    }
                }
            }
}

// However the blocks are cut, and among other components, on any number of threads.
TYPED_TEST(SSStream, CutsAndThreadsDoNotMatter) {
    using T = TypeParam;
    const int32_t n = 50000, p = 3;
    std::vector<T> x(size_t(n) * p);
    std::mt19937 random(3);
    for (T& value : x) value = static_cast<T>(random() % 100000) / 16;
    const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
    for (int32_t i = 0; i < n; i += 4) x[size_t(i) * p + 1] = nan;
    x[2] = -inf, x[5] = inf;
    const std::vector<T> orders = {0, T(0.25), T(0.5), T(0.7), T(0.76), 1};
    Stream<T> whole(T(0.01), p, orders), cut(T(0.01), p, orders);
    ASSERT_EQ(whole.add(x.data(), n), 0);
    stats_test::thread_limit = 3;
    for (int32_t done = 0, block = 1; done < n; done += block, block = std::min(n - done, 2 * block + 5))
        ASSERT_EQ(cut.add(&x[size_t(done) * p], block, 1, stats_test::limited_services()), 0);
    for (size_t k = 0; k < whole.results.size(); ++k) {
        const bool is_nan = k / orders.size() == 1 && k % orders.size() >= 4;
        EXPECT_EQ(std::isnan(whole.results[k]), is_nan) << k;
        EXPECT_TRUE(is_nan ? std::isnan(cut.results[k]) : cut.results[k] == whole.results[k]) << k;
    }
    EXPECT_EQ(whole.results[2 * orders.size()], -inf);
    EXPECT_EQ(whole.results[2 * orders.size() + 5], inf);
    EXPECT_NEAR(whole.results[2], 3125, 100);
}

TYPED_TEST(SSStream, StartsAfreshAndRefuses) {
    using T = TypeParam;
    const T first[] = {5, 6, 7}, second[] = {1, 2, 3};
    Stream<T> stream(T(0.1), 1, {0, T(0.5), 1});
    const auto results = [&] { return stream.results; };
    const int32_t live = orv_serv_live_blocks();
    ASSERT_EQ(stream.add(first, 3), 0);
    ASSERT_EQ(stream.add(second, 3), 0);
    EXPECT_EQ(results(), (std::vector<T>{1, 5, 7}));
    EXPECT_EQ(stream.task->cleanupCount, 1);
    EXPECT_EQ(stream.task->ownedBuffer, nullptr);
    stream.epsilon = T(0.2);
    ASSERT_EQ(stream.add(second, 3), 0);
    EXPECT_EQ(results(), (std::vector<T>{1, 2, 3}));
    __kuzSQuantilesFreeBuffers(stream.task);
    __kuzSQuantilesFreeBuffers(stream.task);
    EXPECT_EQ(orv_serv_live_blocks(), live);
    for (int32_t nth = 1, status = SSStatusAllocation; status == SSStatusAllocation; ++nth) {
        orv_serv_fail_allocation(nth);
        status = stream.add(first, 3);
        orv_serv_fail_allocation(0);
        EXPECT_EQ(results(), status == 0 ? (std::vector<T>{5, 6, 7}) : (std::vector<T>{1, 2, 3}));
    }
    const T nan = std::numeric_limits<T>::quiet_NaN();
    for (const T epsilon : {T{0}, T{1}, T{-1}, nan}) {
        stream.epsilon = epsilon;
        EXPECT_EQ(stream.add(second, 3), SSStatusStreamParams);
    }
    for (const T epsilon : {std::numeric_limits<T>::denorm_min(), std::numeric_limits<T>::min()}) {
        stream.epsilon = epsilon;
        EXPECT_EQ(stream.add(second, 3), 0);
        EXPECT_EQ(results(), (std::vector<T>{1, 2, 3}));
    }
    stream.epsilon = T(0.2);
    ASSERT_EQ(stream.add(first, 3), 0);
    for (const T order : {T(-0.01), T(1.01), nan}) {
        stream.orders[1] = order;
        EXPECT_EQ(stream.add(second, 3), SSStatusStreamOrders);
    }
    stream.orders_count = 0;
    EXPECT_EQ(stream.add(second, 3), SSStatusStreamOrderCount);
    stream.orders_count = 3, stream.params = 0;
    EXPECT_EQ(stream.add(second, 3), SSStatusStreamParamCount);
    EXPECT_EQ(results(), (std::vector<T>{5, 6, 7}));
}

// A hundred million numbers, of which each is there once: its rank is known without sorting. Both methods see each block. The process
// grows by what the summaries hold.
int64_t resident_bytes() {
    int64_t pages = 0, resident = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%lld %lld", reinterpret_cast<long long*>(&pages),
                        reinterpret_cast<long long*>(&resident)) != 2)
            resident = 0;
        std::fclose(file);
    }
    return resident * 4096;
}

void hundred_million(Order order) {
    const int64_t n = 100000000;
    const double epsilon = 0.001;
    std::vector<int32_t> shuffled;
    if (order == Order::random) {
        shuffled.resize(n);
        std::iota(shuffled.begin(), shuffled.end(), 0);
        std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(5));
    }
    Stream<double> plain(epsilon, 1, grid<double>(1000)), fast(epsilon, 1, plain.orders);
    std::vector<double> block(1000000, 1.0);
    const int64_t before = resident_bytes();
    for (int64_t done = 0; done < n; done += static_cast<int64_t>(block.size())) {
        for (size_t i = 0; i < block.size(); ++i)
            block[i] = static_cast<double>(number(order, done + static_cast<int64_t>(i), n, shuffled));
        ASSERT_EQ(plain.add(block.data(), static_cast<int32_t>(block.size())), 0);
        ASSERT_EQ(fast.add(block.data(), static_cast<int32_t>(block.size()), ORV_SS_METHOD_FAST), 0);
    }
    EXPECT_LT(resident_bytes() - before, 2 * 10000000) << int(order);
    for (const Stream<double>* stream : {&plain, &fast}) {
        double worst = 0;
        for (size_t k = 0; k < stream->orders.size(); ++k)
            worst = std::max(worst, std::fabs(stream->results[k] - stream->orders[k] * static_cast<double>(n - 1)));
        EXPECT_LE(worst, epsilon * static_cast<double>(n)) << int(order);
        std::printf("order %d: worst rank error %.3g of n, %lld bytes more in both\n", int(order),
                    worst / static_cast<double>(n), static_cast<long long>(resident_bytes() - before));
        std::fflush(stdout);
    }
}

TEST(ExhaustiveStream, HundredMillion) {
    for (const Order order : {Order::up, Order::down, Order::zigzag, Order::sawtooth, Order::random})
        hundred_million(order);
}

}  // namespace
