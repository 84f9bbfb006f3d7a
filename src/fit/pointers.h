// The pointer arrays that a task owns: one pointer to each function and to the coefficients of each.
#pragma once

#include "fit/task.h"
#include "services/services.h"

namespace orv::fit {

// An array of null pointers, at least one. Null where memory or a 32-bit count does not suffice.
template <class P>
P* allocate_pointers(int64_t count, int32_t& capacity) {
    constexpr int64_t most = INT32_MAX / int64_t{sizeof(P)};
    capacity = 0;
    if (count > most) return nullptr;
    const int32_t entries = count > 1 ? static_cast<int32_t>(count) : 1;
    const size_t size = static_cast<size_t>(entries) * sizeof(P);
    auto* pointers = static_cast<P*>(orv_serv_allocate(size, block_alignment));
    if (!pointers) return nullptr;
    __builtin_memset(pointers, 0, size);
    capacity = entries;
    return pointers;
}

// Makes room for entry `index` of `count` and keeps the others. Rooms double, so that setting entry after entry copies each
// a few times only.
template <class P>
orv_df_status make_room(P*& pointers, int32_t& capacity, int64_t index, int64_t count) {
    if (index < capacity) return ORV_DF_OK;
    const int64_t doubled = 2 * int64_t{capacity} < count ? 2 * int64_t{capacity} : count;
    int32_t larger_capacity;
    P* larger = allocate_pointers<P>(index < doubled ? doubled : index + 1, larger_capacity);
    if (!larger) return ORV_DF_NO_MEMORY;
    if (pointers) __builtin_memcpy(larger, pointers, static_cast<size_t>(capacity) * sizeof(P));
    orv_serv_deallocate(pointers);
    pointers = larger;
    capacity = larger_capacity;
    return ORV_DF_OK;
}

// Block `i` of blocks of `rows` by `columns` elements. The sizes are the caller's word, and their product may lie beyond all
// addresses: it wraps.
template <class T>
T* block_at(T* base, int64_t i, int64_t rows, int64_t columns) {
    const uint64_t elements = static_cast<uint64_t>(i) * static_cast<uint64_t>(rows) * static_cast<uint64_t>(columns);
    return reinterpret_cast<T*>(reinterpret_cast<uintptr_t>(base) + static_cast<uintptr_t>(elements * sizeof(T)));
}

// The function pointers as the layout wants them. Under ROW_POINTERS those after the first are the caller's to set.
template <class T>
orv_df_status set_functions(DFTask& task, const T* funcs, int64_t count, int64_t layout) {
    const bool one_pointer = layout == ORV_DF_COLUMNS;
    task.funcs = allocate_pointers<const void*>(one_pointer ? 1 : count, task.funcCapacity);
    if (!task.funcs) return ORV_DF_NO_MEMORY;
    if (one_pointer || layout == ORV_DF_ROW_POINTERS) {
        task.funcs[0] = funcs;
    } else {
        for (int64_t i = 0; i < count; ++i) task.funcs[i] = block_at(funcs, i, task.breakCount, 1);
    }
    return ORV_DF_OK;
}

template <class T>
orv_df_status set_coefficients(DFTask& task, T* coeffs, int64_t layout) {
    if (task.funcCount == 0) return ORV_DF_BAD_FUNCTION_COUNT;
    orv_serv_deallocate(task.coeffs);
    task.coeffs = allocate_pointers<void*>(task.funcCount, task.coeffCapacity);
    if (!task.coeffs) return ORV_DF_NO_MEMORY;
    if (layout & ORV_DF_ROW_POINTERS) {
        task.coeffs[0] = coeffs;
    } else {
        const int64_t cells = task.splineType == ORV_DF_TYPE_KNOTS ? task.breakCount : task.breakCount - 1;
        for (int64_t i = 0; i < task.funcCount; ++i) task.coeffs[i] = block_at(coeffs, i, cells, task.splineOrder);
    }
    return ORV_DF_OK;
}

}  // namespace orv::fit
