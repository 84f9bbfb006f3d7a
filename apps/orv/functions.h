// The vector functions that the library holds, as a table made from its own list.
#pragma once

#include <orv/vecmath.h>
#include <span>
#include <string_view>

namespace orv::command {

enum class Shape {
    ONE,
    TO_REAL,
    TO_COMPLEX,
    TWO,
    SCALAR,
    TWO_OUT,
    LINEAR,
    PACK_STRIDE,
    PACK_LIST,
    UNPACK_STRIDE,
    UNPACK_LIST
};

struct Function {
    char type;
    std::string_view name;
    Shape shape;
    bool has_strided;
    // By accuracy index: the exported entries, and the row of the exported table.
    orv_arq_kernel entries[3];
    const orv_arq_kernel* table_row;
};

std::span<const Function> functions();

// The function of this type; null if the library does not hold it. Letters of either case match.
const Function* try_function(std::string_view name, char type);
// The same; ends the command if the library does not hold it.
const Function& find_function(std::string_view name, char type);

// Calls a kernel of the function on arrays of its shape; those that it has not are null. `constants` are the arguments by
// value: the one of SCALAR, the four of LINEAR. The moves are not called this way.
void call(const Function& function, orv_arq_kernel kernel, int32_t n, const void* a, const void* b,
          const void* constants, void* y, void* z);

}  // namespace orv::command
