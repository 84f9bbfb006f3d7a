// Uniform: the numbers of the basic generator, on request clamped to the interval that rounding may leave.
#include "services/export.h"
#include "streams/record.h"

#include <orv/random.h>

using namespace orv::streams;

namespace {

template <class Real>
void clamp(int32_t n, Real* r, Real a, Real b) {
    for (int32_t i = 0; i < n; ++i) {
        const Real raised = r[i] > a ? r[i] : a;
        r[i] = raised < b ? raised : b;
    }
}

}  // namespace

ORV_API int32_t _kuzsRngUniform(int32_t method, Stream* stream, int32_t n, float* r, float a, float b) {
    const int32_t status = row_of(stream)->sBRng(stream, n, r, a, b);
    if (status >= 0 && (method & UniformAccurate)) clamp(n, r, a, b);
    return status;
}

ORV_API int32_t _kuzdRngUniform(int32_t method, Stream* stream, int32_t n, double* r, double a, double b) {
    const int32_t status = row_of(stream)->dBRng(stream, n, r, a, b);
    if (status >= 0 && (method & UniformAccurate)) clamp(n, r, a, b);
    return status;
}
