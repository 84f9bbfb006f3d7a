#include "accuracy/functions.h"

namespace orv::accuracy {

const std::vector<Function>& functions() {
    static const std::vector<Function> all = [] {
        std::vector<Function> list;
        for (const auto family : {
                 basic_functions,
                 exp_log_functions,
                 power_functions,
                 trig_functions,
             })
            for (Function& function : family()) list.push_back(std::move(function));
        return list;
    }();
    return all;
}

const Function* find_function(std::string_view name, char type) {
    for (const Function& function : functions())
        if (function.name == name && function.types.find(type) != std::string_view::npos) return &function;
    return nullptr;
}

}  // namespace orv::accuracy
