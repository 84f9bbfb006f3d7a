// The floating-point frame: the caller's control state comes back whatever it was, with the flags that arose; and the
// caller's stack may be aligned to 4 bytes only.
#include "support/control_state.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>
#include <xmmintrin.h>

namespace {

using namespace orv::test;

// Every present row of one or two inputs, each accuracy, as one call over ordinary arguments.
struct Call {
    std::string name;
    void (*run)(const Row& row, int accuracy);
    const Row* row;
    int accuracy;
};

template <class T>
T ordinary(int i) {
    return static_cast<T>(0.3 + 0.05 * i);
}
template <>
orv_complex_s ordinary(int) {
    return {0.3f, -0.4f};
}
template <>
orv_complex_d ordinary(int) {
    return {0.3, -0.4};
}

// The arguments are made beforehand: with exceptions unmasked, the test's own arithmetic would trap.
template <class T>
struct Arguments {
    static constexpr int n = 37;
    T a[n];
    Arguments() {
        for (int i = 0; i < n; ++i) a[i] = ordinary<T>(i % 10);
    }
};
template <class T>
const Arguments<T> arguments;

template <class T>
void run_row(const Row& row, int accuracy) {
    constexpr int n = Arguments<T>::n;
    const T* a = arguments<T>.a;
    static T y[n];
    if (row.shape() == "ONE") {
        entry<OneInput<T>>(row.dense, accuracy)(n, a, y);
        entry<OneInputStrided<T>>(row.strided, accuracy)(n, a, 1, y, 1);
    } else {
        entry<TwoInputs<T>>(row.dense, accuracy)(n, a, a, y);
        entry<TwoInputsStrided<T>>(row.strided, accuracy)(n, a, 1, a, 1, y, 1);
    }
}

std::vector<Call> all_calls() {
    std::vector<Call> calls;
    for (const Row& row : math_rows()) {
        if ((row.shape() != "ONE" && row.shape() != "TWO")) continue;
        auto* run = row.type == 's'   ? run_row<float>
                    : row.type == 'd' ? run_row<double>
                    : row.type == 'c' ? run_row<orv_complex_s>
                                      : run_row<orv_complex_d>;
        for (int accuracy = 0; accuracy < 3; ++accuracy)
            calls.push_back({row.name() + " " + accuracy_names[accuracy], run, &row, accuracy});
    }
    return calls;
}

TEST(ControlState, ComesBackAsItWas) {
    constexpr unsigned states[] = {
        0x1F80, 0x1FBF, 0x1F88,          // usual, with flags set
        0x3F80, 0x5F80, 0x7F80,          // rounding
        0x9FC0, 0x9F80, 0x1FC0, 0xFFC0,  // flush to zero, denormals are zero
        0x0000, 0x1F00, 0x0F80, 0x1780,  // exceptions unmasked
        0x6040, 0xFF7F,
    };
    constexpr uint16_t x87_states[] = {usual_x87, 0x027F, 0x007F, 0x0F7F, 0x0340, 0x037E, 0x0B5F};
    for (const Call& call : all_calls())
        for (const uint32_t denormals : {ORV_MODE_DENORMAL_KEEP, ORV_MODE_DENORMAL_FLUSH})
            for (const unsigned mxcsr : states)
                for (const uint16_t x87 : x87_states) {
                    const uint32_t mode = _arqSetMode(denormals);
                    set_x87_control(x87);
                    _mm_setcsr(mxcsr);
                    call.run(*call.row, call.accuracy);
                    const unsigned mxcsr_after = _mm_getcsr();
                    const uint16_t x87_after = x87_control();
                    _mm_setcsr(usual_mxcsr);
                    set_x87_control(usual_x87);
                    _arqSetMode(mode);
                    ASSERT_EQ(mxcsr_after & ~0x3Fu, mxcsr & ~0x3Fu)
                        << call.name << std::hex << " mxcsr " << mxcsr << " x87 " << x87;
                    ASSERT_EQ(mxcsr_after & mxcsr & 0x3F, mxcsr & 0x3F)
                        << call.name << " lost flags of " << std::hex << mxcsr;
                    ASSERT_EQ(x87_after, x87) << call.name << std::hex << " mxcsr " << mxcsr;
                }
}

TEST(ControlState, FlagsOfTheKernelAreMergedIntoTheCallers) {
    constexpr unsigned overflow = 0x08, inexact = 0x20, zero_divide = 0x04;
    const double huge[5] = {1e300, 1e300, 1e300, 1e300, 1e300};
    double y[5];
    for (const unsigned control : {0x1F80u, 0x3F80u, 0x0000u}) {
        _mm_setcsr(control | zero_divide);
        _arqdMul(5, huge, huge, y);
        const unsigned after = _mm_getcsr();
        _mm_setcsr(usual_mxcsr);
        EXPECT_EQ(after, control | zero_divide | overflow | inexact) << std::hex << control;
    }
}

TEST(ControlState, DoesNotReachResults) {
    // Subnormal numbers, which scalar paths scale; and one whose quotient by pi is normal, but not its lower half.
    constexpr double a[4] = {0x0.fffffffffffffp-1022, 0x0.012688b70e62bp-1022, -0x1.fffffffffffffp-1021, 0.3};
    constexpr double b[4] = {0x1.fffffffffffffp-1022, 0.7, 3.0, 0x0.012688b70e62bp-1022};
    const auto run = [&](const Call& call, uint16_t x87, double* y) {
        set_x87_control(x87);
        if (call.row->shape() == "ONE")
            entry<OneInput<double>>(call.row->dense, call.accuracy)(4, a, y);
        else
            entry<TwoInputs<double>>(call.row->dense, call.accuracy)(4, a, b, y);
        set_x87_control(usual_x87);
    };
    _arqSetMode(ORV_MODE_DENORMAL_KEEP);
    for (const Call& call : all_calls()) {
        if (call.row->type != 'd') continue;
        double expected[4], y[4];
        run(call, usual_x87, expected);
        for (const uint16_t x87 : {0x027F, 0x007F, 0x0F7F, 0x0B7F}) {
            run(call, x87, y);
            EXPECT_EQ(std::memcmp(y, expected, sizeof y), 0) << call.name << std::hex << " x87 " << x87;
        }
        if (call.row->function() != "Asinpi" && call.row->function() != "Atanpi") continue;
        _arqSetMode(ORV_MODE_DENORMAL_FLUSH);
        run(call, usual_x87, y);
        _arqSetMode(ORV_MODE_DENORMAL_KEEP);
        EXPECT_EQ(y[2], expected[2]) << call.name << " with subnormal numbers flushed";
    }
}

TEST(ControlState, NothingIsTouchedForNoElements) {
    for (const Call& call : all_calls()) {
        if (call.row->shape() != "ONE" || call.row->type != 'd') continue;
        double y = 42;
        entry<OneInput<double>>(call.row->dense, call.accuracy)(0, nullptr, &y);
        EXPECT_EQ(y, 42) << call.name;
    }
}

// Calls with the stack pointer at `offset` past a 16-byte boundary, as old callers leave it, from assembly, so that no
// compiler-made frame realigns the stack before the kernel does.
void call_on_odd_stack(Entry entry, int offset, int32_t n, const double* a, double* y) {
    __asm__ volatile(
        "movl %%esp, %%esi\n\t"
        "andl $-16, %%esp\n\t"
        "subl %%eax, %%esp\n\t"
        "pushl %%edx\n\t"
        "pushl %%ecx\n\t"
        "pushl %%ebx\n\t"
        "call *%[entry]\n\t"
        "movl %%esi, %%esp\n\t"
        : "+a"(offset), "+b"(n), "+c"(a), "+d"(y)
        : [entry] "D"(entry)
        : "esi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
}

TEST(Stack, MayBeAlignedToFourBytes) {
    const double a[9] = {0.25, -1.5, 2.5, 0.75, 0.5, -0.25, 0.875, 1.0, 0.125};
    for (const Row& row : math_rows()) {
        if (row.shape() != "ONE" || row.type != 'd') continue;
        for (int accuracy = 0; accuracy < 3; ++accuracy) {
            double expected[9];
            entry<OneInput<double>>(row.dense, accuracy)(9, a, expected);
            for (int offset = 0; offset < 16; offset += 4) {
                double y[9] = {};
                call_on_odd_stack(row.dense.entries[accuracy], offset, 9, a, y);
                EXPECT_EQ(std::memcmp(y, expected, sizeof y), 0) << row.name() << " at offset " << offset;
            }
        }
    }
}

}  // namespace
