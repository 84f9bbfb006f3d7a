// Quicksort with the median of three as pivot, and selection by the same partition.
//
// Source: R. Sedgewick, Implementing quicksort programs, Communications of the ACM 21 (1978).
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <utility>

namespace orv::stats {

// Elements `stride` apart.
template <class T>
struct Spaced {
    T* first;
    ptrdiff_t stride;

    T& operator[](int32_t i) const { return first[i * stride]; }
};

// Parts [left, right], which has three elements at least, about the median of its first, middle and last. The pivot ends at the
// index returned; `rise` is the first index that is known to be behind it.
template <class T>
int32_t partition(Spaced<T> a, int32_t left, int32_t right, int32_t& rise) {
    std::swap(a[(left + right) >> 1], a[left + 1]);
    if (a[left] > a[right]) std::swap(a[left], a[right]);
    if (a[left + 1] > a[right]) std::swap(a[left + 1], a[right]);
    if (a[left] > a[left + 1]) std::swap(a[left], a[left + 1]);
    const T pivot = a[left + 1];
    int32_t i = left + 1, j = right;
    for (;;) {
        do ++i;
        while (pivot > a[i]);
        do --j;
        while (a[j] > pivot);
        if (j < i) break;
        std::swap(a[i], a[j]);
    }
    a[left + 1] = a[j];
    a[j] = pivot;
    rise = i;
    return j;
}

template <class T>
void insertion_sort(Spaced<T> a, int32_t left, int32_t right) {
    for (int32_t i = left + 1; i <= right; ++i) {
        const T held = a[i];
        int32_t j = i - 1;
        for (; j >= left && a[j] > held; --j) a[j + 1] = a[j];
        a[j + 1] = held;
    }
}

// The larger part waits on the stack, so that it never holds more than log2 n ranges. Their ends are kept as doubles.
template <class T>
void quick_sort(Spaced<T> a, int32_t n) {
    double stack[2 * 32];
    int32_t top = 0, left = 0, right = n - 1;
    for (;;) {
        while (right - left >= 7) {
            int32_t rise;
            const int32_t middle = partition(a, left, right, rise);
            if (right - rise < middle - 1 - left) {
                stack[top++] = left;
                stack[top++] = middle - 1;
                left = rise;
            } else {
                stack[top++] = rise;
                stack[top++] = right;
                right = middle - 1;
            }
        }
        insertion_sort(a, left, right);
        if (top == 0) return;
        right = static_cast<int32_t>(stack[--top]);
        left = static_cast<int32_t>(stack[--top]);
    }
}

// The element of order k in [left, right], which comes to its place: none before it is larger, none behind it smaller.
template <class T>
T select(Spaced<T> a, int32_t left, int32_t right, int32_t k) {
    while (right > left) {
        if (right == left + 1) {
            if (a[left] > a[right]) std::swap(a[left], a[right]);
            break;
        }
        int32_t rise;
        const int32_t middle = partition(a, left, right, rise);
        if (middle >= k) right = middle - 1;
        if (middle <= k) left = rise;
    }
    return a[k];
}

}  // namespace orv::stats
