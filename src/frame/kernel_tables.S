// The tables and the entry stubs, one macro call a row.
//
// A row of the array is 24 bytes: three kernel pointers by accuracy ("LA", "HA", "EP"), three cost figures. Each
// exported table name is a label inside the array. A stub loads the pointer from its slot at every call, since the rows
// are writable data, and jumps with the caller's arguments in place.
#include "frame/entry_stubs.h"
#include "frame/kernel_tables.h"
#include "frame/measured_costs.h"

// ---- The array of rows ---------------------------------------------------------------------------------------------

#define COST(la, ha, ep) la, ha, ep
#define MEASURED(row) ORV_COST_##row

#define SLOTS_(slots) .long slots
#define SLOTS(sharing, kernel) SLOTS_(ORV_SLOTS_##sharing(kernel))

#define TABLE_ROW(row, sharing, ...)                                  \
    STUB_DATA(orv_arq_kernel_##row##_ttab, 12);                         \
    STUB_DATA(orv_arq_kernel_##row##_ctab, 12);                         \
    orv_row_##row: STUB_SYMBOL(orv_arq_kernel_##row##_ttab):            \
    SLOTS(sharing, STUB_SYMBOL(orv_kernel_##row));                      \
    STUB_SYMBOL(orv_arq_kernel_##row##_ctab):                           \
    .float __VA_ARGS__

#define TABLE_DENSE(type, function, shape, sharing, cost) TABLE_ROW(type##function, sharing, cost);
#define TABLE_STRIDED(type, function, shape, sharing, cost) TABLE_ROW(type##function##I, sharing, cost);

    .data
    .balign 32
STUB_SYMBOL(orv_kernel_rows):
    ORV_MATH_ROWS(TABLE_DENSE)
    ORV_MOVE_ROWS(TABLE_DENSE)
    ORV_MATH_ROWS(TABLE_STRIDED)
    .if . - STUB_SYMBOL(orv_kernel_rows) != 440 * 24
    .error "the tables hold 440 rows of 24 bytes"
    .endif

// ---- The entry stubs -----------------------------------------------------------------------------------------------

#define PASTE_(a, b) a##b
#define PASTE(a, b) PASTE_(a, b)
#define LA_NAME(type, row) PASTE(_arq##row, ORV_LA_SUFFIX_##type)
#define EP_NAME(type, row) PASTE(_arq##row, ORV_EP_SUFFIX_##type)

#define STUBS(type, row, body)                                       \
    STUB_ENTRY(LA_NAME(type, row)); body(orv_row_##row + 0);              \
    STUB_ENTRY_TWO(_arq##row, _arq##row##_HA); body(orv_row_##row + 4);   \
    STUB_ENTRY(EP_NAME(type, row)); body(orv_row_##row + 8)

// A scalar of two doubles travels by value: seven words of arguments, nine in the strided form.
#define RELAY_ZPOWX(slot) STUB_RELAY(slot, 7)
#define RELAY_ZPOWXI(slot) STUB_RELAY(slot, 9)
#define DENSE_SCALAR_s STUB_JUMP
#define DENSE_SCALAR_d STUB_JUMP
#define DENSE_SCALAR_c STUB_JUMP
#define DENSE_SCALAR_z RELAY_ZPOWX
#define STRIDED_SCALAR_s STUB_JUMP
#define STRIDED_SCALAR_d STUB_JUMP
#define STRIDED_SCALAR_c STUB_JUMP
#define STRIDED_SCALAR_z RELAY_ZPOWXI

// Words of arguments before the hidden flag: a 64-bit count or stride takes two.
#define RELAY_STRIDE(slot) STUB_RELAY_FLAG(slot, 6)
#define RELAY_LIST(slot) STUB_RELAY_FLAG(slot, 5)

#define DENSE_ONE(type) STUB_JUMP
#define DENSE_TO_REAL(type) STUB_JUMP
#define DENSE_TO_COMPLEX(type) STUB_JUMP
#define DENSE_TWO(type) STUB_JUMP
#define DENSE_SCALAR(type) DENSE_SCALAR_##type
#define DENSE_TWO_OUT(type) STUB_JUMP
#define DENSE_LINEAR(type) STUB_JUMP
#define DENSE_PACK_STRIDE(type) RELAY_STRIDE
#define DENSE_UNPACK_STRIDE(type) RELAY_STRIDE
#define DENSE_PACK_LIST(type) RELAY_LIST
#define DENSE_UNPACK_LIST(type) RELAY_LIST
#define STRIDED_ONE(type) STUB_JUMP
#define STRIDED_TO_REAL(type) STUB_JUMP
#define STRIDED_TO_COMPLEX(type) STUB_JUMP
#define STRIDED_TWO(type) STUB_JUMP
#define STRIDED_SCALAR(type) STRIDED_SCALAR_##type
#define STRIDED_TWO_OUT(type) STUB_JUMP
#define STRIDED_LINEAR(type) STUB_JUMP

#define ENTRIES_DENSE(type, function, shape, sharing, cost) \
    STUBS(type, type##function, DENSE_##shape(type));
#define ENTRIES_STRIDED(type, function, shape, sharing, cost) \
    STUBS(type, type##function##I, STRIDED_##shape(type));

    .text
    ORV_MATH_ROWS(ENTRIES_DENSE)
    ORV_MOVE_ROWS(ENTRIES_DENSE)
    ORV_MATH_ROWS(ENTRIES_STRIDED)

STUB_END
