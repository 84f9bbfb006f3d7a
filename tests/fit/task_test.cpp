// The task's life: what creation, edits and queries store, refuse and leave behind.
#include "fit/support.h"
#include "services/test_switches.h"

#include <cmath>
#include <cstddef>

namespace orv::test {
namespace {

constexpr double x[] = {0, 1, 3, 4, 7}, y[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

struct Task {
    DFTask* task = nullptr;
    explicit Task(int64_t hint = 0, int64_t functions = 2, int64_t layout = 0, int32_t wide = 0) {
        EXPECT_EQ(orv_df_kernel_dNewTask1D(&task, 5, x, hint, functions, y, layout, wide), 0);
    }
    ~Task() { orv_df_kernel_DeleteTask(&task); }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
};

TEST(FitTask, CreationRefusesInOrder) {
    const struct {
        int64_t count;
        const double* breaks;
        int64_t hint, functions;
        const double* values;
        int64_t layout;
        int32_t status;
    } cases[] = {
        {1, nullptr, 9, 0, y, 9, -1004}, {2, nullptr, 9, 0, y, 9, -1005}, {2, x, 3, 0, y, 9, -1006},
        {2, x, 4, 0, y, 9, -1007},       {2, x, 4, 1, nullptr, 9, -1008}, {2, x, 4, 1, y, 9, -1009},
        {2, x, 2, 0, nullptr, 0x80, 0},  {2, x, 1, 1, y, 0x10, 0},
    };
    for (const auto& c : cases) {
        DFTask* task = nullptr;
        EXPECT_EQ(orv_df_kernel_dNewTask1D(&task, c.count, c.breaks, c.hint, c.functions, c.values, c.layout, 0),
                  c.status);
        EXPECT_EQ(task != nullptr, c.status == 0);
        EXPECT_EQ(orv_df_kernel_DeleteTask(&task), c.status == 0 ? 0 : -1000);
    }
}

TEST(FitTask, SplineEditsKeepWhatStandsBeforeTheRefusal) {
    const Task t;
    EXPECT_EQ(orv_df_kernel_dEditPPSpline1D(nullptr, 4, 2, 2, nullptr, 0, nullptr, nullptr, 0), -1000);
    const struct {
        int64_t order, type, bc;
        const double* bc_data;
        int64_t ic;
        const double* ic_data;
        int32_t status;
    } cases[] = {
        {-1, 2, 0, nullptr, 0, nullptr, -1010}, {4, -1, 0, nullptr, 0, nullptr, -1011},
        {5, 6, 12, nullptr, 0, nullptr, -1015}, {4, 2, 12, y, 1, nullptr, -1013},
        {4, 2, 64, nullptr, 0, y, -1012},       {4, 2, 0, nullptr, 0, nullptr, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(orv_df_kernel_dEditPPSpline1D(t.task, c.order, c.type, c.bc, c.bc_data, c.ic, c.ic_data, nullptr, 0),
                  c.status);
        if (c.status < -1011) {
            EXPECT_EQ(t.task->splineOrder, c.order);
        }
        if (c.status == -1013) {
            EXPECT_EQ(t.task->bcType, 12);
        }
    }
    double c[40];
    orv_df_kernel_iEditVal(t.task, ORV_DF_FUNCTION_COUNT, 2);
    t.task->funcCount = 0;
    EXPECT_EQ(orv_df_kernel_dEditPPSpline1D(t.task, 4, 2, 0, nullptr, 0, nullptr, c, 0), -1007);
    EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, ORV_DF_COEFFICIENTS, c), -1007);
}

TEST(FitTask, ValuesAreCheckedStoredAndReadInBothWidths) {
    const struct {
        int64_t id, good, bad;
        int32_t status;
    } cases[] = {
        {14, 3, 1, -1004},
        {15, 2, 3, -1006},
        {16, 1, 0, -1007},
        {17, 0x20, 1, -1009},
        {18, 0, -1, -1010},
        {19, 9, 6, -1011},
        {20, 12, 4, -1012},
        {21, 77, -1, -1014},
        {22, 0x80, 4, -1017},
        {23, 1, 2, -1036},
        {21, int64_t{1} << 33, -5, -1014},
    };
    for (const int32_t wide : {0, 1}) {
        const Task t(0, 2, 0, wide);
        for (const auto& c : cases) {
            EXPECT_EQ(orv_df_kernel_iEditVal(t.task, c.id, c.good), 0) << c.id;
            EXPECT_EQ(orv_df_kernel_iEditVal(t.task, c.id, c.bad), c.status) << c.id;
            int64_t value = -1;
            EXPECT_EQ(orv_df_kernel_iQueryVal(t.task, c.id, &value), 0);
            const int64_t mask = int64_t{0xffffffff};
            EXPECT_EQ(value, wide ? c.good : (c.good & mask) | (~mask)) << c.id;
        }
        for (const int64_t id : {13, 24}) {
            EXPECT_EQ(orv_df_kernel_iEditVal(t.task, id, 1), -1019);
            int64_t value = 0;
            EXPECT_EQ(orv_df_kernel_iQueryVal(t.task, id, &value), -1019);
        }
        EXPECT_EQ(orv_df_kernel_iQueryVal(t.task, 14, nullptr), -1037);
    }
}

TEST(FitTask, PointersAreCheckedAndATaskThatIsNotEditableIsLeftAlone) {
    const Task t;
    double* queried = nullptr;
    const int32_t refusals[] = {-1005, -1008, -1013, -1015, -1016};
    for (int64_t id = 1; id <= 5; ++id) {
        EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, id, nullptr), refusals[id - 1]);
        EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, id, y + id), 0);
        EXPECT_EQ(orv_df_kernel_dQueryPtr(t.task, id, &queried), 0);
        EXPECT_EQ(queried, y + id);
    }
    EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, 6, y), -1019);
    EXPECT_EQ(orv_df_kernel_dQueryPtr(t.task, 0, &queried), -1019);
    EXPECT_EQ(orv_df_kernel_dQueryPtr(t.task, 1, nullptr), -1037);
    t.task->editable = 0;
    EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, 9, nullptr), 0);
    EXPECT_EQ(orv_df_kernel_iEditVal(t.task, 14, 0), 0);
    EXPECT_EQ(orv_df_kernel_dEditPPSpline1D(t.task, -1, 0, 0, nullptr, 0, nullptr, nullptr, 0), 0);
    EXPECT_EQ(orv_df_kernel_dEditIdxPtr(t.task, 2, 99, nullptr), 0);
    EXPECT_EQ(orv_df_kernel_dQueryIdxPtr(t.task, 9, 1, &queried), 0);
    EXPECT_EQ(orv_df_kernel_dQueryIdxPtr(t.task, 9, 9, &queried), -1020);
    EXPECT_EQ(t.task->breakCount, 5);
    EXPECT_EQ(t.task->breaks, y + 1);
    t.task->editable = 1;
}

