// A lock for holds of a few instructions: a word that is taken by compare-exchange and released by a plain store.
#pragma once

#include <stdint.h>

#ifdef ORV_RACE_NOTES
#include <valgrind/drd.h>
#include <valgrind/helgrind.h>
#endif

namespace orv::streams {

struct SpinLock {
    uint32_t word;  // 0 free, 1 held
};

struct [[nodiscard]] SpinHold {
    explicit SpinHold(SpinLock& held) : lock(held) {
        for (uint32_t free = 0;
             !__atomic_compare_exchange_n(&lock.word, &free, 1u, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED);)
            free = 0;
#ifdef ORV_RACE_NOTES
        VALGRIND_HG_DISABLE_CHECKING(&lock.word, sizeof lock.word);
        ANNOTATE_RWLOCK_ACQUIRED(&lock, 1);
#endif
    }
    ~SpinHold() {
#ifdef ORV_RACE_NOTES
        ANNOTATE_RWLOCK_RELEASED(&lock, 1);
#endif
        __atomic_store_n(&lock.word, 0u, __ATOMIC_RELEASE);
    }
    SpinHold(const SpinHold&) = delete;
    SpinHold& operator=(const SpinHold&) = delete;

    SpinLock& lock;
};

}  // namespace orv::streams
