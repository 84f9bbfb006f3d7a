// Memory of the core library: alignment, bounds of copies, the failure switch.
#include <orv/services.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace {

TEST(Memory, BlocksAreAligned) {
    for (const int32_t alignment : {1, 4, 16, 64, 128, 4096})
        for (const size_t size : {0u, 1u, 127u, 4097u}) {
            void* block = orv_serv_allocate(size, alignment);
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % static_cast<uintptr_t>(alignment), 0u) << size;
            orv_serv_deallocate(block);
        }
    EXPECT_EQ(orv_serv_allocate(SIZE_MAX - 8, 128), nullptr);
}

}  // namespace
