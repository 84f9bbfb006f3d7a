// R250, the generalised feedback shift register x(t) = x(t - 250) ^ x(t - 147) on 32-bit words, in its ring: a new word
// takes the place of the oldest one, and a run goes on as far as neither position comes to the ring's end.
#include "brng/entries.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>
#include <string.h>

namespace orv::brng::r250 {

namespace {

constexpr int32_t words = 250, middle = 103;
constexpr double unit = 0x1p-32;

struct State {
    Stream header;
    uint32_t x[words];
    int32_t i;  // of the oldest word
    int32_t j;  // of the word 103 places on
};
static_assert(sizeof(State) == 1024 && offsetof(State, i) == 1016);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State& s = state_of(stream);
    while (n > 0) {
        const int32_t before_end = words - (s.i > s.j ? s.i : s.j);
        const int32_t run = n < before_end ? n : before_end;
        uint32_t* oldest = s.x + s.i;
        const uint32_t* other = s.x + s.j;
        int32_t k = 0;
        for (; k + 4 <= run; k += 4) {
            const __m128i fresh = simd::bit_xor(simd::load(oldest + k), simd::load(other + k));
            simd::store(oldest + k, fresh);
            output.four(r + k, fresh);
        }
        for (; k < run; ++k) output.one(r + k, oldest[k] ^= other[k]);
        s.i = s.i + run == words ? 0 : s.i + run;
        s.j = s.j + run == words ? 0 : s.j + run;
        r += run;
        n -= run;
    }
    return StatusOk;
}

// 32 words get a diagonal of ones with zeros above it, which makes them linearly independent.
void make_independent(uint32_t* x) {
    for (int32_t t = 0; t < 32; ++t) {
        uint32_t& word = x[3 + 7 * t];
        word = (word & 0xFFFFFFFF >> t) | 0x80000000 >> t;
    }
}

void seed(State& s, int32_t n, const uint32_t* seed_words) {
    s.i = 0;
    s.j = middle;
    if (n >= words) {
        memcpy(s.x, seed_words, sizeof s.x);
        return;
    }
    uint32_t t = n >= 1 && seed_words[0] != 0 ? seed_words[0] : 1;
    for (uint32_t& word : s.x) word = t *= 69069;
    make_independent(s.x);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    if (method != InitMethodSeed) return status_of_missing(method);
    seed(state_of(stream), n, static_cast<const uint32_t*>(params));
    return StatusOk;
}

using Outputs = LinearOutputs<unit>;

}  // namespace

bool is_sound(const Stream* stream) {
    const State& s = *reinterpret_cast<const State*>(stream);
    return s.i >= 0 && s.i < words && s.j == (s.i + middle) % words;
}

}  // namespace orv::brng::r250

ORV_BRNG_DEFINE(R250, r250)
