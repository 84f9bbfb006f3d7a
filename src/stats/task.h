// The task record's layout is an interface: front-ends in other languages address it by offset.
#pragma once

#include <orv/statistics.h>

namespace orv::stats {

static_assert(sizeof(void*) != 4 || sizeof(SSTask) == 376);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, isDouble) == 8);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, x) == 24);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, accumWeight) == 32);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, mean) == 48);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, sum) == 76);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, kurtosis) == 104);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, cov) == 128);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, cp) == 144);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, quantOrderCount) == 180);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, streamOrderCount) == 200);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, robustEstimates1) == 220);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, outlierParamCount) == 248);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, partialCountA) == 260);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, missMethod) == 280);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, cleanupCount) == 320);
static_assert(sizeof(void*) != 4 || offsetof(SSTask, ownedBuffer) == 336);

// An integer behind a task's pointer.
inline int64_t read_integer(const void* at, int32_t wide, ptrdiff_t index = 0) {
    return wide ? static_cast<const int64_t*>(at)[index] : static_cast<const int32_t*>(at)[index];
}

}  // namespace orv::stats
