// Cauchy: a + beta tan(u), u on (-pi/2, pi/2).
#include "distrib/transforms.h"
#include "services/export.h"

using namespace orv::distrib;

namespace {

template <class T>
int32_t cauchy(Stream* stream, int32_t n, T* r, T a, T beta) {
    if (n <= 0) return StatusOk;
    constexpr T quarter_turn = T(1.5707963267948966);
    const int32_t status = draw_uniforms(stream, n, r, -quarter_turn, quarter_turn);
    if (status < 0) return status;
    run(tangent<T>(), n, r, r);
    shift_and_scale(n, r, a, beta);
    return status;
}

}  // namespace

ORV_API int32_t _kuzsRngCauchy(int32_t, Stream* stream, int32_t n, float* r, float a, float beta) {
    return cauchy(stream, n, r, a, beta);
}

ORV_API int32_t _kuzdRngCauchy(int32_t, Stream* stream, int32_t n, double* r, double a, double beta) {
    return cauchy(stream, n, r, a, beta);
}
