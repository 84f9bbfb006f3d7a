// Environment, locks, the end of the process, and calls from a stack that is aligned to 4 bytes only.
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <orv/services.h>
#include <string>
#include <thread>
#include <vector>

namespace {

void set_variable(const char* name, const std::string& value) {
#ifdef _WIN32
    _putenv((std::string(name) + "=" + value).c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

TEST(Environment, ValuesFitOrAreRefused) {
    const char* const name = "ORV_TEST_VALUE";
    const struct {
        std::string value;
        int32_t size, result;
    } cases[] = {
        {"abc", 256, 3},
        {"abc", 4, 3},
        {"abc", 3, -1},
        {"abc", 1, -1},
        {"abc", 0, -1},
        {std::string(255, 'v'), 256, 255},
        {"", 256, 0},
        {std::string(256, 'v'), 256, -1},
        {std::string(5000, 'v'), 256, -1},
    };
    for (const auto& c : cases) {
        set_variable(name, c.value);
        char buffer[300];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(orv_serv_getenv(name, buffer, c.size), c.result) << c.value << " in " << c.size;
        if (c.size > 0) {
            EXPECT_STREQ(buffer, c.result >= 0 ? c.value.c_str() : "");
        }
        EXPECT_EQ(buffer[c.size], '#') << "written past the buffer";
    }
    char buffer[8] = "before";
    EXPECT_EQ(orv_serv_getenv("ORV_TEST_NO_SUCH_VARIABLE", buffer, 8), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(Lock, ExcludesUnderContention) {
    orv_serv_lock_word lock = 0;
    int64_t counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 20000; ++turn) {
                orv_serv_lock(&lock);
                ++counter;
                orv_serv_unlock(&lock);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 80000);
    EXPECT_EQ(lock, 0);
}

TEST(ExitDeathTest, EndsWithTheCode) { EXPECT_EXIT(orv_serv_exit(3), testing::ExitedWithCode(3), ""); }

// Calls a function with `words` on a stack whose pointer is `offset` bytes past a multiple of 16 where the convention
// of most compilers wants 0.
int32_t call_on_odd_stack(const void* function, const std::vector<uint32_t>& words, uint32_t offset) {
    const uint32_t* source = words.data();
    uint32_t count = static_cast<uint32_t>(words.size());
    // The arguments end up `offset` bytes past a multiple of 16.
    int32_t result = static_cast<int32_t>((count * 4 + 15) / 16 * 16 + 16 - offset);
    __asm__ volatile(
        "movl %%esp, %%ebx\n\t"
        "andl $-16, %%esp\n\t"
        "subl %%eax, %%esp\n\t"
        "movl %%esp, %%edi\n\t"
        "cld\n\t"
        "rep movsl\n\t"
        "call *%%edx\n\t"
        "movl %%ebx, %%esp"
        : "+a"(result), "+d"(function), "+S"(source), "+c"(count)
        :
        : "ebx", "edi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
    return result;
}

uint32_t word(const void* pointer) { return reinterpret_cast<uint32_t>(pointer); }

// How far each worker's arguments stood from a multiple of 16. They begin 8 bytes past the saved frame pointer.
uint32_t stands_off[4];
void note_stack(int32_t index, int32_t, int32_t, void*) {
    stands_off[index] = (word(__builtin_frame_address(0)) + 8) % 16;
}

TEST(Stack, EveryOffsetIsServed) {
    uint64_t bits;
    const double value = 1e300;
    std::memcpy(&bits, &value, 8);
    for (const uint32_t offset : {0u, 4u, 8u, 12u}) {
        testing::internal::CaptureStderr();
        const int32_t printed =
            call_on_odd_stack(reinterpret_cast<const void*>(orv_serv_print),
                              {1, 755, 2, 7, static_cast<uint32_t>(bits), static_cast<uint32_t>(bits >> 32)}, offset);
        const std::string text = testing::internal::GetCapturedStderr();
        EXPECT_EQ(text.substr(0, text.find_first_of("\r\n")), "orv:   element 7: argument 1.0000000000000001e+300");
        EXPECT_GT(printed, 40);

        for (uint32_t& off : stands_off) off = 99;
        call_on_odd_stack(reinterpret_cast<const void*>(orv_kuz_serv_threader_for),
                          {4, 2, 0, word(reinterpret_cast<const void*>(note_stack))}, offset);
        for (const uint32_t off : stands_off) EXPECT_EQ(off, 0u) << offset;
    }
}

}  // namespace
