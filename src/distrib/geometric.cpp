// Geometric: the number of failures before the first success, the whole part of ln u / ln(1 - p).
#include "distrib/transforms.h"
#include "services/export.h"
#include "simd/integers.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

// The factor of ln u, never positive. Where 1 - p rounds to 1, a success is not to be waited for.
float inverse_logarithm(double p) {
    if (p >= 1) return 0;
    const double logarithm = __kuzdLn(1 - p);
    return logarithm < 0 ? static_cast<float>(1 / logarithm) : -__builtin_inff();
}

// Toward zero, and the largest integer for what is beyond. What is no number, 0 times infinity, is 0.
__m128i whole_part(__m128 x) {
    const __m128 waits = simd::greatest(x, simd::splat(0.0f));
    const __m128i beyond = simd::bits_of(simd::not_less(waits, simd::splat(0x1p31f)));
    return simd::bit_xor(simd::truncate(waits), beyond);
}

}  // namespace

ORV_API int32_t _kuziRngGeometric(int32_t, Stream* stream, int32_t n, int32_t* r, double p) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm<float>);
    const __m128 factor = simd::splat(inverse_logarithm(p));
    float u[block];
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < block ? n - done : block;
        status = draw_uniforms(stream, count, u, 0.0f, 1.0f);
        if (status < 0) return status;
        run(logarithm<float>(), count, u, u);
        int32_t i = 0;
        for (; i + 4 <= count; i += 4) simd::store(r + done + i, whole_part(simd::load(u + i) * factor));
        for (; i < count; ++i) r[done + i] = simd::word<0>(whole_part(simd::load_one(u + i) * factor));
        done += count;
    }
    return status;
}
