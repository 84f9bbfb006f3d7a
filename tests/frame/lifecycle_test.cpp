// The library's life in a process: loaded and unloaded many times, used by many threads that end, and refused a load when
// the system has no thread slot left. The program is not linked with the library, so that unloading takes it away.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#endif

namespace {

// Beside this program's folder, or beside the program where libraries lie there. The core library stays loaded all the
// time: what its own runtimes keep from one load to the next is not the subject here.
std::string library_path;
std::string core_path;

#ifdef _WIN32

void* load(const std::string& path = library_path) { return LoadLibraryA(path.c_str()); }
void unload(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
void* find(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

// Bytes of the busy blocks in all heaps of the process.
size_t allocated_bytes() {
    HANDLE heaps[256];
    const DWORD count = GetProcessHeaps(256, heaps);
    size_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
    }
    return bytes;
}

size_t take_all_slots() {
    size_t taken = 0;
    while (TlsAlloc() != TLS_OUT_OF_INDEXES) ++taken;
    return taken;
}

#else

void* load(const std::string& path = library_path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
void unload(void* library) { dlclose(library); }
void* find(void* library, const char* name) { return dlsym(library, name); }

// The sanitizer keeps a record of every library ever loaded, and finds leaked blocks itself when the process ends.
size_t allocated_bytes() {
#if defined(__SANITIZE_ADDRESS__)
    return 0;
#else
    return mallinfo2().uordblks;
#endif
}

size_t take_all_slots() {
    size_t taken = 0;
    for (pthread_key_t key; pthread_key_create(&key, nullptr) == 0;) ++taken;
    return taken;
}

#endif

template <class Function>
Function* find_as(void* library, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(find(library, name)));
}

using GetMode = uint32_t();
using Kernel = void(int32_t, const double*, double*);

void use(void* library) {
    const double a[3] = {1.5, 2.5, -0.5};
    double y[3];
    find_as<Kernel>(library, "_arqdFloor")(3, a, y);
    EXPECT_EQ(y[2], -1.0);
    EXPECT_EQ(find_as<GetMode>(library, "_arqGetMode")(), 0x1A02u);
}

TEST(Lifecycle, TenThousandThreadsLeaveNothing) {
    void* library = load();
    ASSERT_NE(library, nullptr);
    auto* mode = find_as<GetMode>(library, "_arqGetMode");
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) std::thread([&] { EXPECT_EQ(mode(), 0x1A02u); }).join();
    };
    run(200);
    const size_t before = allocated_bytes();
    run(10000);
    // A leaked block would show 10,000 times over.
    EXPECT_LT(allocated_bytes(), before + 10000);
    unload(library);
}

TEST(Lifecycle, AThousandLoadsLeaveNothing) {
    const auto run = [](int count) {
        for (int i = 0; i < count; ++i) {
            void* library = load();
            ASSERT_NE(library, nullptr);
            use(library);
            std::thread([&] { use(library); }).join();
            unload(library);
        }
    };
    run(20);
    const size_t before = allocated_bytes();
    run(1000);
    // More thread slots than a process has would have been taken by now if unloading kept them.
    EXPECT_LT(allocated_bytes(), before + 1000);
}

TEST(Lifecycle, UnloadFreesTheBlocksOfLivingThreads) {
    void* library = load();
    ASSERT_NE(library, nullptr);
    // Loaded and unloaded while other threads keep their blocks: what remains of each round must not add up.
    unload(library);
    const auto round = [] {
        void* again = load();
        ASSERT_NE(again, nullptr);
        auto* mode = find_as<GetMode>(again, "_arqGetMode");
        volatile int ready = 0;
        volatile bool leave = false;
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                mode();
                __atomic_fetch_add(&ready, 1, __ATOMIC_SEQ_CST);
                while (!__atomic_load_n(&leave, __ATOMIC_SEQ_CST)) std::this_thread::yield();
            });
        while (__atomic_load_n(&ready, __ATOMIC_SEQ_CST) < 8) std::this_thread::yield();
        unload(again);
        __atomic_store_n(&leave, true, __ATOMIC_SEQ_CST);
        for (std::thread& thread : threads) thread.join();
    };
    for (int i = 0; i < 5; ++i) round();
    const size_t before = allocated_bytes();
    for (int i = 0; i < 100; ++i) round();
    EXPECT_LT(allocated_bytes(), before + 1000);
}

// In a process of its own: take every thread slot, then load.
[[noreturn]] void load_without_slots() {
    if (take_all_slots() < 32) std::exit(10);
    void* library = load();
    std::fprintf(stderr, library ? "loaded\n" : "refused\n");
    std::exit(library ? 11 : 3);
}

TEST(LifecycleDeathTest, ALoadWithoutASlotFails) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Where the system lets a library refuse, the load comes back; elsewhere the process ends. Both print the message.
    EXPECT_EXIT(load_without_slots(), testing::ExitedWithCode(3), "orv: no memory or no thread slot");
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string program = argv[0];
    const std::string folder = program.substr(0, program.find_last_of("/\\") + 1);
#ifdef _WIN32
    library_path = folder + "orv_sse41.dll";
    core_path = folder + "orv_core.dll";
#else
    library_path = folder + "../lib/liborv_sse41.so";
    core_path = folder + "../lib/liborv_core.so.0";
#endif
    if (!load(core_path)) {
        std::fprintf(stderr, "%s cannot be loaded\n", core_path.c_str());
        return 2;
    }
    return RUN_ALL_TESTS();
}
