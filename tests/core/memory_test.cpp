// Memory of the core library: alignment, bounds of copies, the failure switch.
#include "services/test_switches.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <orv/services.h>
#include <thread>
#include <vector>

namespace {

TEST(Memory, BlocksAreAlignedAndCounted) {
    const int32_t before = orv_serv_live_blocks();
    std::vector<void*> blocks;
    for (const int32_t alignment : {1, 4, 16, 64, 128, 4096})
        for (const size_t size : {0u, 1u, 127u, 4097u}) {
            void* block = orv_serv_allocate(size, alignment);
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % static_cast<uintptr_t>(alignment), 0u) << size;
            std::memset(block, 0xA5, size);
            blocks.push_back(block);
        }
    EXPECT_EQ(orv_serv_live_blocks() - before, static_cast<int32_t>(blocks.size()));
    for (void* block : blocks) orv_serv_deallocate(block);
    orv_serv_deallocate(nullptr);
    EXPECT_EQ(orv_serv_live_blocks(), before);
    // The sum with alignment and head wraps around.
    EXPECT_EQ(orv_serv_allocate(SIZE_MAX - 8, 128), nullptr);
    EXPECT_EQ(orv_serv_live_blocks(), before);
}

TEST(Memory, CopyKeepsToTheCapacity) {
    const char source[] = "abcdef";
    const struct {
        size_t capacity, count;
        int32_t status;
        const char* left;
    } cases[] = {{8, 3, 0, "abc....."}, {3, 3, 0, "abc....."}, {2, 3, 34, "........"}, {8, 0, 0, "........"}};
    for (const auto& c : cases) {
        std::array<char, 9> target;
        std::strcpy(target.data(), "........");
        EXPECT_EQ(orv_serv_memcpy_s(target.data(), c.capacity, source, c.count), c.status) << c.capacity;
        EXPECT_STREQ(target.data(), c.left) << c.capacity;
    }
    char target[4];
    EXPECT_EQ(orv_serv_memcpy_s(nullptr, 4, source, 1), 22);
    EXPECT_EQ(orv_serv_memcpy_s(target, 4, nullptr, 1), 22);
}

TEST(Memory, TheChosenAllocationFailsOnce) {
    for (const int32_t nth : {1, 3}) {
        orv_serv_fail_allocation(nth);
        for (int32_t turn = 1; turn <= 5; ++turn) {
            void* block = orv_serv_allocate(8, 8);
            EXPECT_EQ(block == nullptr, turn == nth) << turn;
            orv_serv_deallocate(block);
        }
    }
    orv_serv_fail_allocation(1);
    orv_serv_fail_allocation(0);
    void* block = orv_serv_allocate(8, 8);
    EXPECT_NE(block, nullptr);
    orv_serv_deallocate(block);
}

TEST(Memory, OneFailureAmongThreads) {
    orv_serv_fail_allocation(500);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 1000; ++turn) {
                void* block = orv_serv_allocate(16, 16);
                if (!block) ++failures;
                orv_serv_deallocate(block);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures.load(), 1);
}

}  // namespace
