// Every argument shape over the library's loops, with kernels of the test's own: results, reports with each array's own type
// and increment, changes by a callback, and nothing touched beside the arrays.
#include "frame/kernel_loops.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace orv;
using frame::Rejected, frame::Tail;

// What a kernel of the test gives for one element; parts that it does not have are 0.
struct Expected {
    double y[2], z[2];
    int32_t status;
};

template <class T, Tail How, Rejected What = Rejected::by_lane, class R = T>
using Base = frame::Elementwise<T, 8, How, What, R>;

template <class T, Tail How>
struct Quotient : Base<T, How> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 2, outputs = 1;
    static V lanes(V a, V b, V& doubt) {
        doubt = simd::equal(b, simd::splat(T{0}));
        return a / b;
    }
    static int32_t scalar(const T* a, const T*, T* y) {
        *y = *a * 100;
        return frame::status_singularity;
    }
    static Expected expected(const double* a, const double* b) {
        if (b[0] == 0) return {{a[0] * 100}, {}, 2};
        return {{static_cast<double>(static_cast<T>(a[0] / b[0]))}, {}, 0};
    }
};

template <class T, Tail How>
struct Ratio : Base<T, How, Rejected::whole_block> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 6, outputs = 1;
    static V doubt(V, V b, V, V, V, V) { return simd::equal(b, simd::splat(T{0})); }
    static V lanes(V a, V b, V c, V d, V e, V f) { return (a * c + d) + (b * e + f); }
    static int32_t scalar(const T* a, const T* b, const T* c, const T* d, const T* e, const T* f, T* y) {
        *y = (*a * *c + *d) + (*b * *e + *f);
        if (*b != 0) return frame::status_ok;
        *y = *f * 100;
        return frame::status_singularity;
    }
    static Expected expected(const double* a, const double* b) {
        if (b[0] == 0) return {{600}, {}, 2};
        return {{(a[0] * 3 + 4) + (b[0] * 5 + 6)}, {}, 0};
    }
};

template <class T, Tail How>
struct Product : Base<T, How, Rejected::settled_where_silent> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 2, outputs = 1;
    static V doubt(V a, V) { return simd::less(a, simd::splat(T{0})); }
    static V lanes(V a, V b) { return a * b; }
    static V settle_silent(V, V, V y, V&) { return y; }
    static int32_t scalar(const T* a, const T* b, T* y) {
        *y = *a * *b * 10;
        return frame::status_domain;
    }
    static Expected expected(const double* a, const double* b) {
        return a[0] < 0 ? Expected{{a[0] * b[0] * 10}, {}, 1} : Expected{{a[0] * b[0]}, {}, 0};
    }
};

template <class T, Tail How>
struct Neighbours : Base<T, How> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 1, outputs = 2;
    static void lanes(V a, V& y, V& z, V& doubt) {
        doubt = simd::less(a, simd::splat(T{0}));
        y = a - simd::splat(T{1});
        z = a + simd::splat(T{1});
    }
    static int32_t scalar(const T* a, T* y, T* z) {
        *y = *a * 2;
        *z = *a * 3;
        return frame::status_domain;
    }
    static Expected expected(const double* a, const double*) {
        return a[0] < 0 ? Expected{{a[0] * 2}, {a[0] * 3}, 1} : Expected{{a[0] - 1}, {a[0] + 1}, 0};
    }
};

template <class T>
using ComplexOf = std::conditional_t<sizeof(T) == 4, orv_complex_s, orv_complex_d>;

template <class T, Tail How>
struct Square : Base<ComplexOf<T>, How, Rejected::by_lane, T> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 1, outputs = 1;
    static V doubt(simd::Complex<T> a) { return simd::less(a.re, simd::splat(T{0})); }
    static V lanes(simd::Complex<T> a) { return a.re * a.re + a.im; }
    static int32_t scalar(const ComplexOf<T>* a, T* y) {
        *y = a->im * 100;
        return frame::status_overflow;
    }
    static Expected expected(const double* a, const double*) {
        return a[0] < 0 ? Expected{{a[1] * 100}, {}, 3} : Expected{{a[0] * a[0] + a[1]}, {}, 0};
    }
};

template <class T, Tail How>
struct Opposites : Base<T, How, Rejected::by_lane, ComplexOf<T>> {
    using V = typename Base<T, How>::V;
    static constexpr int inputs = 1, outputs = 1;
    static simd::Complex<T> lanes(V a, V& doubt) {
        doubt = simd::less(a, simd::splat(T{0}));
        return {a, -a};
    }
    static int32_t scalar(const T* a, ComplexOf<T>* y) {
        *y = {*a * 2, *a * 3};
        return frame::status_underflow;
    }
    static Expected expected(const double* a, const double*) {
        return a[0] < 0 ? Expected{{a[0] * 2, a[0] * 3}, {}, 4} : Expected{{a[0], -a[0]}, {}, 0};
    }
};

