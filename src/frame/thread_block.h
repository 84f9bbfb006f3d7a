// The per-thread state of the vector math family, and the life of the slot and heap behind it.
#pragma once

#include <orv/vecmath.h>

#include <stddef.h>
#include <stdint.h>

namespace orv::frame {

struct ArqThreadBlock {
    uint32_t mode;   // 0: not yet initialised
    int32_t status;  // the last status reported
    orv_arq_callback callback;
    uint32_t reserved0;
    uint32_t reserved1;
    // Where set, the start of the whole vector of which a call gets a piece: reported indices count from it. A block is
    // handed over with this field as the heap gives it; memory that has not been used before reads as null.
    const void* interf_input_vector;
};
static_assert(sizeof(void*) != 4 || sizeof(ArqThreadBlock) == 24);
static_assert(sizeof(void*) != 4 || offsetof(ArqThreadBlock, interf_input_vector) == 20);

// The calling thread's block, made at the first call. If it cannot be made the process ends with status 3; the result is
// null only where the host's exit service comes back.
ArqThreadBlock* thread_block();

}  // namespace orv::frame
