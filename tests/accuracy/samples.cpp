#include "accuracy/measure.h"
#include "accuracy/trig_points.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace orv::accuracy {

namespace {

template <class T>
constexpr T infinity = std::numeric_limits<T>::infinity();

// Where a function has finite results, the range of ordinary arguments, and the limits and table boundaries of its
// kernels (whatever kernel: a point too many costs nothing).
struct Range {
    const char* function;
    char type;
    double low, high;
    double ordinary_low, ordinary_high;
    std::vector<double> points;
};

constexpr double huge_d = std::numeric_limits<double>::max();
constexpr double huge_s = std::numeric_limits<float>::max();
constexpr double tiny_d = std::numeric_limits<double>::denorm_min();
constexpr double tiny_s = std::numeric_limits<float>::denorm_min();

const Range ranges[] = {
    {"Exp",
     'd',
     -746,
     709.79,
     -700,
     700,
     {708.39599609375, 709.78000528721, 709.7827128933841, -708.3964185322641, -708.39599609375, -745.1332191019412,
      0x1p-53, -0x1p-53, 0x1p-54, 0.6931471805599453}},
    {"Exp",
     's',
     -104.5,
     88.73,
     -85,
     85,
     {87.33655, 88.7228317, -87.3365402, -103.972076, 0x1p-24, -0x1p-24, 0.6931471805599453}},
    {"Expm1",
     'd',
     -huge_d,
     709.79,
     -20,
     20,
     {707.70327135170407, 709.7827128933841, -36.7368005696771, -37.42994775023705, 0x1p-54, -0x1p-54,
      0.6931471805599453, 0.00270760617, -0.00270760617}},
    {"Expm1", 's', -huge_s, 88.73, -10, 10, {87.33655, 88.7228317, -17.32868, 0x1p-25, -0x1p-25, 0.6931471805599453}},
    {"Exp2", 'd', -1075.5, 1024, -1000, 1000, {1021.875, 1022, 1023, 1024, -1021.875, -1022, -1074, -1075}},
    {"Exp2", 's', -150.5, 128, -120, 120, {126, 127, 128, -126, -149, -150}},
    {"Exp10",
     'd',
     -324,
     308.26,
     -300,
     300,
     {307.65234375, 308.25471555991674, -307.65234375, -307.6526555685888, -323.6060814, 22}},
    {"Exp10", 's', -45.5, 38.54, -36, 36, {37.92978, 38.53184, -37.92978, -44.85347, 10}},
    {"Ln",
     'd',
     tiny_d,
     huge_d,
     0,
     1000,
     {1.4990234375, 0.74951171875, 0.6666666667, 1.3333333333, 0x1p-1022, 1.00048828125, 0.99951171875, 1.001953125}},
    {"Ln", 's', tiny_s, huge_s, 0, 1000, {0.666666687, 1.333333374, 0x1p-126}},
    {"Log10",
     'd',
     tiny_d,
     huge_d,
     0,
     1000,
     {1.4990234375, 0.74951171875, 10, 100, 1000, 0x1p-1022, 1.00048828125, 0.99951171875, 1.001953125}},
    {"Log10", 's', tiny_s, huge_s, 0, 1000, {0.666666687, 1.333333374, 10, 100, 1000, 0x1p-126}},
    {"Log2",
     'd',
     tiny_d,
     huge_d,
     0,
     1000,
     {1.4990234375, 0.74951171875, 2, 4, 0.5, 0x1p-1022, 1.00048828125, 0.99951171875, 1.001953125, 1.4142135623730951,
      0.7071067811865476}},
    {"Log2", 's', tiny_s, huge_s, 0, 1000, {0.666666687, 1.333333374, 2, 4, 0.5, 0x1p-126}},
    {"Log1p",
     'd',
     -1 + 0x1p-53,
     huge_d,
     -0.9,
     4,
     {-0.5, 0.4990234375, 0x1p-53, -0x1p-53, 0x1p52, 0x1p53, 0x1p54, 0x1p-9, -0x1p-9}},
    {"Log1p", 's', -1 + 0x1p-24, huge_s, -0.9, 4, {-0.5, 0.333333343, -0.333333343, 0x1p-24, -0x1p-24, 0x1p24, 0x1p25}},
    {"Logb", 'd', tiny_d, huge_d, 0, 1000, {0x1p-1022}},
    {"Logb", 's', tiny_s, huge_s, 0, 1000, {0x1p-126}},
    {"Sin", 'd', -huge_d, huge_d, -1e5, 1e5, {}},
    {"Sin", 's', -huge_s, huge_s, -1e4, 1e4, {}},
    {"Cos", 'd', -huge_d, huge_d, -1e5, 1e5, {}},
    {"Cos", 's', -huge_s, huge_s, -1e4, 1e4, {}},
    {"Tan", 'd', -huge_d, huge_d, -1e5, 1e5, {}},
    {"Tan", 's', -huge_s, huge_s, -1e4, 1e4, {}},
    {"Sinpi", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Sinpi", 's', -huge_s, huge_s, -1000, 1000, {}},
    {"Cospi", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Cospi", 's', -huge_s, huge_s, -1000, 1000, {}},
    {"Tanpi", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Tanpi", 's', -huge_s, huge_s, -1000, 1000, {}},
    {"Sind", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Sind", 's', -huge_s, huge_s, -1000, 1000, {}},
    {"Cosd", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Cosd", 's', -huge_s, huge_s, -1000, 1000, {}},
    {"Tand", 'd', -huge_d, huge_d, -1000, 1000, {}},
    {"Tand", 's', -huge_s, huge_s, -1000, 1000, {}},
};

// A float type's numbers in rising order are integers in rising order.
template <class T>
struct Order;
template <>
struct Order<float> {
    using Int = int32_t;
};
template <>
struct Order<double> {
    using Int = int64_t;
};
template <class T>
using OrderOf = typename Order<T>::Int;

template <class T>
OrderOf<T> order(T x) {
    const auto bits = std::bit_cast<OrderOf<T>>(x);
    return bits < 0 ? std::numeric_limits<OrderOf<T>>::min() - bits : bits;
}
template <class T>
T number(OrderOf<T> i) {
    return std::bit_cast<T>(i < 0 ? std::numeric_limits<OrderOf<T>>::min() - i : i);
}

template <class T>
void add_neighbours(std::vector<T>& list, T x, int each_side) {
    for (int k = -each_side; k <= each_side; ++k) list.push_back(number<T>(order(x) + k));
}

}  // namespace

template <class T>
std::vector<T> samples(const char* function, int64_t count, uint64_t seed) {
    const char type = sizeof(T) == 4 ? 's' : 'd';
    const Range* range = nullptr;
    for (const Range& r : ranges)
        if (r.type == type && std::strcmp(r.function, function) == 0) range = &r;
    if (!range) return {};

    using Limits = std::numeric_limits<T>;
    std::mt19937_64 random(seed);
    std::vector<T> list = trig_points<T>(function, count / 4, seed);
    for (const double point : range->points) {
        add_neighbours(list, static_cast<T>(point), 64);
        add_neighbours(list, static_cast<T>(-point), 64);
    }
    for (const double point : {0.0, 1.0, -1.0, range->low, range->high})
        add_neighbours(list, static_cast<T>(point), 256);
    const int exponents = Limits::max_exponent - (Limits::min_exponent - Limits::digits);
    for (int e = Limits::min_exponent - Limits::digits; e < Limits::max_exponent; ++e) {
        const T power = std::ldexp(T{1}, e);
        for (const T sign : {T{1}, T{-1}}) {
            add_neighbours(list, sign * power, 2);
            for (int k = 0; k < 20000 / exponents; ++k)
                list.push_back(sign * power * (1 + static_cast<T>(random() >> 40) * T{0x1p-24f}));
        }
        // 1 plus and minus ever less, down to the last bit.
        if (e < 0 && e > -Limits::digits - 1) {
            for (int k = 0; k < 50; ++k) {
                const T step = power * (1 + static_cast<T>(random() >> 40) * T{0x1p-24f});
                list.push_back(1 + step);
                list.push_back(1 - step);
            }
        }
    }
    // The middles and ends of 1/256, 1/512 and 1/1024 of the significand, in a few binades around 1.
    for (int j = 0; j < 2048; ++j)
        for (const T power : {T{0.5}, T{1}, T{2}}) add_neighbours(list, power * (1 + T(j) / 2048), 2);

    const T low = static_cast<T>(range->low), high = static_cast<T>(range->high);
    const OrderOf<T> first = order(low), last = order(high);
    const uint64_t patterns = static_cast<uint64_t>(last) - static_cast<uint64_t>(first);
    for (int64_t i = 0; i < count; i += 2) {
        const double u = static_cast<double>(random() >> 11) * 0x1p-53;
        list.push_back(static_cast<T>(range->ordinary_low + u * (range->ordinary_high - range->ordinary_low)));
        // A hair off even for 64-bit patterns: no sample depends on that.
        list.push_back(number<T>(static_cast<OrderOf<T>>(static_cast<uint64_t>(first) + random() % patterns)));
        // 1 and a power of two of a random exponent: where logarithms are small the other two hardly come.
        if (i % 8 == 0) {
            const double distance = std::exp2(-Limits::digits * static_cast<double>(random() >> 11) * 0x1p-53);
            list.push_back(static_cast<T>(random() & 1 ? 1 + distance : 1 - distance));
        }
    }
    // Subnormal arguments of every length.
    for (int i = 0; i < 20000 && low <= Limits::denorm_min(); ++i)
        list.push_back(static_cast<T>(1 + random() % (uint64_t{2} << (random() % (Limits::digits - 1)))) *
                       Limits::denorm_min());
    const double limit = command::find_reference(function)->limit;
    std::erase_if(list, [&](T x) { return !(x >= low && x <= high) || x == 0 || std::fabs(x) >= limit; });
    list.push_back(0 > range->low ? T{0} : high);
    return list;
}

template std::vector<float> samples<float>(const char*, int64_t, uint64_t);
template std::vector<double> samples<double>(const char*, int64_t, uint64_t);

}  // namespace orv::accuracy