// What lies below -20 has a vector path of its own, without a report.
template <class T, Tail How>
struct Exchange : Base<ComplexOf<T>, How, Rejected::settled> {
    using V = typename Base<T, How>::V;
    using C = simd::Complex<T>;
    static constexpr int inputs = 1, outputs = 1;
    static C lanes(C a, V& doubt) {
        doubt = simd::less(a.re, simd::splat(T{0}));
        return {a.im, a.re};
    }
    static C settle(C a, C y, V& doubt) {
        const V far = simd::less(a.re, simd::splat(T(-20)));
        doubt = simd::bit_and_not(far, doubt);
        return {simd::select(far, simd::splat(T{9}), y.re), y.im};
    }
    static int32_t scalar(const ComplexOf<T>* a, ComplexOf<T>* y) {
        *y = {a->re * 2, a->im * 2};
        return frame::status_domain;
    }
    static Expected expected(const double* a, const double*) {
        if (a[0] < -20) return {{9, a[0]}, {}, 0};
        return a[0] < 0 ? Expected{{a[0] * 2, a[1] * 2}, {}, 1} : Expected{{a[1], a[0]}, {}, 0};
    }
};

// ---- Calls -----------------------------------------------------------------------------------------------------------

std::vector<ArqErrorContext> reports;
bool replaces;
int32_t note(ArqErrorContext* context) {
    reports.push_back(*context);
    if (!replaces) return 0;
    context->res1 = 1.25;
    context->res1_im = 2.5;
    context->res2 = 3.75;
    return 0;
}

template <class Kernel>
struct Arrays {
    using In = typename Kernel::Element;
    using Out = typename Kernel::Result;
    using Part = typename Kernel::Scalar;
    static constexpr int in_parts = sizeof(In) / sizeof(Part), out_parts = sizeof(Out) / sizeof(Part);
    static constexpr Part untouched = Part(-12345);

    int32_t n, increments[4];
    bool scalar_b;
    std::vector<Part> a, b, y, z;

    static size_t space(int32_t n, int32_t increment, int parts) {
        return static_cast<size_t>((std::max(n, 1) - 1) * std::abs(increment) + 3) * static_cast<size_t>(parts);
    }
    // The parts of element i, with one element's room before the lowest.
    template <class V>
    static auto* at(V& v, int32_t i, int32_t n, int32_t increment, int parts) {
        return v.data() + (1 + (increment < 0 ? (i - (n - 1)) * increment : i * increment)) * parts;
    }

    explicit Arrays(int32_t count, const int32_t (&steps)[4], bool with_scalar)
        : n(count),
          increments{steps[0], steps[1], steps[2], steps[3]},
          scalar_b(with_scalar),
          a(space(n, steps[0], in_parts), Part(-777)),
          b(space(n, steps[1], in_parts), Part(-777)),
          y(space(n, steps[2], out_parts), untouched),
          z(space(n, steps[3], out_parts), untouched) {
        for (int32_t i = 0; i < n; ++i) {
            for (int part = 0; part < in_parts; ++part) {
                at(a, i, n, steps[0], in_parts)[part] = Part(i + part + 1);
                at(b, i, n, steps[1], in_parts)[part] = Part(1 << (i % 4));
            }
            if (i % 5 == 3) at(a, i, n, steps[0], in_parts)[0] = Part(-i - (i % 2 ? 30 : 0));
            if (i % 7 == 2) at(b, i, n, steps[1], in_parts)[0] = 0;
        }
    }
    template <template <class> class Array, class T>
    auto array(std::vector<Part>& v, int which, int parts) {
        T* start = reinterpret_cast<T*>(at(v, 0, n, increments[which], parts));
        if constexpr (std::is_same_v<Array<T>, frame::Dense<T>>)
            return frame::Dense<T>{start};
        else
            return frame::Strided<T>{start, increments[which]};
    }

    template <template <class> class Array>
    void call(int32_t count) {
        const auto in = array<Array, In>(a, 0, in_parts), second = array<Array, In>(b, 1, in_parts);
        const auto out = array<Array, Out>(y, 2, out_parts), rest = array<Array, Out>(z, 3, out_parts);
        constexpr const char* name = "vProbe";
        if constexpr (Kernel::outputs == 2)
            frame::map<Kernel>(name, count, frame::to(out, rest), in);
        else if constexpr (Kernel::inputs == 1)
            frame::map<Kernel>(name, count, frame::to(out), in);
        else if constexpr (Kernel::inputs == 2)
            scalar_b ? frame::map<Kernel>(name, count, frame::to(out), in, frame::Scalar<In>{In{4}})
                     : frame::map<Kernel>(name, count, frame::to(out), in, second);
        else
            frame::map<Kernel>(name, count, frame::to(out), in, second, frame::Scalar<In>{3}, frame::Scalar<In>{4},
                               frame::Scalar<In>{5}, frame::Scalar<In>{6});
    }

