// The thread service: every index once, the cap on threads, nested calls, and the limit's sources.
#include <array>
#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <mutex>
#include <orv/services.h>
#include <set>
#include <string>
#include <thread>

namespace {

struct Record {
    std::mutex mutex;
    std::set<std::thread::id> threads;
    std::array<std::atomic<int>, 1000> calls{};
    std::atomic<int> wrong{0};
    int32_t inner = 0;
};

void note(int32_t index, int32_t reserved, int32_t count, void* args) {
    Record& record = *static_cast<Record*>(args);
    if (reserved != 0 || index < 0 || index >= count) ++record.wrong;
    ++record.calls[static_cast<size_t>(index)];
    const std::scoped_lock guard(record.mutex);
    record.threads.insert(std::this_thread::get_id());
}

TEST(Threads, EachIndexOnce) {
    const orv_services* services = orv_serv_services();
    for (const int32_t count : {-1, 0, 1, 2, 7, 1000})
        for (const int32_t threads : {0, 1, 3, -1}) {
            Record direct, fanned;
            services->parallel_for(count, threads, &direct, note);
            services->fan_out(count, &fanned, note);
            for (int32_t i = 0; i < 1000; ++i) {
                ASSERT_EQ(direct.calls[static_cast<size_t>(i)], i < count) << i << " of " << count;
                ASSERT_EQ(fanned.calls[static_cast<size_t>(i)], i < count) << i << " of " << count;
            }
            EXPECT_EQ(direct.wrong + fanned.wrong, 0);
            const size_t limit = static_cast<size_t>(services->thread_limit());
            EXPECT_LE(direct.threads.size(),
                      threads > 0 ? std::min<size_t>(limit, static_cast<size_t>(threads)) : limit);
        }
    EXPECT_EQ(services->reserved1, nullptr);
    EXPECT_EQ(services->reserved3, nullptr);
}

TEST(Threads, WorkIsSpread) {
    if (orv_kuz_serv_threader_get_num_threads_limit() < 2) GTEST_SKIP() << "one thread here";
    // Both workers wait for each other, so one thread alone would not come back.
    std::atomic<int> arrived{0};
    orv_kuz_serv_threader_for(2, 2, &arrived, [](int32_t, int32_t, int32_t, void* args) {
        auto& count = *static_cast<std::atomic<int>*>(args);
        ++count;
        for (int64_t spins = 0; count < 2 && spins < 1000000; ++spins) std::this_thread::yield();
    });
    EXPECT_EQ(arrived, 2);
}

// A nested call stays on its thread, also where the outer call had a single one.
TEST(Threads, NestedCallsRunOnOneThread) {
    for (const int32_t outer_threads : {0, 1}) {
        Record record;
        std::atomic<int> outer_calls{0};
        struct Both {
            Record* record;
            std::atomic<int>* outer;
        } both{&record, &outer_calls};
        orv_kuz_serv_threader_for(4, outer_threads, &both, [](int32_t, int32_t, int32_t, void* args) {
            const Both& own = *static_cast<Both*>(args);
            ++*own.outer;
            Record inner;
            orv_kuz_serv_threader_for(50, 0, &inner, note);
            const bool stayed = inner.threads.size() == 1 && *inner.threads.begin() == std::this_thread::get_id();
            if (!stayed || orv_kuz_serv_threader_get_num_threads_limit() != 1) ++own.record->wrong;
        });
        EXPECT_EQ(outer_calls, 4);
        EXPECT_EQ(record.wrong, 0);
    }
    EXPECT_GE(orv_kuz_serv_threader_get_num_threads_limit(), 1);
}

TEST(Threads, FoundByName) {
    const auto fan_out =
        reinterpret_cast<decltype(&orv_kuz_serv_threader_for)>(orv_serv_load_thread_fun("orv_kuz_serv_threader_for"));
    const auto limit = reinterpret_cast<decltype(&orv_kuz_serv_threader_get_num_threads_limit)>(
        orv_serv_load_thread_fun("orv_kuz_serv_threader_get_num_threads_limit"));
    ASSERT_TRUE(fan_out && limit);
    Record record;
    fan_out(5, 0, &record, note);
    EXPECT_EQ(record.calls[4], 1);
    EXPECT_EQ(limit(), orv_kuz_serv_threader_get_num_threads_limit());
    for (const char* name : {"orv_kuz_serv_threader", "orv_serv_print", ""})
        EXPECT_EQ(orv_serv_load_thread_fun(name), nullptr);
}

// The runtime reads its settings when the process starts, so each setting gets a process of its own.
TEST(ThreadsDeathTest, LimitFollowsTheEnvironment) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const struct {
        const char *threads, *cap;
        int limit;
    } cases[] = {{"1", "64", 1}, {"5", "64", 5}, {"5", "3", 3}};
    for (const auto& c : cases) {
#ifdef _WIN32
        _putenv((std::string("OMP_NUM_THREADS=") + c.threads).c_str());
        _putenv((std::string("OMP_THREAD_LIMIT=") + c.cap).c_str());
#else
        setenv("OMP_NUM_THREADS", c.threads, 1);
        setenv("OMP_THREAD_LIMIT", c.cap, 1);
#endif
        EXPECT_EXIT(std::_Exit(orv_kuz_serv_threader_get_num_threads_limit()), testing::ExitedWithCode(c.limit), "");
    }
}

#ifdef ORV_TEST_SHARES_OPENMP
extern "C" void omp_set_num_threads(int count);

TEST(Threads, LimitFollowsTheRuntime) {
    for (const int count : {3, 1, 2}) {
        omp_set_num_threads(count);
        EXPECT_EQ(orv_kuz_serv_threader_get_num_threads_limit(), count);
    }
}
#endif

}  // namespace
