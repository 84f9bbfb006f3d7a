// MCG59: x <- a x mod 2^59. Four lanes hold four successive values and advance by a^4 each round, modulo 2^64: the lower 59
// bits do not depend on the upper ones, and these are cut off where a value is used. A floating output is formed from the
// low 32 bits and the upper 27 bits times 2^32, both of which are exact doubles.
#include "brng/entries.h"
#include "brng/jumps/modular.h"
#include "brng/multiplicative.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::mcg59 {

namespace {

constexpr uint64_t multiplier = 302875106592253;  // 13^13
constexpr double unit = 1.734723475976807e-18;    // 2^-59
constexpr int32_t lanes = 4;
constexpr uint32_t high_mask = static_cast<uint32_t>(mask59 >> 32);

struct State {
    Stream header;
    uint64_t x;  // the next output, below 2^59
    uint64_t a;  // the multiplier in force

    void seed(int32_t n, const uint32_t* words) {
        x = 0;
        if (n >= 1) x = words[0];
        if (n >= 2) x |= uint64_t{words[1] & high_mask} << 32;
        if (x == 0) x = 1;
        a = multiplier;
    }
    static uint64_t multiply(uint64_t x, uint64_t y) { return x * y & mask59; }
    static uint64_t power(uint64_t a, uint64_t n) { return __kuziPowMod2P59(a, n); }
};
static_assert(sizeof(State) == 32 && offsetof(State, x) == 16 && offsetof(State, a) == 24);

// A product looks at the low word of a lane alone.
struct Multiplier {
    __m128i low, high;
};
Multiplier split(__m128i a) { return {a, simd::shift_right<32>(a)}; }

// Two lanes of a x mod 2^64: the product of the high halves lies above.
__m128i multiply(__m128i x, const Multiplier& a) {
    const __m128i crossed = simd::add(simd::multiply_words(simd::shift_right<32>(x), a.low),  //
                                      simd::multiply_words(x, a.high));
    return simd::add(simd::multiply_words(x, a.low), simd::shift_left<32>(crossed));
}

// 2^52 + low and 2^84 + high 2^32 are doubles with these words as the lower half of their significands.
__m128d low_part(__m128i x) {
    return simd::doubles(simd::low_and_high_words(x, simd::bits_of(simd::splat(two_52)))) - simd::splat(two_52);
}
__m128d high_part(__m128i x) {
    constexpr double two_84 = 0x1p84;
    const __m128i high = simd::bit_and(simd::shift_right<32>(x), simd::splat_bits(high_mask));
    return simd::doubles(simd::bit_or(high, simd::bits_of(simd::splat(two_84)))) - simd::splat(two_84);
}

// An output writes the value in the lower lane, or four.
struct Raw {
    using Element = uint64_t;
    __m128i map(__m128i x) const { return simd::bit_and(x, simd::splat_bits(mask59)); }
    void one(Element* r, __m128i x) const { simd::store_half(r, map(x)); }
    void four(Element* r, __m128i x01, __m128i x23) const {
        simd::store(r, map(x01));
        simd::store(r + 2, map(x23));
    }
};

// Two products are added in double precision, but one product of the sum is taken for single precision: the results
// differ in the last bit, and both orders are part of the generator's definition.
struct Doubles {
    using Element = double;
    double scale, shift;
    __m128d map(__m128i x) const {
        const __m128d s = simd::splat(scale);
        return low_part(x) * s + high_part(x) * s + simd::splat(shift);
    }
    void one(Element* r, __m128i x) const { simd::store_one(r, map(x)); }
    void four(Element* r, __m128i x01, __m128i x23) const {
        simd::store(r, map(x01));
        simd::store(r + 2, map(x23));
    }
};

struct Floats {
    using Element = float;
    double scale, shift;
    __m128d map(__m128i x) const { return (low_part(x) + high_part(x)) * simd::splat(scale) + simd::splat(shift); }
    void one(Element* r, __m128i x) const { simd::store_one_double(r, map(x)); }
    void four(Element* r, __m128i x01, __m128i x23) const { simd::store(r, simd::narrow(map(x01), map(x23))); }
};

// State and powers stay in vector registers from the load to the store: words that are stored one by one and loaded
// together would wait for each other.
template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State* state = reinterpret_cast<State*>(stream);
    const __m128i a = simd::shuffle_32<0, 1, 0, 1>(simd::load_half(&state->a)),
                  x = simd::shuffle_32<0, 1, 0, 1>(simd::load_half(&state->x));
    const __m128i a2 = multiply(a, split(a));
    const Multiplier step = split(multiply(a2, split(a2)));
    __m128i x01 = simd::low_halves(x, multiply(x, split(a)));
    __m128i x23 = multiply(x01, split(a2));
    int32_t left = n;
    for (; left >= lanes; left -= lanes, r += lanes) {
        output.four(r, x01, x23);
        x01 = multiply(x01, step);
        x23 = multiply(x23, step);
    }
    for (; left > 0; --left, ++r) {
        output.one(r, x01);
        x01 = simd::bits_of(simd::high_and_low_half(simd::floats(x01), simd::floats(x23)));
        x23 = simd::high_halves(x23, x23);
    }
    simd::store_half(&state->x, simd::bit_and(x01, simd::splat_bits(mask59)));
    return StatusOk;
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return init_multiplicative<State>(method, stream, n, params);
}

struct Outputs {
    static Floats numbers(float a, float b) {
        const double low = a, high = b;
        return {(high - low) * unit, low};
    }
    static Doubles numbers(double a, double b) { return {(b - a) * unit, a}; }
    static Raw words() { return {}; }
};

}  // namespace

// Powers of the multiplier are odd; an even one would end at zero.
bool is_sound(const Stream* stream) {
    const State& state = *reinterpret_cast<const State*>(stream);
    return state.x != 0 && state.x <= mask59 && (state.a & 1) != 0 && state.a <= mask59;
}

}  // namespace orv::brng::mcg59

ORV_BRNG_DEFINE(MCG59, mcg59)
