// Every search method against the convention, by brute force.
#include "fit/support.h"

#include <cmath>

namespace orv::test {
namespace {

template <class T>
class FitSearch : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitSearch, Elements);

template <class T>
int64_t brute(const std::vector<T>& b, T x) {
    const auto n = static_cast<int64_t>(b.size());
    if (!(x <= b.back())) return n;
    if (x == b.back()) return n - 1;
    int64_t cell = 0;
    while (cell < n && b[static_cast<size_t>(cell)] <= x) ++cell;
    return cell;
}

// On, beside and between the breaks, at and outside the ends, not numbers; `random` of them scattered.
template <class T>
std::vector<T> sites_for(const std::vector<T>& b, int random_count) {
    const T infinity = std::numeric_limits<T>::infinity();
    std::vector<T> x = {-infinity, b.front() - 1, infinity, b.back() + 1, std::numeric_limits<T>::quiet_NaN()};
    for (const T at : b) {
        x.push_back(at);
        x.push_back(std::nextafter(at, -infinity));
        x.push_back(std::nextafter(at, infinity));
    }
    std::mt19937 random(3);
    std::uniform_real_distribution<double> within(b.front() - 0.5, b.back() + 0.5);
    for (int i = 0; i < random_count; ++i) x.push_back(static_cast<T>(within(random)));
    return x;
}

template <class T, class Cell>
void expect_cells(const std::vector<T>& b, const std::vector<T>& x, const std::vector<Cell>& cells, const char* what) {
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_EQ(cells[i], brute(b, x[i])) << what << ": site " << i << " = " << x[i] << " of " << x.size();
}

int32_t leave_all(const int64_t* count, const void*, int64_t* cells, uint8_t* unfinished, const orv_df_partition*,
                  void* param) {
    const auto start = *static_cast<int64_t*>(param);
    for (int64_t i = 0; i < *count; ++i) {
        cells[i] = start;
        unfinished[i] = 1;
    }
    return 0;
}

// The whole entry, for one set of breaks and sites, by all the methods that a task can lead to.
template <class T, class Cell>
void search_all_ways(const std::vector<T>& b, std::vector<T> x, bool uniform) {
    const auto n = static_cast<int64_t>(b.size());
    auto count = static_cast<int64_t>(x.size());
    const T ends[] = {b.front(), b.back()};
    DFTask* task = nullptr;
    ASSERT_EQ(NewTask1D(T{}, &task, n, uniform ? ends : b.data(), int64_t{uniform ? 4 : 0}, int64_t{0}, nullptr,
                        int64_t{0}, int32_t{sizeof(Cell) == 8}),
              0);
    std::vector<Cell> cells(x.size());
    const auto search = [&](int64_t hint, const T* data, orv_df_search_callback callback, void* param) {
        std::fill(cells.begin(), cells.end(), Cell{-9});
        return DFSearch1D(T{}, task, int64_t{0}, count, x.data(), hint, data, static_cast<void*>(cells.data()),
                          callback, param, orv_serv_services());
    };
    for (int64_t guess : {int64_t{-5}, int64_t{0}, n / 2, n, n + 7}) {
        ASSERT_EQ(search(0, nullptr, leave_all, &guess), 0);
        expect_cells(b, x, cells, "callback");
    }
    if (uniform) {
        ASSERT_EQ(search(0, nullptr, nullptr, nullptr), 0);
        expect_cells(b, x, cells, "uniform");
        orv_df_kernel_DeleteTask(&task);
        return;
    }
    ASSERT_EQ(search(0, nullptr, nullptr, nullptr), 0);
    expect_cells(b, x, cells, "hybrid");
    for (const int64_t peak : {int64_t{0}, n / 3, n - 1, n}) {
        const T data[] = {0, 1, 0, 0, static_cast<T>(peak)};
        ASSERT_EQ(search(0, data, nullptr, nullptr), 0);
        expect_cells(b, x, cells, "peak");
    }
    orv_df_kernel_iEditVal(task, ORV_DF_BREAK_HINT, ORV_DF_BREAKS_QUASI_UNIFORM);
    ASSERT_EQ(search(0, nullptr, nullptr, nullptr), 0);
    expect_cells(b, x, cells, "quasi-uniform");
    orv_df_kernel_iEditVal(task, ORV_DF_BREAK_HINT, ORV_DF_BREAKS_NO_HINT);
    // Sorted: the numbers in order, and a NaN that must not disturb those after it.
    x.erase(std::remove_if(x.begin(), x.end(), [](T v) { return v != v; }), x.end());
    std::sort(x.begin(), x.end());
    x.insert(x.begin() + static_cast<ptrdiff_t>(x.size() / 2), std::numeric_limits<T>::quiet_NaN());
    count = static_cast<int64_t>(x.size());
    cells.resize(x.size());
    ASSERT_EQ(search(ORV_DF_SITES_SORTED, nullptr, nullptr, nullptr), 0);
    expect_cells(b, x, cells, "sorted");
    orv_df_kernel_DeleteTask(&task);
}

TYPED_TEST(FitSearch, MethodsFollowTheConvention) {
    using T = TypeParam;
    std::vector<std::vector<T>> partitions = {{0, 1}, {0, 1, 1, 1, 2}, {-1, -1, 0, 3, 3}, breaks<T>(700)};
    // Nearly all breaks in one bucket: the bisection within it is long.
    std::vector<T> crowded(900);
    for (size_t i = 0; i < crowded.size(); ++i) crowded[i] = static_cast<T>(i) / 1024;
    crowded.push_back(5000);
    partitions.push_back(crowded);
    for (const auto& b : partitions) {
        std::vector<T> x = sites_for(b, 200);
        search_all_ways<T, int32_t>(b, x, false);
        search_all_ways<T, int64_t>(b, x, false);
        x.resize(std::min<size_t>(x.size(), 31));
        search_all_ways<T, int32_t>(b, x, false);
        search_all_ways<T, int64_t>(b, x, false);
        x.resize(3);
        search_all_ways<T, int32_t>(b, x, false);
    }
    // Equal widths that are exact in binary, so that the breaks are where the formula has them.
    const std::vector<T> even = breaks<T>(65, true);
    for (const size_t count : {size_t{400}, size_t{30}}) {
        std::vector<T> x = sites_for(even, 300);
        // Beside a break x - first rounds to the break itself.
        for (T& site : x)
            if (site > even.front() && site < even.back()) site = std::round(site * 4096) / 4096;
        x.resize(count);
        search_all_ways<T, int32_t>(even, x, true);
        search_all_ways<T, int64_t>(even, x, true);
    }
}

// Breaks and their count may be edited while the bucket table is still that of others: the cells found may then be wrong, but
// they are cells, and nothing beyond the breaks is read.
TYPED_TEST(FitSearch, AStaleBucketTableLeadsToNoCellThatIsNone) {
    using T = TypeParam;
    std::vector<T> crowded(40, T(1));
    for (size_t i = 0; i < 39; ++i) crowded[i] = i == 0 ? T(0) : T(0.07) + T(0.001) * static_cast<T>(i);
    for (const T width : {T(0.125), T(100)}) {
        std::vector<T> few(9), x;
        for (size_t i = 0; i < few.size(); ++i) few[i] = width * static_cast<T>(i);
        for (size_t i = 0; i < 100; ++i) x.push_back(few.back() * static_cast<T>(i) / 99);
        DFTask* task = nullptr;
        ASSERT_EQ(
            NewTask1D(T{}, &task, int64_t{40}, crowded.data(), int64_t{0}, int64_t{0}, nullptr, int64_t{0}, int32_t{0}),
            0);
        EditPtr(T{}, task, int64_t{ORV_DF_BREAKS}, few.data());
        orv_df_kernel_iEditVal(task, ORV_DF_BREAK_COUNT, 9);
        std::vector<int32_t> cells(100);
        for (const int64_t block : {10, 100}) {
            for (int64_t i = 0; i < 100; i += block)
                ASSERT_EQ(DFSearch1D(T{}, task, int64_t{0}, block, &x[static_cast<size_t>(i)], int64_t{0}, nullptr,
                                     static_cast<void*>(&cells[static_cast<size_t>(i)]), nullptr, nullptr, nullptr),
                          0);
            for (const int32_t cell : cells) EXPECT_TRUE(cell >= 0 && cell <= 9) << cell;
        }
        orv_df_kernel_DeleteTask(&task);
    }
}

TYPED_TEST(FitSearch, LargeSearchesAreDividedOverThreads) {
    using T = TypeParam;
    const std::vector<T> b = breaks<T>(300);
    search_all_ways<T, int32_t>(b, sites_for(b, 70000), false);
}

TEST(FitSearchEntry, StatusesAndCallbacks) {
    const std::vector<double> b = breaks<double>(20);
    DFTask* task = nullptr;
    ASSERT_EQ(orv_df_kernel_dNewTask1D(&task, 20, b.data(), 0, 0, nullptr, 0, 0), 0);
    const double x[] = {0.0, 1.0};
    const struct {
        double kind, peak;
        int32_t status;
    } hints[] = {{0, 99, 0}, {1, 20, 0}, {1, 21, -1026}, {1, -1, -1026}, {2, 0, -1026}, {std::nan(""), 0, -1026}};
    for (const auto& h : hints) {
        const double data[] = {0, h.kind, 0, 0, h.peak};
        int32_t cells[] = {-7, -7};
        EXPECT_EQ(orv_df_kernel_dDFSearch1D(task, 0, 2, x, 0, data, cells, nullptr, nullptr, nullptr), h.status);
        EXPECT_EQ(cells[0] == -7, h.status != 0);
        // A sorted hint comes before the data hint is looked at.
        EXPECT_EQ(orv_df_kernel_dDFSearch1D(task, 0, 2, x, 0x40, data, cells, nullptr, nullptr, nullptr), 0);
    }
    int32_t cells[] = {-7, -7};
    for (const int64_t count : {0, -3}) {
        EXPECT_EQ(orv_df_kernel_dDFSearch1D(task, 0, count, x, 0, nullptr, cells, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(cells[0], -7);
    }
    // 1000 takes the cells as they are, guesses included; a negative answer ends the search.
    const auto answer = [](const int64_t* count, const void*, int64_t* found, uint8_t* unfinished,
                           const orv_df_partition* p, void* param) {
        EXPECT_EQ(p->breakCount, 20);
        for (int64_t i = 0; i < *count; ++i) {
            EXPECT_EQ(found[i], -1);
            EXPECT_EQ(unfinished[i], 0);
            found[i] = 11 + i;
            unfinished[i] = 1;
        }
        return *static_cast<int32_t*>(param);
    };
    int32_t status = 1000;
    EXPECT_EQ(orv_df_kernel_dDFSearch1D(task, 0, 2, x, 0, nullptr, cells, answer, &status, nullptr), 0);
    EXPECT_EQ(cells[1], 12);
    status = -42;
    EXPECT_EQ(orv_df_kernel_dDFSearch1D(task, 0, 2, x, 0, nullptr, cells, answer, &status, nullptr), -42);
    orv_df_kernel_DeleteTask(&task);
}

TEST(FitSearchMethods, FormsStoreTheirWidthAndSortedKeepsItsState) {
    const std::vector<double> b = breaks<double>(50);
    const std::vector<double> x = sites_for(b, 0);
    const double ends[] = {b.front(), b.back()}, scale = 49 / (b.back() - b.front());
    using Method = decltype(&orv_df_kernel_dDFHybridSearch1D);
    const struct {
        Method method, method32;
        const double* breaks;
        bool flag_counts_in_32;
    } forms[] = {
        {orv_df_kernel_dDFUniformSearch1D, orv_df_kernel_dDFUniformSearch1D32, ends, false},
        {orv_df_kernel_dDFQuasiUniformSearch1D, orv_df_kernel_dDFQuasiUniformSearch1D32, b.data(), false},
        {orv_df_kernel_dDFPeakSearch1D, orv_df_kernel_dDFPeakSearch1D32, b.data(), true},
        {orv_df_kernel_dDFHybridSearch1D, orv_df_kernel_dDFHybridSearch1D32, b.data(), true},
    };
    const auto count = static_cast<int64_t>(x.size());
    for (const auto& f : forms) {
        std::vector<int64_t> wide(x.size());
        std::vector<int32_t> narrow(x.size());
        f.method(50, f.breaks, count, x.data(), nullptr, scale, nullptr, nullptr, 1, nullptr, wide.data());
        f.method32(50, f.breaks, count, x.data(), nullptr, scale, nullptr, nullptr, f.flag_counts_in_32 ? 0 : 1,
                   nullptr, narrow.data());
        EXPECT_TRUE(std::equal(wide.begin(), wide.end(), narrow.begin()));
    }
    int64_t state = 0;
    const double rising[] = {b[3], b[3] + 0.1, b[30]}, on[] = {b[31], b.back(), b.back(), b.back() + 1};
    int32_t cells[4];
    orv_df_kernel_dDFSortedSearch1D(50, b.data(), 3, rising, &state, 0, nullptr, nullptr, 0, nullptr, cells);
    EXPECT_EQ(state, 31);
    orv_df_kernel_dDFSortedSearch1D(50, b.data(), 4, on, &state, 0, nullptr, nullptr, 0, nullptr, cells);
    EXPECT_EQ(state, 50);
    const int32_t expected[] = {32, 49, 49, 50};
    EXPECT_TRUE(std::equal(expected, expected + 4, cells));
}

}  // namespace
}  // namespace orv::test
