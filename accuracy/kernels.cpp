#include "accuracy/kernels.h"

#include <orv/vecmath_entries.h>

#include <algorithm>
#include <ostream>

namespace orv::accuracy {

namespace {

struct Row {
    char type;
    const char* name;
    Shape shape;
    const orv_arq_kernel *dense, *strided;
};

#define ROW(type, function, shape)                                              \
    {#type[0], #function, Shape::shape, orv_arq_kernel_##type##function##_ttab, \
     orv_arq_kernel_##type##function##I_ttab},
const Row rows[] = {ORV_VECMATH_ROWS(ROW)};

void add_kernels(std::vector<Kernel>& list, const Row& row, const Function* function) {
    const bool complex = row.type == 'c' || row.type == 'z';
    const int argument = complex && row.shape != Shape::TO_COMPLEX ? 2 : 1;
    const int inputs = row.shape == Shape::TWO || row.shape == Shape::SCALAR ? 2 * argument
                       : row.shape == Shape::LINEAR                          ? 6
                                                                             : argument;
    const int outputs = row.shape == Shape::TWO_OUT || (complex && row.shape != Shape::TO_REAL) ? 2 : 1;
    for (int i = 0; i < 3; ++i) {
        const orv_arq_kernel* const slots = row.dense;
        if (std::find(slots, slots + i, slots[i]) != slots + i) continue;
        std::string served;
        for (int j = i; j < 3; ++j)
            if (slots[j] == slots[i]) served += (served.empty() ? "" : ", ") + std::string(accuracy_names[j]);
        list.push_back({row.type, row.name, row.shape, static_cast<Accuracy>(i), served, slots[i], row.strided[i],
                        function, inputs, outputs});
    }
}

struct Lists {
    std::vector<Kernel> kernels;
    std::vector<std::string> without;

    Lists() {
        for (const Row& row : rows) {
            if (const Function* function = find_function(row.name, row.type))
                add_kernels(kernels, row, function);
            else
                without.push_back(row.type + std::string(row.name));
        }
    }
};
const Lists& lists() {
    static const Lists both;
    return both;
}

template <class Signature, class... Arguments>
void call(const Kernel& kernel, size_t n, Arguments... arguments) {
    reinterpret_cast<Signature*>(kernel.dense)(static_cast<int32_t>(n), arguments...);
}

template <class T>
struct ComplexOf;
template <>
struct ComplexOf<float> {
    using Type = orv_complex_s;
};
template <>
struct ComplexOf<double> {
    using Type = orv_complex_d;
};

}  // namespace

const std::vector<Kernel>& kernels() { return lists().kernels; }
const std::vector<std::string>& rows_without_function() { return lists().without; }

void PrintTo(const Kernel& kernel, std::ostream* out) { *out << kernel.type << kernel.name << " " << kernel.slots; }

template <class T>
void evaluate(const Kernel& kernel, const T* x, T* y, size_t n) {
    using Complex = typename ComplexOf<T>::Type;
    switch (kernel.shape) {
        case Shape::ONE:
        case Shape::TO_REAL:
        case Shape::TO_COMPLEX:
            return call<void(int32_t, const T*, T*)>(kernel, n, x, y);
        case Shape::TWO: {
            const size_t width = static_cast<size_t>(kernel.inputs) / 2;
            std::vector<T> a(n * width), b(n * width);
            for (size_t i = 0; i < n; ++i) {
                std::copy_n(x + 2 * width * i, width, &a[width * i]);
                std::copy_n(x + 2 * width * i + width, width, &b[width * i]);
            }
            return call<void(int32_t, const T*, const T*, T*)>(kernel, n, a.data(), b.data(), y);
        }
        case Shape::SCALAR:
            for (size_t i = 0; i < n; ++i, x += kernel.inputs, y += kernel.outputs) {
                if (kernel.inputs == 2)
                    call<void(int32_t, const T*, T, T*)>(kernel, 1, x, x[1], y);
                else
                    call<void(int32_t, const T*, Complex, T*)>(kernel, 1, x, Complex{x[2], x[3]}, y);
            }
            return;
        case Shape::TWO_OUT: {
            std::vector<T> first(n), second(n);
            call<void(int32_t, const T*, T*, T*)>(kernel, n, x, first.data(), second.data());
            for (size_t i = 0; i < n; ++i) y[2 * i] = first[i], y[2 * i + 1] = second[i];
            return;
        }
        case Shape::LINEAR:
            for (size_t i = 0; i < n; ++i, x += kernel.inputs)
                call<void(int32_t, const T*, const T*, T, T, T, T, T*)>(kernel, 1, x, x + 1, x[2], x[3], x[4], x[5],
                                                                        y + i);
            return;
    }
}
template void evaluate(const Kernel&, const float*, float*, size_t);
template void evaluate(const Kernel&, const double*, double*, size_t);

}  // namespace orv::accuracy
