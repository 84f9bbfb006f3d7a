// ARS5: the block of a counter is counter ^ k0, four AES encryption rounds with k1 to k4 and the last round with k5. Each
// round key adds 64-bit Weyl constants to both halves of the one before.
#include "brng/counter_based.h"
#include "brng/entries.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>
#include <wmmintrin.h>

namespace orv::brng::ars5 {

namespace {

constexpr uint64_t weyl_low = 0x9E3779B97F4A7C15, weyl_high = 0xBB67AE8584CAA73B;
constexpr int keys = 6;

using State = CounterState<4>;
static_assert(offsetof(State, counter) == 32 && offsetof(State, buffered) == 48 && sizeof(State) == 72);

struct Engine {
    __m128i key[keys];

    [[gnu::target("aes")]] __m128i encrypt(__m128i x) const {
        x = simd::bit_xor(x, key[0]);
        for (int i = 1; i < keys - 1; ++i) x = _mm_aesenc_si128(x, key[i]);
        return _mm_aesenclast_si128(x, key[keys - 1]);
    }

    [[gnu::target("aes")]] __m128i block(const uint32_t* counter) const { return encrypt(simd::load(counter)); }

    // Four blocks at a time hide the rounds' latency. The upper half of the counter changes only where the lower one
    // wraps.
    template <class Output>
    [[gnu::target("aes")]] void blocks(uint32_t* counter, int32_t n, typename Output::Element* r, Output output) const {
        constexpr int at_once = 4;
        int32_t left = n;
        while (left >= at_once) {
            uint64_t low;
            memcpy(&low, counter, sizeof low);
            const uint64_t until_wrap = 0 - low;  // 0 where it is 2^64
            if (until_wrap - 1 < at_once - 1) break;
            const int32_t most = until_wrap - 1 < static_cast<uint64_t>(left) ? static_cast<int32_t>(until_wrap) : left;
            const __m128i one = simd::words_in_lanes(1, 0);
            __m128i x = simd::load(counter);
            int32_t done = 0;
            for (; done + at_once <= most; done += at_once, r += 4 * at_once) {
                __m128i b[at_once];
#pragma GCC unroll 4
                for (__m128i& each : b) {
                    each = simd::bit_xor(x, key[0]);
                    x = simd::add(x, one);
                }
#pragma GCC unroll 4
                for (int i = 1; i < keys - 1; ++i)
#pragma GCC unroll 4
                    for (__m128i& each : b) each = _mm_aesenc_si128(each, key[i]);
#pragma GCC unroll 4
                for (int i = 0; i < at_once; ++i) output.four(r + 4 * i, _mm_aesenclast_si128(b[i], key[keys - 1]));
            }
            advance(counter, static_cast<uint64_t>(done));
            left -= done;
            if (done < most) break;
        }
        for (; left > 0; --left, r += 4) {
            output.four(r, block(counter));
            advance(counter, 1);
        }
    }
};

Engine engine_of(const State& state) {
    Engine engine;
    engine.key[0] = simd::load(state.key);
    const __m128i weyl = simd::low_halves(simd::splat_bits(weyl_low), simd::splat_bits(weyl_high));
    for (int i = 1; i < keys; ++i) engine.key[i] = simd::add(engine.key[i - 1], weyl);
    return engine;
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    if (!__kuzCPUisAES()) return ArsStatusNotSupported;
    State& state = *reinterpret_cast<State*>(stream);
    hand_out(state, engine_of(state), n, r, output);
    return StatusOk;
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    const bool jump = method == InitMethodSkipAhead || method == InitMethodSkipAheadEx;
    if (jump && !__kuzCPUisAES()) return ArsStatusNotSupported;
    return init_counter_stream<State>(method, stream, n, params, engine_of);
}

using Outputs = SignedOutputs;

}  // namespace

bool is_sound(const Stream* stream) { return counter_state_is_sound<4>(stream); }

}  // namespace orv::brng::ars5

ORV_BRNG_DEFINE(ARS5, ars5)
