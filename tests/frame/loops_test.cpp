// The loops: every count at every alignment, dense and strided, in place and not, with nothing touched beside the arrays.
#include "support/guarded.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

using namespace orv::test;

constexpr int32_t longest = 70;
constexpr char untouched = 0x5A;

template <class T>
T argument(int32_t i) {
    return static_cast<T>(((i * 29) % 61 - 30) / 4.0 + 0.125);
}
template <>
orv_complex_s argument(int32_t i) {
    return {argument<float>(i), argument<float>(i + 7)};
}
template <>
orv_complex_d argument(int32_t i) {
    return {argument<double>(i), argument<double>(i + 7)};
}

// Arrays are handled through bytes, since they may lie at any address.
template <class T>
void put(char* at, const T& x) {
    std::memcpy(at, &x, sizeof x);
}
template <class T>
T get(const char* at) {
    T x;
    std::memcpy(&x, at, sizeof x);
    return x;
}

// One array: its place in guarded memory, with increment. Elements run from `first` in steps of `increment`.
template <class T>
struct Placed {
    GuardedPages pages{2};
    char* first = nullptr;
    int32_t increment = 1;

    T* pointer() const { return reinterpret_cast<T*>(first); }
    char* at(int32_t i) const {
        return first + static_cast<ptrdiff_t>(i) * increment * static_cast<ptrdiff_t>(sizeof(T));
    }
    char* lowest(int32_t n) const { return increment < 0 && n > 0 ? at(n - 1) : first; }
    size_t span(int32_t n) const {
        return n > 0 ? (static_cast<size_t>(n - 1) * static_cast<size_t>(std::abs(increment)) + 1) * sizeof(T) : 0;
    }

    // So that the lowest byte is `offset` past a 16-byte boundary near the front, or the last element ends at the end.
    void place(int32_t n, int32_t step, int offset, bool at_end) {
        increment = step;
        char* low = at_end ? pages.end() - span(n) : pages.begin() + offset;
        first = step < 0 && n > 0 ? low + span(n) - sizeof(T) : low;
        std::memset(pages.begin(), untouched, pages.bytes);
    }
    void fill(int32_t n) {
        for (int32_t i = 0; i < n; ++i) put(at(i), argument<T>(i));
    }
};

template <class T>
bool same(const T& x, const T& y) {
    return std::memcmp(&x, &y, sizeof x) == 0;
}

// Everything in the pages but the elements themselves must be as `place` left it.
template <class T>
bool nothing_else_written(const Placed<T>& y, int32_t n) {
    std::vector<char> expected(y.pages.bytes, untouched);
    for (int32_t i = 0; i < n; ++i) std::memcpy(expected.data() + (y.at(i) - y.pages.begin()), y.at(i), sizeof(T));
    return std::memcmp(expected.data(), y.pages.begin(), y.pages.bytes) == 0;
}

// The result of one element, from a call with nothing around it.
template <class T, class Call>
std::vector<T> one_by_one(Call call) {
    std::vector<T> results(longest);
    for (int32_t i = 0; i < longest; ++i) call(i, &results[static_cast<size_t>(i)]);
    return results;
}

template <class T>
void check(const Placed<T>& y, int32_t n, const std::vector<T>& expected, const std::string& what) {
    for (int32_t i = 0; i < n; ++i)
        ASSERT_TRUE(same(get<T>(y.at(i)),
                         y.increment == 0 ? expected[static_cast<size_t>(n - 1)] : expected[static_cast<size_t>(i)]))
            << what << " element " << i;
    ASSERT_TRUE(nothing_else_written(y, n)) << what << " wrote beside its result";
}

std::string describe(const Row& row, int32_t n, int32_t inca, int32_t incy, int offset, bool at_end) {
    return row.name() + " n " + std::to_string(n) + " inca " + std::to_string(inca) + " incy " + std::to_string(incy) +
           " offset " + std::to_string(offset) + (at_end ? " at the end" : "");
}

constexpr int32_t strides[][2] = {{1, 1}, {2, 3}, {-1, 1}, {1, -2}, {-3, -1}, {0, 1}, {1, 0}};

