// The row list as the tests see it: every row, with its entries and tables where its kernels are there.
#pragma once

#include "frame/kernel_tables.h"

#include <orv/vecmath.h>

#include <span>
#include <string>
#include <string_view>

namespace orv::test {

enum class Sharing { ALL, LA_HA, LA_EP, EACH };

using Entry = void (*)();

// One form, dense or strided, of a row. Entries are in the order of the accuracy index: "LA", "HA", "EP".
struct Form {
    Entry entries[3] = {};
    Entry ha_twin = nullptr;
    const orv_arq_kernel* ttab = nullptr;
    const float* ctab = nullptr;
};

struct Row {
    char type;
    const char* function_name;
    const char* shape_name;
    Sharing sharing;
    bool fixed_cost;
    float cost[3];
    Form dense, strided;

    std::string_view function() const { return function_name; }
    std::string_view shape() const { return shape_name; }
    std::string name() const { return type + std::string(function_name); }
};

inline constexpr const char* accuracy_names[3] = {"LA", "HA", "EP"};

#define ORV_PASTE_(a, b) a##b
#define ORV_PASTE(a, b) ORV_PASTE_(a, b)
#define ORV_ENTRY(name) reinterpret_cast<orv::test::Entry>(name)
#define ORV_FORM(type, row)                                                                     \
    {                                                                                           \
        {ORV_ENTRY(ORV_PASTE(_arq##row, ORV_LA_SUFFIX_##type)), ORV_ENTRY(_arq##row),           \
         ORV_ENTRY(ORV_PASTE(_arq##row, ORV_EP_SUFFIX_##type))},                                \
            ORV_ENTRY(_arq##row##_HA), orv_arq_kernel_##row##_ttab, orv_arq_kernel_##row##_ctab \
    }

#define COST(la, ha, ep) \
    true, { la, ha, ep }
#define MEASURED(row) \
    false, { 0, 0, 0 }
#define ORV_MATH_ROW(type, function, shape, sharing, ...) \
    {#type[0],                                            \
     #function,                                           \
     #shape,                                              \
     Sharing::sharing,                                    \
     __VA_ARGS__,                                         \
     ORV_FORM(type, type##function),                      \
     ORV_FORM(type, type##function##I)},
#define ORV_MOVE_ROW(type, function, shape, sharing, ...) \
    {#type[0], #function, #shape, Sharing::sharing, __VA_ARGS__, ORV_FORM(type, type##function), {}},

// Plain arrays: laid out by the compiler where it can be, and quick to compile.
inline const Row math_row_list[] = {ORV_MATH_ROWS(ORV_MATH_ROW)};
inline std::span<const Row> math_rows() { return math_row_list; }

inline const Row move_row_list[] = {ORV_MOVE_ROWS(ORV_MOVE_ROW)};
inline std::span<const Row> move_rows() { return move_row_list; }

#undef COST
#undef MEASURED

// The entry of a form under its type.
template <class Function>
Function* entry(const Form& form, int accuracy) {
    return reinterpret_cast<Function*>(form.entries[accuracy]);
}

template <class T>
using OneInput = void(int32_t n, const T* a, T* y);
template <class T>
using OneInputStrided = void(int32_t n, const T* a, int32_t inca, T* y, int32_t incy);
template <class T>
using TwoInputs = void(int32_t n, const T* a, const T* b, T* y);
template <class T>
using TwoInputsStrided = void(int32_t n, const T* a, int32_t inca, const T* b, int32_t incb, T* y, int32_t incy);

}  // namespace orv::test
