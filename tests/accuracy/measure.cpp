#include "accuracy/measure.h"

#include "frame/kernel_tables.h"

#include <orv/vecmath_entries.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace orv::accuracy {

namespace {

void add_row(std::vector<Kernel>& list, char type, const char* function, const orv_arq_kernel* dense,
             const orv_arq_kernel* strided) {
    const oracle::Function* f = oracle::find(function);
    if (!f) return;
    for (int i = 0; i < 3; ++i) {
        if (std::find(dense, dense + i, dense[i]) != dense + i) continue;
        std::string slots;
        for (int j = i; j < 3; ++j)
            if (dense[j] == dense[i]) slots += (slots.empty() ? "" : ", ") + std::string(accuracy_names[j]);
        list.push_back({type, function, static_cast<Accuracy>(i), slots, dense[i], strided[i], f});
    }
}

template <class T>
Worst measure_type(const Kernel& kernel, int64_t random_count, uint64_t seed) {
    const oracle::ExtendedPrecision extended;
    const std::vector<T> x = samples<T>(kernel.function, random_count, seed);
    std::vector<T> y(x.size());
    const auto call = reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel.dense);
    call(static_cast<int32_t>(x.size()), x.data(), y.data());
    Worst worst;
    fold(worst, *kernel.oracle, x.data(), y.data(), static_cast<int64_t>(x.size()), kernel.accuracy != ep);
    return worst;
}

#define BOUND(type, function, accuracy, ulp, subnormal_ulp) {#type[0], #function, #accuracy, ulp, subnormal_ulp},
const Bound bounds[] = {
#include "accuracy/bounds.inc"
};

template <class T>
void fold_one(Worst& worst, const oracle::Error& error, T x, T y) {
    const bool subnormal = std::fabs(y) < std::numeric_limits<T>::min();
    double& bar = subnormal ? worst.subnormal_ulp : worst.ulp;
    if (!subnormal) worst.relative = std::max(worst.relative, error.relative);
    if (!(error.ulp > bar)) return;
    bar = error.ulp;
    (subnormal ? worst.subnormal_at : worst.at) = x;
}

}  // namespace

const Bound* bound_of(const Kernel& kernel) {
    for (const Bound& b : bounds)
        if (b.type == kernel.type && !std::strcmp(b.function, kernel.function) &&
            !std::strcmp(b.accuracy, accuracy_names[kernel.accuracy]))
            return &b;
    return nullptr;
}

std::vector<Worst> measure_all_floats(const std::vector<Kernel>& of_function) {
    const oracle::ExtendedPrecision extended;
    constexpr uint32_t chunk = 1 << 16;
    std::vector<float> x(chunk), y(chunk);
    std::vector<double> exact(chunk);
    std::vector<Worst> worst(of_function.size());
    uint32_t bits = 0;
    do {
        for (uint32_t i = 0; i < chunk; ++i) {
            x[i] = std::bit_cast<float>(bits + i);
            exact[i] = of_function[0].oracle->quick(x[i]);
        }
        for (size_t k = 0; k < of_function.size(); ++k) {
            reinterpret_cast<void (*)(int32_t, const float*, float*)>(of_function[k].dense)(chunk, x.data(), y.data());
            for (uint32_t i = 0; i < chunk; ++i) fold_one(worst[k], oracle::quick_error(exact[i], y[i]), x[i], y[i]);
        }
        bits += chunk;
    } while (bits != 0);
    for (Worst& w : worst) w.count = int64_t{1} << 32;
    return worst;
}

const std::vector<Kernel>& kernels() {
    static const std::vector<Kernel> list = [] {
        std::vector<Kernel> rows;
#define ADD_ONE(type, function) \
    add_row(rows, #type[0], #function, orv_arq_kernel_##type##function##_ttab, orv_arq_kernel_##type##function##I_ttab);
#define ADD_OTHER(type, function)
#define SHAPE_ONE(type, function) ADD_ONE(type, function)
#define SHAPE_TO_REAL ADD_OTHER
#define SHAPE_TO_COMPLEX ADD_OTHER
#define SHAPE_TWO ADD_OTHER
#define SHAPE_SCALAR ADD_OTHER
#define SHAPE_TWO_OUT ADD_OTHER
#define SHAPE_LINEAR ADD_OTHER
#define TYPE_s(type, function, shape) SHAPE_##shape(type, function)
#define TYPE_d(type, function, shape) SHAPE_##shape(type, function)
#define TYPE_c(type, function, shape)
#define TYPE_z(type, function, shape)
#define MARK_HERE(type, function, shape) TYPE_##type(type, function, shape)
#define MARK_LATER(type, function, shape)
#define ROW(mark, type, function, shape, sharing, cost) MARK_##mark(type, function, shape)
        ORV_MATH_ROWS(ROW)
        return rows;
    }();
    return list;
}

template <class T>
void fold(Worst& worst, const oracle::Function& f, const T* x, const T* y, int64_t n, bool exact) {
    for (int64_t i = 0; i < n; ++i) {
        oracle::Error error = oracle::fast_error(f, x[i], y[i]);
        const bool subnormal = std::fabs(y[i]) < std::numeric_limits<T>::min();
        const double bar = subnormal ? worst.subnormal_ulp : worst.ulp;
        if (exact && sizeof(T) == 8 && error.ulp > bar - oracle::fast_slack) error = oracle::exact_error(f, x[i], y[i]);
        fold_one(worst, error, x[i], y[i]);
    }
    worst.count += n;
}

template void fold(Worst&, const oracle::Function&, const float*, const float*, int64_t, bool);
template void fold(Worst&, const oracle::Function&, const double*, const double*, int64_t, bool);

Worst measure(const Kernel& kernel, int64_t random_count, uint64_t seed) {
    return kernel.type == 's' ? measure_type<float>(kernel, random_count, seed)
                              : measure_type<double>(kernel, random_count, seed);
}

}  // namespace orv::accuracy
