// PHILOX4X32X10: ten rounds on four words (c0, c1, c2, c3) under the key (k0, k1), which goes on by a Weyl sequence:
//   c0' = high(M1 c2) ^ c1 ^ k0, c1' = low(M1 c2), c2' = high(M0 c0) ^ c3 ^ k1, c3' = low(M0 c0).
// A 64-bit product holds both halves, so the words c1 and c3 need no registers of their own: with P0 = M0 c0 and
// P1 = M1 c2 of the round before, c1 and c3 are the low words of P1 and P0. Lanes of 64 bits hold one block each.
#include "brng/counter_based.h"
#include "brng/entries.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::philox4x32x10 {

namespace {

constexpr uint32_t multiplier0 = 0xD2511F53, multiplier1 = 0xCD9E8D57;
constexpr uint32_t weyl0 = 0x9E3779B9, weyl1 = 0xBB67AE85;
constexpr int rounds = 10;

using State = CounterState<2>;
static_assert(offsetof(State, counter) == 24 && offsetof(State, buffered) == 40 && sizeof(State) == 64);

// Words of two blocks: c0 and c2 in the low words of 64-bit lanes, whose high words mean nothing, and c1 and c3 in those
// of the products.
struct Pair {
    __m128i c0, c2, p0, p1;
};

// The sum of what a round knows before its products, with which the latter are to wait for one addition alone: the compiler
// would add the key to them last.
__m128i known_before(__m128i word, __m128i key) {
    __m128i sum = simd::bit_xor(word, key);
    __asm__("" : "+x"(sum));
    return sum;
}

// One instruction where a shift would need a copy before it.
__m128i high_words(__m128i product) { return simd::shuffle_32<1, 1, 3, 3>(product); }

struct Engine {
    uint32_t key[2];

    __m128i key_of_round(int word, int round) const {
        const uint32_t step = word == 0 ? weyl0 : weyl1;
        return simd::splat_32(key[word] + static_cast<uint32_t>(round) * step);
    }

    void round(Pair& b, __m128i k0, __m128i k1) const {
        const __m128i c1 = known_before(b.p1, k0), c3 = known_before(b.p0, k1);
        const __m128i p0 = simd::multiply_words(b.c0, simd::splat_32(multiplier0));
        const __m128i p1 = simd::multiply_words(b.c2, simd::splat_32(multiplier1));
        b.c0 = simd::bit_xor(high_words(p1), c1);
        b.c2 = simd::bit_xor(high_words(p0), c3);
        b.p0 = p0;
        b.p1 = p1;
    }

    // The blocks of both lanes, in the order of the words.
    static void in_order(const Pair& b, __m128i* first, __m128i* second) {
        const __m128i c01 = simd::low_and_high_words(b.c0, simd::shift_left<32>(b.p1));
        const __m128i c23 = simd::low_and_high_words(b.c2, simd::shift_left<32>(b.p0));
        *first = simd::low_halves(c01, c23);
        *second = simd::high_halves(c01, c23);
    }

    __m128i block(const uint32_t* counter) const {
        Pair b = {simd::splat_32(counter[0]), simd::splat_32(counter[2]), simd::splat_32(counter[3]),
                  simd::splat_32(counter[1])};
        for (int i = 0; i < rounds; ++i) round(b, key_of_round(0, i), key_of_round(1, i));
        __m128i first, second;
        in_order(b, &first, &second);
        return first;
    }

    template <class Output>
    void blocks(uint32_t* counter, int32_t n, typename Output::Element* r, Output output) const;
};

// While the lowest word does not wrap, the blocks of a run differ in c0 alone. So the first round's p1 and c0 are the same
// for all, and of the second round p0 is.
struct Run {
    __m128i c0_after_1;  // after the first round
    __m128i p0_after_2;  // after the second
    __m128i c3_and_key;  // c3 ^ k1 of the first round
    __m128i c1_and_key;  // c1 ^ k0 of the second
    __m128i k0[rounds], k1[rounds];

    Run(const Engine& engine, const uint32_t* counter) {
        for (int i = 0; i < rounds; ++i) {
            k0[i] = engine.key_of_round(0, i);
            k1[i] = engine.key_of_round(1, i);
        }
        const __m128i p1 = simd::multiply_words(simd::splat_32(counter[2]), simd::splat_32(multiplier1));
        c0_after_1 = simd::bit_xor(high_words(p1), simd::bit_xor(simd::splat_32(counter[1]), k0[0]));
        p0_after_2 = simd::multiply_words(c0_after_1, simd::splat_32(multiplier0));
        c3_and_key = simd::bit_xor(simd::splat_32(counter[3]), k1[0]);
        c1_and_key = simd::bit_xor(p1, k0[1]);
    }

    Pair after_2(__m128i c0) const {
        const __m128i p0 = simd::multiply_words(c0, simd::splat_32(multiplier0));
        const __m128i c2 = simd::bit_xor(high_words(p0), c3_and_key);
        const __m128i p1 = simd::multiply_words(c2, simd::splat_32(multiplier1));
        Pair b;
        b.c0 = simd::bit_xor(high_words(p1), c1_and_key);
        b.c2 = simd::bit_xor(high_words(p0_after_2), simd::bit_xor(p0, k1[1]));
        b.p0 = p0_after_2;
        b.p1 = p1;
        return b;
    }
};

template <class Output>
void Engine::blocks(uint32_t* counter, int32_t n, typename Output::Element* r, Output output) const {
    for (int32_t left = n; left > 0;) {
        const uint64_t until_wrap = (uint64_t{1} << 32) - counter[0];
        const int32_t count = static_cast<uint64_t>(left) < until_wrap ? left : static_cast<int32_t>(until_wrap);
        int32_t done = 0;
        if (count >= 2) {
            const Run run(*this, counter);
            __m128i c0 = simd::words_in_lanes(counter[0], counter[0] + 1);
            for (; done + 2 <= count; done += 2, r += 8) {
                Pair b = run.after_2(c0);
#pragma GCC unroll 8
                for (int i = 2; i < rounds; ++i) round(b, run.k0[i], run.k1[i]);
                __m128i first, second;
                in_order(b, &first, &second);
                output.four(r, first);
                output.four(r + 4, second);
                c0 = simd::add_32(c0, simd::splat_bits(2));
            }
            advance(counter, static_cast<uint64_t>(done));
        }
        if (done < count) {
            output.four(r, block(counter));
            advance(counter, 1);
            r += 4;
        }
        left -= count;
    }
}

Engine engine_of(const State& state) { return {{state.key[0], state.key[1]}}; }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State& state = *reinterpret_cast<State*>(stream);
    hand_out(state, engine_of(state), n, r, output);
    return StatusOk;
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return init_counter_stream<State>(method, stream, n, params, engine_of);
}

using Outputs = SignedOutputs;

}  // namespace

bool is_sound(const Stream* stream) { return counter_state_is_sound<2>(stream); }

}  // namespace orv::brng::philox4x32x10

ORV_BRNG_DEFINE(PHILOX4X32X10, philox4x32x10)
