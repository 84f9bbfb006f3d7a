// Quicksort with the median of three as pivot, and selection by the same partition.
//
// Source: R. Sedgewick, Implementing quicksort programs, Communications of the ACM 21 (1978).
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <utility>

namespace orv::stats {

// Elements `stride` apart. A pointer does where they are contiguous.
template <class T>
struct Spaced {
    T* first;
    ptrdiff_t stride;

    T& operator[](int32_t i) const { return first[i * stride]; }
};

// The first exchanges of a long range's partition. From either end the places of the elements that stop there are noted, a block at a
// time and without a branch for each; the k-th from the left and the k-th from the right are then what an exchange one by one would
// pair too. i and j come to where that would go on.
//
// Source: S. Edelkamp, A. Weiss, BlockQuicksort: avoiding branch mispredictions in quicksort, ESA (2016).
inline constexpr int32_t exchange_block = 64, shortest_by_blocks = 3 * exchange_block;

template <class A, class T>
void exchange_blocks(A a, T pivot, int32_t& i, int32_t& j) {
    uint8_t up[exchange_block], down[exchange_block];
    int32_t ups = 0, up_at = 0, downs = 0, down_at = 0, from_left = i + 1, from_right = j - 1;
    for (;;) {
        if (up_at == ups) {
            if (from_right - from_left < 2 * exchange_block) break;
            ups = up_at = 0;
            for (int32_t k = 0; k < exchange_block; ++k) {
                up[ups] = static_cast<uint8_t>(k);
                ups += !(pivot > a[from_left + k]);
            }
            from_left += exchange_block;
        }
        if (down_at == downs) {
            if (from_right - from_left < 2 * exchange_block) break;
            downs = down_at = 0;
            for (int32_t k = 0; k < exchange_block; ++k) {
                down[downs] = static_cast<uint8_t>(k);
                downs += !(a[from_right - k] > pivot);
            }
            from_right -= exchange_block;
        }
        const int32_t left_block = from_left - exchange_block, right_block = from_right + exchange_block;
        while (up_at < ups && down_at < downs) std::swap(a[left_block + up[up_at++]], a[right_block - down[down_at++]]);
    }
    i = up_at < ups ? from_left - exchange_block + up[up_at] - 1 : from_left - 1;
    j = down_at < downs ? from_right + exchange_block - down[down_at] + 1 : from_right + 1;
}

// Parts [left, right], which has three elements at least, about the median of its first, middle and last. The pivot ends at the
// index returned; `rise` is the first index that is known to be behind it.
template <class A>
int32_t partition(A a, int32_t left, int32_t right, int32_t& rise) {
    std::swap(a[(left + right) >> 1], a[left + 1]);
    if (a[left] > a[right]) std::swap(a[left], a[right]);
    if (a[left + 1] > a[right]) std::swap(a[left + 1], a[right]);
    if (a[left] > a[left + 1]) std::swap(a[left], a[left + 1]);
    const auto pivot = a[left + 1];
    int32_t i = left + 1, j = right;
    if (right - left >= shortest_by_blocks) exchange_blocks(a, pivot, i, j);
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

template <class A>
void insertion_sort(A a, int32_t left, int32_t right) {
    for (int32_t i = left + 1; i <= right; ++i) {
        const auto held = a[i];
        int32_t j = i - 1;
        for (; j >= left && a[j] > held; --j) a[j + 1] = a[j];
        a[j + 1] = held;
    }
}

// The larger part waits on the stack, so that it never holds more than log2 n ranges. Their ends are kept as doubles.
template <class A>
void quick_sort(A a, int32_t n) {
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
template <class A>
auto select(A a, int32_t left, int32_t right, int32_t k) {
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
