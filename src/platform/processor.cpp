// What the processor offers, and its source of random words. A unit of its own, so that a test can put another processor in
// its place.
#include "platform/platform.h"

#include <cpuid.h>
#include <immintrin.h>

namespace orv::platform {

ProcessorFeatures processor_features() {
    // Under a hypervisor the instruction is slow enough to be asked once. Threads that ask at the same time find the same.
    constexpr unsigned known = 1, rdrand = 2, aes = 4;
    static unsigned kept = 0;
    unsigned found = __atomic_load_n(&kept, __ATOMIC_RELAXED);
    if (found == 0) {
        found = known;
        unsigned eax, ebx, ecx, edx;
        if (__get_cpuid(1, &eax, &ebx, &ecx, &edx)) {
            if ((ecx >> 30 & 1) != 0) found |= rdrand;
            if ((edx >> 26 & 1) != 0 && (ecx >> 25 & 1) != 0) found |= aes;
        }
        __atomic_store_n(&kept, found, __ATOMIC_RELAXED);
    }
    return {(found & rdrand) != 0, (found & aes) != 0};
}

[[gnu::target("rdrnd")]] bool hardware_word(uint32_t* word) { return _rdrand32_step(word) != 0; }

}  // namespace orv::platform