template <class T>
void check_one_input(const Row& row, int accuracy) {
    auto* dense = entry<OneInput<T>>(row.dense, accuracy);
    auto* strided = entry<OneInputStrided<T>>(row.strided, accuracy);
    const std::vector<T> expected = one_by_one<T>([&](int32_t i, T* y) {
        const T x = argument<T>(i);
        dense(1, &x, y);
    });
    Placed<T> a, y;
    for (int32_t n = 0; n <= longest; ++n)
        for (int offset = 0; offset < 16; ++offset) {
            const bool at_end = offset == 15;
            a.place(n, 1, offset, at_end);
            a.fill(n);
            y.place(n, 1, (offset * 7 + 3) % 16, at_end);
            dense(n, a.pointer(), y.pointer());
            check(y, n, expected, describe(row, n, 1, 1, offset, at_end));
            // In place.
            y.place(n, 1, offset, at_end);
            y.fill(n);
            dense(n, y.pointer(), y.pointer());
            check(y, n, expected, describe(row, n, 1, 1, offset, at_end) + " in place");
        }
    for (const auto& [inca, incy] : strides)
        for (int32_t n = 0; n <= longest; n += n < 20 ? 1 : 7) {
            const bool at_end = n % 2 == 0;
            a.place(inca == 0 ? std::min(n, 1) : n, inca, n % 16, at_end);
            a.fill(inca == 0 ? std::min(n, 1) : n);
            y.place(incy == 0 ? std::min(n, 1) : n, incy, (n * 5) % 16, at_end);
            strided(n, a.pointer(), inca, y.pointer(), incy);
            if (inca == 0)
                check(y, n, std::vector<T>(longest, expected[0]), describe(row, n, inca, incy, n % 16, at_end));
            else
                check(y, n, expected, describe(row, n, inca, incy, n % 16, at_end));
        }
}

template <class T>
void check_two_inputs(const Row& row, int accuracy) {
    auto* dense = entry<TwoInputs<T>>(row.dense, accuracy);
    auto* strided = entry<TwoInputsStrided<T>>(row.strided, accuracy);
    const auto second = [](int32_t i) { return argument<T>(3 * i + 1); };
    const auto fill_second = [&](Placed<T>& b, int32_t n) {
        for (int32_t i = 0; i < n; ++i) put(b.at(i), second(i));
    };
    const std::vector<T> expected = one_by_one<T>([&](int32_t i, T* y) {
        const T x = argument<T>(i), z = second(i);
        dense(1, &x, &z, y);
    });
    Placed<T> a, b, y;
    for (int32_t n = 0; n <= longest; ++n)
        for (int offset = 0; offset < 16; ++offset)
            for (int in_place = 0; in_place < 3; ++in_place) {
                const bool at_end = offset == 15;
                a.place(n, 1, (offset * 5) % 16, at_end);
                a.fill(n);
                b.place(n, 1, (offset * 7 + 8) % 16, at_end);
                fill_second(b, n);
                y.place(n, 1, offset, at_end);
                if (in_place == 1) y.fill(n);
                if (in_place == 2) fill_second(y, n);
                dense(n, in_place == 1 ? y.pointer() : a.pointer(), in_place == 2 ? y.pointer() : b.pointer(),
                      y.pointer());
                check(y, n, expected, describe(row, n, 1, 1, offset, at_end) + " in place " + std::to_string(in_place));
            }
    for (const auto& [inca, incy] : strides) {
        if (inca == 0) continue;
        for (int32_t n = 0; n <= longest; n += n < 20 ? 1 : 7) {
            const bool at_end = n % 2 == 0;
            a.place(n, inca, n % 16, at_end);
            a.fill(n);
            b.place(n, -inca, n % 16, at_end);
            fill_second(b, n);
            y.place(incy == 0 ? std::min(n, 1) : n, incy, (n * 5) % 16, at_end);
            strided(n, a.pointer(), inca, b.pointer(), -inca, y.pointer(), incy);
            check(y, n, expected, describe(row, n, inca, incy, n % 16, at_end));
        }
    }
}

// The functions whose result does not depend on where an element stands in a call.
bool is_exact(const Row& row) {
    for (const std::string_view function :
         {"Ceil", "Floor", "Trunc", "Rint", "NearbyInt", "Round", "Frac", "Abs", "Sqr", "Add", "Sub", "Mul", "Conj"})
        if (row.function() == function) return true;
    return false;
}

TEST(Loops, GiveEveryElementItsResultAndTouchNothingElse) {
    for (const Row& row : math_rows()) {
        if (!is_exact(row)) continue;
        SCOPED_TRACE(row.name());
        constexpr int accuracy = 1;
        if (row.shape() == "TWO") {
            if (row.type == 's') check_two_inputs<float>(row, accuracy);
            if (row.type == 'd') check_two_inputs<double>(row, accuracy);
        } else {
            if (row.type == 's') check_one_input<float>(row, accuracy);
            if (row.type == 'd') check_one_input<double>(row, accuracy);
            if (row.type == 'c') check_one_input<orv_complex_s>(row, accuracy);
            if (row.type == 'z') check_one_input<orv_complex_d>(row, accuracy);
        }
        if (testing::Test::HasFatalFailure()) return;
    }
}

// The arguments behind the count are null pointers, increments and scalars of 0, as many as any shape has.
TEST(Loops, DoNothingForCountsBelowOne) {
    using Any = void(int32_t n, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t,
                     intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t);
    for (const Row& row : math_rows())
        for (const Form* form : {&row.dense, &row.strided})
            for (int accuracy = 0; accuracy < 3; ++accuracy)
                for (const int32_t n : {0, -1, -32, INT32_MIN + 1, INT32_MIN})
                    entry<Any>(*form, accuracy)(n, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
}

}  // namespace
