// The forms of entry stubs that no present row uses yet: arguments laid out again, and the hidden flag.
#include <orv/vecmath.h>

#include <gtest/gtest.h>

#include <cstdint>

extern "C" {
extern void (*probe_slots[2])();
void probe_jump(int32_t n, const double* a, double* y);
void probe_relay_7(int32_t n, const orv_complex_d* a, orv_complex_d b, orv_complex_d* y);
void probe_relay_9(int32_t n, const orv_complex_d* a, int32_t inca, orv_complex_d b, orv_complex_d* y, int32_t incy);
// Also called with one argument too many, as a word that happens to lie behind the others.
void probe_flag_6(int64_t n, const double* a, int64_t inca, double* y, int32_t extra);
void probe_flag_5(int64_t n, const double* a, const int32_t* list, double* y);
}

namespace {

// As every kernel, those behind the stubs cannot count on more than a 4-byte aligned stack.
#define KERNEL [[gnu::force_align_arg_pointer]] void

// What the kernel behind the stub saw.
struct Seen {
    int64_t n;
    const void* a;
    const void* list;
    void* y;
    int64_t inca, incy;
    orv_complex_d b;
    int32_t flag;
} seen;

KERNEL kernel_plain(int32_t n, const double* a, double* y) { seen = {n, a, nullptr, y, 0, 0, {}, 0}; }
KERNEL kernel_7(int32_t n, const orv_complex_d* a, orv_complex_d b, orv_complex_d* y) {
    seen = {n, a, nullptr, y, 0, 0, b, 0};
}
KERNEL kernel_9(int32_t n, const orv_complex_d* a, int32_t inca, orv_complex_d b, orv_complex_d* y, int32_t incy) {
    seen = {n, a, nullptr, y, inca, incy, b, 0};
}
KERNEL kernel_flag_6(int64_t n, const double* a, int64_t inca, double* y, int32_t flag) {
    seen = {n, a, nullptr, y, inca, 0, {}, flag};
}
KERNEL kernel_flag_5(int64_t n, const double* a, const int32_t* list, double* y, int32_t flag) {
    seen = {n, a, list, y, 0, 0, {}, flag};
}

template <class Kernel>
void put(int slot, Kernel* kernel) {
    seen = {};
    probe_slots[slot] = reinterpret_cast<void (*)()>(kernel);
}

const double a[1] = {};
double y[1];
const int32_t list[1] = {};
const orv_complex_d za[1] = {};
orv_complex_d zy[1];

TEST(StubForms, JumpKeepsTheArguments) {
    put(1, kernel_plain);
    probe_jump(5, a, y);
    EXPECT_EQ(seen.n, 5);
    EXPECT_EQ(seen.a, a);
    EXPECT_EQ(seen.y, y);
}

TEST(StubForms, AComplexScalarTravelsByValue) {
    put(0, kernel_7);
    probe_relay_7(7, za, {1.5, -2.5}, zy);
    EXPECT_EQ(seen.n, 7);
    EXPECT_EQ(seen.a, za);
    EXPECT_EQ(seen.b.re, 1.5);
    EXPECT_EQ(seen.b.im, -2.5);
    EXPECT_EQ(seen.y, zy);

    put(1, kernel_9);
    probe_relay_9(9, za, -2, {3.5, 4.5}, zy, 3);
    EXPECT_EQ(seen.n, 9);
    EXPECT_EQ(seen.inca, -2);
    EXPECT_EQ(seen.b.re, 3.5);
    EXPECT_EQ(seen.b.im, 4.5);
    EXPECT_EQ(seen.y, zy);
    EXPECT_EQ(seen.incy, 3);
}

TEST(StubForms, TheHiddenFlagIsOneWhateverFollowsTheArguments) {
    put(0, kernel_flag_6);
    for (const int32_t word : {0, 1, 77}) {
        probe_flag_6(int64_t{1} << 33, a, -3, y, word);
        EXPECT_EQ(seen.n, int64_t{1} << 33);
        EXPECT_EQ(seen.inca, -3);
        EXPECT_EQ(seen.y, y);
        EXPECT_EQ(seen.flag, 1);
    }
    put(1, kernel_flag_5);
    probe_flag_5(11, a, list, y);
    EXPECT_EQ(seen.n, 11);
    EXPECT_EQ(seen.list, list);
    EXPECT_EQ(seen.y, y);
    EXPECT_EQ(seen.flag, 1);
}

}  // namespace
