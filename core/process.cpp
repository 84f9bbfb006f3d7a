// Locks, process end and processor queries.
#include "services/export.h"

#include <orv/services.h>

#include <cpuid.h>
#include <cstdlib>
#include <immintrin.h>
#include <thread>

ORV_API void orv_serv_lock(orv_serv_lock_word* lock) {
    // Held for a few instructions at a time: spin a little, then let the holder run.
    for (int spins = 0; __atomic_exchange_n(lock, 1, __ATOMIC_ACQUIRE) != 0; ++spins) {
        if (spins < 64)
            _mm_pause();
        else
            std::this_thread::yield();
    }
}

ORV_API void orv_serv_unlock(orv_serv_lock_word* lock) { __atomic_store_n(lock, 0, __ATOMIC_RELEASE); }

ORV_API void orv_serv_exit(int32_t code) { std::exit(code); }

ORV_API int32_t orv_serv_cpuisqlx() {
    unsigned eax, ebx, ecx, edx;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return 0;
    const bool saves_vector_state = (ecx >> 27 & 1) != 0;
    if (!saves_vector_state) return 0;
    unsigned low, high;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    const bool system_saves_ymm = (low & 6) == 6;
    if (!system_saves_ymm || !__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return 0;
    return ecx >> 9 & 1;
}
