// Integers from uniforms: rounded down for Uniform, compared with p for Bernoulli.
#include "services/export.h"
#include "simd/integers.h"

#include <orv/random.h>

namespace simd = orv::simd;

namespace {

constexpr int32_t block = 1024;
constexpr int down = _MM_FROUND_TO_NEG_INF;

void round_down(int32_t n, const double* u, int32_t* r) {
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128i low = simd::truncate(simd::round<down>(simd::load(u + i)));
        const __m128i high = simd::truncate(simd::round<down>(simd::load(u + i + 2)));
        simd::store(r + i, simd::low_halves(low, high));
    }
    for (; i < n; ++i) r[i] = simd::word<0>(simd::truncate(simd::round<down>(simd::load_one(u + i))));
}

// 1 where the float with the bits of `u` is below the limit, else 0.
__m128i below(__m128i u, __m128 limit) {
    return simd::shift_right_32<31>(simd::bits_of(simd::less(simd::floats(u), limit)));
}

}  // namespace

ORV_API int32_t _kuziRngUniform(int32_t, Stream* stream, int32_t n, int32_t* r, int32_t a, int32_t b) {
    double u[block];
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < block ? n - done : block;
        status = _kuzdRngUniform(UniformStandard, stream, count, u, a, b);
        if (status < 0) return status;
        round_down(count, u, r + done);
        done += count;
    }
    return status;
}

ORV_API int32_t _kuziRngBernoulli(int32_t, Stream* stream, int32_t n, int32_t* r, double p) {
    if (n <= 0) return StatusOk;
    // The uniforms stand in the caller's array as floats and are read as such through vector loads alone.
    const int32_t status = _kuzsRngUniform(UniformStandard, stream, n, reinterpret_cast<float*>(r), 0.0f, 1.0f);
    if (status < 0) return status;
    const __m128 limit = simd::splat(static_cast<float>(p));
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) simd::store(r + i, below(simd::load(r + i), limit));
    for (; i < n; ++i) r[i] = simd::word<0>(below(simd::splat_32(r[i]), limit));
    return status;
}
