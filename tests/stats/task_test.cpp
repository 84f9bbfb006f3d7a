// The task's life and its editors: checks in order, ids and statuses, what grouped editors store.
#include "services/test_switches.h"

#include <orv/statistics.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

namespace {

// A task of double or float form over 64-bit integers; only the pointers matter.
struct Fixture {
    int64_t p = 2, n = 3, form = StorageRows;
    double x[6] = {};
    SSTask* task = nullptr;
    Fixture() { EXPECT_EQ(__kuzdSSNewTask(&task, &p, &n, &form, x, nullptr, nullptr, 1), 0); }
    ~Fixture() { __kuzSSDeleteTask(&task); }
};

TEST(Task, CreationChecksInOrder) {
    const int32_t zero = 0, one = 1, two = 2, rows = StorageRows, both = 0x30000;
    const int64_t wide_rows = StorageRows, above = (int64_t{1} << 32) + StorageRows;
    const double x[4] = {};
    const struct {
        const void *p, *n, *form;
        const double* x;
        int32_t status;
    } cases[] = {
        {nullptr, &one, &rows, x, SSStatusP},         {&zero, nullptr, nullptr, x, SSStatusP},
        {&two, nullptr, nullptr, x, SSStatusStorage}, {&two, nullptr, &both, x, SSStatusStorageValue},
        {&two, nullptr, &rows, x, SSStatusN},         {&two, &zero, &rows, x, SSStatusN},
        {&two, &two, &rows, x, SSStatusOk},           {&two, nullptr, nullptr, nullptr, SSStatusOk},
    };
    for (const auto& c : cases) {
        SSTask* const before = reinterpret_cast<SSTask*>(0x10);
        SSTask* task = before;
        EXPECT_EQ(__kuzdSSNewTask(&task, c.p, c.n, c.form, c.x, nullptr, nullptr, 0), c.status);
        if (c.status != 0)
            EXPECT_EQ(task, before);
        else
            EXPECT_EQ(__kuzSSDeleteTask(&task), 0);
    }
    const int64_t wide_two = 2;
    SSTask* task = nullptr;
    EXPECT_EQ(__kuzdSSNewTask(&task, &wide_two, &wide_two, &above, x, nullptr, nullptr, 1), SSStatusStorageValue);
    EXPECT_EQ(
        __kuzsSSNewTask(&task, &wide_two, &wide_two, &wide_rows, reinterpret_cast<const float*>(x), nullptr, &one, 7),
        0);
    EXPECT_EQ(task->wideInts, 7);
    EXPECT_EQ(task->recordTag, 2);
    EXPECT_EQ(task->isDouble, 0);
    EXPECT_EQ(task->indices, &one);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(task) % 128, 0u);
    EXPECT_EQ(__kuzSSDeleteTask(&task), 0);

    orv_serv_fail_allocation(1);
    task = reinterpret_cast<SSTask*>(0x10);
    EXPECT_EQ(__kuzdSSNewTask(&task, &two, &two, &rows, x, nullptr, nullptr, 0), SSStatusAllocation);
    EXPECT_EQ(task, nullptr);
}

int cleanups = 0;

TEST(Task, DeletionGivesBackWhatTheTaskOwns) {
    const int32_t blocks = orv_serv_live_blocks();
    {
        Fixture f;
        f.task->ownedBuffer = orv_serv_allocate(16, 128);
        f.task->cleanupCount = 2;
        f.task->cleanup = [](SSTask*) { ++cleanups; };
        EXPECT_EQ(__kuzSSDeleteTask(&f.task), 0);
        EXPECT_EQ(f.task, nullptr);
        EXPECT_EQ(cleanups, 2);
        EXPECT_EQ(__kuzSSDeleteTask(&f.task), 0);
    }
    EXPECT_EQ(__kuzSSDeleteTask(nullptr), 0);
    EXPECT_EQ(orv_serv_live_blocks(), blocks);
}

