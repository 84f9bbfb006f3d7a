// What counter-based generators have in common: a block of four words for each value of a 128-bit counter, numbers handed
// out block by block, and jumps that are additions to the counter.
//
// An Engine is made from a state and has
//   __m128i block(counter) const                 the block of one counter value
//   void blocks(counter, n, r, output) const     n whole blocks through an output, and the counter moved past them
#pragma once

#include "brng/entries.h"
#include "simd/integers.h"

#include <orv/streams.h>

#include <string.h>

namespace orv::brng {

template <int key_words>
struct CounterState {
    Stream header;
    uint32_t key[key_words];
    uint32_t counter[4];  // lowest word first
    int32_t buffered;     // words of `buffer` not yet handed out, 0 to 3
    uint32_t buffer[4];   // the last block
};

// Adds to the 128-bit counter, which wraps.
inline void advance(uint32_t* counter, uint64_t low, uint64_t high = 0) {
    const uint64_t addend[2] = {low, high};
    uint64_t value[2];
    memcpy(value, counter, sizeof value);
    value[0] += addend[0];
    value[1] += addend[1] + (value[0] < addend[0]);
    memcpy(counter, value, sizeof value);
}

template <int key_words>
void seed_counter(CounterState<key_words>& state, int32_t n, const uint32_t* words) {
    for (int32_t i = 0; i < key_words; ++i) state.key[i] = i < n ? words[i] : 0;
    for (int32_t i = 0; i < 4; ++i) state.counter[i] = key_words + i < n ? words[key_words + i] : 0;
    state.buffered = 0;
    memset(state.buffer, 0, sizeof state.buffer);
}

// The block of the current counter into the buffer, `handed_out` words of it gone; the counter moves past it.
template <class Engine, int key_words>
void fill_buffer(CounterState<key_words>& state, const Engine& engine, int32_t handed_out) {
    simd::store(state.buffer, engine.block(state.counter));
    advance(state.counter, 1);
    state.buffered = 4 - handed_out;
}

template <class Engine, int key_words, class Output>
[[gnu::always_inline]] inline void hand_out(CounterState<key_words>& state, const Engine& engine, int32_t n,
                                            typename Output::Element* r, Output output) {
    for (; n > 0 && state.buffered > 0; --n, --state.buffered) output.one(r++, state.buffer[4 - state.buffered]);
    if (n <= 0) return;
    const int32_t blocks = n / 4, rest = n % 4;
    engine.blocks(state.counter, blocks, r, output);
    r += 4 * static_cast<ptrdiff_t>(blocks);
    if (rest == 0) return;
    fill_buffer(state, engine, rest);
    for (int32_t i = 0; i < rest; ++i) output.one(r + i, state.buffer[i]);
}

// Passes over a count of n 64-bit words, least significant first, of which the lowest three count.
template <class Engine, int key_words>
void skip_counter(CounterState<key_words>& state, const Engine& engine, int32_t n, const uint64_t* count) {
    uint64_t c[3] = {};
    for (int32_t i = 0; i < 3 && i < n; ++i) c[i] = count[i];
    if ((c[0] | c[1] | c[2]) == 0) return;
    const uint64_t buffered = static_cast<uint64_t>(state.buffered);
    if ((c[1] | c[2]) == 0 && c[0] <= buffered) {
        state.buffered -= static_cast<int32_t>(c[0]);
        return;
    }
    // The last word passed over, counted from the next whole block on, and the block that it stands in.
    const uint64_t before = buffered + 1;
    const uint64_t borrow0 = c[0] < before, borrow1 = c[1] < borrow0;
    c[0] -= before;
    c[1] -= borrow0;
    c[2] -= borrow1;
    advance(state.counter, c[0] >> 2 | c[1] << 62, c[1] >> 2 | c[2] << 62);
    fill_buffer(state, engine, static_cast<int32_t>(c[0] & 3) + 1);
}

// engine_of(state) makes the engine.
template <class State, class EngineOf>
int32_t init_counter_stream(int32_t method, Stream* stream, int32_t n, const void* params, EngineOf engine_of) {
    State& state = *reinterpret_cast<State*>(stream);
    switch (method) {
        case InitMethodSeed:
            seed_counter(state, n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodSkipAhead:
        case InitMethodSkipAheadEx:
            skip_counter(state, engine_of(state), method == InitMethodSkipAhead ? 1 : n,
                         static_cast<const uint64_t*>(params));
            return StatusOk;
        default:
            return status_of_missing(method);
    }
}

template <int key_words>
bool counter_state_is_sound(const Stream* stream) {
    return static_cast<uint32_t>(reinterpret_cast<const CounterState<key_words>*>(stream)->buffered) < 4;
}

}  // namespace orv::brng
