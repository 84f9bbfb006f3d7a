// The block that a task owns: one tenant at a time, named in the record beside it.
#pragma once

#include "services/services.h"
#include "stats/task.h"

#include <string.h>

namespace orv::stats {

// Whose numbers the block holds. Nobody's: room that may be used again.
enum class Tenant : int32_t { none, basic_pass };

inline Tenant tenant_of(const SSTask* task) { return static_cast<Tenant>(task->ownedTenant); }
inline void set_tenant(SSTask* task, Tenant tenant) { task->ownedTenant = static_cast<int32_t>(tenant); }

// Makes room for `bytes`: the block that stands there if it is large enough, with its tenant, else a new one, zero and nobody's.
// When there is no memory the old one stays and false is returned.
inline bool make_room(SSTask* task, uint64_t bytes) {
    if (task->ownedBuffer && task->ownedBytes >= bytes) return true;
    void* block = bytes >> 31 ? nullptr : orv_serv_allocate(static_cast<size_t>(bytes), 128);
    if (!block) return false;
    memset(block, 0, static_cast<size_t>(bytes));
    orv_serv_deallocate(task->ownedBuffer);
    task->ownedBuffer = block;
    task->ownedBytes = static_cast<uint32_t>(bytes);
    set_tenant(task, Tenant::none);
    return true;
}

}  // namespace orv::stats
