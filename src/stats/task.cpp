// Making and deleting a statistics task.
#include "stats/task.h"
#include "platform/export.h"
#include "services/services.h"

#include <string.h>

namespace {

using orv::stats::read_integer;

constexpr uint8_t record_tag = 2;

bool counts_something(const void* at, int32_t wide) { return at && read_integer(at, wide) > 0; }

int32_t new_task(SSTask** task, const void* p, const void* n, const void* form, const void* x, const void* w,
                 const void* indices, int32_t wide, int32_t is_double) {
    if (!task) return SSStatusNullTask;
    if (!counts_something(p, wide)) return SSStatusP;
    if (x) {
        if (!form) return SSStatusStorage;
        const int64_t value = read_integer(form, wide);
        if (value != StorageRows && value != StorageColumns) return SSStatusStorageValue;
        if (!counts_something(n, wide)) return SSStatusN;
    }
    SSTask* made = static_cast<SSTask*>(orv_serv_allocate(sizeof(SSTask), 128));
    *task = made;
    if (!made) return SSStatusAllocation;
    memset(made, 0, sizeof *made);
    made->wideInts = wide;
    made->recordTag = record_tag;
    made->isDouble = is_double;
    made->p = p;
    made->n = n;
    made->xStorage = form;
    made->x = x;
    made->w = w;
    made->indices = indices;
    return SSStatusOk;
}

}  // namespace

ORV_API int32_t __kuzdSSNewTask(SSTask** task, const void* p, const void* n, const void* xStorage, const double* x,
                                const double* w, const void* indices, int32_t wideInts) {
    return new_task(task, p, n, xStorage, x, w, indices, wideInts, 1);
}

ORV_API int32_t __kuzsSSNewTask(SSTask** task, const void* p, const void* n, const void* xStorage, const float* x,
                                const float* w, const void* indices, int32_t wideInts) {
    return new_task(task, p, n, xStorage, x, w, indices, wideInts, 0);
}

ORV_API int32_t __kuzSSDeleteTask(SSTask** task) {
    if (!task || !*task) return SSStatusOk;
    SSTask* record = *task;
    if (record->ownedBuffer) orv_serv_deallocate(record->ownedBuffer);
    for (int32_t i = 0; i < record->cleanupCount; ++i) record->cleanup(record);
    orv_serv_deallocate(record);
    *task = nullptr;
    return SSStatusOk;
}
