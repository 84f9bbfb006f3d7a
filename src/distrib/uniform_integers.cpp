// Integers from uniforms: rounded down for Uniform, compared with p for Bernoulli.
#include "platform/export.h"

#include <orv/random.h>

#include <smmintrin.h>

namespace {

constexpr int32_t block = 1024;

void round_down(int32_t n, const double* u, int32_t* r) {
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128i low = _mm_cvttpd_epi32(_mm_floor_pd(_mm_loadu_pd(u + i)));
        const __m128i high = _mm_cvttpd_epi32(_mm_floor_pd(_mm_loadu_pd(u + i + 2)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(r + i), _mm_unpacklo_epi64(low, high));
    }
    for (; i < n; ++i) r[i] = _mm_cvttsd_si32(_mm_floor_sd(_mm_setzero_pd(), _mm_set_sd(u[i])));
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
    // The uniforms stand in the caller's array as floats and are read as such through vector loads alone.
    const int32_t status = _kuzsRngUniform(UniformStandard, stream, n, reinterpret_cast<float*>(r), 0.0f, 1.0f);
    if (status < 0) return status;
    const __m128 limit = _mm_set1_ps(static_cast<float>(p));
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(r + i);
        const __m128 u = _mm_castsi128_ps(_mm_loadu_si128(at));
        _mm_storeu_si128(at, _mm_srli_epi32(_mm_castps_si128(_mm_cmpgt_ps(limit, u)), 31));
    }
    for (; i < n; ++i) {
        const __m128 u = _mm_castsi128_ps(_mm_cvtsi32_si128(r[i]));
        r[i] = _mm_comigt_ss(limit, u);
    }
    return status;
}
