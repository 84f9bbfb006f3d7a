// MCG31M1: x <- a x mod 2^31 - 1. Eight lanes hold eight successive values and advance by a^8 each round, so lane 0 is
// always the value of the plain recurrence.
#include "brng/modular.h"
#include "brng/outputs.h"
#include "platform/export.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::brng;

namespace {

constexpr uint32_t multiplier = 1132489760;
constexpr double unit = 4.656612875245797e-10;  // maps 2^31 - 1 to 1
constexpr int32_t lanes = 8;

struct Mcg31m1 {
    Stream header;
    uint32_t x;  // the next output, in 1 to 2^31 - 2
    uint32_t a;  // the multiplier in force
};
static_assert(sizeof(Mcg31m1) == 24 && offsetof(Mcg31m1, x) == 16 && offsetof(Mcg31m1, a) == 20);

// Two lanes of mul_m31; the smaller of s and s - m, unsigned, is s mod m for s below 2 m.
__m128i multiply(__m128i x, __m128i a) {
    const __m128i m = _mm_set1_epi64x(m31);
    const __m128i t = _mm_mul_epu32(x, a);
    const __m128i sum = _mm_add_epi32(_mm_and_si128(t, m), _mm_srli_epi64(t, 31));
    return _mm_min_epu32(sum, _mm_sub_epi32(sum, m));
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    Mcg31m1* state = reinterpret_cast<Mcg31m1*>(stream);
    const uint32_t a = state->a;
    uint32_t x = state->x;
    // The first element is written, and the state moved on, before the count is looked at.
    int32_t left = n < 1 ? 1 : n;
    if (left >= lanes) {
        alignas(16) uint64_t start[lanes];
        for (uint64_t& lane : start) {
            lane = x;
            x = mul_m31(x, a);
        }
        const __m128i* starts = reinterpret_cast<const __m128i*>(start);
        __m128i x01 = starts[0], x23 = starts[1], x45 = starts[2], x67 = starts[3];
        const uint32_t a2 = mul_m31(a, a), a4 = mul_m31(a2, a2);
        const __m128i a8 = _mm_set1_epi64x(mul_m31(a4, a4));
        for (; left >= lanes; left -= lanes, r += lanes) {
            output.four(r, x01, x23);
            x01 = multiply(x01, a8);
            x23 = multiply(x23, a8);
            output.four(r + 4, x45, x67);
            x45 = multiply(x45, a8);
            x67 = multiply(x67, a8);
        }
        x = static_cast<uint32_t>(_mm_cvtsi128_si32(x01));
    }
    for (; left > 0; --left, ++r) {
        output.one(r, x);
        x = mul_m31(x, a);
    }
    state->x = x;
    return StatusOk;
}

void seed(Mcg31m1* state, int32_t n, const uint32_t* words) {
    const uint32_t x = n < 1 ? 1 : words[0] % m31;
    state->x = x == 0 ? 1 : x;
    state->a = multiplier;
}

void leapfrog(Mcg31m1* state, uint32_t streams, uint32_t index) {
    state->x = mul_m31(state->x, __kuziPowMod2P31M1(state->a, index));
    state->a = __kuziPowMod2P31M1(state->a, streams);
}

void skip_ahead(Mcg31m1* state, uint64_t count) { state->x = mul_m31(state->x, __kuziPowMod2P31M1(state->a, count)); }

}  // namespace

ORV_API int32_t __kuzBRngMCG31M1InitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    Mcg31m1* state = reinterpret_cast<Mcg31m1*>(stream);
    switch (method) {
        case InitMethodSeed: seed(state, n, static_cast<const uint32_t*>(params)); return StatusOk;
        case InitMethodLeapfrog:
            leapfrog(state, static_cast<uint32_t>(n), *static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodSkipAhead: skip_ahead(state, *static_cast<const uint64_t*>(params)); return StatusOk;
        case InitMethodSkipAheadEx: return BrngStatusNoSkipAheadEx;
        default: return StatusBadMethod;
    }
}

ORV_API int32_t __kuzsBRngMCG31M1(Stream* stream, int32_t n, float* r, float a, float b) {
    return generate(stream, n, r, float_output(a, b, unit));
}

ORV_API int32_t __kuzdBRngMCG31M1(Stream* stream, int32_t n, double* r, double a, double b) {
    return generate(stream, n, r, double_output(a, b, unit));
}

ORV_API int32_t __kuziBRngMCG31M1(Stream* stream, int32_t n, void* r) {
    return generate(stream, n, static_cast<uint32_t*>(r), RawOutput{});
}
