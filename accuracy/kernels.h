// The kernels that the library has, as what is measured: any argument shape, called over points.
#pragma once

#include "accuracy/functions.h"

#include <orv/vecmath.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace orv::accuracy {

enum class Shape { ONE, TO_REAL, TO_COMPLEX, TWO, SCALAR, TWO_OUT, LINEAR };

enum Accuracy { la, ha, ep };
inline constexpr const char* accuracy_names[] = {"LA", "HA", "EP"};

// A kernel in several slots of its row comes once, under the first.
struct Kernel {
    char type;
    const char* name;
    Shape shape;
    Accuracy accuracy;
    std::string slots;  // all accuracies that it serves, such as "LA, HA"
    orv_arq_kernel dense, strided;
    const Function* function;
    int inputs, outputs;  // components of an argument and of a result

    bool single() const { return type == 's' || type == 'c'; }
    bool serves(Accuracy other) const { return slots.find(accuracy_names[other]) != std::string::npos; }
};
// How a kernel shows in the name of a test.
void PrintTo(const Kernel& kernel, std::ostream* out);

// All that families() have a row for.
const std::vector<Kernel>& kernels();
// Rows of the library that families() have no row for, by name.
const std::vector<std::string>& rows_without_function();

// n points of `inputs` components each to n results of `outputs` components each, T being the type of a component.
template <class T>
void evaluate(const Kernel& kernel, const T* x, T* y, size_t n);

// Errors are stored in the thread's status and nothing else happens, as long as this stands.
struct SilentErrors {
    uint32_t saved = _arqSetMode(ORV_MODE_ERRMODE_IGNORE);
    ~SilentErrors() {
        _arqSetMode(saved);
        _arqClearErrStatus();
    }
};

}  // namespace orv::accuracy
