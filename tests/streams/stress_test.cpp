// Eight threads copy and delete streams that share keys, and enter and release contested keys. Run under the address
// sanitizer and, in a build with ORV_RACES, under Valgrind's Helgrind and DRD:
//   ORV_STRESS_ROUNDS=50 valgrind --tool=helgrind build/race/bin/race_streams
#include "services/test_switches.h"
#include "streams/streams.h"

#include <orv/services.h>

#include <cstdlib>
#include <cstring>
#include <thread>

using namespace orv::test;

namespace {

constexpr int thread_count = 8;
constexpr int shared_keys = 5;
constexpr int32_t data_bytes = 256;

// Streams of a generator without numbers: nothing but the streams' own code runs.
int32_t seed_nothing(int32_t, Stream*, int32_t, const void*) { return StatusOk; }
int32_t no_floats(Stream*, int32_t, float*, float, float) { return StatusOk; }
int32_t no_doubles(Stream*, int32_t, double*, double, double) { return StatusOk; }
int32_t no_words(Stream*, int32_t, void*) { return StatusOk; }
constexpr BrngProperties no_generator = {64, 1, 0, 4, 32, seed_nothing, no_floats, no_doubles, no_words};

int rounds() {
    const char* set = std::getenv("ORV_STRESS_ROUNDS");
    return set ? std::atoi(set) : 2000;
}

void* filled(uint64_t k) {
    void* data = orv_serv_allocate(data_bytes, 128);
    std::memset(data, static_cast<int>(k), data_bytes);
    return data;
}

bool intact(const void* data, uint64_t k) {
    if (!data) return false;
    for (int32_t i = 0; i < data_bytes; ++i)
        if (static_cast<const unsigned char*>(data)[i] != static_cast<unsigned char>(k)) return false;
    return true;
}

// Adds a chunk under a key; data that the table already has takes the place of ours.
void add(Stream* stream, uint64_t k, int32_t id) {
    const uint64_t key[] = {k, 0xC0FFEE};
    void* data = filled(k);
    __kuzAddChunk(stream, id, key, data, data_bytes);
    if (__kuzSearchChunk(stream, id) != data) orv_serv_deallocate(data);
}

void work(Stream* own, int thread, int* failures) {
    for (int round = 0; round < rounds(); ++round) {
        Stream *copy, *second;
        __kuzCopyStream(&copy, own);
        __kuzCopyStream(&second, copy);
        // Keys that come and go: whoever is first enters them.
        const uint64_t contested = 100 + static_cast<uint64_t>((round + thread) % 3);
        add(second, contested, 50);
        __kuzCopyStreamState(copy, second);
        for (int k = 0; k < shared_keys; ++k)
            *failures += !intact(__kuzSearchChunk(copy, k), static_cast<uint64_t>(k + 1));
        __kuzDeleteStream(&second);
        *failures += !intact(__kuzSearchChunk(copy, 50), contested);
        __kuzDeleteStream(&copy);
    }
}

TEST(Stress, SharedKeys) {
    const int32_t before = orv_serv_live_blocks();
    const int32_t id = __kuzRegisterBrng(&no_generator);
    Stream* streams[thread_count];
    for (Stream*& stream : streams) {
        ASSERT_EQ(__kuzNewStreamEx(&stream, id, 0, nullptr), StatusOk);
        for (int k = 0; k < shared_keys; ++k) add(stream, static_cast<uint64_t>(k + 1), k);
    }
    int failures[thread_count] = {};
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; ++i) threads.emplace_back(work, streams[i], i, &failures[i]);
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < thread_count; ++i) {
        EXPECT_EQ(failures[i], 0) << i;
        __kuzDeleteStream(&streams[i]);
    }
    for (uint64_t k = 0; k < 200; ++k) {
        const uint64_t key[] = {k, 0xC0FFEE};
        RoDataEntry* entry;
        EXPECT_EQ(__kuzFindGlobRODataTableEntry(&entry, key), RoTableStatusNotFound) << k;
    }
    EXPECT_EQ(orv_serv_live_blocks(), before);
}

}  // namespace