// Every site's bucket must bound its cell.
template <class T>
void check_bucket_table(const DFTask& task, const std::vector<T>& b, T scale) {
    const auto count = static_cast<int32_t>(b.size());
    for (int step = 0; step <= 4096; ++step) {
        const T site = b.front() + (b.back() - b.front()) * static_cast<T>(step) / 4096;
        if (!(site < b.back())) continue;
        const auto c = static_cast<int64_t>((site - b.front()) * scale);
        ASSERT_LE(c, task.cellTableSize);
        int32_t cell = 0;
        while (cell < count && b[static_cast<size_t>(cell)] <= site) ++cell;
        ASSERT_LE(task.cellTable[c].lo, cell) << step;
        ASSERT_GE(task.cellTable[c].hi, cell) << step;
    }
}

TEST(FitTask, BucketsBoundTheCells) {
    for (const int64_t count : {2, 3, 17, 300, 5000, 20000}) {
        const std::vector<double> b = breaks<double>(count);
        DFTask* task = nullptr;
        ASSERT_EQ(orv_df_kernel_dNewTask1D(&task, count, b.data(), 0, 0, nullptr, 0, 0), 0);
        EXPECT_EQ(task->cellTableSize, std::min<int64_t>(std::max<int64_t>(count / 16, 16), 1024));
        check_bucket_table(*task, b, task->cellScale.d);
        orv_df_kernel_DeleteTask(&task);
    }
    // A uniform task gets its table when the partition is replaced and the hint set.
    const std::vector<float> b = {0, 1e-3f, 2e-3f, 1, 1, 1, 50, 51}, ends = {0, 51};
    DFTask* task = nullptr;
    ASSERT_EQ(orv_df_kernel_sNewTask1D(&task, 8, ends.data(), 4, 0, nullptr, 0, 0), 0);
    EXPECT_EQ(task->cellTable, nullptr);
    EXPECT_EQ(task->cellTableSize, 0);
    orv_df_kernel_sEditPtr(task, ORV_DF_BREAKS, b.data());
    EXPECT_EQ(task->cellTable, nullptr);
    EXPECT_EQ(orv_df_kernel_iEditVal(task, 15, 1), 0);
    ASSERT_NE(task->cellTable, nullptr);
    check_bucket_table(*task, b, task->cellScale.s);
    orv_df_kernel_DeleteTask(&task);
    // A partition of no width or of NaNs builds a table without a fault.
    for (const double bad : {3.0, std::nan("")}) {
        const double same[] = {3, bad, bad};
        ASSERT_EQ(orv_df_kernel_dNewTask1D(&task, 3, same, 0, 0, nullptr, 0, 0), 0);
        orv_df_kernel_DeleteTask(&task);
    }
}

