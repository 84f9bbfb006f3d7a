#include "accuracy/measure.h"

#include "frame/kernel_tables.h"
#include "simd/lanes.h"

#include <orv/vecmath_entries.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>

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

// Whether no error among the results exceeds the worst so far, two at a time: the sweep over all floats rarely has to look
// closer. Where the exact value rounds to infinity or is NaN, only the result that it rounds to counts as right.
bool within(const Worst& worst, const double* exact, const float* y, uint32_t n) {
    using namespace simd;
    const __m128d past_range = splat(0x1p+128), rounds_to_infinity = splat(0x1p+128 - 0x1p+103);
    const __m128d least_normal = splat(0x1p-126), zero = _mm_setzero_pd();
    const __m128d ulp_bar = splat(worst.ulp), subnormal_bar = splat(worst.subnormal_ulp),
                  relative_bar = splat(worst.relative);
    __m128d beyond = zero;
    for (uint32_t i = 0; i < n; i += 2) {
        const __m128d e = load(exact + i), size = magnitude(e);
        const __m128d result = _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(y + i))));
        const __m128d finite = _mm_min_pd(past_range, _mm_max_pd(splat(-0x1p+128), result));
        const __m128d difference = magnitude(finite - e);
        const __m128d binade =
            _mm_max_pd(doubles(_mm_and_si128(bits_of(e), splat_bits(uint64_t{0x7FF} << 52))), least_normal);
        const __m128d subnormal = less(magnitude(result), least_normal);
        const __m128d bar = select(subnormal, subnormal_bar, ulp_bar) * (binade * splat(0x1p-23));
        const __m128d too_far =
            bit_or(_mm_cmpnle_pd(difference, bar), bit_and_not(subnormal, less(size * relative_bar, difference)));
        const __m128d rounded = _mm_cvtps_pd(_mm_cvtpd_ps(e));
        const __m128d same =
            bit_or(equal(rounded, result), bit_and(_mm_cmpunord_pd(e, e), _mm_cmpunord_pd(result, result)));
        const __m128d in_range = less(size, rounds_to_infinity);
        beyond = bit_or(beyond, select(in_range, too_far, bit_and_not(same, equal(zero, zero))));
    }
    return lane_bits(beyond) == 0;
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
    const Kernel* reference = nullptr;
    for (const Kernel& kernel : kernels())
        if (kernel.type == 'd' && !std::strcmp(kernel.function, of_function[0].function) &&
            kernel.slots.find("HA") != std::string::npos)
            reference = &kernel;
    std::vector<Worst> worst(of_function.size());
    if (!reference) return worst;

    const oracle::ExtendedPrecision extended;
    const uint32_t mode = _arqSetMode(ORV_MODE_ERRMODE_NOERR);
    constexpr uint32_t chunk = 1 << 12;
    std::vector<float> x(chunk), y(chunk);
    std::vector<double> wide(chunk), exact(chunk);
    uint32_t bits = 0;
    do {
        for (uint32_t i = 0; i < chunk; ++i) wide[i] = x[i] = std::bit_cast<float>(bits + i);
        reinterpret_cast<void (*)(int32_t, const double*, double*)>(reference->dense)(chunk, wide.data(), exact.data());
        for (size_t k = 0; k < of_function.size(); ++k) {
            reinterpret_cast<void (*)(int32_t, const float*, float*)>(of_function[k].dense)(chunk, x.data(), y.data());
            if (!within(worst[k], exact.data(), y.data(), chunk))
                for (uint32_t i = 0; i < chunk; ++i)
                    fold_one(worst[k], oracle::quick_error(exact[i], y[i]), x[i], y[i]);
            worst[k].count += chunk;
        }
        bits += chunk;
    } while (bits != 0);
    _arqSetMode(mode);
    return worst;
}

void PrintTo(const Kernel& kernel, std::ostream* out) { *out << kernel.type << kernel.function << " " << kernel.slots; }

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
