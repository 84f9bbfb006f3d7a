#include "functions.h"

#include <algorithm>
#include <cctype>

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

bool same_letters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

std::span<const Function> functions() { return all; }

const Function* find_function(std::string_view name, char type) {
    const auto found = std::find_if(std::begin(all), std::end(all),
                                    [&](const Function& f) { return f.type == type && same_letters(f.name, name); });
    return found == std::end(all) ? nullptr : found;
}

}  // namespace orv::command
