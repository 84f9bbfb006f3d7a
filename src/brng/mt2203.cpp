// MT2203: 6024 Mersenne twisters of period 2^2203 - 1, each with a twist constant and tempering masks of its own. Their
// characteristic polynomials are different primitive polynomials, so that the sequences have nothing in common.
#include "brng/entries.h"
#include "brng/outputs.h"
#include "brng/twister.h"
#include "streams/record.h"
#include "streams/state_checks.h"

#include <iterator>
#include <stddef.h>

namespace orv::brng::mt2203 {

namespace {

struct Recurrence {
    static constexpr int32_t words = 69, middle = 34, first_shift = 12;
    static constexpr uint32_t upper = 0xFFFFFFE0;
};
constexpr double unit = 0x1p-32;
constexpr int32_t spent = Recurrence::words;

// In the order of the members. Found by tools/searches/mt2203_search.
constexpr twister::Coefficients members[] = {
#include "../../data/mt2203.inc"
};
static_assert(std::size(members) == 6024);

struct State {
    Stream header;
    uint32_t words[Recurrence::words];  // raw
    int32_t index;                      // of the next word to hand out
    twister::Coefficients member;
    uint32_t unused;
};
static_assert(sizeof(State) == 312 && offsetof(State, index) == 292);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    State& s = state_of(stream);
    return twister::generate<Recurrence>(s.words, s.index, s.member, n, r, output);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    if (method != InitMethodSeed) return status_of_missing(method);
    State& s = state_of(stream);
    twister::seed<Recurrence>(s.words, n, static_cast<const uint32_t*>(params));
    s.index = spent;
    s.member = members[streams::resolve(stream->brngId).member];
    return StatusOk;
}

using Outputs = LinearOutputs<unit>;

}  // namespace

bool is_sound(const Stream* stream) {
    const int32_t index = reinterpret_cast<const State*>(stream)->index;
    return index >= 0 && index <= spent;
}

}  // namespace orv::brng::mt2203

ORV_BRNG_DEFINE(MT2203, mt2203)
