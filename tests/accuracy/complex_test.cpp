// The symmetries of complex functions, to the bit and to the sign of zeros and infinities.
#include "accuracy/hunt.h"
#include "support/guarded.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

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
bool same(T a, T b, bool zeros_alike = false) {
    if (zeros_alike && a == 0 && b == 0) return true;
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
        // A NaN has no sign that a zero beside it could follow.
        const bool nan = std::isnan(x[i]) || std::isnan(x[i + 1]);
        ASSERT_TRUE(same(of_conjugate[i], y[i], nan) && same(of_conjugate[i + 1], -y[i + 1], nan))
            << "of the conjugate " << of_conjugate[i] << ", " << of_conjugate[i + 1];
        if (parity == Parity::none) continue;
        const T sign = parity == Parity::odd ? T(-1) : T(1);
        ASSERT_TRUE(same(of_negative[i], sign * y[i], nan) && same(of_negative[i + 1], sign * y[i + 1], nan))
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

// ---- Where one side is real --------------------------------------------------------------------------------------------

const Kernel& kernel_of(char type, const char* name) {
    for (const Kernel& kernel : kernels())
        if (kernel.type == type && std::strcmp(kernel.name, name) == 0 && kernel.serves(ha)) return kernel;
    throw std::runtime_error("no such kernel");
}

ArqErrorContext seen;
int32_t reports;
int32_t change_result(ArqErrorContext* context) {
    seen = *context;
    ++reports;
    context->res1 = 7;
    context->res1_im = 8;
    return 0;
}

// The third element of five is reported; the context and both arrays are as their own element types say.
template <class T>
void check_report(const Kernel& kernel, std::vector<T> element, double arg, double arg_im, double res, double res_im,
                  bool strided) {
    const size_t in = static_cast<size_t>(kernel.inputs), out = static_cast<size_t>(kernel.outputs);
    const size_t a_step = strided ? 2 : 1, y_step = strided ? 3 : 1;
    std::vector<T> a(5 * in * a_step, T(0.5)), y(5 * out * y_step, T(-77));
    std::copy(element.begin(), element.end(), &a[2 * in * a_step]);
    _arqSetInterfInputVectorPointer(a.data() + in);  // as if the call began one element before it
    reports = 0;
    if (strided)
        reinterpret_cast<void (*)(int32_t, const T*, int32_t, T*, int32_t)>(kernel.strided)(5, a.data(), 2, y.data(),
                                                                                            3);
    else
        reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel.dense)(5, a.data(), y.data());
    _arqSetInterfInputVectorPointer(nullptr);
    ASSERT_EQ(reports, 1);
    EXPECT_EQ(seen.index, 2 - 1);
    EXPECT_EQ(seen.arg1, arg);
    EXPECT_EQ(seen.arg1_im, arg_im);
    EXPECT_TRUE(same(seen.res1, res));
    EXPECT_TRUE(same(seen.res1_im, res_im));
    std::vector<T> usual(out);
    const T half[2] = {T(0.5), T(0.5)};
    evaluate(kernel, half, usual.data(), 1);
    for (size_t i = 0; i < y.size(); ++i) {
        const size_t place = i / out, part = i % out;
        const T expected = place % y_step ? T(-77) : place == 2 * y_step ? T(7 + part) : usual[part];
        EXPECT_EQ(y[i], expected) << i;
    }
}

template <class T>
void check_reports(char type) {
    const double largest = std::numeric_limits<T>::max();
    for (const bool strided : {false, true}) {
        SCOPED_TRACE(testing::Message() << type << (strided ? ", strided" : ""));
        check_report<T>(kernel_of(type, "CIS"), {T(INFINITY)}, INFINITY, 0, NAN, NAN, strided);
        check_report<T>(kernel_of(type, "Abs"), {T(largest), T(-largest)}, largest, -largest, INFINITY, 0, strided);
    }
}

TEST(Complex, ReportsKnowTheRealSide) {
    const uint32_t mode = _arqSetMode(ORV_MODE_ERRMODE_CALLBACK);
    _arqSetErrorCallBack(change_result);
    check_reports<float>('c');
    check_reports<double>('z');
    _arqClearErrorCallBack();
    _arqSetMode(mode);
    _arqClearErrStatus();
}

// Both arrays end, or begin, where nothing may be touched.
template <class T>
void check_guarded(const Kernel& kernel) {
    const size_t in = static_cast<size_t>(kernel.inputs), out = static_cast<size_t>(kernel.outputs);
    const orv::test::GuardedPages a_pages(1), y_pages(1);
    for (const bool at_end : {true, false})
        for (size_t n = 1; n <= 19; ++n) {
            const auto place = [&](const orv::test::GuardedPages& pages, size_t width) {
                return reinterpret_cast<T*>(at_end ? pages.end() - n * width * sizeof(T) : pages.begin());
            };
            T *const a = place(a_pages, in), *const y = place(y_pages, out);
            for (size_t i = 0; i < n * in; ++i) a[i] = T(0.75 + 0.125 * static_cast<double>(i % 5));
            if (n % 3 == 0) a[(n - 1) * in] = T(INFINITY);
            evaluate(kernel, a, y, n);
            T alone[most_outputs];
            for (size_t i = 0; i < n; ++i) {
                evaluate(kernel, a + i * in, alone, 1);
                for (size_t k = 0; k < out; ++k) EXPECT_TRUE(same(y[i * out + k], alone[k])) << kernel.name << i;
            }
        }
}

TEST(Complex, NothingBesideTheArraysIsTouched) {
    const SilentErrors silent;
    for (const char* name : {"CIS", "Abs", "Arg", "Sqrt", "Exp"}) {
        check_guarded<float>(kernel_of('c', name));
        check_guarded<double>(kernel_of('z', name));
    }
}

}  // namespace