// Ids of integer fields; all others from 1 to 79 are data.
const std::set<int64_t> integer_ids = {1,  2,  4,  5,  20, 22, 24, 28, 29, 32, 34, 36, 37, 41,
                                       44, 45, 47, 49, 50, 52, 54, 56, 58, 61, 62, 64, 75, 79};

TEST(Editors, EachIdStoresOneFieldThroughItsOwnEntry) {
    Fixture f;
    std::set<std::ptrdiff_t> fields;
    for (int64_t id = 1; id <= 79; ++id) {
        SSTask before = *f.task;
        static double value;
        const void* other_entry_value = &value;
        const bool integer = integer_ids.count(id) != 0;
        EXPECT_EQ(integer ? __kuzdSSEditTask(f.task, id, &value) : __kuziSSEditTask(f.task, id, other_entry_value),
                  SSStatusBadId)
            << id;
        EXPECT_LT(integer ? __kuziSSEditTask(f.task, id, nullptr) : __kuzdSSEditTask(f.task, id, nullptr), -4000) << id;
        EXPECT_EQ(std::memcmp(&before, f.task, sizeof before), 0) << id;
        EXPECT_EQ(integer ? __kuziSSEditTask(f.task, id, &value) : __kuzdSSEditTask(f.task, id, &value), 0) << id;
        for (std::ptrdiff_t word = 0; word < 94; ++word) {
            const void *was, *is;
            std::memcpy(&was, reinterpret_cast<char*>(&before) + 4 * word, 4);
            std::memcpy(&is, reinterpret_cast<char*>(f.task) + 4 * word, 4);
            if (was == is) continue;
            EXPECT_EQ(is, &value);
            EXPECT_TRUE(fields.insert(word).second) << id;
        }
    }
    EXPECT_EQ(fields.size(), 79u);
}

TEST(Editors, IdsAreCompared64Bit) {
    Fixture f;
    double value = 0;
    for (const int64_t id : {int64_t{0}, int64_t{80}, int64_t{-1}, (int64_t{1} << 32) + 7, INT64_MIN}) {
        EXPECT_EQ(__kuzdSSEditTask(f.task, id, &value), SSStatusBadId) << id;
        EXPECT_EQ(__kuziSSEditTask(f.task, id, &value), SSStatusBadId) << id;
    }
    EXPECT_EQ(__kuzdSSEditTask(nullptr, 200, &value), SSStatusNullTask);
    EXPECT_EQ(__kuziSSEditTask(nullptr, 1, nullptr), SSStatusNullTask);
}

TEST(Editors, StatusOfANullValue) {
    Fixture f;
    // The pointers of all forms share a few statuses; a missing sum is reported as a missing mean.
    const struct {
        int64_t id;
        int32_t status;
    } cases[] = {{3, -4032},  {6, -4005},  {7, -4006},  {13, -4012}, {18, -4017}, {19, -4018}, {21, -4019}, {23, -4020},
                 {25, -4021}, {27, -4024}, {30, -4035}, {31, -4034}, {33, -4037}, {35, -4036}, {38, -4042}, {40, -4027},
                 {42, -4039}, {43, -4041}, {46, -4046}, {48, -4047}, {51, -4048}, {53, -4053}, {55, -4054}, {57, -4057},
                 {59, -4062}, {60, -4071}, {63, -4065}, {65, -4068}, {66, -4070}, {67, -4006}, {68, -4075}, {73, -4080},
                 {74, -4081}, {76, -4082}, {77, -4083}, {78, -4084}, {1, -4001},  {2, -4002},  {4, -4044},  {5, -4004},
                 {24, -4022}, {28, -4038}, {36, -4044}, {37, -4043}, {41, -4040}, {45, -4045}, {52, -4049}, {54, -4055},
                 {56, -4056}, {58, -4061}, {62, -4066}, {64, -4069}, {79, -4044}};
    for (const auto& c : cases)
        EXPECT_EQ(
            integer_ids.count(c.id) ? __kuziSSEditTask(f.task, c.id, nullptr) : __kuzsSSEditTask(f.task, c.id, nullptr),
            c.status)
            << c.id;
}

