// MCG31M1: x <- a x mod 2^31 - 1. Sixteen lanes hold sixteen successive values and advance by a^16 each round, so lane 0
// is always the value of the plain recurrence.
#include "brng/modular.h"
#include "brng/multiplicative.h"
#include "brng/outputs.h"
#include "platform/export.h"
#include "streams/state_checks.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::brng;

namespace {

constexpr uint32_t multiplier = 1132489760;
constexpr double unit = 4.656612875245797e-10;  // maps 2^31 - 1 to 1
constexpr int32_t lanes = 16;

struct Mcg31m1 {
    Stream header;
    uint32_t x;  // the next output, in 1 to 2^31 - 2
    uint32_t a;  // the multiplier in force

    void seed(int32_t n, const uint32_t* words) {
        x = n < 1 ? 1 : words[0] % m31;
        if (x == 0) x = 1;
        a = multiplier;
    }
    static uint32_t multiply(uint32_t x, uint32_t y) { return mul_m31(x, y); }
    static uint32_t power(uint32_t a, uint64_t n) { return __kuziPowMod2P31M1(a, n); }
};
static_assert(sizeof(Mcg31m1) == 24 && offsetof(Mcg31m1, x) == 16 && offsetof(Mcg31m1, a) == 20);

// Four lanes of x a mod 2^31 - 1 from a doubled multiplier: the upper half of 2 a x is a x >> 31, and the lower half is
// twice a x mod 2^31. The smaller of s and s - m, unsigned, is s mod m for s below 2 m. Lanes 1 and 2 change places.
__m128i multiply(__m128i x, __m128i twice_a) {
    const __m128 even = _mm_castsi128_ps(_mm_mul_epu32(x, twice_a));
    const __m128 odd = _mm_castsi128_ps(_mm_mul_epu32(_mm_srli_epi64(x, 32), twice_a));
    const __m128i low = _mm_srli_epi32(_mm_castps_si128(_mm_shuffle_ps(even, odd, 0x88)), 1);
    const __m128i sum = _mm_add_epi32(low, _mm_castps_si128(_mm_shuffle_ps(even, odd, 0xDD)));
    return _mm_min_epu32(sum, _mm_sub_epi32(sum, _mm_set1_epi32(m31)));
}

__m128i swap_middle(__m128i x) { return _mm_shuffle_epi32(x, _MM_SHUFFLE(3, 1, 2, 0)); }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    Mcg31m1* state = reinterpret_cast<Mcg31m1*>(stream);
    const uint32_t a = state->a;
    uint32_t x = state->x;
    // The first element is written, and the state moved on, before the count is looked at.
    int32_t left = n < 1 ? 1 : n;
    if (left >= 2 * lanes) {
        alignas(16) uint32_t start[lanes];
        for (uint32_t& lane : start) {
            lane = x;
            x = mul_m31(x, a);
        }
        const uint32_t a2 = mul_m31(a, a), a4 = mul_m31(a2, a2), a8 = mul_m31(a4, a4);
        const __m128i twice_a16 = _mm_set1_epi64x(2 * mul_m31(a8, a8));
        __m128i v[lanes / 4];
        for (int i = 0; i < lanes / 4; ++i) v[i] = _mm_load_si128(reinterpret_cast<const __m128i*>(start) + i);
        for (; left >= 2 * lanes; left -= 2 * lanes) {
            for (__m128i& four : v) {
                output.four_short(r, four);
                four = multiply(four, twice_a16);
                r += 4;
            }
            for (__m128i& four : v) {
                output.four_short(r, swap_middle(four));
                four = multiply(four, twice_a16);
                r += 4;
            }
        }
        x = static_cast<uint32_t>(_mm_cvtsi128_si32(v[0]));
    }
    for (; left > 0; --left, ++r) {
        output.one(r, x);
        x = mul_m31(x, a);
    }
    state->x = x;
    return StatusOk;
}

}  // namespace

namespace orv::brng::mcg31m1 {

bool is_sound(const Stream* stream) {
    const Mcg31m1& state = *reinterpret_cast<const Mcg31m1*>(stream);
    return state.x - 1 < m31 - 1 && state.a - 1 < m31 - 1;
}

}  // namespace orv::brng::mcg31m1

ORV_API int32_t __kuzBRngMCG31M1InitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return init_multiplicative<Mcg31m1>(method, stream, n, params);
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
