// Creators of abstract streams, which hand out numbers from a ring that the caller owns and refills.
#include "services/export.h"
#include "streams/record.h"

using namespace orv::streams;

namespace {

template <class Real>
int32_t create_real(Stream** stream, int32_t id, int32_t n, Real* buffer, Real a, Real b, AbstractCallback callback) {
    if (n == 0 || !buffer || !callback || a >= b) return StatusBadAbstractArgs;
    const void* const block[] = {&n, buffer, &a, &b, reinterpret_cast<const void*>(callback)};
    return create_seeded(stream, id, 10, block);
}

}  // namespace

ORV_API int32_t __kuziNewAbstractStream(Stream** stream, int32_t n, uint32_t* buffer, AbstractCallback callback) {
    if (n == 0 || !buffer || !callback) return StatusBadAbstractArgs;
    const void* const block[] = {&n, buffer, reinterpret_cast<const void*>(callback)};
    return create_seeded(stream, BrngIAbstract, 6, block);
}

ORV_API int32_t __kuzdNewAbstractStream(Stream** stream, int32_t n, double* buffer, double a, double b,
                                        AbstractCallback callback) {
    return create_real(stream, BrngDAbstract, n, buffer, a, b, callback);
}

ORV_API int32_t __kuzsNewAbstractStream(Stream** stream, int32_t n, float* buffer, float a, float b,
                                        AbstractCallback callback) {
    return create_real(stream, BrngSAbstract, n, buffer, a, b, callback);
}
