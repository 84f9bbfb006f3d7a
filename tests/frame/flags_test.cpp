// The sticky flags that a call leaves: divide-by-zero, invalid and overflow only where the function itself raises them, by
// C99 Annex F (of complex functions, Annex G).
//
// A table says for every function which of the three it can raise at all. Where it may, its results tell: a quiet NaN among
// the arguments raises nothing; invalid makes a NaN; divide-by-zero and overflow make an infinity of finite arguments. Every
// row of the row list is held to this at every accuracy as soon as its kernels are there; a row without an entry fails.
#include "support/effort.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <vector>
#include <xmmintrin.h>

namespace {

using namespace orv::test;

enum : unsigned { none = 0, invalid = 0x1, divide = 0x4, overflow = 0x8, all = invalid | divide | overflow };

struct CanRaise {
    const char* function;
    unsigned flags;
};
constexpr CanRaise real_functions[] = {
    {"Abs", none},
    {"Acos", invalid},
    {"Acosh", invalid},
    {"Acospi", invalid},
    {"Add", invalid | overflow},
    {"Asin", invalid},
    {"Asinh", none},
    {"Asinpi", invalid},
    {"Atan", none},
    {"Atan2", none},
    {"Atan2pi", none},
    {"Atanh", invalid | divide},
    {"Atanpi", none},
    {"Cbrt", none},
    {"CdfNorm", none},
    {"CdfNormInv", invalid | divide},
    {"Ceil", none},
    {"CopySign", none},
    {"Cos", invalid},
    {"Cosd", invalid},
    {"Cosh", overflow},
    {"Cospi", invalid},
    {"Div", all},
    {"Erf", none},
    {"Erfc", none},
    {"ErfcInv", invalid | divide},
    {"ErfInv", invalid | divide},
    {"Exp", overflow},
    {"Exp10", overflow},
    {"Exp2", overflow},
    {"ExpInt1", invalid | divide},
    {"Expm1", overflow},
    {"Fdim", overflow},
    {"Floor", none},
    {"Fmax", none},
    {"Fmin", none},
    {"Fmod", invalid},
    {"Frac", none},
    {"Hypot", overflow},
    {"Inv", divide | overflow},
    {"InvCbrt", divide},
    {"InvSqrt", invalid | divide},
    {"LGamma", divide | overflow},
    {"LinearFrac", all},
    {"Ln", invalid | divide},
    {"Log10", invalid | divide},
    {"Log1p", invalid | divide},
    {"Log2", invalid | divide},
    {"Logb", divide},
    {"MaxMag", none},
    {"MinMag", none},
    {"Modf", none},
    {"Mul", invalid | overflow},
    {"NearbyInt", none},
    {"NextAfter", overflow},
    {"Pow", all},
    {"Pow2o3", none},
    {"Pow3o2", invalid | overflow},
    {"Powr", all},
    {"Powx", all},
    {"Remainder", invalid},
    {"Rint", none},
    {"Round", none},
    {"Sin", invalid},
    {"SinCos", invalid},
    {"Sind", invalid},
    {"Sinh", overflow},
    {"Sinpi", invalid},
    {"Sqr", overflow},
    {"Sqrt", invalid},
    {"Sub", invalid | overflow},
    {"Tan", invalid},
    {"Tand", invalid | divide},
    {"Tanh", none},
    {"Tanpi", invalid | divide},
    {"TGamma", all},
    {"Trunc", none},
};

// What the steps of a kernel raise nevertheless. An entry that never comes true fails.
struct Exception {
    const char* row;
    const char* accuracy;
    unsigned flags;
    const char* reason;
    mutable bool seen = false;
};
constexpr std::span<const Exception> exceptions;

bool is_complex(char type) { return type == 'c' || type == 'z'; }

unsigned can_raise(const Row& row) {
    if (is_complex(row.type)) return all;
    const auto* const entry = std::find_if(std::begin(real_functions), std::end(real_functions),
                                           [&](const CanRaise& r) { return row.function() == r.function; });
    EXPECT_NE(entry, std::end(real_functions)) << "no entry for " << row.function();
    return entry == std::end(real_functions) ? unsigned{none} : entry->flags;
}

// ---- Elements as their real components ---------------------------------------------------------------------------------

using Components = std::vector<double>;

void append(Components& to, double x) { to.push_back(x); }
template <class Complex>
auto append(Components& to, const Complex& x) -> decltype(x.re, void()) {
    to.insert(to.end(), {x.re, x.im});
}

bool any_nan(const Components& x) {
    return std::any_of(x.begin(), x.end(), [](double v) { return std::isnan(v); });
}
bool all_nan(const Components& x) {
    return std::all_of(x.begin(), x.end(), [](double v) { return std::isnan(v); });
}
bool any_infinite(const Components& x) {
    return std::any_of(x.begin(), x.end(), [](double v) { return std::isinf(v); });
}

// A complex number with one NaN may raise invalid, since its other component may ask for it.
unsigned may_raise(const Row& row, const Components& arguments, const Components& results) {
    if (is_complex(row.type) ? all_nan(arguments) : any_nan(arguments)) return none;
    unsigned flags = none;
    if (any_nan(results)) flags |= invalid;
    // An infinite second argument of NextAfter is but a direction.
    const Components operands = row.function() == "NextAfter" ? Components{arguments[0]} : arguments;
    // What goes part by part may overflow in one beside an infinity in the other.
    const bool by_parts = is_complex(row.type) && (row.function() == "Add" || row.function() == "Sub");
    if (any_infinite(results) && (by_parts || !any_infinite(operands))) flags |= divide | overflow;
    return flags & can_raise(row);
}

// ---- Arguments -----------------------------------------------------------------------------------------------------------

// Few for functions of several arguments, where all pairs are taken.
template <class T>
std::vector<T> few_values() {
    using Limits = std::numeric_limits<T>;
    std::vector<T> x = {0,       Limits::denorm_min(), Limits::min(), T(0.75),  1,         2,
                        T(1e30), Limits::max() / 2,    Limits::max(), T(123.5), T(0x1p23), Limits::infinity()};
    const size_t count = x.size();
    for (size_t i = 0; i < count; ++i) x.push_back(-x[i]);
    x.push_back(Limits::quiet_NaN());
    return x;
}

// All exponents, and the places where functions of one argument turn: poles, ends of domains, limits of range and of paths.
template <class T>
std::vector<T> many_values() {
    using Limits = std::numeric_limits<T>;
    std::vector<T> x = few_values<T>();
    for (int e = Limits::min_exponent - Limits::digits; e < Limits::max_exponent; ++e)
        for (const double m : {1.0, 1.2345}) x.push_back(static_cast<T>(std::ldexp(m, e)));
    for (const double turn : {0.5,    1.0,      1.5,      3.5,    45.0,   87.3365, 88.7228, 89.0,
                              90.0,   103.9721, 104.0,    126.0,  127.0,  128.0,   149.0,   150.0,
                              171.6,  172.0,    180.0,    270.0,  307.65, 308.25,  323.4,   360.0,
                              707.75, 708.396,  709.7827, 710.0,  745.14, 746.0,   1022.0,  1024.0,
                              1074.0, 1075.5,   8191.0,   8192.5, 8256.0, 65536.5, 90112.0, 128000.0,
                              0x1p17, 0x1p24,   0x1p30,   0x1p43, 0x1p46, 1e10,    1e22,    4503599627370497.5})
        for (const T v : {static_cast<T>(turn), std::nextafter(static_cast<T>(turn), T{0}),
                          std::nextafter(static_cast<T>(turn), Limits::infinity())})
            x.insert(x.end(), {v, -v});
    return x;
}

template <class Complex, class T>
std::vector<Complex> complex_values(const std::vector<T>& x) {
    std::vector<Complex> z;
    for (const T re : x)
        for (const T im : x) z.push_back({re, im});
    return z;
}

// An argument that raises nothing in any of the functions of one argument but those that begin at 1.
template <class In>
In harmless(const Row& row) {
    if constexpr (std::is_floating_point_v<In>)
        return row.function() == "Acosh" ? In(1.5) : In(0.75);
    else
        return {0.75, 0.25};
}

// ---- Calls ---------------------------------------------------------------------------------------------------------------

constexpr int32_t length = 37;  // blocks, groups and single elements

// Runs one call over arrays of the given arguments and checks its flags against the results of all elements.
template <class In, class Out, class Call>
void check_call(const Row& row, int accuracy, const std::vector<In>& a, const std::vector<In>& b, bool two_inputs,
                Call&& call) {
    std::vector<Out> y(a.size(), Out{}), z(a.size(), Out{});
    _mm_setcsr(0x1F80);
    call(static_cast<int32_t>(a.size()), a.data(), b.data(), y.data(), z.data());
    unsigned raised = _mm_getcsr() & all;
    _mm_setcsr(0x1F80);
    unsigned allowed = none;
    for (const size_t i : {size_t{0}, a.size() > 1 ? size_t{5} : 0}) {  // the others are as the first
        Components arguments, results;
        append(arguments, a[i]);
        if (two_inputs) append(arguments, b[i]);
        append(results, y[i]);
        append(results, z[i]);
        allowed |= may_raise(row, arguments, results);
    }
    for (const Exception& e : exceptions)
        if (row.name() == e.row && e.accuracy == std::string_view(accuracy_names[accuracy]) &&
            (raised & ~allowed & e.flags) != 0) {
            allowed |= e.flags;
            e.seen = true;
        }
    if ((raised & ~allowed) == 0) return;
    static std::string last_shown;
    if (last_shown == row.name() + accuracy_names[accuracy]) return;
    last_shown = row.name() + accuracy_names[accuracy];
    Components shown;
    append(shown, a[a.size() > 1 ? 5 : 0]);
    if (two_inputs) append(shown, b[a.size() > 1 ? 5 : 0]);
    std::ostringstream of;
    for (const double v : shown) of << ' ' << std::hexfloat << v;
    ADD_FAILURE() << row.name() << ' ' << accuracy_names[accuracy] << " of" << of.str() << ", n " << a.size()
                  << " (the first such), raises " << raised << " where it may raise " << allowed;
}

// One value alone, in every element, and once among harmless ones.
template <class In, class Out, class Call>
void check_value(const Row& row, int accuracy, In a, In b, bool two_inputs, Call&& call) {
    const In rest = harmless<In>(row);
    std::vector<In> among(length, rest), among_b(length, rest);
    among[5] = a;
    among_b[5] = b;
    if (sanitized) return check_call<In, Out>(row, accuracy, among, among_b, two_inputs, call);
    check_call<In, Out>(row, accuracy, {a}, {b}, two_inputs, call);
    check_call<In, Out>(row, accuracy, std::vector<In>(length, a), std::vector<In>(length, b), two_inputs, call);
    check_call<In, Out>(row, accuracy, among, among_b, two_inputs, call);
}

template <class In, class Out>
void check_row(const Row& row, const std::vector<In>& many, const std::vector<In>& few) {
    using T = Out;
    for (int accuracy = 0; accuracy < 3; ++accuracy) {
        const Entry entry = row.dense.entries[accuracy];
        const auto one = [&](int32_t n, const In* a, const In*, Out* y, Out*) {
            reinterpret_cast<void (*)(int32_t, const In*, Out*)>(entry)(n, a, y);
        };
        const auto two_out = [&](int32_t n, const In* a, const In*, Out* y, Out* z) {
            reinterpret_cast<void (*)(int32_t, const In*, Out*, Out*)>(entry)(n, a, y, z);
        };
        const auto two = [&](int32_t n, const In* a, const In* b, Out* y, Out*) {
            reinterpret_cast<void (*)(int32_t, const In*, const In*, Out*)>(entry)(n, a, b, y);
        };
        // The scalar is that of the sixth element, or the only one.
        const auto scalar = [&](int32_t n, const In* a, const In* b, Out* y, Out*) {
            reinterpret_cast<void (*)(int32_t, const In*, In, Out*)>(entry)(n, a, b[n > 1 ? 5 : 0], y);
        };
        const auto linear = [&](int32_t n, const In* a, const In* b, Out* y, Out*) {
            if constexpr (std::is_same_v<In, T> && std::is_floating_point_v<T>)
                reinterpret_cast<void (*)(int32_t, const T*, const T*, T, T, T, T, T*)>(entry)(n, a, b, 1, 0, 1, 0, y);
        };
        if (row.shape() == "ONE" || row.shape() == "TO_REAL" || row.shape() == "TO_COMPLEX") {
            for (const In a : many) check_value<In, Out>(row, accuracy, a, a, false, one);
        } else if (row.shape() == "TWO_OUT") {
            for (const In a : many) check_value<In, Out>(row, accuracy, a, a, false, two_out);
        } else {
            for (const In a : few)
                for (const In b : few) {
                    if (row.shape() == "TWO")
                        check_value<In, Out>(row, accuracy, a, b, true, two);
                    else if (row.shape() == "LINEAR")
                        check_value<In, Out>(row, accuracy, a, b, true, linear);
                    else if (row.shape() == "SCALAR")
                        check_call<In, Out>(row, accuracy, std::vector<In>(length, a), std::vector<In>(length, b), true,
                                            scalar);
                    else
                        FAIL() << "no calls for the shape " << row.shape();
                }
        }
    }
}

template <class T, class Complex>
void check_type(char real, char complex) {
    const std::vector<T> many = many_values<T>(), few = few_values<T>();
    const std::vector<Complex> both = complex_values<Complex>(few);
    std::vector<Complex> some;
    for (size_t i = 0; i < both.size(); i += 7) some.push_back(both[i]);
    for (const Row& row : math_rows()) {
        can_raise(row);
        if (row.type == real) check_row<T, T>(row, many, few);
        if (row.type != complex) continue;
        if (row.shape() == "TO_REAL")
            check_row<Complex, T>(row, both, some);
        else if (row.shape() == "TO_COMPLEX")
            check_row<T, Complex>(row, many, few);
        else
            check_row<Complex, Complex>(row, both, some);
    }
}

TEST(Flags, OnlyWhatTheFunctionItselfRaises) {
    const uint32_t before = _arqSetMode(ORV_MODE_ERRMODE_IGNORE);
    for (const uint32_t mode : {ORV_MODE_ERRMODE_IGNORE, ORV_MODE_ERRMODE_NOERR}) {
        _arqSetMode(mode);
        check_type<float, orv_complex_s>('s', 'c');
        check_type<double, orv_complex_d>('d', 'z');
        if (sanitized) break;
    }
    _arqSetMode(before);
    for (const Exception& e : exceptions)
        EXPECT_TRUE(e.seen || sanitized) << e.row << ' ' << e.accuracy << ": " << e.reason;
}

}  // namespace
