// MCG31M1: x <- a x mod 2^31 - 1. Sixteen lanes hold sixteen successive values and advance by a^16 each round, so the
// values of the plain recurrence follow each other through the lanes.
#include "brng/entries.h"
#include "brng/jumps/modular.h"
#include "brng/multiplicative.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::mcg31m1 {

namespace {

constexpr uint32_t multiplier = 1132489760;
constexpr double unit = 4.656612875245797e-10;  // maps 2^31 - 1 to 1
constexpr int32_t lanes = 16;
constexpr int32_t fours = lanes / 4;
// Shorter runs go by the plain recurrence: the first sixteen values and the powers cost about as much as these.
constexpr int32_t shortest_lane_run = 12;

struct State {
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
static_assert(sizeof(State) == 24 && offsetof(State, x) == 16 && offsetof(State, a) == 20);

__m128i doubled(uint32_t a) { return simd::splat_32(2 * a); }

// Four lanes of x a mod 2^31 - 1 from a doubled multiplier: the upper half of 2 a x is a x >> 31, and the lower half is
// twice a x mod 2^31. The smaller of s and s - m, unsigned, is s mod m for s below 2 m. Lanes 1 and 2 change places.
__m128i multiply(__m128i x, __m128i twice_a) {
    const __m128i even = simd::multiply_words(x, twice_a);
    const __m128i odd = simd::multiply_words(simd::shift_right<32>(x), twice_a);
    const __m128i low = simd::shift_right_32<1>(simd::even_words(even, odd));
    const __m128i sum = simd::add_32(low, simd::odd_words(even, odd));
    return simd::least_unsigned_32(sum, simd::subtract_32(sum, simd::splat_32(m31)));
}

__m128i swap_middle(__m128i x) { return simd::shuffle_32<0, 2, 1, 3>(x); }

struct Lanes {
    __m128i v[fours];  // the next sixteen values in order
    __m128i step;      // a^16, doubled
};

// The powers do not wait for x, the last value of the run before.
Lanes start_lanes(uint32_t x, uint32_t a) {
    const uint32_t a2 = mul_m31(a, a), a3 = mul_m31(a2, a), a4 = mul_m31(a2, a2), a8 = mul_m31(a4, a4);
    const __m128i even = simd::interleave_low_32(simd::splat_32(1), simd::splat_32(a2));
    const __m128i odd = simd::interleave_low_32(simd::splat_32(a), simd::splat_32(a3));
    Lanes result;
    result.v[0] = multiply(simd::low_halves(even, odd), doubled(x));
    result.v[1] = swap_middle(multiply(result.v[0], doubled(a4)));
    result.v[2] = swap_middle(multiply(result.v[0], doubled(a8)));
    result.v[3] = swap_middle(multiply(result.v[1], doubled(a8)));
    result.step = doubled(mul_m31(a8, a8));
    return result;
}

// The last values of a run, fewer than 2 * lanes. Returns the value behind them.
template <class Output>
uint32_t finish(const Lanes& lanes16, int32_t left, typename Output::Element* r, const Output& output) {
    alignas(16) uint32_t next[2 * lanes];
    for (int i = 0; i < fours; ++i) simd::store_aligned(next + 4 * i, lanes16.v[i]);
    if (left >= lanes)
        for (int i = 0; i < fours; ++i)
            simd::store_aligned(next + lanes + 4 * i, swap_middle(multiply(lanes16.v[i], lanes16.step)));
    int32_t i = 0;
    for (; i + 4 <= left; i += 4) output.four_short(r + i, simd::load_aligned(next + i));
    for (; i < left; ++i) output.one(r + i, next[i]);
    return next[left];
}

template <class Output>
[[gnu::always_inline]] inline int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State* state = reinterpret_cast<State*>(stream);
    const uint32_t a = state->a;
    uint32_t x = state->x;
    // The first element is written, and the state moved on, before the count is looked at.
    int32_t left = n < 1 ? 1 : n;
    if (left < shortest_lane_run) {
        for (; left > 0; --left, ++r) {
            output.one(r, x);
            x = mul_m31(x, a);
        }
        state->x = x;
        return StatusOk;
    }
    Lanes all = start_lanes(x, a);
    for (; left >= 2 * lanes; left -= 2 * lanes) {
        for (__m128i& four : all.v) {
            output.four_short(r, four);
            four = multiply(four, all.step);
            r += 4;
        }
        for (__m128i& four : all.v) {
            output.four_short(r, swap_middle(four));
            four = multiply(four, all.step);
            r += 4;
        }
    }
    state->x = finish(all, left, r, output);
    return StatusOk;
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return init_multiplicative<State>(method, stream, n, params);
}

using Outputs = LinearOutputs<unit>;

}  // namespace

bool is_sound(const Stream* stream) {
    const State& state = *reinterpret_cast<const State*>(stream);
    return state.x - 1 < m31 - 1 && state.a - 1 < m31 - 1;
}

}  // namespace orv::brng::mcg31m1

ORV_BRNG_DEFINE(MCG31M1, mcg31m1)
