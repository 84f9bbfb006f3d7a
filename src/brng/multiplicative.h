// Leapfrog and skip-ahead of the multiplicative generators, x(k) = a^k x: a jump is one modular power.
#pragma once

#include <orv/streams.h>
#include <stdint.h>

namespace orv::brng {

// State is the stream's record with its x and its multiplier a, and has
//   seed(n, words), multiply(x, y) and power(a, n).
template <class State>
int32_t init_multiplicative(int32_t method, Stream* stream, int32_t n, const void* params) {
    State& state = *reinterpret_cast<State*>(stream);
    switch (method) {
        case InitMethodSeed:
            state.seed(n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodLeapfrog:
            state.x = State::multiply(state.x, State::power(state.a, *static_cast<const uint32_t*>(params)));
            state.a = State::power(state.a, static_cast<uint32_t>(n));
            return StatusOk;
        case InitMethodSkipAhead:
            state.x = State::multiply(state.x, State::power(state.a, *static_cast<const uint64_t*>(params)));
            return StatusOk;
        case InitMethodSkipAheadEx:
            return BrngStatusNoSkipAheadEx;
        default:
            return StatusBadMethod;
    }
}

}  // namespace orv::brng
