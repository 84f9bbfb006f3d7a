// The mode word: its first value from the environment, merging, the table index, and its life per thread.
#include <orv/vecmath.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace {

void set_variable(const char* value) {
#ifdef _WIN32
    _putenv((std::string("ORV_ARQ_MODE=") + (value ? value : "")).c_str());
#else
    if (value)
        setenv("ORV_ARQ_MODE", value, 1);
    else
        unsetenv("ORV_ARQ_MODE");
#endif
}

// The variable is read at a thread's first call.
uint32_t first_mode(const char* value) {
    set_variable(value);
    uint32_t mode = 0;
    std::thread([&] { mode = orv_arq_kernel_GetMode(); }).join();
    set_variable(nullptr);
    return mode;
}

std::string repeated(const char* token, int times) {
    std::string list = token;
    for (int i = 1; i < times; ++i) list += std::string(",") + token;
    return list;
}

constexpr uint32_t standard = 0x1A02;

TEST(Environment, GivesTheFirstMode) {
    const struct {
        std::string value;
        uint32_t mode;
    } cases[] = {
        {"ARQ_LA", 0x1A01},
        {"ARQ_HA", 0x1A02},
        {"ARQ_EP", 0x1A03},
        {"ARQ_DEFAULT_PRECISION", standard},
        {"ARQ_FLOAT_CONSISTENT", 0x1A12},
        {"ARQ_DOUBLE_CONSISTEN", 0x1A22},
        {"ARQ_DOUBLE_CONSISTENT", standard},
        {"ARQ_RESTORE", 0x1A32},
        {"ARQ_ERRMODE_IGNORE", 0x102},
        {"ARQ_ERRMODE_ERRNO", 0x202},
        {"ARQ_ERRMODE_STDERR", 0x402},
        {"ARQ_ERRMODE_EXCEPT", 0x802},
        {"ARQ_ERRMODE_CALLBACK", 0x1002},
        {"ARQ_ERRMODE_NOERR", 0x2002},
        {"ARQ_ERRMODE_DEFAULT", standard},
        {"ARQ_TRAP_INVALID", 0x1001A02},
        {"ARQ_TRAP_DIVBYZERO", 0x2001A02},
        {"ARQ_TRAP_OVERFLOW", 0x4001A02},
        {"ARQ_TRAP_UNDERFLOW", 0x8001A02},
        {"ARQ_EP,ARQ_ERRMODE_IGNORE,ARQ_TRAP_INVALID", 0x1000103},
        {"ARQ_HA,ARQ_LA", 0x1A03},  // tokens are combined, none replaces another
        // Not valid as a whole.
        {"", standard},
        {"LA", standard},
        {"ARQ_", standard},
        {"ARQ_XX", standard},
        {"ARQ_la", standard},
        {"ARQ_HAX", standard},
        {"ARQ_HA,xyz", standard},
        {"ARQ_HA,", standard},
        {"ARQ_EP, ARQ_LA", standard},
        {" ARQ_EP", standard},
        {",ARQ_EP", standard},
        // The buffer holds 256 bytes. 36 tokens are 251 long, and the last starts where its keyword still ends inside.
        {repeated("ARQ_EP", 36), 0x1A03},
        {repeated("ARQ_EP", 37), standard},
        {repeated("ARQ_LA", 35) + ",ARQ_HA,A", standard},
        {std::string(255, 'A'), standard},
        {std::string(5000, 'A'), standard},
    };
    for (const auto& [value, mode] : cases) EXPECT_EQ(first_mode(value.c_str()), mode) << value;
    EXPECT_EQ(first_mode(nullptr), standard);
}

TEST(SetMode, MergesFieldByField) {
    const struct {
        uint32_t mode, merged;
    } cases[] = {
        {0, standard},          {0x30, standard},  // consistency cannot be set
        {0xF0C300F0, standard},                    // nor anything outside the four fields
        {0x1, 0x1A01},          {0x3, 0x1A03},          {0x100, 0x102},
        {0x2000, 0x2002},       {0x280000, 0x281A02},   {0x140000, 0x141A02},
        {0x1000000, 0x1001A02}, {0xC000000, 0xC001A02}, {0x5281403, 0x5281403},
    };
    for (const auto& [mode, merged] : cases)
        std::thread([&, mode = mode, merged = merged] {
            EXPECT_EQ(_arqSetMode(mode), standard);
            EXPECT_EQ(_arqGetMode(), merged) << std::hex << mode;
            EXPECT_EQ(orv_arq_kernel_GetMode(), merged);
        }).join();
}

TEST(SetMode, ReplacesAFieldAsAWhole) {
    std::thread([] {
        orv_arq_kernel_SetMode(0x280000 | ORV_MODE_TRAP_INVALID | ORV_MODE_LA);
        EXPECT_EQ(orv_arq_kernel_SetMode(0x140000 | ORV_MODE_TRAP_OVERFLOW | ORV_MODE_HA), 0x1281A01u);
        EXPECT_EQ(orv_arq_kernel_GetMode(), 0x4141A02u);
    }).join();
}

TEST(SetMode, KeepsTheConsistencyOfTheEnvironment) {
    set_variable("ARQ_RESTORE");
    std::thread([] {
        _arqSetMode(0xFFFFFFFF & ~0x30u);
        EXPECT_EQ(_arqGetMode() & 0xF0, 0x30u);
    }).join();
    set_variable(nullptr);
}

TEST(Mode, IsPerThread) {
    const uint32_t before = _arqSetMode(ORV_MODE_EP);
    std::thread([] {
        EXPECT_EQ(_arqGetMode(), standard);
        _arqSetMode(ORV_MODE_LA);
        EXPECT_EQ(orv_arq_kernel_GetTTableIndex(), 0);
    }).join();
    EXPECT_EQ(orv_arq_kernel_GetTTableIndex(), 2);
    _arqSetMode(before);
}

TEST(TableIndex, IsTheAccuracyFieldLessOne) {
    const struct {
        uint32_t mode;
        int32_t index;
    } cases[] = {{0, -1}, {0x1A01, 0}, {0x1A02, 1}, {0xFFFFFFF3, 2}, {0xFFFFFFF0, -1}, {0xF, 14}};
    for (const auto& [mode, index] : cases)
        for (const uint32_t ignored : {0u, 3u, ~0u})
            EXPECT_EQ(orv_arq_kernel_GetTTableIndexM(ignored, mode), index) << mode;
}

}  // namespace