TEST(Editors, GroupsStoreTheirArgumentsInOrder) {
    Fixture f;
    int a[10];
    const auto at = [&](int k) { return static_cast<const void*>(&a[k]); };
    const SSTask before = *f.task;
    EXPECT_EQ(__kuzdSSEditMoments(f.task, 0, 0, 0, 0, 0, 0, 0), 0);
    EXPECT_EQ(std::memcmp(&before, f.task, sizeof before), 0);
    EXPECT_EQ(__kuzdSSEditMoments(nullptr, 0, 0, 0, 0, 0, 0, 0), SSStatusNullTask);
    EXPECT_EQ(__kuzsSSEditMoments(f.task, at(0), at(1), at(2), at(3), at(4), at(5), nullptr), 0);
    const SSTask& t = *f.task;
    const auto expect = [&](std::vector<const void*> fields) {
        for (size_t k = 0; k < fields.size(); ++k) EXPECT_EQ(fields[k], at(static_cast<int>(k))) << k;
    };
    expect({t.mean, t.rawMoment2, t.rawMoment3, t.rawMoment4, t.centralMoment2, t.centralMoment3});
    EXPECT_EQ(t.centralMoment4, nullptr);
    __kuzdSSEditSums(f.task, at(0), at(1), at(2), at(3), at(4), at(5), at(6));
    expect({t.sum, t.rawSum2, t.rawSum3, t.rawSum4, t.centralSum2, t.centralSum3, t.centralSum4});
    __kuzdSSEditCP(f.task, at(0), at(1), at(2), at(3));
    expect({t.mean, t.sum, t.cp, t.cpStorage});
    __kuzsSSEditMtxParametrz(f.task, at(0), at(1), at(2), at(3));
    expect({t.cor, t.corStorage, t.corParamResult, t.corParamStorage});
    __kuzdSSEditOutDetect(f.task, at(0), at(1), at(2));
    expect({t.outlierParamCount, t.outlierParams, t.outlierWeights});
    __kuzdSSEditPooledCovariance(f.task, at(0), at(1), at(2), at(3), at(4), at(5));
    expect(
        {t.pooledGroupCount, t.pooledResultMean, t.pooledResultCov, t.pooledGroupIndices, t.pooledMean, t.pooledCov});
    __kuzdSSEditPartialCovCor(f.task, at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8));
    expect({t.partialCountA, t.cov, t.covStorage, t.cor, t.corStorage, t.partialCov, t.partialCovStorage, t.partialCor,
            t.partialCorStorage});
    __kuzdSSEditCovCor(f.task, at(0), at(1), at(2), at(3), at(4));
    expect({t.mean, t.cov, t.covStorage, t.cor, t.corStorage});
    __kuzdSSEditQuantiles(f.task, at(0), at(1), at(2), at(3), at(4));
    expect({t.quantOrderCount, t.quantOrders, t.quantiles, t.orderStats, t.orderStatsStorage});
    __kuzsSSEditStreamQuantiles(f.task, at(0), at(1), at(2), at(3), at(4));
    expect({t.streamOrderCount, t.streamOrders, t.streamQuantiles, t.streamParamCount, t.streamParams});
    __kuzdSSEditRCov(f.task, at(0), at(1), at(2), at(3), at(4));
    expect({t.robustMethod, t.robustParamCount, t.robustParams, t.robustMean, t.robustCov});
    __kuzdSSEditMissingVals(f.task, at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7), at(8), at(9));
    expect({t.missMethod, t.missMatrix, t.missCountA, t.missMean, t.missCountB, t.missCov, t.missCountC, t.missCor,
            t.missCountD, t.missStorage});
}

}  // namespace