    void check(bool replaced, const std::string& what) {
        std::vector<Part> y_left = y, z_left = z;
        size_t report = 0;
        for (int32_t i = 0; i < n; ++i) {
            double x[2] = {}, w[2] = {};
            for (int part = 0; part < in_parts; ++part) {
                x[part] = at(a, i, n, increments[0], in_parts)[part];
                w[part] = scalar_b ? 4 : at(b, i, n, increments[1], in_parts)[part];
            }
            const Expected e = Kernel::expected(x, w);
            const bool changed = replaced && e.status != 0;
            Part* results[2] = {at(y, i, n, increments[2], out_parts), at(z, i, n, increments[3], out_parts)};
            for (int part = 0; part < out_parts; ++part) {
                ASSERT_EQ(results[0][part], changed ? (part ? 2.5 : 1.25) : e.y[part]) << what << " element " << i;
                at(y_left, i, n, increments[2], out_parts)[part] = untouched;
                if (Kernel::outputs != 2) continue;
                ASSERT_EQ(results[1][part], changed ? 3.75 : e.z[part]) << what << " element " << i;
                at(z_left, i, n, increments[3], out_parts)[part] = untouched;
            }
            if (e.status == 0) continue;
            ASSERT_LT(report, reports.size()) << what;
            const ArqErrorContext& c = reports[report++];
            ASSERT_EQ(c.index, i) << what;
            ASSERT_EQ(c.code, e.status) << what;
            ASSERT_EQ(c.arg1, x[0]) << what;
            ASSERT_EQ(c.arg2, Kernel::inputs > 1 ? w[0] : x[0]) << what;
            ASSERT_EQ(c.res1, e.y[0]) << what;
            ASSERT_EQ(c.res2, Kernel::outputs > 1 ? e.z[0] : e.y[0]) << what;
            if (in_parts + out_parts == 2) continue;
            ASSERT_EQ(c.arg1_im, x[1]) << what;
            ASSERT_EQ(c.arg2_im, x[1]) << what;
            ASSERT_EQ(c.res1_im, e.y[1]) << what;
        }
        ASSERT_EQ(report, reports.size()) << what;
        ASSERT_EQ(y_left, std::vector<Part>(y.size(), untouched)) << what << " wrote beside y";
        ASSERT_EQ(z_left, std::vector<Part>(z.size(), untouched)) << what << " wrote beside z";
    }
};

template <class Kernel>
void check_kernel(const char* name, bool scalar_b = false) {
    constexpr int32_t dense[4] = {1, 1, 1, 1};
    constexpr int32_t strides[][4] = {{2, 3, -1, 4}, {-3, 1, 2, -2}, {1, -2, 3, 1}};
    for (const bool replaced : {false, true})
        for (int32_t n = 0; n <= 37; ++n) {
            const std::string what = std::string(name) + " n " + std::to_string(n) + (replaced ? " replaced" : "");
            const auto run = [&](auto& arrays, auto call) {
                reports.clear();
                replaces = replaced;
                call();
                arrays.check(replaced, what);
            };
            Arrays<Kernel> arrays(n, dense, scalar_b);
            run(arrays, [&] { arrays.template call<frame::Dense>(n); });
            for (const auto& steps : strides) {
                Arrays<Kernel> strided(n, steps, scalar_b);
                run(strided, [&] { strided.template call<frame::Strided>(n); });
            }
        }
    reports.clear();
    Arrays<Kernel> nothing(0, dense, scalar_b);
    for (const int32_t n : {-1, INT32_MIN}) nothing.template call<frame::Dense>(n);
    nothing.check(false, name);
}

template <class T, Tail How>
void check_shapes() {
    _arqSetErrorCallBack(note);
    check_kernel<Quotient<T, How>>("two inputs");
    check_kernel<Product<T, How>>("two inputs, tested");
    check_kernel<Product<T, How>>("an input and a scalar", true);
    check_kernel<Ratio<T, How>>("two inputs and four scalars");
    check_kernel<Neighbours<T, How>>("two outputs");
    check_kernel<Square<T, How>>("complex to real");
    check_kernel<Opposites<T, How>>("real to complex");
    check_kernel<Exchange<T, How>>("complex to complex");
}

TEST(Shapes, GiveResultsAndReportsAndTouchNothingElse) {
    std::thread(check_shapes<float, Tail::masked>).join();
    std::thread(check_shapes<double, Tail::masked>).join();
    std::thread(check_shapes<float, Tail::by_element>).join();
    std::thread(check_shapes<double, Tail::by_element>).join();
}

}  // namespace