// What a task's pointer arrays must hold after the edits so far.
template <class T>
struct Pointers {
    std::vector<const T*> entries;

    void set_blocks(const T* base, int64_t count, bool first_alone, int64_t length) {
        entries.assign(1, first_alone || count > 0 ? base : nullptr);
        for (int64_t i = 1; !first_alone && i < count; ++i) entries.push_back(base + i * length);
    }
    void set(int64_t index, const T* entry) {
        if (entries.size() <= static_cast<size_t>(index)) entries.resize(static_cast<size_t>(index) + 1);
        entries[static_cast<size_t>(index)] = entry;
    }
    const T* at(int64_t index) const {
        return static_cast<size_t>(index) < entries.size() ? entries[static_cast<size_t>(index)] : nullptr;
    }
};

template <class T>
class FitTaskEdits : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitTaskEdits, Elements);

// Edits in any order, each followed by everything that reads a task, over arrays that hold what the codes can ask for.
TYPED_TEST(FitTaskEdits, AnyOrderIsSafeAndKeepsThePointers) {
    using T = TypeParam;
    std::vector<T> data(8192), coeffs(8192), results(8192), sites = noise<T>(50);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<T>(i) / 8 - 1;
    // A second partition, of no break more than is ever asked for, for which the first one's bucket table is wrong.
    std::vector<T> other_breaks(40);
    for (size_t i = 0; i < 40; ++i) other_breaks[i] = i < 39 ? T(0.001) * static_cast<T>(i) : T(1);
    for (T& site : sites) site *= 2;
    for (unsigned seed = 0; seed < 400; ++seed) {
        std::mt19937 random(seed);
        const auto one_of = [&](auto... choices) {
            const int64_t all[] = {int64_t{choices}...};
            return all[random() % sizeof...(choices)];
        };
        const auto place = [&](std::vector<T>& array) { return array.data() + random() % 64; };
        DFTask* task = nullptr;
        const int64_t layout = one_of(0, 0x10, 0x20, 0x80), functions = one_of(0, 1, 2, 5);
        ASSERT_EQ(NewTask1D(T{}, &task, one_of(2, 3, 9, 40), data.data(), one_of(0, 1, 2, 4), functions,
                            functions ? data.data() : nullptr, layout, static_cast<int32_t>(random() % 2)),
                  0);
        Pointers<T> funcs, owned;
        const auto set_funcs = [&](const T* base) {
            funcs.set_blocks(base, task->funcCount, task->funcHint == 0x20 || task->funcHint == 0x80, task->breakCount);
        };
        const auto set_coeffs = [&](const T* base) {
            const int64_t cells = task->splineType == 1 ? task->breakCount : task->breakCount - 1;
            owned.set_blocks(base, task->funcCount, task->coeffHint == 0x80, cells * task->splineOrder);
        };
        if (functions) set_funcs(data.data());
        for (int edit = 0; edit < 40; ++edit) {
            const bool huge = task->funcCount > 100;
            switch (random() % 5) {
                case 0: {
                    const int64_t id = one_of(1, 2, 3, 4, 5, 6);
                    T* const to = id == 5   ? place(coeffs)
                                  : id != 1 ? place(data)
                                            : (random() % 2 ? data : other_breaks).data();
                    const int32_t status = EditPtr(T{}, task, id, to);
                    const bool one = id == 2 && task->funcHint == 0x20;
                    ASSERT_EQ(status, id == 6                                ? -1019
                                      : id == 5 && task->funcCount == 0      ? -1007
                                      : huge && (id == 2 || id == 5) && !one ? -1001
                                                                             : 0);
                    if (id == 2) status == 0 ? set_funcs(to) : funcs.entries.clear();
                    if (id == 5 && status != -1007) status == 0 ? set_coeffs(to) : owned.entries.clear();
                    break;
                }
                case 1: {
                    const int64_t id = 14 + random() % 9;
                    const int64_t values[] = {one_of(2, 3, 5, 9, 40), one_of(0, 1, 2, 4),      one_of(1, 2, 3, 8),
                                              one_of(0, 16, 32, 128), one_of(0, 2, 3, 4, 6),   one_of(0, 1, 2, 5, 9),
                                              one_of(0, 8),           one_of(0, 1, 2, 12, 64), one_of(0, 128)};
                    const bool grows = id == 16 && random() % 4 == 0;
                    EXPECT_EQ(orv_df_kernel_iEditVal(task, id, grows ? int64_t{1} << 40 : values[id - 14]), 0);
                    break;
                }
                case 2: {
                    const int64_t id = one_of(2, 5), index = one_of(-1, 0, 1, 2, 4, 7, 8, int64_t{1} << 39);
                    const T* const to = id == 5 ? place(coeffs) : place(data);
                    const bool refused = id == 2 && task->funcHint == 0x20;
                    const int32_t status = EditIdxPtr(T{}, task, id, index, to);
                    ASSERT_EQ(status, refused                                 ? -1009
                                      : index < 0 || index >= task->funcCount ? -1020
                                      : index > 100                           ? -1001
                                                                              : 0);
                    if (status == 0) (id == 2 ? funcs : owned).set(index, to);
                    break;
                }
                case 3:
                    EditPPSpline1D(T{}, task, one_of(2, 3, 4), one_of(0, 1, 2, 6, 7), one_of(1, 2, 64, 128),
                                   data.data(), int64_t{8}, data.data(), nullptr, task->coeffHint);
                    break;
                default: {
                    if (huge) break;
                    const auto spline = static_cast<Spline>(random() % 8);
                    construct_of<T>(spline)(task, nullptr, nullptr, 0, nullptr);
                    int64_t wide[50] = {};
                    int32_t narrow[50] = {};
                    void* const cells = task->wideInts ? static_cast<void*>(wide) : narrow;
                    const int64_t count = one_of(3, 50), hint = one_of(0, 0x40);
                    const auto expect_cells = [&] {
                        for (int64_t i = 0; i < count; ++i)
                            ASSERT_LE(task->wideInts ? wide[i] : narrow[i], task->breakCount);
                    };
                    Evaluation<T>{.task = task,
                                  .count = count,
                                  .sites = sites.data(),
                                  .results = results.data(),
                                  .type = one_of(1, 4, 5),
                                  .hint = hint,
                                  .cells = cells}();
                    expect_cells();
                    DFSearch1D(T{}, task, int64_t{0}, count, sites.data(), hint, nullptr, cells, nullptr, nullptr,
                               nullptr);
                    expect_cells();
                    DFIntegrate1D(T{}, task, int64_t{0}, count, sites.data(), int64_t{0}, data.data(), int64_t{0},
                                  nullptr, results.data(), int64_t{0}, nullptr);
                    break;
                }
            }
            for (int64_t i = 0; i <= 9; ++i)
                for (const int64_t id : {ORV_DF_FUNCTIONS, ORV_DF_COEFFICIENTS}) {
                    T* found = results.data();
                    const int32_t status = QueryIdxPtr(T{}, task, id, i, &found);
                    const bool interleaved = id == ORV_DF_FUNCTIONS && task->funcHint == 0x20;
                    ASSERT_EQ(status, i > task->funcCount ? -1020 : interleaved ? -1009 : 0);
                    ASSERT_EQ(found, status != 0 ? results.data() : (id == ORV_DF_FUNCTIONS ? funcs : owned).at(i))
                        << "seed " << seed << " edit " << edit << " id " << id << " index " << i;
                }
        }
        orv_df_kernel_DeleteTask(&task);
    }
}

