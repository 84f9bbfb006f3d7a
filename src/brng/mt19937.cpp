// MT19937, the Mersenne twister of period 2^19937 - 1: seeding, kernels, and jumps by its characteristic polynomial.
#include "brng/entries.h"
#include "brng/jumps/characteristic_terms.h"
#include "brng/jumps/ring.h"
#include "brng/outputs.h"
#include "brng/twister.h"
#include "streams/state_checks.h"

#include <iterator>
#include <stddef.h>
#include <string.h>

namespace orv::brng::mt19937 {

namespace {

struct Recurrence {
    static constexpr int32_t words = 624, middle = 397, first_shift = 11;
    static constexpr uint32_t upper = 0x80000000;
};
constexpr twister::Coefficients coefficients = {0x9908B0DF, 0x9D2C5680, 0xEFC60000};
constexpr double unit = 0x1p-32;
constexpr int32_t spent = Recurrence::words;
// From here on evaluating a polynomial of degree 19937 at the step takes less time than the walk.
constexpr uint64_t shortest_jump = 1048576;

struct State {
    Stream header;
    uint32_t words[Recurrence::words];  // raw
    int32_t index;                      // of the next word to hand out
    uint32_t unused;
};
static_assert(sizeof(State) == 2520 && offsetof(State, index) == 2512);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }
const State& state_of(const Stream* stream) { return *reinterpret_cast<const State*>(stream); }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State& s = state_of(stream);
    return twister::generate<Recurrence>(s.words, s.index, coefficients, n, r, output);
}

// ---- Jumps: the words of a state in a jump begin at its index and go around the block ---------------------------------

void step_state(Stream* state) {
    State& s = state_of(state);
    const int32_t i = s.index == spent ? 0 : s.index;
    const int32_t next = i + 1 == Recurrence::words ? 0 : i + 1;
    const int32_t past_middle = i + Recurrence::middle - Recurrence::words;
    const int32_t far = past_middle < 0 ? i + Recurrence::middle : past_middle;
    s.words[i] = twister::next_word<Recurrence>(s.words[i], s.words[next], s.words[far], coefficients.twist);
    s.index = next;
}

void finish_state(Stream* stream, const Stream* state, int32_t) {
    ring::unroll<Recurrence::words>(state_of(stream).words, state_of(state).words, state_of(state).index);
    state_of(stream).index = spent;
}

int32_t pre_skip(Stream* stream, uint64_t* count, int32_t* adjust) {
    State& s = state_of(stream);
    *adjust = 0;
    const uint64_t left = static_cast<uint64_t>(spent - s.index);
    if (*count <= left) {
        s.index += static_cast<int32_t>(*count);
        return 0;
    }
    *count -= left;
    s.index = spent;
    return 1;
}

// The rest of a block, then whole blocks.
void walk(State& s, uint64_t count) {
    int32_t adjust;
    while (pre_skip(&s.header, &count, &adjust) != 0) {
        twister::regenerate<Recurrence>(s.words, coefficients.twist);
        s.index = 0;
    }
}

int32_t skip_ahead(Stream* stream, uint64_t count) {
    if (count < shortest_jump) {
        walk(state_of(stream), count);
        return StatusOk;
    }
    return __kuz_SkipAheadSWin(stream, ring::zero<State>, ring::add<State>, ring::copy<State>, step_state, finish_state,
                               pre_skip, count, Recurrence::words, mt19937_terms[std::size(mt19937_terms) - 1],
                               sizeof(State), std::size(mt19937_terms), mt19937_terms);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    switch (method) {
        case InitMethodSeed:
            twister::seed<Recurrence>(state_of(stream).words, n, static_cast<const uint32_t*>(params));
            state_of(stream).index = spent;
            return StatusOk;
        case InitMethodSkipAhead:
            return skip_ahead(stream, *static_cast<const uint64_t*>(params));
        default:
            return status_of_missing(method);
    }
}

using Outputs = LinearOutputs<unit>;

}  // namespace

bool is_sound(const Stream* stream) {
    const int32_t index = state_of(stream).index;
    return index >= 0 && index <= spent;
}

}  // namespace orv::brng::mt19937

ORV_BRNG_DEFINE(MT19937, mt19937)
