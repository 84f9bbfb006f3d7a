// What is done about a reported element when no callback has taken it: errno, messages, the x87 exception.
#include "frame/error_report.h"

#include "frame/fp_frame.h"
#include "frame/mode.h"
#include "platform/platform.h"
#include "services/services.h"

#include <string.h>

namespace orv::frame {
namespace {

enum : uint32_t {
    x87_invalid = 0x01,
    x87_zero_divide = 0x04,
    x87_overflow = 0x08,
    x87_underflow = 0x10,
    x87_all = 0x3F,
};

// How a status shows outside. The error numbers are those of the C library on both systems.
struct StatusRow {
    int32_t status;
    int error_number;
    uint32_t x87_flag;
    int32_t message;
};

constexpr StatusRow status_rows[] = {
    {status_ok, 0, 0, 0},
    {status_domain, 33, x87_invalid, 750},
    {status_singularity, 34, x87_zero_divide, 751},
    {status_overflow, 34, x87_overflow, 752},
    {status_underflow, 34, x87_underflow, 753},
    {status_bad_argument, 22, 0, 748},
    {status_bad_pointer, 13, 0, 749},
};
constexpr StatusRow other_status = {0, 14, 0, 754};

const StatusRow& row_of(int32_t status) {
    for (const StatusRow& row : status_rows)
        if (row.status == status) return row;
    return other_status;
}

// ---- errno ---------------------------------------------------------------------------------------------------------

// Looked up once in a process, found or not. Two threads that look at the same time find the same.
platform::ErrnoAddress errno_address = nullptr;
bool errno_looked_up = false;

void set_errno(int value) {
    if (!__atomic_load_n(&errno_looked_up, __ATOMIC_ACQUIRE)) {
        __atomic_store_n(&errno_address, platform::find_errno_address(), __ATOMIC_RELAXED);
        __atomic_store_n(&errno_looked_up, true, __ATOMIC_RELEASE);
    }
    if (const platform::ErrnoAddress address = __atomic_load_n(&errno_address, __ATOMIC_RELAXED)) *address() = value;
}

// ---- Messages ------------------------------------------------------------------------------------------------------

// A second value counts if it is another one than the first and not zero; equal values are how one-argument and
// one-result functions fill the context.
bool second_counts(const double& first, const double& second) {
    return memcmp(&first, &second, sizeof first) != 0 && !(second == 0.0);
}

void print_values(const ArqErrorContext& context) {
    const bool two_arguments = second_counts(context.arg1, context.arg2);
    const bool two_results = second_counts(context.res1, context.res2);
    constexpr int32_t first_codes[2][2] = {{755, 757}, {760, 763}};
    int32_t code = first_codes[two_arguments][two_results];
    const auto print = [&](double value) { orv_serv_print(1, code++, 2, context.index, value); };
    print(context.arg1);
    if (two_arguments) print(context.arg2);
    print(context.res1);
    if (two_results) print(context.res2);
}

void print_messages(const ArqErrorContext& context) {
    platform::touch_standard_error();
    const int32_t message = row_of(context.code).message;
    switch (context.code) {
        case status_ok:
            return;
        case status_bad_argument:
            orv_serv_print(1, message, 2, context.func_name, context.index);
            return;
        case status_bad_pointer:
            orv_serv_print(1, message, 1, context.func_name);
            return;
        default:
            orv_serv_print(1, message, 1, context.func_name);
            print_values(context);
    }
}

// ---- Exception -----------------------------------------------------------------------------------------------------

struct X87Environment {
    uint32_t control;
    uint32_t status;
    uint32_t rest[5];
};
static_assert(sizeof(X87Environment) == 28);

uint32_t trapped_exceptions(uint32_t mode) {
    return ((mode & mode_trap_invalid) ? x87_invalid : 0u) | ((mode & mode_trap_divbyzero) ? x87_zero_divide : 0u) |
           ((mode & mode_trap_overflow) ? x87_overflow : 0u) | ((mode & mode_trap_underflow) ? x87_underflow : 0u);
}

// Loads an environment in which the exception is pending and, if the mode traps it, not masked: such a one fires at the
// next x87 instruction that waits, which is the load that leaves the flag set and everything masked.
//
// Without a trap that leaves an environment with the flag set and everything masked, as the report before has mostly left
// it already: then there is nothing to load.
void raise_exception(int32_t status) {
    const uint32_t flag = row_of(status).x87_flag;
    const uint32_t trapped = trapped_exceptions(current_mode());
    const bool masked = (read_x87_control() & x87_all) == x87_all;
    if (trapped == 0 && masked && (read_x87_status() & flag) == flag) return;

    X87Environment stored;
    __asm__ volatile("fnstenv %0" : "=m"(stored) : : "memory");
    X87Environment pending = stored;
    pending.control &= ~trapped;
    pending.status = (pending.status & ~uint32_t{x87_all}) | flag;
    __asm__ volatile("fldenv %0" : : "m"(pending) : "memory");
    stored.control |= x87_all;
    stored.status |= flag;
    __asm__ volatile("fldenv %0" : : "m"(stored) : "memory");
}

}  // namespace

void ReportDefaultActions(const ArqErrorContext* context) {
    const uint32_t mode = current_mode();
    if (mode & mode_error_errno) set_errno(row_of(context->code).error_number);
    if (mode & mode_error_stderr) print_messages(*context);
    if (mode & mode_error_except) raise_exception(context->code);
}

}  // namespace orv::frame
