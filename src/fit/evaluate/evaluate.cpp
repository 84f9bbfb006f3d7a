// The evaluators. A register holds as many sites as it has lanes; the coefficients of their pieces are loaded piece by
// piece and transposed, and Horner's rule runs over the transposed rows.
#include "fit/evaluate/evaluate.h"

namespace orv::fit {
namespace {

// c[k] receives coefficient k of the pieces of one register of sites.
template <int order>
void load_coefficients(const double* coeffs, const int32_t* piece, __m128d* c) {
    const double* a = coeffs + static_cast<ptrdiff_t>(piece[0]) * order;
    const double* b = coeffs + static_cast<ptrdiff_t>(piece[1]) * order;
    const __m128d a01 = load(a), b01 = load(b);
    c[0] = interleave_low(a01, b01);
    c[1] = interleave_high(a01, b01);
    if constexpr (order == 3) c[2] = gather(a + 2, b + 2);
    if constexpr (order == 4) {
        const __m128d a23 = load(a + 2), b23 = load(b + 2);
        c[2] = interleave_low(a23, b23);
        c[3] = interleave_high(a23, b23);
    }
}

template <int order>
void load_coefficients(const float* coeffs, const int32_t* piece, __m128* c) {
    const float* p[4];
    for (int k = 0; k < 4; ++k) p[k] = coeffs + static_cast<ptrdiff_t>(piece[k]) * order;
    if constexpr (order == 4) {
        for (int k = 0; k < 4; ++k) c[k] = load(p[k]);
        transpose(c[0], c[1], c[2], c[3]);
    } else {
        const __m128 ab = gather_halves(p[0], p[1]), cd = gather_halves(p[2], p[3]);
        c[0] = even_lanes(ab, cd);
        c[1] = odd_lanes(ab, cd);
        if constexpr (order == 3) c[2] = gather(p[0] + 2, p[1] + 2, p[2] + 2, p[3] + 2);
    }
}

// i (i - 1) ... (i - k + 1): what the k-th derivative does to the i-th power.
constexpr int falling(int i, int k) { return k == 0 ? 1 : i * falling(i - 1, k - 1); }

template <class T, int order, int derivative, bool dense>
void evaluate(const T* coeffs, int64_t, int64_t, const int32_t* piece, const T* offset, int32_t count, T* out,
              ptrdiff_t stride) {
    using V = typename Lanes<T>::V;
    constexpr int width = Lanes<T>::width;
    const auto one_register = [&](int32_t i) {
        V c[order];
        load_coefficients<order>(coeffs, piece + i, c);
        const V u = load(offset + i);
        V sum = c[order - 1] * splat(T(falling(order - 1, derivative)));
        for (int k = order - 2; k >= derivative; --k) {
            sum *= u;
            sum += falling(k, derivative) == 1 ? c[k] : c[k] * splat(T(falling(k, derivative)));
        }
        return sum;
    };
    int32_t i = 0;
    for (; i + width <= count; i += width) {
        if constexpr (dense) {
            store(out + i, one_register(i));
        } else {
            T lanes[width];
            store(lanes, one_register(i));
            for (int k = 0; k < width; ++k, out += stride) *out = lanes[k];
        }
    }
    if (i == count) return;
    if constexpr (dense) out += i;
    T lanes[width];
    store(lanes, one_register(i));
    for (int k = 0; i + k < count; ++k, out += stride) *out = lanes[k];
}

template <class T>
void evaluate_any(const T* coeffs, int64_t order, int64_t derivative, const int32_t* piece, const T* offset,
                  int32_t count, T* out, ptrdiff_t stride) {
    for (int32_t i = 0; i < count; ++i, out += stride) {
        const T* c = coeffs + static_cast<ptrdiff_t>(piece[i]) * static_cast<ptrdiff_t>(order);
        T sum = 0;
        for (int64_t k = order - 1; k >= derivative; --k) {
            T factor = 1;
            for (int64_t j = 0; j < derivative; ++j) factor *= static_cast<T>(k - j);
            sum = sum * offset[i] + c[k] * factor;
        }
        *out = sum;
    }
}

template <class T>
void evaluate_zero(const T*, int64_t, int64_t, const int32_t*, const T*, int32_t count, T* out, ptrdiff_t stride) {
    for (int32_t i = 0; i < count; ++i, out += stride) *out = 0;
}

// By order, derivative and density of the results.
template <class T>
constexpr Evaluator<T> evaluators[3][4][2] = {
    {
        {evaluate<T, 2, 0, false>, evaluate<T, 2, 0, true>},
        {evaluate<T, 2, 1, false>, evaluate<T, 2, 1, true>},
        {evaluate_zero<T>, evaluate_zero<T>},
        {evaluate_zero<T>, evaluate_zero<T>},
    },
    {
        {evaluate<T, 3, 0, false>, evaluate<T, 3, 0, true>},
        {evaluate<T, 3, 1, false>, evaluate<T, 3, 1, true>},
        {evaluate<T, 3, 2, false>, evaluate<T, 3, 2, true>},
        {evaluate_zero<T>, evaluate_zero<T>},
    },
    {
        {evaluate<T, 4, 0, false>, evaluate<T, 4, 0, true>},
        {evaluate<T, 4, 1, false>, evaluate<T, 4, 1, true>},
        {evaluate<T, 4, 2, false>, evaluate<T, 4, 2, true>},
        {evaluate<T, 4, 3, false>, evaluate<T, 4, 3, true>},
    },
};

}  // namespace

template <class T>
Evaluator<T> evaluator_for(int64_t order, int64_t derivative, ptrdiff_t stride) {
    if (derivative >= order) return evaluate_zero<T>;
    return order > 4 ? evaluate_any<T> : evaluators<T>[order - 2][derivative][stride == 1];
}

template <class T>
void evaluate_values(const DFTask& task, const Pieces<T>& pieces, Kind kind, int64_t function, int64_t derivative,
                     int32_t count, const T* sites, const int32_t* cells, T* out, ptrdiff_t stride) {
    const bool interleaved = task.funcHint == ORV_DF_COLUMNS;
    const T* y = static_cast<const T*>(task.funcs[interleaved ? 0 : function]) + (interleaved ? function : 0);
    const ptrdiff_t step = interleaved ? static_cast<ptrdiff_t>(task.funcCount) : 1;
    const int32_t last = pieces.partition.count - 1;
    for (int32_t i = 0; i < count; ++i, out += stride) {
        const T x = sites[i];
        // The break at or left of the site, and whether the site is on it.
        int32_t left = x == pieces.partition.last || cells[i] > last ? last : cells[i] - 1;
        const bool on_break = left >= 0 && x == pieces.origin(left);
        if (left < 0) left = 0;
        const int32_t right = cells[i] <= 0 || left == last || on_break ? left : left + 1;
        if (x != x && derivative == 0)
            *out = x;
        else if (derivative > 0)
            *out = kind == look_up ? static_cast<T>(__builtin_nan("")) : 0;
        else if (kind == look_up && !on_break)
            *out = static_cast<T>(__builtin_nan(""));
        else
            *out = y[(kind == left_step ? right : left) * step];
    }
}

template Evaluator<double> evaluator_for(int64_t, int64_t, ptrdiff_t);
template Evaluator<float> evaluator_for(int64_t, int64_t, ptrdiff_t);
template void evaluate_values(const DFTask&, const Pieces<double>&, Kind, int64_t, int64_t, int32_t, const double*,
                              const int32_t*, double*, ptrdiff_t);
template void evaluate_values(const DFTask&, const Pieces<float>&, Kind, int64_t, int64_t, int32_t, const float*,
                              const int32_t*, float*, ptrdiff_t);

}  // namespace orv::fit
