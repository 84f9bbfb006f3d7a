// A kernel of any row, called on arrays by the letter of its type and the name of its shape.
#pragma once

#include <orv/vecmath.h>

#include <cstdint>
#include <string_view>

namespace orv::bench {

// n elements each, of the type that the shape says; `list` holds positions or a mask for the moves.
struct Arrays {
    const void *a, *b;
    void *y, *z;
    const int32_t* list;
};

namespace calls {

inline constexpr int32_t narrow = 1;  // the moves' masks and positions are 32-bit

template <class X>
void by_type(orv_arq_kernel kernel, std::string_view shape, int32_t n, const Arrays& v) {
    const X *const a = static_cast<const X*>(v.a), *const b = static_cast<const X*>(v.b);
    X *const y = static_cast<X*>(v.y), *const z = static_cast<X*>(v.z);
    if (shape == "TWO")
        reinterpret_cast<void (*)(int32_t, const X*, const X*, X*)>(kernel)(n, a, b, y);
    else if (shape == "TWO_OUT")
        reinterpret_cast<void (*)(int32_t, const X*, X*, X*)>(kernel)(n, a, y, z);
    else if (shape == "SCALAR")
        reinterpret_cast<void (*)(int32_t, const X*, X, X*)>(kernel)(n, a, b[0], y);
    else if (shape == "LINEAR")
        reinterpret_cast<void (*)(int32_t, const X*, const X*, X, X, X, X, X*)>(kernel)(n, a, b, b[0], b[1], b[2], b[3],
                                                                                        y);
    else if (shape == "PACK_STRIDE")
        reinterpret_cast<void (*)(int64_t, const X*, int64_t, X*, int32_t)>(kernel)(n, a, 2, y, narrow);
    else if (shape == "UNPACK_STRIDE")
        reinterpret_cast<void (*)(int64_t, const X*, X*, int64_t, int32_t)>(kernel)(n, a, y, 2, narrow);
    else if (shape == "PACK_LIST")
        reinterpret_cast<void (*)(int64_t, const X*, const int32_t*, X*, int32_t)>(kernel)(n, a, v.list, y, narrow);
    else if (shape == "UNPACK_LIST")
        reinterpret_cast<void (*)(int64_t, const X*, X*, const int32_t*, int32_t)>(kernel)(n, a, y, v.list, narrow);
    else  // one array in, one out, of whatever they hold
        reinterpret_cast<void (*)(int32_t, const void*, void*)>(kernel)(n, a, y);
}

// Increments of 2 throughout. The moves have no strided form.
template <class X>
void strided_by_type(orv_arq_kernel kernel, std::string_view shape, int32_t n, const Arrays& v) {
    constexpr int32_t inc = 2;
    const X *const a = static_cast<const X*>(v.a), *const b = static_cast<const X*>(v.b);
    X *const y = static_cast<X*>(v.y), *const z = static_cast<X*>(v.z);
    if (shape == "TWO")
        reinterpret_cast<void (*)(int32_t, const X*, int32_t, const X*, int32_t, X*, int32_t)>(kernel)(n, a, inc, b,
                                                                                                       inc, y, inc);
    else if (shape == "TWO_OUT")
        reinterpret_cast<void (*)(int32_t, const X*, int32_t, X*, int32_t, X*, int32_t)>(kernel)(n, a, inc, y, inc, z,
                                                                                                 inc);
    else if (shape == "SCALAR")
        reinterpret_cast<void (*)(int32_t, const X*, int32_t, X, X*, int32_t)>(kernel)(n, a, inc, b[0], y, inc);
    else if (shape == "LINEAR")
        reinterpret_cast<void (*)(int32_t, const X*, int32_t, const X*, int32_t, X, X, X, X, X*, int32_t)>(kernel)(
            n, a, inc, b, inc, b[0], b[1], b[2], b[3], y, inc);
    else
        reinterpret_cast<void (*)(int32_t, const void*, int32_t, void*, int32_t)>(kernel)(n, a, inc, y, inc);
}

}  // namespace calls

inline void call(orv_arq_kernel kernel, char type, std::string_view shape, bool strided, int32_t n, const Arrays& v) {
    using calls::by_type, calls::strided_by_type;
    switch (type) {
        case 's':
            return (strided ? strided_by_type<float> : by_type<float>)(kernel, shape, n, v);
        case 'd':
            return (strided ? strided_by_type<double> : by_type<double>)(kernel, shape, n, v);
        case 'c':
            return (strided ? strided_by_type<orv_complex_s> : by_type<orv_complex_s>)(kernel, shape, n, v);
        default:
            return (strided ? strided_by_type<orv_complex_d> : by_type<orv_complex_d>)(kernel, shape, n, v);
    }
}

}  // namespace orv::bench
