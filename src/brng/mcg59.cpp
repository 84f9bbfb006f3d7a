// MCG59: x <- a x mod 2^59. Four lanes hold four successive values and advance by a^4 each round, so lane 0 is always the
// value of the plain recurrence. A floating output is formed from the low 32 bits and the upper 27 bits times 2^32, both
// of which are exact doubles.
#include "brng/modular.h"
#include "brng/multiplicative.h"
#include "brng/outputs.h"
#include "platform/export.h"
#include "streams/state_checks.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::brng;

namespace {

constexpr uint64_t multiplier = 302875106592253;  // 13^13
constexpr double unit = 1.734723475976807e-18;    // 2^-59
constexpr int32_t lanes = 4;

struct Mcg59 {
    Stream header;
    uint64_t x;  // the next output, below 2^59
    uint64_t a;  // the multiplier in force

    void seed(int32_t n, const uint32_t* words) {
        constexpr uint32_t high_mask = static_cast<uint32_t>(mask59 >> 32);
        x = 0;
        if (n >= 1) x = words[0];
        if (n >= 2) x |= uint64_t{words[1] & high_mask} << 32;
        if (x == 0) x = 1;
        a = multiplier;
    }
    static uint64_t multiply(uint64_t x, uint64_t y) { return x * y & mask59; }
    static uint64_t power(uint64_t a, uint64_t n) { return __kuziPowMod2P59(a, n); }
};
static_assert(sizeof(Mcg59) == 32 && offsetof(Mcg59, x) == 16 && offsetof(Mcg59, a) == 24);

struct Multiplier {
    __m128i low, high;
};

// Two lanes of a x mod 2^59: the product of the high halves lies above bit 63.
__m128i multiply(__m128i x, Multiplier a) {
    const __m128i high_x = _mm_srli_epi64(x, 32);
    const __m128i crossed = _mm_add_epi64(_mm_mul_epu32(high_x, a.low), _mm_mul_epu32(x, a.high));
    const __m128i product = _mm_add_epi64(_mm_mul_epu32(x, a.low), _mm_slli_epi64(crossed, 32));
    return _mm_and_si128(product, _mm_set1_epi64x(static_cast<int64_t>(mask59)));
}

// 2^52 + low and 2^84 + high 2^32 are doubles with these words as the lower half of their significands.
__m128d low_part(__m128i x) {
    const __m128i bias = _mm_castpd_si128(_mm_set1_pd(two_52));
    const __m128i low = _mm_blend_epi16(x, bias, 0xCC);
    return _mm_sub_pd(_mm_castsi128_pd(low), _mm_set1_pd(two_52));
}
__m128d high_part(__m128i x) {
    const __m128i bias = _mm_castpd_si128(_mm_set1_pd(0x1p84));
    return _mm_sub_pd(_mm_castsi128_pd(_mm_or_si128(_mm_srli_epi64(x, 32), bias)), _mm_set1_pd(0x1p84));
}

double low_part(uint64_t x) { return static_cast<double>(static_cast<uint32_t>(x)); }
double high_part(uint64_t x) { return static_cast<double>(static_cast<uint32_t>(x >> 32)) * 0x1p32; }

struct Raw59 {
    using Element = uint64_t;
    void one(Element* r, uint64_t x) const { *r = x; }
    void four(Element* r, __m128i x01, __m128i x23) const {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(r), x01);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(r + 2), x23);
    }
};

// Two products are added in double precision, but one product of the sum is taken for single precision: the results
// differ in the last bit, and both orders are part of the generator's definition.
struct Double59 {
    using Element = double;
    double scale, shift;
    void one(Element* r, uint64_t x) const { *r = low_part(x) * scale + high_part(x) * scale + shift; }
    __m128d map(__m128i x) const {
        const __m128d s = _mm_set1_pd(scale);
        return _mm_add_pd(_mm_add_pd(_mm_mul_pd(low_part(x), s), _mm_mul_pd(high_part(x), s)), _mm_set1_pd(shift));
    }
    void four(Element* r, __m128i x01, __m128i x23) const {
        _mm_storeu_pd(r, map(x01));
        _mm_storeu_pd(r + 2, map(x23));
    }
};

struct Float59 {
    using Element = float;
    double scale, shift;
    void one(Element* r, uint64_t x) const { *r = static_cast<float>((low_part(x) + high_part(x)) * scale + shift); }
    __m128 map(__m128i x) const {
        const __m128d whole = _mm_add_pd(low_part(x), high_part(x));
        return _mm_cvtpd_ps(_mm_add_pd(_mm_mul_pd(whole, _mm_set1_pd(scale)), _mm_set1_pd(shift)));
    }
    void four(Element* r, __m128i x01, __m128i x23) const { _mm_storeu_ps(r, _mm_movelh_ps(map(x01), map(x23))); }
};

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    Mcg59* state = reinterpret_cast<Mcg59*>(stream);
    const uint64_t a = state->a;
    uint64_t x = state->x;
    int32_t left = n;
    if (left >= lanes) {
        alignas(16) uint64_t start[lanes];
        for (uint64_t& lane : start) {
            lane = x;
            x = x * a & mask59;
        }
        const __m128i* starts = reinterpret_cast<const __m128i*>(start);
        __m128i x01 = starts[0], x23 = starts[1];
        const uint64_t a2 = a * a & mask59, a4 = a2 * a2 & mask59;
        const Multiplier step = {_mm_set1_epi64x(static_cast<uint32_t>(a4)),
                                 _mm_set1_epi64x(static_cast<int64_t>(a4 >> 32))};
        for (; left >= lanes; left -= lanes, r += lanes) {
            output.four(r, x01, x23);
            x01 = multiply(x01, step);
            x23 = multiply(x23, step);
        }
        _mm_storel_epi64(reinterpret_cast<__m128i*>(&x), x01);
    }
    for (; left > 0; --left, ++r) {
        output.one(r, x);
        x = x * a & mask59;
    }
    state->x = x;
    return StatusOk;
}

}  // namespace

namespace orv::brng::mcg59 {

// Powers of the multiplier are odd; an even one would end at zero.
bool is_sound(const Stream* stream) {
    const Mcg59& state = *reinterpret_cast<const Mcg59*>(stream);
    return state.x != 0 && state.x <= mask59 && (state.a & 1) != 0 && state.a <= mask59;
}

}  // namespace orv::brng::mcg59

ORV_API int32_t __kuzBRngMCG59InitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return init_multiplicative<Mcg59>(method, stream, n, params);
}

ORV_API int32_t __kuzsBRngMCG59(Stream* stream, int32_t n, float* r, float a, float b) {
    const double low = a, high = b;
    return generate(stream, n, r, Float59{(high - low) * unit, low});
}

ORV_API int32_t __kuzdBRngMCG59(Stream* stream, int32_t n, double* r, double a, double b) {
    return generate(stream, n, r, Double59{(b - a) * unit, a});
}

ORV_API int32_t __kuziBRngMCG59(Stream* stream, int32_t n, void* r) {
    return generate(stream, n, static_cast<uint64_t*>(r), Raw59{});
}
