#include "accuracy/functions.h"

namespace orv::accuracy {

const std::vector<Family>& families() {
    static const std::vector<Family> all = {
        {"Rounding and arithmetic", basic_functions()},
        {"Roots, quotients, remainders", roots_functions()},
        {"Exponentials and logarithms", exp_log_functions()},
        {"Powers", power_functions()},
        {"Inverse trigonometric functions", inverse_functions()},
        {"Hyperbolic functions", hyperbolic_functions()},
        {"Error functions, gamma functions, exponential integral", special_functions()},
        {"Sines, cosines, tangents", trig_functions()},
        {"Complex functions", complex_functions()},
        {"Inverse complex functions and powers", complex_inverse_functions()},
    };
    return all;
}

const Function* find_function(std::string_view name, char type) {
    for (const Family& family : families())
        for (const Function& function : family.functions)
            if (function.name == name && function.types.find(type) != std::string_view::npos) return &function;
    return nullptr;
}

}  // namespace orv::accuracy
