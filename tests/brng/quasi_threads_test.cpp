// Long runs over threads, with a thread service of the test's own: which runs it is asked for and with what, and results
// bit for bit those of one thread.
#include "quasi.h"

#include <orv/services.h>

#include <thread>

using namespace orv::test;

namespace {

// What the service is told to be like, and what it was asked for.
int32_t limit = 1;
int32_t told_count = 0;  // what workers hear as the count: fewer than asked, or 0 for the same
int32_t calls = 0, groups = 0;
bool inside = false;

void parallel_for(int32_t count, int32_t threads, void* args, orv_serv_worker worker) {
    EXPECT_EQ(threads, 0);
    ++calls;
    groups = count;
    inside = true;
    const int32_t workers = told_count > 0 ? std::min(told_count, count) : count;
    std::vector<std::thread> team;
    for (int32_t t = 0; t < limit; ++t)
        team.emplace_back([=] {
            for (int32_t index = t; index < workers; index += limit) worker(index, 0, workers, args);
        });
    for (std::thread& thread : team) thread.join();
    inside = false;
}

int32_t thread_limit() { return inside ? 1 : limit; }

}  // namespace

extern "C" orv_serv_function orv_serv_load_thread_fun(const char* name) {
    if (std::strcmp(name, "orv_kuz_serv_threader_for") == 0) return reinterpret_cast<orv_serv_function>(parallel_for);
    if (std::strcmp(name, "orv_kuz_serv_threader_get_num_threads_limit") == 0)
        return reinterpret_cast<orv_serv_function>(thread_limit);
    return nullptr;
}

namespace {

template <class Number>
int32_t fill(Stream* stream, int32_t n, Number* r) {
    if constexpr (std::is_same_v<Number, double>)
        return generator_of(stream).dBRng(stream, n, r, -1, 2);
    else if constexpr (std::is_same_v<Number, float>)
        return generator_of(stream).sBRng(stream, n, r, -1, 2);
    else
        return generator_of(stream).iBRng(stream, n, r);
}

// `points` whole points of a stream that stands in the middle of one, by one thread and by several.
template <class Number>
void compare(int32_t id, size_t dimension, int32_t points, int32_t expected_groups, size_t offset) {
    const Words block = block_of(random_numbers(dimension, 4));
    const int32_t before = static_cast<int32_t>(dimension) + 1;
    const int32_t n = (points + 1) * static_cast<int32_t>(dimension);  // the rest of one, the whole ones, a piece
    std::vector<Number> one(static_cast<size_t>(n)), several(static_cast<size_t>(n) + 64);
    OwnedStream alone(id, block), together(id, block);
    draw(alone, before);
    draw(together, before);
    limit = 1;
    calls = 0;
    ASSERT_EQ(fill(alone, n, one.data()), StatusOk);
    ASSERT_EQ(calls, 0);
    const Words after = drawn(alone, 100);
    for (limit = 2; limit <= 4; ++limit)
        for (told_count = 0; told_count <= (limit == 3 ? 3 : 0); told_count += 3) {
            Stream* handle;
            ASSERT_EQ(__kuzCopyStream(&handle, together), StatusOk);
            OwnedStream copy(handle);
            calls = 0;
            Number* r = several.data() + offset;
            // So that a line of the result begins a row where that is asked for.
            while (offset == 0 && reinterpret_cast<uintptr_t>(r + dimension - 1) % 64 != 0) ++r;
            std::memset(static_cast<void*>(r), 0x77, sizeof(Number) * static_cast<size_t>(n));
            ASSERT_EQ(fill(copy, n, r), StatusOk);
            EXPECT_EQ(calls, expected_groups > 0 ? 1 : 0) << dimension << " " << points;
            if (expected_groups > 0) {
                EXPECT_EQ(groups, expected_groups) << dimension;
            }
            ASSERT_EQ(std::memcmp(one.data(), r, sizeof(Number) * static_cast<size_t>(n)), 0)
                << dimension << " " << limit;
            ASSERT_EQ(drawn(copy, 100), after);
        }
    limit = 1;
    told_count = 0;
}

// The rungs, from both sides, with the number of groups that the run is divided into: 0 for none.
TEST(QuasiThreads, WhichRunsAreDivided) {
    const struct {
        size_t dimension;
        int32_t points, doubles, words, floats;
    } cases[] = {
        {8, 0x20000, 0, 0, 0},       {16, 0x20000, 2, 0, 0},    {16, 0x1FFFF, 0, 0, 0}, {17, 0x20000, 0, 0, 0},
        {64, 0x20000, 8, 2, 0},      {64, 0x1FFFF, 0, 0, 0},    {65, 0x20000, 9, 3, 2}, {249, 0x2000, 0, 0, 0},
        {250, 0x2000, 32, 8, 4},     {250, 0x1FFF, 0, 0, 0},    {499, 0x1FFF, 0, 0, 0}, {500, 0x100, 63, 16, 8},
        {500, 0xFF, 0, 0, 0},        {1000, 0x40, 125, 32, 16}, {1000, 0x3F, 0, 0, 0},  {2000, 0x20, 250, 63, 32},
        {2000, 0x1F, 0, 0, 0},       {4000, 16, 500, 125, 63},  {3999, 16, 0, 0, 0},    {4000, 15, 0, 0, 0},
        {16000, 16, 2000, 500, 250}, {40000, 15, 0, 0, 0},
    };
    for (const auto& c : cases) {
        if (int64_t{c.points} * static_cast<int64_t>(c.dimension) > 3000000) continue;
        compare<double>(BrngSobol, c.dimension, c.points, c.doubles, 0);
        compare<uint32_t>(BrngNiederr, c.dimension, c.points, c.words, 1);
        compare<float>(BrngSobol, c.dimension, c.points, c.floats, 3);
    }
    // The longest ones once.
    compare<double>(BrngNiederr, 64, 0x20000, 8, 0);
    compare<float>(BrngSobol, 65, 0x20000, 2, 0);
    compare<uint32_t>(BrngSobol, 64, 0x20000, 2, 0);
}

// Forty million coordinates, and a call from inside a worker, which finds a limit of one.
TEST(QuasiThreads, LongAndNested) {
    constexpr int32_t n = 40000000, dimension = 64;
    std::vector<float> r(n);
    OwnedStream stream(BrngNiederr, {65}), twin(BrngNiederr, {65});
    limit = 4;
    calls = 0;
    ASSERT_EQ(fill(stream, n, r.data()), StatusOk);
    EXPECT_EQ(calls, 1);
    limit = 1;
    std::vector<float> part(1000003);
    for (int32_t at = 0; at < n; at += static_cast<int32_t>(part.size())) {
        const int32_t count = std::min(n - at, static_cast<int32_t>(part.size()));
        ASSERT_EQ(fill(twin, count, part.data()), StatusOk);
        ASSERT_EQ(std::memcmp(part.data(), r.data() + at, sizeof(float) * static_cast<size_t>(count)), 0) << at;
    }
    limit = 2;
    calls = 0;
    static std::vector<double> own(dimension * 0x20000);
    parallel_for(1, 0, nullptr, [](int32_t, int32_t, int32_t, void*) {
        OwnedStream nested(BrngNiederr, {dimension});
        EXPECT_EQ(fill(nested, static_cast<int32_t>(own.size()), own.data()), StatusOk);
    });
    EXPECT_EQ(calls, 1) << "the outer call alone";
    limit = 1;
}

}  // namespace
