// Quantiles of one component by selection: what one order parted serves the next.
#pragma once

#include "stats/data.h"
#include "stats/order/quick_sort.h"

#include <cmath>
#include <limits>

namespace orv::stats {

// The position of the quantile of an order among n observations: a whole part and the share of the one behind it.
struct Position {
    int32_t first = 0;
    double share = 0;

    Position() = default;
    Position(double order, int32_t n) {
        const double position = order * (n - 1);
        first = static_cast<int32_t>(position);
        share = position - first;
    }
    template <class T>
    T between(T a, T b) const {
        return static_cast<T>(double{a} * (1 - share) + double{b} * share);
    }
};

// A component's observations, parted as far as has been asked: all before `from` are in their places' order.
template <class T>
struct Parted {
    T* x;
    int32_t numbers;  // without the NaNs, which stand behind
    int32_t n;
    int32_t from;

    T of_order(int32_t k) {
        if (k >= numbers) return std::numeric_limits<T>::quiet_NaN();
        T value = x[k];
        if (k >= from) {
            value = select(x, from, numbers - 1, k);
            from = k + 1;
        }
        return value == 0 ? zero_of_order(k) : value;
    }

    // Zeros are equal to the selection; the negative ones come first.
    T zero_of_order(int32_t k) const {
        int32_t before = 0;
        for (int32_t i = 0; i < numbers; ++i) before += x[i] < 0 || (x[i] == 0 && std::signbit(x[i]));
        return k < before ? -T{0} : T{0};
    }
};

// Copies to.n observations to to.x, NaNs behind the numbers.
template <class T, class U>
void copy_numbers(const Strided<T>& from, Parted<U>& to) {
    int32_t front = 0, back = to.n;
    for (int32_t i = 0; i < to.n; ++i)
        if (from[i] == from[i])
            to.x[front++] = from[i];
        else
            to.x[--back] = from[i];
    to.numbers = front;
    to.from = 0;
}

template <class T>
T quantile(Parted<T>& parted, double order) {
    const Position at(order, parted.n);
    const T a = parted.of_order(at.first);
    return at.between(a, parted.of_order(at.first + (at.first + 1 < parted.n)));
}

}  // namespace orv::stats
