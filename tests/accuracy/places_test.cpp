// An element's result is the same alone, in the middle of a block, in a tail, strided, in place, beside special elements,
// and whether reports are wanted or not.
#include "accuracy/hunt.h"
#include "support/effort.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace {

using namespace orv::accuracy;

constexpr int32_t longest = 75;
constexpr double specials[] = {0, -1, -5, 1e30, NAN, INFINITY, -INFINITY, 1e-40, 700, -1050};

template <class T>
bool same(T a, T b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

// Elements of `width` components, `step` elements apart.
template <class T>
struct Spread {
    static constexpr T between = 5;
    size_t width, step;
    std::vector<T> cells;

    Spread(size_t n, size_t width_, size_t step_) : width(width_), step(step_), cells(n * width * step, between) {}
    T* at(size_t i) { return &cells[i * width * step]; }
    bool untouched_between() {
        for (size_t i = 0; i < cells.size(); ++i)
            if (i / width % step != 0 && cells[i] != between) return false;
        return true;
    }
};

// The strided kernel over points that lie apart.
template <class T>
std::vector<T> strided(const Kernel& kernel, const std::vector<T>& x, size_t n) {
    const size_t in = static_cast<size_t>(kernel.inputs), out = static_cast<size_t>(kernel.outputs);
    const size_t arrays = kernel.shape == Shape::TWO ? 2 : 1;
    const size_t width = in / arrays, results = kernel.shape == Shape::TWO_OUT ? 1 : out;
    // One element more, so that none of none has an address.
    Spread<T> a(n + 1, width, 3), b(n + 1, width, 2), y(n + 1, results, 2), z(n + 1, results, 3);
    for (size_t i = 0; i < n; ++i) {
        std::copy_n(&x[in * i], width, a.at(i));
        if (arrays == 2) std::copy_n(&x[in * i + width], width, b.at(i));
    }
    const auto count = static_cast<int32_t>(n);
    if (kernel.shape == Shape::TWO)
        reinterpret_cast<void (*)(int32_t, const T*, int32_t, const T*, int32_t, T*, int32_t)>(kernel.strided)(
            count, a.at(0), 3, b.at(0), 2, y.at(0), 2);
    else if (kernel.shape == Shape::TWO_OUT)
        reinterpret_cast<void (*)(int32_t, const T*, int32_t, T*, int32_t, T*, int32_t)>(kernel.strided)(
            count, a.at(0), 3, y.at(0), 2, z.at(0), 3);
    else
        reinterpret_cast<void (*)(int32_t, const T*, int32_t, T*, int32_t)>(kernel.strided)(count, a.at(0), 3, y.at(0),
                                                                                            2);
    EXPECT_TRUE(y.untouched_between() && z.untouched_between());
    std::vector<T> list;
    for (size_t i = 0; i < n; ++i)
        if (kernel.shape == Shape::TWO_OUT)
            list.insert(list.end(), {*y.at(i), *z.at(i)});
        else
            list.insert(list.end(), y.at(i), y.at(i) + results);
    return list;
}

template <class T>
void check_places(const Kernel& kernel) {
    const size_t in = static_cast<size_t>(kernel.inputs), out = static_cast<size_t>(kernel.outputs);
    const std::vector<T> typical = typical_arguments<T>(kernel, 4 * longest, 7);
    for (int32_t n = 0; n <= longest; n += orv::test::sanitized ? 3 : 1) {
        const size_t count = static_cast<size_t>(n);
        std::vector<T> x(typical.begin() + n, typical.begin() + n + static_cast<ptrdiff_t>(count * in));
        if (n % 3 == 0)
            for (size_t i = count % 13; i < x.size(); i += 13) x[i] = static_cast<T>(specials[(count + i) % 10]);
        std::vector<T> alone(count * out), together(count * out);
        for (size_t i = 0; i < count; ++i) evaluate(kernel, &x[in * i], &alone[out * i], 1);
        evaluate(kernel, x.data(), together.data(), count);
        const std::vector<T> apart = strided(kernel, x, count);
        _arqSetMode(ORV_MODE_ERRMODE_NOERR);
        const bool can_be_in_place = kernel.shape == Shape::ONE;
        std::vector<T> in_place = x;
        if (can_be_in_place) evaluate(kernel, in_place.data(), in_place.data(), count);
        _arqSetMode(ORV_MODE_ERRMODE_IGNORE);
        for (size_t i = 0; i < count * out; ++i) {
            const auto what = [&] {
                return testing::Message() << testing::PrintToString(kernel) << ", " << i / out << " of " << n << ": "
                                          << std::hexfloat << x[i / out * in] << " gives alone " << alone[i];
            };
            ASSERT_TRUE(same(together[i], alone[i])) << what() << " together " << together[i];
            ASSERT_TRUE(same(apart[i], alone[i])) << what() << " apart " << apart[i];
            if (can_be_in_place) {
                ASSERT_TRUE(same(in_place[i], alone[i])) << what() << " in place " << in_place[i];
            }
        }
    }
}

TEST(Results, DoNotDependOnThePlace) {
    const SilentErrors silent;
    for (const Kernel& kernel : kernels()) {
        // A scalar is one for a whole call; such rows are called element by element here.
        if (kernel.shape == Shape::SCALAR || kernel.shape == Shape::LINEAR) continue;
        kernel.single() ? check_places<float>(kernel) : check_places<double>(kernel);
    }
}

// Both results of dSinCos are those of dSin and dCos, by the same methods.
TEST(Results, OfSinCosAreThoseOfSinAndCos) {
    const auto find = [](std::string_view name) {
        for (const Kernel& kernel : kernels())
            if (kernel.type == 'd' && kernel.name == name && kernel.serves(ha)) return &kernel;
        throw std::runtime_error("no such kernel");
    };
    const Kernel *sine = find("Sin"), *cosine = find("Cos"), *both = find("SinCos");
    const std::vector<double> x = typical_arguments<double>(*sine, 20'000, 3);
    std::vector<double> s(x.size()), c(x.size()), sc(2 * x.size());
    evaluate(*sine, x.data(), s.data(), x.size());
    evaluate(*cosine, x.data(), c.data(), x.size());
    evaluate(*both, x.data(), sc.data(), x.size());
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_TRUE(same(sc[2 * i], s[i]) && same(sc[2 * i + 1], c[i])) << std::hexfloat << x[i];
}

}  // namespace
