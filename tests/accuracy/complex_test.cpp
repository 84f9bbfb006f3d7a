// The symmetries of complex functions, to the bit and to the sign of zeros and infinities.
#include "accuracy/hunt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using namespace orv::accuracy;

// f(-z) beside f(z).
enum class Parity { none, even, odd };

// Every function of one complex number has f(conj z) = conj f(z).
constexpr struct {
    const char* function;
    Parity parity;
} symmetries[] = {
    {"Cos", Parity::even}, {"Sin", Parity::odd},    {"Tan", Parity::odd},    {"Cosh", Parity::even},
    {"Sinh", Parity::odd}, {"Tanh", Parity::odd},   {"Acos", Parity::none},  {"Asin", Parity::odd},
    {"Atan", Parity::odd}, {"Acosh", Parity::none}, {"Asinh", Parity::odd},  {"Atanh", Parity::odd},
    {"Exp", Parity::none}, {"Ln", Parity::none},    {"Log10", Parity::none}, {"Sqrt", Parity::none},
    {"Conj", Parity::odd},
};

template <class T>
bool same(T a, T b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

// All pairs of what is special, and arguments from everywhere.
template <class T>
std::vector<T> arguments(const Kernel& kernel) {
    constexpr double parts[] = {0,  0x1p-1074, 0x1p-149, 0x1p-60, 0.5,   1,        1.25,      1.5707963267948966, 3.2,
                                21, 89,        355.5,    709.5,   711.2, 0x1p+120, 0x1p+1020, INFINITY,           NAN};
    std::vector<T> list = typical_arguments<T>(kernel, 2000, 11);
    for (const double re : parts)
        for (const double im : parts) list.insert(list.end(), {static_cast<T>(re), static_cast<T>(im)});
    return list;
}

template <class T>
void check_symmetry(const Kernel& kernel, Parity parity) {
    const std::vector<T> x = arguments<T>(kernel);
    const auto result = [&](T re_sign, T im_sign) {
        std::vector<T> signed_x = x, y(x.size());
        // Of NaNs too, whose signs the signs of infinities and zeros may follow.
        for (size_t i = 0; i < x.size(); ++i)
            if ((i % 2 ? im_sign : re_sign) < 0) signed_x[i] = -x[i];
        evaluate(kernel, signed_x.data(), y.data(), x.size() / 2);
        return y;
    };
    const std::vector<T> y = result(1, 1), of_conjugate = result(1, -1), of_negative = result(-1, -1);
    for (size_t i = 0; i < x.size(); i += 2) {
        SCOPED_TRACE(testing::Message() << std::hexfloat << testing::PrintToString(kernel) << " of " << x[i] << ", "
                                        << x[i + 1] << ": " << y[i] << ", " << y[i + 1]);
        ASSERT_TRUE(same(of_conjugate[i], y[i]) && same(of_conjugate[i + 1], -y[i + 1]))
            << "of the conjugate " << of_conjugate[i] << ", " << of_conjugate[i + 1];
        if (parity == Parity::none) continue;
        const T sign = parity == Parity::odd ? T(-1) : T(1);
        ASSERT_TRUE(same(of_negative[i], sign * y[i]) && same(of_negative[i + 1], sign * y[i + 1]))
            << "of the negative " << of_negative[i] << ", " << of_negative[i + 1];
    }
}

TEST(Complex, FunctionsAreSymmetric) {
    const SilentErrors silent;
    for (const Kernel& kernel : kernels()) {
        if (kernel.shape != Shape::ONE || kernel.inputs != 2) continue;
        const auto* const entry = std::find_if(std::begin(symmetries), std::end(symmetries), [&](const auto& s) {
            return std::strcmp(s.function, kernel.name) == 0;
        });
        ASSERT_NE(entry, std::end(symmetries)) << "no entry for " << kernel.name;
        kernel.single() ? check_symmetry<float>(kernel, entry->parity) : check_symmetry<double>(kernel, entry->parity);
    }
}

}  // namespace