TEST(FitTask, FailedAllocationsLeaveADeletableTask) {
    const int32_t before = orv_serv_live_blocks();
    for (int32_t nth = 1; nth <= 3; ++nth) {
        DFTask* task = nullptr;
        orv_serv_fail_allocation(nth);
        EXPECT_EQ(orv_df_kernel_dNewTask1D(&task, 5, x, 0, 2, y, 0, 0), -1001);
        EXPECT_EQ(task != nullptr, nth > 1);
        orv_df_kernel_DeleteTask(&task);
    }
    {
        const Task t;
        double c[32];
        orv_serv_fail_allocation(1);
        EXPECT_EQ(orv_df_kernel_dEditPPSpline1D(t.task, 4, 2, 0, nullptr, 0, nullptr, c, 0), -1001);
        EXPECT_EQ(t.task->coeffs, nullptr);
        orv_serv_fail_allocation(1);
        EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, ORV_DF_FUNCTIONS, y), -1001);
        EXPECT_EQ(t.task->funcs, nullptr);
        EXPECT_EQ(orv_df_kernel_dEditPtr(t.task, ORV_DF_FUNCTIONS, y), 0);
        orv_df_kernel_iEditVal(t.task, ORV_DF_FUNCTION_COUNT, 5);
        orv_serv_fail_allocation(1);
        EXPECT_EQ(orv_df_kernel_dEditIdxPtr(t.task, ORV_DF_FUNCTIONS, 4, y), -1001);
        EXPECT_EQ(t.task->funcs[1], y + 5);
        orv_serv_fail_allocation(1);
        EXPECT_EQ(orv_df_kernel_iEditVal(t.task, 15, 1), -1001);
        EXPECT_EQ(t.task->cellTable, nullptr);
    }
    orv_serv_fail_allocation(0);
    EXPECT_EQ(orv_serv_live_blocks(), before);
}

}  // namespace
}  // namespace orv::test
