// SFMT19937, the SIMD-oriented Mersenne twister: a step makes one word of 128 bits. Words of 32 bits are handed out from
// the lowest up; those of a 128-bit word that a call did not take wait in the tail.
#include "brng/entries.h"
#include "brng/jumps/characteristic_terms.h"
#include "brng/jumps/ring.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <iterator>
#include <stddef.h>
#include <string.h>

namespace orv::brng::sfmt19937 {

namespace {

constexpr int32_t words = 624, position = 4 * 122;
constexpr int32_t spent = words;
constexpr int32_t degree = sfmt19937_terms[std::size(sfmt19937_terms) - 1];

struct State {
    Stream header;
    uint32_t words[sfmt19937::words];  // 156 words of 128 bits
    int32_t index;                     // of the next word to hand out, a multiple of 4
    uint32_t tail[3];
    int32_t tail_pos;  // of the next word of the tail to hand out
    int32_t tail_end;
};
static_assert(sizeof(State) == 2536 && offsetof(State, index) == 2512 && offsetof(State, tail_end) == 2532);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }
const State& state_of(const Stream* stream) { return *reinterpret_cast<const State*>(stream); }

// ---- The recurrence ---------------------------------------------------------------------------------------------------

// From the oldest word a, the word b at the position, and the two newest words c and d. d comes in last: the steps wait
// for each other through it.
__m128i next(__m128i a, __m128i b, __m128i c, __m128i d) {
    const __m128i mask = _mm_set_epi32(static_cast<int32_t>(0xBFFFFFF6), static_cast<int32_t>(0xBFFAFFFF),
                                       static_cast<int32_t>(0xDDFECB7F), static_cast<int32_t>(0xDFFFFFEF));
    __m128i x = simd::bit_xor(a, simd::shift_left_bytes<1>(a));
    x = simd::bit_xor(x, simd::bit_and(simd::shift_right_32<11>(b), mask));
    x = simd::bit_xor(x, simd::shift_right_bytes<1>(c));
    return simd::bit_xor(x, simd::shift_left_32<18>(d));
}

// Replaces the block by the next one and hands each new word to emit(k, four words of 32 bits), k their index.
template <class Emit>
[[gnu::always_inline]] inline void regenerate(uint32_t* w, const Emit& emit) {
    __m128i c = simd::load_aligned(w + words - 8), d = simd::load_aligned(w + words - 4);
    const auto run = [&](int32_t from, int32_t to, int32_t offset) {
        for (int32_t k = from; k < to; k += 4) {
            const __m128i fresh = next(simd::load_aligned(w + k), simd::load_aligned(w + k + offset), c, d);
            simd::store_aligned(w + k, fresh);
            emit(k, fresh);
            c = d;
            d = fresh;
        }
    };
    run(0, words - position, position);
    run(words - position, words, position - words);
}

void regenerate(uint32_t* w) {
    regenerate(w, [](int32_t, __m128i) {});
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State& s = state_of(stream);
    for (; n > 0 && s.tail_pos < s.tail_end; --n) output.one(r++, s.tail[s.tail_pos++]);
    while (n > 0) {
        if (s.index == spent) {
            if (n >= words) {
                regenerate(s.words, [&](int32_t k, __m128i fresh) { output.four(r + k, fresh); });
                r += words;
                n -= words;
                continue;
            }
            regenerate(s.words);
            s.index = 0;
        }
        for (; n >= 4 && s.index < spent; n -= 4, s.index += 4, r += 4)
            output.four(r, simd::load_aligned(s.words + s.index));
        if (n < 4 && n > 0 && s.index < spent) {
            const uint32_t* last = s.words + s.index;
            s.index += 4;
            for (int32_t k = 0; k < n; ++k) output.one(r + k, last[k]);
            s.tail_pos = 0;
            s.tail_end = 4 - n;
            memcpy(s.tail, last + n, static_cast<size_t>(4 - n) * sizeof *last);
            n = 0;
        }
    }
    return StatusOk;
}

using Outputs = SignedOutputs;

// ---- Seeding: the array initialisation of M. Saito and M. Matsumoto ---------------------------------------------------

uint32_t folded(uint32_t x) { return x ^ x >> 27; }

// The parity of the state's bits that `parity` picks tells whether the period is the long one; else one bit is turned.
void certify_period(uint32_t* w) {
    constexpr uint32_t parity[4] = {0x00000001, 0x00000000, 0x00000000, 0x13C9E684};
    uint32_t inner = 0;
    for (int i = 0; i < 4; ++i) inner ^= w[i] & parity[i];
    if (__builtin_parity(inner) == 0) w[0] ^= parity[0];  // its lowest bit is the lowest that counts
}

void seed(State& s, int32_t n, const uint32_t* key) {
    constexpr int32_t lag = 11, mid = (words - lag) / 2;
    static constexpr uint32_t one = 1;
    if (n < 1) n = 1, key = &one;
    uint32_t* w = s.words;
    memset(w, 0x8B, sizeof s.words);
    int32_t i = 0;
    const auto at = [&](int32_t offset) -> uint32_t& { return w[(i + offset) % words]; };
    const auto mix = [&](uint32_t added) {
        uint32_t x = folded(at(0) ^ at(mid) ^ at(words - 1)) * 1664525;
        at(mid) += x;
        x += added + static_cast<uint32_t>(i);
        at(mid + lag) += x;
        at(0) = x;
        i = (i + 1) % words;
    };
    const uint32_t count = n < words ? words : static_cast<uint32_t>(n) + 1;
    mix(static_cast<uint32_t>(n));
    for (uint32_t j = 0; j < count - 1; ++j) mix(j < static_cast<uint32_t>(n) ? key[j] : 0);
    for (int32_t j = 0; j < words; ++j) {
        uint32_t x = folded(at(0) + at(mid) + at(words - 1)) * 1566083941;
        at(mid) ^= x;
        x -= static_cast<uint32_t>(i);
        at(mid + lag) ^= x;
        at(0) = x;
        i = (i + 1) % words;
    }
    certify_period(w);
    s.index = spent;
    s.tail_pos = s.tail_end = 0;
}

// ---- Jumps: the words of a state in a jump begin at its index and go around the block ---------------------------------

void step_state(Stream* state) {
    State& s = state_of(state);
    const int32_t k = s.index == spent ? 0 : s.index;
    const auto at = [&](int32_t offset) {
        return simd::load_aligned(s.words + (k + offset < words ? k + offset : k + offset - words));
    };
    simd::store_aligned(s.words + k, next(at(0), at(position), at(words - 8), at(words - 4)));
    s.index = k + 4;
}

// The last 128-bit word of a jump is the one that holds the first number to hand out, if `adjust` of its words are
// passed over.
void finish_state(Stream* stream, const Stream* state, int32_t adjust) {
    State& s = state_of(stream);
    ring::unroll<words>(s.words, state_of(state).words, state_of(state).index);
    s.index = spent;
    if (adjust == 0) return;
    s.tail_pos = 0;
    s.tail_end = 4 - adjust;
    memcpy(s.tail, s.words + words - 4 + adjust, static_cast<size_t>(4 - adjust) * sizeof *s.words);
}

int32_t pre_skip(Stream* stream, uint64_t* count, int32_t* adjust) {
    State& s = state_of(stream);
    *adjust = 0;
    const uint64_t rest = static_cast<uint64_t>(s.tail_end - s.tail_pos);
    if (*count <= rest) {
        s.tail_pos += static_cast<int32_t>(*count);
        return 0;
    }
    const uint64_t past_tail = *count - rest, left = static_cast<uint64_t>(spent - s.index);
    s.tail_pos = s.tail_end = 0;
    if (past_tail > left) {
        s.index = spent;
        *count = (past_tail - left) / 4 + ((past_tail - left) % 4 != 0);
        *adjust = static_cast<int32_t>((past_tail - left) % 4);
        return 1;
    }
    const int32_t target = s.index + static_cast<int32_t>(past_tail);
    s.index = (target + 3) / 4 * 4;
    if (target % 4 != 0) {
        s.tail_end = 4 - target % 4;
        memcpy(s.tail, s.words + target, static_cast<size_t>(s.tail_end) * sizeof *s.words);
    }
    return 0;
}

int32_t skip_ahead(Stream* stream, uint64_t count) {
    const bool few = static_cast<int64_t>(count) < degree;
    return (few ? __kuz_SkipAheadHorner : __kuz_SkipAheadSWin)(
        stream, ring::zero<State>, ring::add<State>, ring::copy<State>, step_state, finish_state, pre_skip, count,
        words, degree, sizeof(State), std::size(sfmt19937_terms), sfmt19937_terms);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    switch (method) {
        case InitMethodSeed:
            seed(state_of(stream), n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodSkipAhead:
            return skip_ahead(stream, *static_cast<const uint64_t*>(params));
        default:
            return status_of_missing(method);
    }
}

}  // namespace

bool is_sound(const Stream* stream) {
    const State& s = state_of(stream);
    return s.index >= 0 && s.index <= spent && s.index % 4 == 0 && s.tail_pos >= 0 && s.tail_pos <= s.tail_end &&
           s.tail_end <= 3;
}

}  // namespace orv::brng::sfmt19937

ORV_BRNG_DEFINE(SFMT19937, sfmt19937)
