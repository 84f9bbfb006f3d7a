#include "functions.h"

#include "failure.h"
#include "names.h"

#include <algorithm>
#include <string>
#include <vector>

namespace orv::command {

namespace {

#define KERNEL(name) reinterpret_cast<orv_arq_kernel>(name)
#define FUNCTION(type, function, shape, has_strided)                                                                   \
    {#type[0],                                                                                                         \
     #function,                                                                                                        \
     Shape::shape,                                                                                                     \
     has_strided,                                                                                                      \
     {KERNEL(ORV_VECMATH_LA_##type(function)), KERNEL(_arq##type##function), KERNEL(ORV_VECMATH_EP_##type(function))}, \
     orv_arq_kernel_##type##function##_ttab},
#define MATH_ROW(type, function, shape) FUNCTION(type, function, shape, true)
#define MOVE_ROW(type, function, shape) FUNCTION(type, function, shape, false)

const Function all[] = {ORV_VECMATH_ROWS(MATH_ROW) ORV_VECMATH_MOVE_ROWS(MOVE_ROW)};

template <class X>
void call_typed(const Function& function, orv_arq_kernel kernel, int32_t n, const void* a, const void* b,
                const void* constants, void* y, void* z) {
    const X *const xa = static_cast<const X*>(a), *const xb = static_cast<const X*>(b);
    const X* const c = static_cast<const X*>(constants);
    X *const xy = static_cast<X*>(y), *const xz = static_cast<X*>(z);
    switch (function.shape) {
        case Shape::TWO:
            return reinterpret_cast<void (*)(int32_t, const X*, const X*, X*)>(kernel)(n, xa, xb, xy);
        case Shape::TWO_OUT:
            return reinterpret_cast<void (*)(int32_t, const X*, X*, X*)>(kernel)(n, xa, xy, xz);
        case Shape::SCALAR:
            return reinterpret_cast<void (*)(int32_t, const X*, X, X*)>(kernel)(n, xa, *c, xy);
        case Shape::LINEAR:
            return reinterpret_cast<void (*)(int32_t, const X*, const X*, X, X, X, X, X*)>(kernel)(
                n, xa, xb, c[0], c[1], c[2], c[3], xy);
        default:
            // One array in and one out, of whatever they hold.
            return reinterpret_cast<void (*)(int32_t, const void*, void*)>(kernel)(n, a, y);
    }
}

}  // namespace

std::span<const Function> functions() { return all; }

const Function* try_function(std::string_view name, char type) {
    for (const Function& function : all)
        if (function.type == type && same_letters(function.name, name)) return &function;
    return nullptr;
}

const Function& find_function(std::string_view name, char type) {
    if (const Function* function = try_function(name, type)) return *function;
    std::vector<std::string> known;
    for (const Function& function : all)
        if (function.type == type) known.emplace_back(function.name);
    std::sort(known.begin(), known.end());
    fail(no_such(std::string("function of type ") + type + ",", name, known));
}

void call(const Function& function, orv_arq_kernel kernel, int32_t n, const void* a, const void* b,
          const void* constants, void* y, void* z) {
    switch (function.type) {
        case 's':
            return call_typed<float>(function, kernel, n, a, b, constants, y, z);
        case 'd':
            return call_typed<double>(function, kernel, n, a, b, constants, y, z);
        case 'c':
            return call_typed<orv_complex_s>(function, kernel, n, a, b, constants, y, z);
        default:
            return call_typed<orv_complex_d>(function, kernel, n, a, b, constants, y, z);
    }
}

}  // namespace orv::command
