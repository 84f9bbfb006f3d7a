// The exported operations on a thread's status, callback and input vector.
#include "frame/mode.h"

#include "platform/export.h"

namespace orv::frame {
namespace {

int32_t exchange_status(int32_t status) {
    ArqThreadBlock* block = thread_block();
    if (!block) return 0;
    const int32_t old = block->status;
    block->status = status;
    return old;
}

int32_t get_status() {
    const ArqThreadBlock* block = thread_block();
    return block ? block->status : 0;
}

// The callback's bit in the mode follows the callback. Clearing it goes by the rule of all mode changes: a field that
// would become zero is kept.
orv_arq_callback exchange_callback(orv_arq_callback callback) {
    ArqThreadBlock* block = thread_block();
    if (!block) return nullptr;
    const orv_arq_callback old = block->callback;
    block->callback = callback;
    const uint32_t mode = mode_of(block);
    orv_arq_kernel_SetMode(callback ? mode | mode_error_callback : mode & ~uint32_t{mode_error_callback});
    return old;
}

orv_arq_callback get_callback() {
    const ArqThreadBlock* block = thread_block();
    return block ? block->callback : nullptr;
}

const void* set_input_vector(const void* pointer) {
    if (ArqThreadBlock* block = thread_block()) block->interf_input_vector = pointer;
    return pointer;
}

}  // namespace
}  // namespace orv::frame

using namespace orv::frame;

ORV_API int32_t _arqSetErrStatus(int32_t status) { return exchange_status(status); }
ORV_API int32_t _arqGetErrStatus() { return get_status(); }
ORV_API int32_t _arqClearErrStatus() { return exchange_status(0); }
ORV_API int32_t orv_arq_kernel_SetErrStatus(int32_t status) { return exchange_status(status); }
ORV_API int32_t orv_arq_kernel_GetErrStatus() { return get_status(); }
ORV_API int32_t orv_arq_kernel_ClearErrStatus() { return exchange_status(0); }

ORV_API orv_arq_callback _arqSetErrorCallBack(orv_arq_callback callback) { return exchange_callback(callback); }
ORV_API orv_arq_callback _arqGetErrorCallBack() { return get_callback(); }
ORV_API orv_arq_callback _arqClearErrorCallBack() { return exchange_callback(nullptr); }
ORV_API orv_arq_callback orv_arq_kernel_SetErrorCallBack(orv_arq_callback callback) {
    return exchange_callback(callback);
}
ORV_API orv_arq_callback orv_arq_kernel_GetErrorCallBack() { return get_callback(); }
ORV_API orv_arq_callback orv_arq_kernel_ClearErrorCallBack() { return exchange_callback(nullptr); }

ORV_API const void* _arqSetInterfInputVectorPointer(const void* pointer) { return set_input_vector(pointer); }
ORV_API const void* orv_arq_kernel_SetInterfInputVectorPointer(const void* pointer) {
    return set_input_vector(pointer);
}
